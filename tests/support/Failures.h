#pragma once

#include <gtest/gtest.h>

#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Conf/Exceptions.h"

namespace NorvexTest {

/// What an exception says in its tags, in this order: "DESCRIPTION, details DETAILS, node NAME of TYPE, by METHOD,
/// constraint CLASS of TYPE, no kind KIND, kind KIND, no id ID, stack".
inline std::string TagsOf(const std::exception& exception) {
    using namespace Norvex;
    using P = Core::PropertyException;
    static const char* const types[] = {"none", "bool", "double", "int", "string", "ratio", "node"};
    std::string text;
    const auto add = [&text](const std::string& word, const auto* value) {
        if (value == nullptr) return;
        text += (text.empty() || word[0] == ' ' ? "" : ", ") + word;
        if constexpr (std::is_same_v<decltype(value), const std::string*>) {
            text += *value;
        } else {
            text += types[*value];
        }
    };
    add("", boost::get_error_info<TagDescription>(exception));
    add("details ", boost::get_error_info<TagDetails>(exception));
    add("node ", boost::get_error_info<P::TagPropertyName>(exception));
    add(" of ", boost::get_error_info<P::TagPropertyType>(exception));
    add("by ", boost::get_error_info<P::TagMethodName>(exception));
    add("constraint ", boost::get_error_info<Conf::ConstraintException::TagConstraintClass>(exception));
    add(" of ", boost::get_error_info<Conf::ConstraintException::TagValueType>(exception));
    add("no kind ", boost::get_error_info<Conf::HelperException::TagClassIsNotFound>(exception));
    add("kind ", boost::get_error_info<Conf::HelperException::TagClassIsFound>(exception));
    add("no id ", boost::get_error_info<Conf::HelperException::TagTypeIsNotFound>(exception));
    const std::string stack = "stack";
    if (boost::get_error_info<TagCallStack>(exception) != nullptr) add("", &stack);
    return text;
}

/// The tags of the exception of type E that `operation` throws; nothing, with a failure of the test, if it throws none.
/// Another type passes through and fails the test too.
template <class E = Norvex::Exception, class Operation>
std::string FailureOf(Operation&& operation) {
    try {
        operation();
    } catch (const E& exception) {
        return TagsOf(exception);
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

}  // namespace NorvexTest
