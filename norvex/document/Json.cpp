#include "norvex/document/Json.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>

#include "norvex/document/Fail.h"
#include "norvex/foundation/Excerpt.h"

namespace Norvex::Document {

namespace {

using Core::Excerpt;
using Json = nlohmann::ordered_json;

/// A character of the text, counting lines as the parser takes them.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* position, int* line) : m_position(position), m_line(line) {}

    reference operator*() const { return *m_position; }
    CountingIterator& operator++() {
        // The end of a line counts with what follows it: the parser reads one character past a number before it
        // tells of it.
        if (m_isLineOver) ++*m_line;
        m_isLineOver = *m_position == '\n';
        ++m_position;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return m_position == other.m_position; }
    bool operator!=(const CountingIterator& other) const { return m_position != other.m_position; }

private:
    const char* m_position;
    int* m_line;
    bool m_isLineOver = false;
};

/// Builds values from the parser's events.
class Builder {
public:
    explicit Builder(const int& line) : m_line(line) {}

    Value Take() { return std::move(m_root); }

    bool null() { return Add({}); }
    bool boolean(bool flag) { return Add(flag); }
    bool number_integer(Json::number_integer_t number) { return Add(number); }
    bool number_unsigned(Json::number_unsigned_t number) {
        if (number > static_cast<Json::number_unsigned_t>(std::numeric_limits<long long>::max())) {
            TooLarge(std::to_string(number));
        }
        return Add(number);
    }
    bool number_float(Json::number_float_t number, const std::string& text) {
        // An integer of more than 64 bits comes as a floating point number.
        if (text.find_first_of(".eE") == std::string::npos) TooLarge(text);
        return Add(number);
    }
    bool string(std::string& text) { return Add(std::move(text)); }
    bool binary(Json::binary_t& /*bytes*/) { return false; }  // JSON texts have none
    bool start_object(std::size_t /*size*/) { return Open(false); }
    bool key(std::string& name) {
        m_open.back().name = std::move(name);
        return true;
    }
    bool end_object() { return Close(); }
    bool start_array(std::size_t /*size*/) { return Open(true); }
    bool end_array() { return Close(); }
    bool parse_error(std::size_t /*position*/, const std::string& token, const nlohmann::detail::exception& error) {
        constexpr int outOfRange = 406;
        if (error.id == outOfRange) TooLarge(token);
        Fail(m_line, "this is no JSON, at " + (token.empty() ? "the end of the text" : "'" + Excerpt(token) + "'"));
    }

private:
    /// A list or an object of which more is to come.
    struct Level {
        bool isList;
        int line;
        Value::List list;
        Value::Object members;
        std::string name;  ///< of the member that comes next
    };

    [[noreturn]] void TooLarge(const std::string& number) const {
        Fail(m_line, "the number " + Excerpt(number) + " is too large");
    }

    bool Add(Value value) { return AddFrom(m_line, std::move(value)); }
    bool AddFrom(int line, Value value) {
        value.line = line;
        if (m_open.empty()) {
            m_root = std::move(value);
        } else if (Level& level = m_open.back(); level.isList) {
            level.list.push_back(std::move(value));
        } else {
            level.members.push_back({std::move(level.name), std::move(value)});
        }
        return true;
    }
    bool Open(bool isList) {
        if (m_open.size() >= g_deepestDocument) Fail(m_line, "the document is too deep");
        m_open.push_back({isList, m_line, {}, {}, {}});
        return true;
    }
    bool Close() {
        Level level = std::move(m_open.back());
        m_open.pop_back();
        return AddFrom(level.line, level.isList ? Value(std::move(level.list)) : Value(std::move(level.members)));
    }

    const int& m_line;
    Value m_root;
    std::vector<Level> m_open;
};

Json ToJson(const Value& value) {
    switch (value.GetKind()) {
        case Value::Kind::Null:
            return nullptr;
        case Value::Kind::Bool:
            return value.GetBool();
        case Value::Kind::Integer:
            return value.GetInteger();
        case Value::Kind::Double:
            return value.GetDouble();
        case Value::Kind::Text:
            return value.GetText();
        case Value::Kind::List: {
            Json list = Json::array();
            for (const Value& item : value.GetList()) list.push_back(ToJson(item));
            return list;
        }
        case Value::Kind::Object:
            break;
    }
    Json object = Json::object();
    for (const auto& [name, member] : value.GetObject()) object[name] = ToJson(member);
    return object;
}

}  // namespace

DocumentException::DocumentException(int line, const std::string& sentence)
    : m_what(line == 0 ? sentence : "line " + std::to_string(line) + ": " + sentence) {
    *this << TagDescription(sentence);
    if (line != 0) *this << TagLine(line);
}

Value::Value(bool flag) : m_held(flag) {}

Value::Value(double number) : m_held(number) {}

Value::Value(std::string text) : m_held(std::move(text)) {}

Value::Value(const char* text) : m_held(std::string(text)) {}

Value::Value(List list) : m_held(std::move(list)) {}

Value::Value(Object members) : m_held(std::move(members)) {}

Value::Value(std::initializer_list<Member> members) : m_held(Object(members)) {}

template <class T>
const T& Value::Get(const char* what) const {
    const T* const held = std::get_if<T>(&m_held);
    if (held == nullptr) Fail(line, std::string("the value is no ") + what);
    return *held;
}

bool Value::GetBool() const {
    return Get<bool>("flag");
}

long long Value::GetInteger() const {
    return Get<long long>("integer");
}

double Value::GetDouble() const {
    return Get<double>("floating point number");
}

const std::string& Value::GetText() const {
    return Get<std::string>("text");
}

const Value::List& Value::GetList() const {
    return Get<List>("list");
}

const Value::Object& Value::GetObject() const {
    return Get<Object>("object");
}

const Value* Value::Find(std::string_view name) const noexcept {
    const auto* const members = std::get_if<Object>(&m_held);
    if (members == nullptr) return nullptr;
    const auto member =
        std::find_if(members->begin(), members->end(), [name](const Member& m) { return m.name == name; });
    return member != members->end() ? &member->value : nullptr;
}

const Value& Value::operator[](std::string_view name) const {
    const Value* const member = Find(name);
    if (member == nullptr) Fail(line, "there is no member '" + Excerpt(name) + "'");
    return *member;
}

Value& Value::operator[](std::string_view name) {
    if (IsNull()) m_held = Object();
    if (const Value* const member = Find(name)) return const_cast<Value&>(*member);
    (void)GetObject();  // or throw
    return std::get<Object>(m_held).emplace_back(Member{std::string(name), {}}).value;
}

void Value::Append(Value value) {
    if (IsNull()) m_held = List();
    (void)GetList();  // or throw
    std::get<List>(m_held).push_back(std::move(value));
}

std::string WriteJson(const Value& value, const JsonStyle& style) {
    return ToJson(value).dump(style.indent, ' ', style.isAscii, Json::error_handler_t::replace);
}

Value ReadJson(std::string_view text) {
    int line = 1;
    Builder builder(line);
    const CountingIterator begin(text.data(), &line);
    const CountingIterator end(text.data() + text.size(), &line);
    if (!Json::sax_parse(begin, end, &builder)) Fail(line, "this is no JSON");
    return builder.Take();
}

}  // namespace Norvex::Document
