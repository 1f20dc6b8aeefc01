/// What was asked, made sense of before the rule book hears of it.
#pragma once

#include <optional>
#include <string>

#include "Request.h"

namespace NorvexExport {

/// Puts ids in the place of what people call containers, codecs and channel layouts. After the census; before a preset
/// is read, which has ids. Throws RequestError for a name that nothing is known by.
void UseIds(Request& request);

/// Takes back what was chosen for a value, and then left open again: a preset's, by the word "auto". For a codec that
/// is all that was set for it.
void TakeBackOpen(Request& request);

/// A range of whole numbers.
struct Range {
    long long least = 0;
    long long most = 0;
    std::optional<long long> automatic;  ///< the number that leaves the value to the system

    bool Holds(long long value) const;
    std::string Words() const;  ///< "a whole number from 0 to 51"
};

/// What a number at a path must keep to whatever the rule book says: encoders count in ints. None for other values.
std::optional<Range> RangeOf(const std::string& path);

/// Throws RequestError for a number beyond its range.
void RequireRanges(const Request& request);

}  // namespace NorvexExport
