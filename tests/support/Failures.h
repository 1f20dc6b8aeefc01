#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "norvex/foundation/Exception.h"

namespace NorvexTest {

/// The exception of type E that `operation` throws; none, with a failure of the test, if it throws nothing. Another
/// type passes through and fails the test too.
template <class E, class Operation>
std::optional<E> CatchFrom(Operation&& operation) {
    try {
        operation();
    } catch (const E& exception) {
        return exception;
    }
    ADD_FAILURE() << "nothing was thrown";
    return std::nullopt;
}

/// The value of a tag, or none where the exception, or the tag, is missing.
template <class Tag, class E>
std::optional<typename Tag::value_type> TagOf(const std::optional<E>& exception) {
    if (!exception) return std::nullopt;
    const auto* const value = boost::get_error_info<Tag>(*exception);
    return value != nullptr ? std::optional<typename Tag::value_type>(*value) : std::nullopt;
}

}  // namespace NorvexTest
