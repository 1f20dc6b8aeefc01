#include "norvex/foundation/Property.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

#include "norvex/foundation/Lasting.h"

namespace Norvex::Core {

NORVEX_CONSTANT(const std::string, Property::SEPARATOR) = "/";

namespace {

constexpr char separator = '/';  // that of SEPARATOR

PropertyException Failure(const Property& property, const char* method) {
    PropertyException exception;
    exception << PropertyException::TagPropertyName(property.GetName())
              << PropertyException::TagPropertyType(property.GetType()) << PropertyException::TagMethodName(method);
    return exception;
}

PropertyException ConversionFailure(const Property& property, const char* method) {
    PropertyException exception = Failure(property, method);
    exception << TagDescription("The value cannot be read as the type asked for");
    return exception;
}

PropertyException MissingChild(const Property& property, const char* method, const std::string& path) {
    PropertyException exception = Failure(property, method);
    exception << TagDescription("There is no such child") << TagDetails(path);
    return exception;
}

long long Truncate(double value) noexcept {
    constexpr double bound = 9223372036854775808.0;  // 2^63, the first double past the range
    if (value >= bound || std::isnan(value)) return std::numeric_limits<long long>::max();
    if (value < -bound) return std::numeric_limits<long long>::min();
    return static_cast<long long>(value);
}

template <class Number>
std::string NumberText(Number value) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
    return std::string(text.data(), error == std::errc() ? end : text.data());
}

template <class Number>
bool ParseNumber(std::string_view text, Number& value) noexcept {
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && last == end;
}

std::string ScalarText(const Property& property) {
    switch (property.GetType()) {
        case PT_NONE:
        case PT_NODE:
            return {};
        case PT_BOOL:
            return property.GetBool() ? "true" : "false";
        case PT_DOUBLE:
            return NumberText(property.GetDouble());
        case PT_INT64:
            return NumberText(property.GetInt64());
        case PT_STRING:
            return property.GetString();
        case PT_RATIO:
            break;
    }
    const Ratio ratio = property.GetRatio();
    return NumberText(ratio.numerator()) + '/' + NumberText(ratio.denominator());
}

}  // namespace

Property::Property(std::string name) : m_name(std::move(name)), m_value(Node{}) {}

// Trees come from files too, and may be deeper than the stack: copies, destruction and comparisons keep lists of their
// own of what is still to be done.

Property::Property(std::string name, const Property& data) : m_name(std::move(name)), m_value(data.m_value) {
    if (data.m_children.empty()) return;
    std::vector<std::pair<const Property*, Property*>> open;
    const auto copyChildren = [&open](const Property& source, Property& target) {
        for (const Property& child : source.m_children) {
            Property& copy = target.m_children.emplace_back(child.m_name);
            copy.m_value = child.m_value;
            if (!child.m_children.empty()) open.emplace_back(&child, &copy);
        }
    };
    copyChildren(data, *this);
    while (!open.empty()) {
        const auto [source, target] = open.back();
        open.pop_back();
        copyChildren(*source, *target);
    }
}

void Property::RemoveAll() noexcept {
    while (!m_children.empty()) {
        m_children.splice(m_children.end(), m_children.front().m_children);
        m_children.pop_front();
    }
}

Property& Property::operator=(const Property& other) {
    Property copy(other);
    return *this = std::move(copy);
}

Property& Property::operator=(Property&& other) noexcept {
    // By way of a third node: `other` may be a child, which dies with this node's own children.
    Property taken(std::move(other));
    m_name.swap(taken.m_name);
    m_value.swap(taken.m_value);
    m_children.swap(taken.m_children);
    return *this;
}

void Property::AssignValue(Value&& value) {
    m_value = std::move(value);
    RemoveAll();
}

void Property::CopyDataFrom(const Property& other) {
    if (other.m_children.empty()) return AssignValue(Value(other.m_value));
    Property copy(std::string(), other);
    m_value.swap(copy.m_value);
    m_children.swap(copy.m_children);
}

bool Property::IsEmpty() const noexcept {
    return GetType() == PT_NONE || (GetType() == PT_NODE && m_name.empty() && m_children.empty());
}

template <class T>
const T& Property::Get(const char* method) const {
    const T* const value = std::get_if<T>(&m_value);
    if (value == nullptr) NORVEX_THROW(ConversionFailure(*this, method));
    return *value;
}

bool Property::GetBool() const {
    return Get<bool>("GetBool");
}

double Property::GetDouble() const {
    if (const auto* number = std::get_if<long long>(&m_value)) return static_cast<double>(*number);
    return Get<double>("GetDouble");
}

long long Property::GetInt64() const {
    if (const auto* number = std::get_if<double>(&m_value)) return Truncate(*number);
    return Get<long long>("GetInt64");
}

Ratio Property::GetRatio() const {
    if (const auto* text = std::get_if<std::string>(&m_value)) {
        const std::optional<Ratio> ratio = ParseRatio(*text);
        if (!ratio) NORVEX_THROW(ConversionFailure(*this, "GetRatio"));
        return *ratio;
    }
    return Get<Ratio>("GetRatio");
}

const std::string& Property::GetString() const {
    return Get<std::string>("GetString");
}

const Property& Property::operator[](std::size_t index) const {
    if (index >= m_children.size()) NORVEX_THROW(MissingChild(*this, "operator[]", NumberText(index)));
    return *std::next(m_children.begin(), static_cast<Children::difference_type>(index));
}

Property& Property::operator[](std::size_t index) {
    return const_cast<Property&>(std::as_const(*this)[index]);
}

Property& Property::operator[](const std::string& path) {
    return const_cast<Property&>(ChildByPath(path));
}

const Property& Property::ChildByPath(const std::string& path) const {
    const Property* const child = FindByPath(path);
    if (child == nullptr) NORVEX_THROW(MissingChild(*this, "ChildByPath", path));
    return *child;
}

const Property* Property::FindByPath(std::string_view path) const noexcept {
    const Property* node = this;
    for (;;) {
        const std::size_t stepEnd = path.find(separator);
        const std::string_view step = path.substr(0, stepEnd);
        if (step.empty()) return nullptr;
        const const_iterator child = node->FindChild(step);
        if (child == node->end()) return nullptr;
        node = &*child;
        if (stepEnd == std::string_view::npos) return node;
        path.remove_prefix(stepEnd + 1);
    }
}

Property::const_iterator Property::FindChild(std::string_view name) const noexcept {
    return std::find_if(begin(), end(), [name](const Property& child) { return child.m_name == name; });
}

Property::iterator Property::FindChild(std::string_view name) noexcept {
    return std::find_if(begin(), end(), [name](const Property& child) { return child.m_name == name; });
}

Property& Property::SetChild(const std::string& name) {
    RequireNode("SetChild", NORVEX_HERE);
    const iterator child = FindChild(name);
    return child != m_children.end() ? *child : m_children.emplace_back(name);
}

Property& Property::SetChild(const std::string& name, const Property& value) {
    RequireNode("SetChild", NORVEX_HERE);
    Property copy(name, value);
    if (const iterator child = FindChild(name); child != m_children.end()) return *child = std::move(copy);
    return m_children.emplace_back(std::move(copy));
}

Property& Property::AddNamed(const Property& child) {
    RequireNode("AddNamed", NORVEX_HERE);
    // Copied before it is added: `child` may be this node.
    return m_children.emplace_back(Property(child));
}

void Property::RemoveChild(std::string_view name) {
    if (const iterator child = FindChild(name); child != m_children.end()) m_children.erase(child);
}

bool Property::operator==(const Property& other) const {
    if (m_children.empty() || other.m_children.empty()) {
        // Most values that lists are searched for are integers, and comparing variants takes a call.
        const auto* const one = std::get_if<long long>(&m_value);
        const auto* const two = std::get_if<long long>(&other.m_value);
        return Count() == other.Count() && (one != nullptr && two != nullptr ? *one == *two : m_value == other.m_value);
    }
    std::vector<std::pair<const Property*, const Property*>> open;
    const auto isSame = [&open](const Property& one, const Property& two) {
        if (!(one.m_value == two.m_value) || one.Count() != two.Count()) return false;
        if (one.Count() != 0) open.emplace_back(&one, &two);
        return true;
    };
    if (!isSame(*this, other)) return false;
    while (!open.empty()) {
        const auto [one, two] = open.back();
        open.pop_back();
        for (auto i = one->begin(), j = two->begin(); i != one->end(); ++i, ++j) {
            if (i->m_name != j->m_name || !isSame(*i, *j)) return false;
        }
    }
    return true;
}

void Property::RequireNode(const char* method, const boost::source_location& where) const {
    if (GetType() == PT_NODE) return;
    MethodIsNotApplicable exception;
    exception << PropertyException::TagPropertyName(m_name) << PropertyException::TagPropertyType(GetType())
              << PropertyException::TagMethodName(method);
    boost::throw_exception(AddStack(exception), where);
}

std::string PropertyValueToString(const Property& property) {
    if (property.GetType() != PT_NODE) return ScalarText(property);
    std::string text = "{";
    // The nodes whose braces are open, each with the child that comes next.
    std::vector<std::pair<const Property*, Property::const_iterator>> open = {{&property, property.begin()}};
    while (!open.empty()) {
        auto& [node, next] = open.back();
        if (next == node->end()) {
            text += '}';
            open.pop_back();
            continue;
        }
        if (next != node->begin()) text += ", ";
        const Property& child = *next++;
        text += child.GetName();
        text += ": ";
        if (child.GetType() == PT_NODE) {
            text += '{';
            open.emplace_back(&child, child.begin());
        } else {
            text += ScalarText(child);
        }
    }
    return text;
}

std::optional<Ratio> ParseRatio(std::string_view text) noexcept {
    const std::size_t slash = text.find('/');
    long long numerator = 0;
    // Unsigned, so that a sign in front of the denominator is refused; read as one type, held as the other.
    unsigned long long denominator = 1;
    if (!ParseNumber(text.substr(0, slash), numerator)) return std::nullopt;
    if (slash != std::string_view::npos && !ParseNumber(text.substr(slash + 1), denominator)) return std::nullopt;
    constexpr long long largest = std::numeric_limits<long long>::max();
    // The smallest number has no opposite, which reducing a ratio needs.
    if (denominator == 0 || denominator > static_cast<unsigned long long>(largest) || numerator < -largest) {
        return std::nullopt;
    }
    return Ratio(numerator, static_cast<long long>(denominator));
}

}  // namespace Norvex::Core
