#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "norvex/foundation/Export.h"

namespace Norvex::Conf {

/// Pairs of display name and value, from which a ConstraintSet is made.
template <class T>
using PairList = std::vector<std::pair<std::string, T>>;

/// The value under a display name made from it: a text itself, an integer in decimal digits, a bool as 0 or 1.
template <class T>
std::pair<std::string, T> Pair(T value) {
    if constexpr (std::is_same_v<T, std::string>) {
        return {value, std::move(value)};
    } else {
        static_assert(std::is_same_v<T, long long> || std::is_same_v<T, bool>);
        return {std::to_string(value), value};
    }
}

/// A list of one pair, to which the comma operator appends: BeginPairList<long long>(8000), 16000. A list is a vector
/// of the standard library, so that outside of this namespace the comma is the built-in one, which gives its right
/// operand alone; `using Norvex::Conf::operator,;` brings this one in.
template <class T>
PairList<T> BeginPairList(T value) {
    PairList<T> list;
    list.push_back(Pair<T>(std::move(value)));
    return list;
}

/// Converts the value as an assignment would: 2.7 becomes 2 in a list of integers, and a pointer true in one of flags.
template <class T, class U, class = std::enable_if_t<std::is_convertible_v<U, T>>>
PairList<T> operator,(PairList<T> list, U value) {
    list.push_back(Pair<T>(static_cast<T>(std::move(value))));
    return list;
}

template <class T, std::size_t N>
PairList<T> CreatePairValueList(const T (&values)[N]) {
    static_assert(N >= 1);
    PairList<T> list;
    list.reserve(N);
    for (const T& value : values) list.push_back(Pair<T>(value));
    return list;
}

}  // namespace Norvex::Conf
