#include "Quantities.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <iterator>
#include <limits>

#include "norvex/Conf/Review/PresetParameters.h"

namespace NorvexApps {

namespace {

using Norvex::Core::Ratio;

template <class T>
std::optional<T> ParseWhole(std::string_view text) {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// A number without a sign, with the digits behind its point counted in.
struct Decimal {
    long long digits = 0;
    int places = 0;
};

std::optional<Decimal> ParseDecimal(std::string_view text) {
    std::string digits(text);
    const std::size_t point = digits.find('.');
    Decimal decimal;
    if (point != std::string::npos) {
        decimal.places = static_cast<int>(digits.size() - point) - 1;
        digits.erase(point, 1);
    }
    if (digits.empty() || digits.front() == '-' || decimal.places > 9) return std::nullopt;
    const auto value = ParseWhole<long long>(digits);
    if (!value) return std::nullopt;
    decimal.digits = *value;
    return decimal;
}

/// A whole number of what it counts, with a prefix and one of the units behind it, or neither.
std::optional<long long> ParseScaled(std::string_view text, std::initializer_list<std::string_view> units) {
    const std::size_t end = text.find_first_not_of("0123456789.");
    const auto decimal = ParseDecimal(text.substr(0, end));
    if (!decimal) return std::nullopt;
    text.remove_prefix(std::min(end, text.size()));
    if (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    constexpr std::string_view prefixes = "kKmMgG";
    const std::size_t prefix = text.empty() ? std::string_view::npos : prefixes.find(text.front());
    int zeros = 0;
    if (prefix != std::string_view::npos) {
        zeros = 3 * (static_cast<int>(prefix) / 2 + 1);
        text.remove_prefix(1);
    }
    if (!text.empty() && std::find(units.begin(), units.end(), text) == units.end()) return std::nullopt;
    long long value = decimal->digits;
    for (int i = decimal->places; i < zeros; ++i) {
        if (value > std::numeric_limits<long long>::max() / 10) return std::nullopt;
        value *= 10;
    }
    for (int i = zeros; i < decimal->places; ++i) {
        if (value % 10 != 0) return std::nullopt;
        value /= 10;
    }
    return value;
}

struct NamedSize {
    const char* name;
    Size size;
};

// clang-format off
constexpr NamedSize g_sizes[] = {
    {"240p",  { 426,  240}}, {"360p",  { 640,  360}}, {"480p",   { 854,  480}}, {"576p",  {1024,  576}},
    {"720p",  {1280,  720}}, {"1080p", {1920, 1080}}, {"1440p",  {2560, 1440}}, {"2160p", {3840, 2160}},
    {"4320p", {7680, 4320}}, {"hd",    {1280,  720}}, {"fullhd", {1920, 1080}}, {"uhd",   {3840, 2160}},
    {"4k",    {3840, 2160}}, {"8k",    {7680, 4320}},
    {"ntsc",  { 720,  480}}, {"pal",   { 720,  576}},  // ITU-R BT.601
};
// clang-format on

}  // namespace

std::optional<long long> ParseInteger(std::string_view text) {
    return ParseWhole<long long>(text);
}

std::optional<long long> ParseBitrate(std::string_view text) {
    return ParseScaled(text, {"b", "bit", "bits", "bps", "b/s", "bit/s", "bits/s"});
}

std::optional<long long> ParseFrequency(std::string_view text) {
    return ParseScaled(text, {"Hz", "hz", "HZ"});
}

std::optional<long long> ParseTime(std::string_view text) {
    constexpr long long second = 1000000;
    constexpr long long longest = 1000000;  // seconds
    long long whole = 0;
    int colons = 0;
    for (std::size_t colon; (colon = text.find(':')) != std::string_view::npos; text.remove_prefix(colon + 1)) {
        const auto part = ParseWhole<unsigned>(text.substr(0, colon));
        if (!part || ++colons > 2 || *part > longest || (colons == 2 && *part > 59)) return std::nullopt;
        whole = (whole + *part) * 60;
    }
    const auto decimal = ParseDecimal(text);
    if (!decimal) return std::nullopt;
    double seconds = static_cast<double>(decimal->digits);
    for (int place = 0; place < decimal->places; ++place) seconds /= 10;
    if (seconds > static_cast<double>(longest) || (colons > 0 && seconds >= 60)) return std::nullopt;
    return whole * second + std::llround(seconds * static_cast<double>(second));
}

std::optional<Size> ParseSize(const std::string& text) {
    const std::string name = boost::algorithm::to_lower_copy(text);
    const auto* const known = std::find_if(std::begin(g_sizes), std::end(g_sizes),
                                           [&name](const NamedSize& row) { return row.name == name; });
    if (known != std::end(g_sizes)) return known->size;
    const std::size_t cross = name.find_first_of("x*");
    if (cross == std::string::npos) return std::nullopt;
    const auto width = ParseWhole<int>(std::string_view(name).substr(0, cross));
    const auto height = ParseWhole<int>(std::string_view(name).substr(cross + 1));
    if (!width || !height || *width <= 0 || *height <= 0) return std::nullopt;
    return Size{*width, *height};
}

std::optional<Ratio> ParseFrameRate(const std::string& text) {
    const std::string name = boost::algorithm::to_lower_copy(text);
    if (name == "ntsc") return Ratio(30000, 1001);
    if (name == "pal") return Ratio(25);
    if (name == "film") return Ratio(24);
    return Norvex::Conf::ParseFrameRate(name);
}

}  // namespace NorvexApps
