#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "norvex/foundation/Export.h"

/// Documents as values, whatever text or objects of another language they are made of, and as JSON texts.

namespace Norvex::Document {

/// What JSON can hold. A value owns what it holds. Reading one as what it is not throws DocumentException.
class NORVEX_API Value {
public:
    enum class Kind { Null, Bool, Integer, Double, Text, List, Object };
    struct Member;
    using List = std::vector<Value>;
    using Object = std::vector<Member>;  ///< in the order of the document; names may repeat

    Value() = default;
    Value(bool flag);
    template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int> = 0>
    Value(T number);
    Value(double number);
    Value(std::string text);
    Value(const char* text);
    Value(List list);
    Value(Object members);
    /// An object: {{"name", "x"}, {"count", 5}}.
    Value(std::initializer_list<Member> members);

    Kind GetKind() const noexcept { return static_cast<Kind>(m_held.index()); }
    bool IsNull() const noexcept { return GetKind() == Kind::Null; }

    bool GetBool() const;
    long long GetInteger() const;
    double GetDouble() const;
    const std::string& GetText() const;
    const List& GetList() const;
    const Object& GetObject() const;

    /// The first member of that name, or null where there is none or this is no object.
    const Value* Find(std::string_view name) const noexcept;
    /// The same; throws where there is none.
    const Value& operator[](std::string_view name) const;
    /// The same; adds one where there is none. A null becomes an object.
    Value& operator[](std::string_view name);
    /// Adds to a list. A null becomes one.
    void Append(Value value);

    /// Where the value began in the text that it was read from, from 1; 0 where it was not read.
    int line = 0;

private:
    template <class T>
    const T& Get(const char* what) const;

    /// The index of an alternative is its Kind.
    std::variant<std::monostate, bool, long long, double, std::string, List, Object> m_held;
};

struct Value::Member {
    std::string name;
    Value value;
};

template <class T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, int>>
Value::Value(T number) : m_held(static_cast<long long>(number)) {}

/// A document may have no more than so many lists and objects in one another, so that none is too deep for the stack.
constexpr int g_deepestDocument = 100;

struct JsonStyle {
    int indent = 2;        ///< spaces; -1 for one line
    bool isAscii = false;  ///< all other characters as "\u" and four digits
};

/// Bytes that are no UTF-8 become the replacement character, numbers that JSON has no form for become null, and of
/// members with one name the last one stands.
NORVEX_API std::string WriteJson(const Value& value, const JsonStyle& style = {});

/// Throws DocumentException, with the line, for a text that is no JSON, that is deeper than g_deepestDocument, or that
/// has a number which no long long or double holds.
NORVEX_API Value ReadJson(std::string_view text);

}  // namespace Norvex::Document
