#pragma once

#include <boost/rational.hpp>
#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "norvex/foundation/Exception.h"
#include "norvex/foundation/Export.h"
#include "norvex/foundation/PropertyTypes.h"

namespace Norvex::Core {

/// The ratio type of the whole system. Compare ratios with ratios only: against an integer, some releases of
/// Boost recurse without end in C++20. Making one with the denominator 0 throws boost::bad_rational.
using Ratio = boost::rational<long long>;

namespace Detail {

/// The scalar in which a node keeps a value of type T. Only what has one can be stored, so that no pointer turns
/// into a bool on the way.
template <class T, class = void>
struct ScalarOf {};
template <>
struct ScalarOf<bool> {
    using Type = bool;
};
template <class T>
struct ScalarOf<T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>>> {
    using Type = long long;
};
template <class T>
struct ScalarOf<T, std::enable_if_t<std::is_floating_point_v<T>>> {
    using Type = double;
};
template <class T>
struct ScalarOf<T, std::enable_if_t<std::is_convertible_v<const T&, std::string_view> && !std::is_null_pointer_v<T>>> {
    using Type = std::string;
};
template <>
struct ScalarOf<Ratio> {
    using Type = Ratio;
};
template <class T>
using Scalar = typename ScalarOf<T>::Type;

}  // namespace Detail

/// A node of a settings tree: a name, and either one scalar or children in the order in which they were added.
///
/// A node owns its subtree by value. A reference to a child holds until that child is removed. A tree belongs to
/// one thread at a time. It may be as deep as memory allows: nothing of the library walks one by recursion.
///
/// A path is tags joined by SEPARATOR; a single tag is a path of one step, and an empty path or an empty step
/// leads nowhere. Every read of something that is not there, or whose type does not convert, throws
/// PropertyException with the node's name. Only SetChild, SetChildT, CreateChildT and AddNamed create, and on a
/// node that is not PT_NODE they throw MethodIsNotApplicable and leave it as it was.
class NORVEX_API Property {
public:
    using Children = std::list<Property>;
    using iterator = Children::iterator;
    using const_iterator = Children::const_iterator;

    static const std::string SEPARATOR;

    /// A node without a name and without a value, PT_NONE.
    Property() = default;
    /// A node that can hold children, PT_NODE.
    explicit Property(std::string name);
    /// A leaf. Takes bool, every integer (PT_INT64; of an unsigned one beyond the range the bits stay, so that the
    /// largest is -1), floating point (PT_DOUBLE), text, which must not be a null pointer, and Ratio.
    template <class T, class Scalar = Detail::Scalar<T>>
    Property(std::string name, const T& value) : m_name(std::move(name)), m_value(MakeValue<Scalar>(value)) {}

    /// Type, value and children of another node under a name of its own.
    Property(std::string name, const Property& data);
    Property(const Property& other) : Property(other.m_name, other) {}
    /// The other node is left without children, and of no use but to be assigned to.
    Property(Property&&) noexcept = default;
    ~Property() {
        if (!m_children.empty()) RemoveAll();
    }

    /// Takes the other node whole, its name included. The source may lie inside this tree. It may also be an ancestor
    /// of this node, but not when it is moved: the tree would own itself, and be lost.
    Property& operator=(const Property& other);
    Property& operator=(Property&& other) noexcept;
    /// Takes the value and the type that goes with it, and keeps the name. Children are dropped.
    template <class T, class Scalar = Detail::Scalar<T>>
    Property& operator=(const T& value) {
        AssignValue(MakeValue<Scalar>(value));
        return *this;
    }
    /// Takes type, value and children of the other node, and keeps the name. The source may lie inside this tree.
    void CopyDataFrom(const Property& other);

    const std::string& GetName() const noexcept { return m_name; }
    PropertyTypes GetType() const noexcept { return static_cast<PropertyTypes>(m_value.index()); }
    /// Whether there is nothing to read: PT_NONE, or a nameless PT_NODE without children.
    bool IsEmpty() const noexcept;

    bool GetBool() const;
    /// Reads PT_INT64 as well.
    double GetDouble() const;
    /// Reads PT_DOUBLE as well: the fraction is cut off, what lies outside the range goes to its nearer end, and NaN to
    /// the upper one.
    long long GetInt64() const;
    /// Reads texts such as "30000/1001" and "25" as well.
    Ratio GetRatio() const;
    const std::string& GetString() const;

    std::size_t Count() const noexcept { return m_children.size(); }
    const_iterator begin() const noexcept { return m_children.begin(); }
    const_iterator end() const noexcept { return m_children.end(); }
    iterator begin() noexcept { return m_children.begin(); }
    iterator end() noexcept { return m_children.end(); }

    const Property& operator[](std::size_t index) const;
    Property& operator[](std::size_t index);
    const Property& operator[](const std::string& path) const { return ChildByPath(path); }
    Property& operator[](const std::string& path);
    const Property& ChildByPath(const std::string& path) const;
    bool ChildExists(const std::string& path) const noexcept { return FindByPath(path) != nullptr; }
    /// What the path leads to, or null.
    const Property* FindByPath(std::string_view path) const noexcept;
    Property* FindByPath(std::string_view path) noexcept {
        return const_cast<Property*>(std::as_const(*this).FindByPath(path));
    }

    /// The direct child of that name, or end(). Takes a name and not a path, like all that follow.
    const_iterator FindChild(std::string_view name) const noexcept;
    iterator FindChild(std::string_view name) noexcept;

    /// The child of that name, added as an empty PT_NODE at the end if there is none.
    Property& SetChild(const std::string& name);
    /// Files a copy of `value` under `name`, in the place of the child of that name or else at the end.
    Property& SetChild(const std::string& name, const Property& value);
    /// Appends a copy of `child` under the child's own name, also beside another of that name.
    Property& AddNamed(const Property& child);
    /// Sets the value of the child of that name, adding it at the end if there is none.
    template <class T>
    Property& SetChildT(const std::string& name, const T& value) {
        RequireNode("SetChildT", NORVEX_HERE);
        if (const iterator child = FindChild(name); child != m_children.end()) return *child = value;
        return CreateChildT<T>(name, value);
    }
    /// Appends a leaf, also beside another of that name.
    template <class T>
    Property& CreateChildT(const std::string& name, const T& value) {
        RequireNode("CreateChildT", NORVEX_HERE);
        return m_children.emplace_back(name, value);
    }

    /// Removes the first child of that name, if there is one.
    void RemoveChild(std::string_view name);
    void RemoveAll() noexcept;

    /// Equal in type, value and children; children count with their names and in their order, the two nodes' own
    /// names do not count.
    bool operator==(const Property& other) const;
    bool operator!=(const Property& other) const { return !(*this == other); }

private:
    struct Node {
        bool operator==(const Node&) const noexcept { return true; }
    };
    /// The index of an alternative is its PropertyTypes number.
    using Value = std::variant<std::monostate, bool, double, long long, std::string, Ratio, Node>;

    template <class Scalar, class T>
    static Value MakeValue(const T& value) {
        if constexpr (std::is_same_v<Scalar, std::string>) {
            return Value(std::in_place_type<std::string>, std::string_view(value));
        } else {
            return Value(std::in_place_type<Scalar>, static_cast<Scalar>(value));
        }
    }

    void AssignValue(Value&& value);
    template <class T>
    const T& Get(const char* method) const;
    void RequireNode(const char* method, const boost::source_location& where) const;

    std::string m_name;
    Value m_value;
    Children m_children;
};

/// A node's value as text, for messages: "true", "25", "0.5", "30000/1001", a text as it is, children in braces.
NORVEX_API std::string PropertyValueToString(const Property& property);

/// Reads "30000/1001" and "25": digits, a minus in front if any, a denominator above 0, and nothing else.
NORVEX_API std::optional<Ratio> ParseRatio(std::string_view text) noexcept;

}  // namespace Norvex::Core
