#include "Page.h"

#include <map>
#include <string>
#include <utility>

#include "PageTemplate.h"

namespace NorvexRules {

namespace {

using Norvex::Document::Value;

/// Helpers allow and say much the same: the page has each such object once, in a table, and elsewhere its index.
class Sharing {
public:
    Value Share(const Value& value) {
        if (value.GetKind() == Value::Kind::List) {
            Value::List list;
            for (const Value& one : value.GetList()) list.push_back(Share(one));
            return list;
        }
        if (value.GetKind() != Value::Kind::Object) return value;
        if (IsNamedByItself(value)) return value["value"];
        Value::Object members;
        for (const auto& [name, member] : value.GetObject()) {
            const bool isShared =
                name == "allowed" || name == "parameters" || name == "facts" || name == "widened" || name == "when";
            const bool isObject = member.GetKind() == Value::Kind::Object;
            members.push_back({name, isShared && isObject ? Value(IndexOf(Share(member))) : Share(member)});
        }
        return members;
    }
    Value TakeTable() { return std::move(m_table); }

private:
    /// Of most values of a list the display name is the value's own text.
    static bool IsNamedByItself(const Value& value) {
        const Value* const name = value.Find("name");
        const Value* const held = value.Find("value");
        if (name == nullptr || held == nullptr || name->GetKind() != Value::Kind::Text) return false;
        const bool isText = held->GetKind() == Value::Kind::Text && held->GetText() == name->GetText();
        const bool isNumber = held->GetKind() == Value::Kind::Integer;
        return isText || (isNumber && std::to_string(held->GetInteger()) == name->GetText());
    }

    std::size_t IndexOf(Value object) {
        const auto [row, isNew] = m_indices.try_emplace(WriteJson(object, {-1, true}), m_table.size());
        if (isNew) m_table.push_back(std::move(object));
        return row->second;
    }

    std::map<std::string, std::size_t> m_indices;
    Value::List m_table;
};

}  // namespace

std::string PageHtml(const Value& book) {
    Sharing sharing;
    Value shared = sharing.Share(book);
    const Value page = {{"shared", sharing.TakeTable()}, {"book", std::move(shared)}};
    std::string data = WriteJson(page, {-1, true});
    // Within a script, "</script" would end it early, and "<!--" with "<script" late.
    for (std::size_t at = 0; (at = data.find('<', at)) != std::string::npos; ++at) data.replace(at, 1, "\\u003c");
    std::string text = g_pageTemplate;
    const std::string mark = "/*BOOK*/";
    return text.replace(text.find(mark), mark.size(), data);
}

}  // namespace NorvexRules
