#include "norvex/document/TreeForm.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "norvex/document/Fail.h"
#include "norvex/foundation/Excerpt.h"

namespace Norvex::Document {

namespace {

using Core::Excerpt;
using Core::Property;
using Kind = Value::Kind;

bool LooksLikeRatio(const std::string& text) {
    return text.find('/') != std::string::npos && Core::ParseRatio(text).has_value();
}

std::string RatioText(const Core::Ratio& ratio) {
    return std::to_string(ratio.numerator()) + '/' + std::to_string(ratio.denominator());
}

// ------------------------------------------------------------------------------------------------------ writing

void RequireRoom(int levels) {
    if (levels < 1) Fail(0, "the tree is too deep to be written");
}

Value Special(const char* name, Value value, int levels) {
    RequireRoom(levels);
    return {{name, std::move(value)}};
}

Value FormOfText(const std::string& text, int levels) {
    if (!Core::IsUtf8(text)) {
        constexpr char digits[] = "0123456789abcdef";
        std::string hex;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            hex += digits[byte >> 4];
            hex += digits[byte & 15];
        }
        return Special("$bytes", std::move(hex), levels);
    }
    return LooksLikeRatio(text) ? Special("$text", text, levels) : Value(text);
}

Value FormOfDouble(double value, int levels) {
    if (std::isnan(value)) return Special("$double", "nan", levels);
    if (std::isinf(value)) return Special("$double", value > 0 ? "inf" : "-inf", levels);
    return value;
}

Value FormOfChildren(const Property& node, int levels) {
    RequireRoom(levels);
    std::set<std::string> names;
    const bool isPlain = std::all_of(node.begin(), node.end(), [&names](const Property& child) {
        const std::string& name = child.GetName();
        return names.insert(name).second && name.substr(0, 1) != "$" && Core::IsUtf8(name);
    });
    if (isPlain) {
        Value::Object members;
        for (const Property& child : node) members.push_back({child.GetName(), FormOf(child, levels - 1)});
        return members;
    }
    constexpr int taken = 3;  // the object, the list and the pair
    RequireRoom(levels - taken + 1);
    Value::List list;
    for (const Property& child : node) {
        list.push_back(Value::List{FormOfText(child.GetName(), levels - taken), FormOf(child, levels - taken)});
    }
    return Special("$children", std::move(list), levels);
}

// ------------------------------------------------------------------------------------------------------ reading

std::string BytesFrom(const Value& value) {
    const std::string& text = value.GetText();
    const auto fail = [&value, &text] { Fail(value.line, "'" + Excerpt(text) + "' is no hexadecimal text"); };
    const auto digit = [&fail](char c) {
        constexpr std::string_view digits = "0123456789abcdef";
        const std::size_t place = digits.find(c);
        if (place == std::string_view::npos) fail();
        return static_cast<unsigned char>(place);
    };
    if (text.size() % 2 != 0) fail();
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes += static_cast<char>(digit(text[i]) * 16 + digit(text[i + 1]));
    }
    return bytes;
}

Property NodeWithoutValue(const std::string& name) {
    Property node(name);
    node.CopyDataFrom(Property());
    return node;
}

/// Turns values into nodes, and remembers where they stood.
class Reader {
public:
    explicit Reader(Lines* lines) : m_lines(lines) {}

    Property Read(const std::string& name, const Value& value, const std::string& path, int levels) {
        if (m_lines != nullptr && value.line != 0) m_lines->emplace(path, value.line);
        switch (value.GetKind()) {
            case Kind::Bool:
                return Property(name, value.GetBool());
            case Kind::Integer:
                return Property(name, value.GetInteger());
            case Kind::Double:
                return Property(name, value.GetDouble());
            case Kind::Text:
                if (LooksLikeRatio(value.GetText())) return Property(name, *Core::ParseRatio(value.GetText()));
                return Property(name, value.GetText());
            case Kind::Object:
                break;
            case Kind::Null:
            case Kind::List:
                Fail(value.line, "'" + Excerpt(path) + "' is neither a value nor a section");
        }
        if (levels < 1) Fail(value.line, "the document is too deep");
        const Value::Object& members = value.GetObject();
        RequireOnce(members, path);
        const bool isSpecial = members.size() == 1 && members.front().name.substr(0, 1) == "$";
        return isSpecial ? ReadSpecial(name, value, path, levels - 1) : ReadMembers(name, members, path, levels - 1);
    }

private:
    static std::string Below(const std::string& path, const std::string& name) {
        return path.empty() ? name : path + Property::SEPARATOR + name;
    }

    static void RequireOnce(const Value::Object& members, const std::string& path) {
        std::set<std::string_view> names;
        for (const auto& [name, value] : members) {
            if (!names.insert(name).second) Fail(value.line, "'" + Excerpt(Below(path, name)) + "' stands there twice");
        }
    }

    Property ReadMembers(const std::string& name, const Value::Object& members, const std::string& path, int levels) {
        Property node(name);
        for (const auto& [member, value] : members) {
            if (member.substr(0, 1) == "$") Fail(value.line, "'" + Excerpt(member) + "' stands beside other members");
            node.AddNamed(Read(member, value, Below(path, member), levels));
        }
        return node;
    }

    Property ReadSpecial(const std::string& name, const Value& object, const std::string& path, int levels) {
        const auto& [kind, value] = object.GetObject().front();
        const bool isText = value.GetKind() == Kind::Text;
        if (kind == "$text" && isText) return Property(name, value.GetText());
        if (kind == "$bytes" && isText) return Property(name, BytesFrom(value));
        if (kind == "$double" && isText) {
            using Doubles = std::numeric_limits<double>;
            if (value.GetText() == "nan") return Property(name, Doubles::quiet_NaN());
            if (value.GetText() == "inf") return Property(name, Doubles::infinity());
            if (value.GetText() == "-inf") return Property(name, -Doubles::infinity());
        }
        if (kind == "$none" && value.GetKind() == Kind::Bool && value.GetBool()) return NodeWithoutValue(name);
        if (kind == "$children" && value.GetKind() == Kind::List) return ReadPairs(name, value, path, levels);
        Fail(object.line, "'" + Excerpt(kind) + "' does not hold what it should");
    }

    Property ReadPairs(const std::string& name, const Value& list, const std::string& path, int levels) {
        Property node(name);
        for (const Value& pair : list.GetList()) {
            if (pair.GetKind() != Kind::List || pair.GetList().size() != 2) Fail(pair.line, "this is no named value");
            const Property child = Reader(nullptr).Read(std::string(), pair.GetList()[0], std::string(), levels);
            if (child.GetType() != PT_STRING) Fail(pair.line, "this is no name");
            node.AddNamed(Read(child.GetString(), pair.GetList()[1], Below(path, child.GetString()), levels));
        }
        return node;
    }

    Lines* const m_lines;
};

}  // namespace

Value FormOf(const Property& tree, int levels) {
    switch (tree.GetType()) {
        case PT_NONE:
            return Special("$none", true, levels);
        case PT_BOOL:
            return tree.GetBool();
        case PT_DOUBLE:
            return FormOfDouble(tree.GetDouble(), levels);
        case PT_INT64:
            return tree.GetInt64();
        case PT_STRING:
            return FormOfText(tree.GetString(), levels);
        case PT_RATIO:
            return RatioText(tree.GetRatio());
        case PT_NODE:
            break;
    }
    return FormOfChildren(tree, levels);
}

Value PlainFormOf(const Property& tree, int levels) {
    switch (tree.GetType()) {
        case PT_NONE:
            return {};
        case PT_STRING:
            return tree.GetString();
        case PT_DOUBLE:
            return tree.GetDouble();
        case PT_NODE: {
            RequireRoom(levels);
            Value::Object members;
            for (const Property& child : tree) members.push_back({child.GetName(), PlainFormOf(child, levels - 1)});
            return members;
        }
        case PT_BOOL:
        case PT_INT64:
        case PT_RATIO:
            break;
    }
    return FormOf(tree);
}

Property TreeOf(const std::string& name, const Value& value, Lines* lines) {
    return Reader(lines).Read(name, value, std::string(), g_deepestDocument);
}

}  // namespace Norvex::Document
