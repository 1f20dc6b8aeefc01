#include "Page.h"

#include <map>
#include <set>
#include <string>
#include <utility>

#include "PageParts.h"

namespace NorvexRules {

namespace {

using Norvex::Document::Value;

/// Helpers allow and say much the same: the page has each such object once, in a table, and elsewhere its index.
class Sharing {
public:
    explicit Sharing(const Value& book) : m_oneOf(book["judging"]["sentences"]["oneOf"].GetText()) {}

    Value Share(const Value& value) {
        if (value.GetKind() == Value::Kind::List) {
            Value::List list;
            for (const Value& one : value.GetList()) list.push_back(Share(one));
            return list;
        }
        if (value.GetKind() != Value::Kind::Object) return value;
        if (IsNamedByItself(value)) return value["value"];
        const bool isWordy = IsWordedByValues(value);
        Value::Object members;
        for (const auto& [name, member] : value.GetObject()) {
            if (isWordy && name == "words") continue;
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

    /// Whether the words of what is allowed are those that the page can make of the names in its list.
    bool IsWordedByValues(const Value& value) const {
        const Value* const words = value.Find("words");
        const Value* const values = value.Find("values");
        if (words == nullptr || values == nullptr) return false;
        std::string list;
        std::set<std::string> names;
        for (const Value& one : values->GetList()) {
            const bool isFlag = one["value"].GetKind() == Value::Kind::Bool;
            const std::string name = !isFlag ? one["name"].GetText() : one["value"].GetBool() ? "true" : "false";
            if (names.insert(name).second) list += (list.empty() ? "" : ", ") + name;
        }
        if (names.size() > 1)
            list = m_oneOf.substr(0, m_oneOf.find('%')) + list + m_oneOf.substr(m_oneOf.find('%') + 2);
        return list == words->GetText();
    }

    std::size_t IndexOf(Value object) {
        const auto [row, isNew] = m_indices.try_emplace(WriteJson(object, {-1, true}), m_table.size());
        if (isNew) m_table.push_back(std::move(object));
        return row->second;
    }

    const std::string m_oneOf;
    std::map<std::string, std::size_t> m_indices;
    Value::List m_table;
};

}  // namespace

std::string PageHtml(const Value& book) {
    Sharing sharing(book);
    Value shared = sharing.Share(book);
    const Value page = {{"shared", sharing.TakeTable()}, {"book", std::move(shared)}};
    std::string data = WriteJson(page, {-1, true});
    // Within a script, "</script" would end it early, and "<!--" with "<script" late.
    for (std::size_t at = 0; (at = data.find('<', at)) != std::string::npos; ++at) data.replace(at, 1, "\\u003c");
    std::string text = g_pageParts[0].text;
    const auto put = [&text](const std::string& name, const std::string& part) {
        const std::string mark = "/*" + name + "*/";
        text.replace(text.find(mark), mark.size(), part);
    };
    for (const PagePart& part : g_pageParts) {
        if (&part != g_pageParts) put(part.name, part.text);
    }
    put("BOOK", data);
    return text;
}

}  // namespace NorvexRules
