#include "norvex/Conf/DataHelpers/AudioCodecs/VorbisCombinations.h"

#include <cmath>
#include <cstdlib>
#include <iterator>

namespace Norvex::Conf {

namespace {

/// An unbroken run of the bitrate list, both ends included, in thousands of bits per second.
struct Run {
    long long lowest;
    long long highest;
};
// clang-format off
/// The legal combinations: a row for each count of channels, from 1, a column for each sample rate. They lie within the
/// rate mappings of libvorbis (lib/modes/setup_*.h), which are for one channel: the uncoupled ones, for two channels the
/// coupled ones too. That of coupled 5.1 is left out.
constexpr Run items[][std::size(sampleRates_vorbis)] = {
    //   8000       11025       16000       22050       24000       32000       44100       48000
    {{16,  32}, {16,  48}, { 16,  96}, { 16,  80}, { 16,  80}, { 32, 160}, { 32, 224}, { 32, 224}},  // 1
    {{16,  80}, {16,  96}, { 32, 192}, { 32, 160}, { 32, 160}, { 48, 320}, { 48, 320}, { 48, 320}},  // 2
    {{32, 112}, {48, 128}, { 48, 288}, { 48, 256}, { 48, 256}, { 96, 320}, { 96, 320}, { 96, 320}},  // 3
    {{32, 160}, {48, 192}, { 64, 320}, { 64, 320}, { 64, 320}, {128, 320}, {128, 320}, {128, 320}},  // 4
    {{48, 192}, {64, 224}, { 80, 320}, { 80, 320}, { 80, 320}, {160, 320}, {160, 320}, {160, 320}},  // 5
    {{48, 224}, {80, 288}, { 96, 320}, { 96, 320}, { 96, 320}, {192, 320}, {192, 320}, {192, 320}},  // 6
    {{64, 288}, {96, 320}, {112, 320}, {112, 320}, {112, 320}, {224, 320}, {224, 320}, {224, 320}},  // 7
    {{64, 320}, {96, 320}, {128, 320}, {128, 320}, {128, 320}, {256, 320}, {256, 320}, {256, 320}},  // 8
};
// clang-format on

constexpr std::size_t channelCounts = std::size(items);

constexpr bool Holds(const Run& run, long long bitrate) {
    return run.lowest * 1000 <= bitrate && bitrate <= run.highest * 1000;
}

constexpr std::size_t CountCombinations() {
    std::size_t count = 0;
    for (const auto& row : items) {
        for (const Run& run : row) {
            for (const long long bitrate : availableBitrateList_vorbis) count += Holds(run, bitrate) ? 1 : 0;
        }
    }
    return count;
}
static_assert(CountCombinations() == 490);

template <std::size_t N>
constexpr std::size_t IndexOf(long long value, const long long (&values)[N]) {
    std::size_t index = 0;
    while (index < N && values[index] != value) ++index;
    return index;
}

bool IsLegal(const VorbisCombination& one) {
    const std::size_t column = IndexOf(one.sampleRate, sampleRates_vorbis);
    return column < std::size(sampleRates_vorbis) && one.channels >= 1 &&
           one.channels <= static_cast<long long>(channelCounts) &&
           IndexOf(one.bitrate, availableBitrateList_vorbis) < std::size(availableBitrateList_vorbis) &&
           Holds(items[one.channels - 1][column], one.bitrate);
}

/// One term of the squared distance: the weighted part of the range of a value that lies between two of its values.
double SquaredTerm(double weight, long long one, long long two, long long largest) {
    const double term = weight * static_cast<double>(std::llabs(one - two)) / static_cast<double>(largest);
    return term * term;
}

}  // namespace

VorbisCombination NearestVorbisCombination(const VorbisCombination& wanted) {
    if (IsLegal(wanted)) return wanted;
    constexpr long long largestChannels = channelCounts;
    constexpr long long largestRate = 48000;
    constexpr long long largestBitrate = 320000;
    VorbisCombination nearest{};
    double smallest = INFINITY;
    for (std::size_t row = 0; row < channelCounts; ++row) {
        const auto channels = static_cast<long long>(row) + 1;
        const double channelsTerm = SquaredTerm(100, channels, wanted.channels, largestChannels);
        if (channelsTerm >= smallest) continue;
        for (std::size_t column = 0; column < std::size(sampleRates_vorbis); ++column) {
            const long long sampleRate = sampleRates_vorbis[column];
            const double partial = channelsTerm + SquaredTerm(10, sampleRate, wanted.sampleRate, largestRate);
            if (partial >= smallest) continue;
            for (const long long bitrate : availableBitrateList_vorbis) {
                if (!Holds(items[row][column], bitrate)) continue;
                const double squared = partial + SquaredTerm(1, bitrate, wanted.bitrate, largestBitrate);
                // Two squares may differ and have one root, in which case the distances are equal.
                if (squared >= smallest || std::sqrt(squared) >= std::sqrt(smallest)) continue;
                smallest = squared;
                nearest = {channels, sampleRate, bitrate};
            }
        }
    }
    return nearest;
}

}  // namespace Norvex::Conf
