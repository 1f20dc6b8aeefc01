/// Numbers, sizes and rates as people type them. What is none of the kind gives nothing, as does what does not fit.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "norvex/foundation/Property.h"

namespace NorvexApps {

/// "12", "-1".
std::optional<long long> ParseInteger(std::string_view text);

/// "128000", "128k", "1.5M", "128 kbit/s", "5 Mbps": k, M and G are powers of 1000, as they are for bits and Hz. The
/// unit is one of bits per second. Not negative.
std::optional<long long> ParseBitrate(std::string_view text);

/// "44100", "44.1k", "48 kHz". Not negative.
std::optional<long long> ParseFrequency(std::string_view text);

/// A time in microseconds: "90", "1.5", "1:30", "0:01:30.25". Not negative.
std::optional<long long> ParseTime(std::string_view text);

struct Size {
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
};

/// "1280x720"; "720p" and "4k", which are 16:9; "ntsc" and "pal", which are those of discs.
std::optional<Size> ParseSize(const std::string& text);

/// "25", "30000/1001", "12.5"; "29.97" and its kin are the rates over 1001 that they stand for; "ntsc", "pal", "film".
std::optional<Norvex::Core::Ratio> ParseFrameRate(const std::string& text);

}  // namespace NorvexApps
