#include <cmath>
#include <cstdlib>
#include <iterator>

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IPreset.h"

// Vorbis. What libvorbis encodes depends on three values at once, while a rule ties two: the rules are coarser than the
// table of combinations below and do not agree with it everywhere. A stream that was corrected is in the table.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long availableBitrateList_vorbis[] = {
    // bits per second
    16000, 32000, 48000, 64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 288000, 320000,
};

constexpr long long sampleRates_vorbis[] = {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000};  // Hz

constexpr Name channelLayouts_vorbis[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,  A::TAG_CH_LAYOUT_2_1,     A::TAG_CH_LAYOUT_2_2,
    A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_7POINT1,
};

/// An unbroken run of the bitrate list, both ends included, in thousands of bits per second.
struct Run {
    long long lowest;
    long long highest;
};
// clang-format off
/// The legal combinations: a row for each count of channels, from 1, a column for each sample rate.
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

/// What validation wants of a bitrate at a sample rate, whatever the channels.
constexpr long long bitrates_8000[]  = {16000, 24000, 32000, 48000};
constexpr long long bitrates_11025[] = {16000, 24000, 32000, 48000, 96000};
constexpr long long bitrates_16000[] = {24000, 32000, 48000, 64000, 96000, 128000, 160000, 192000};
constexpr long long bitrates_22050[] = {32000, 48000, 64000, 96000, 128000, 160000};
constexpr long long bitrates_32000[] = {48000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000};
constexpr long long bitrates_44100[] = {48000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000, 448000};
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

struct Combination {
    long long channels;
    long long sampleRate;  ///< Hz
    long long bitrate;     ///< bits per second
};

/// One term of the squared distance: the weighted part of the range of a value that lies between two of its values.
double SquaredTerm(double weight, long long one, long long two, long long largest) {
    const double term = weight * static_cast<double>(std::llabs(one - two)) / static_cast<double>(largest);
    return term * term;
}

/// The combination at the least distance, of equal ones the first by channels, sample rate and bitrate. The weights
/// make a change of channels the last resort and let the bitrate give way first.
Combination Nearest(const Combination& wanted) {
    constexpr long long largestChannels = channelCounts;
    constexpr long long largestRate = 48000;
    constexpr long long largestBitrate = 320000;
    Combination nearest{};
    double smallest = INFINITY;
    for (std::size_t row = 0; row < channelCounts; ++row) {
        const auto channels = static_cast<long long>(row) + 1;
        const double channelsTerm = SquaredTerm(100, channels, wanted.channels, largestChannels);
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

}  // namespace

DataHelperAudioCodecVorbis::DataHelperAudioCodecVorbis() : AudioCodecHelper(A::CODEC_ID_VORBIS) {}

SP<IDataHelper> DataHelperAudioCodecVorbis::Create() {
    return SP<IDataHelper>(new DataHelperAudioCodecVorbis);
}

Core::Property DataHelperAudioCodecVorbis::GetDefaults() const {
    return Tree(IPreset::KEY_FILTER_AUDIO_CODEC, {
                                                     {A::TAG_CODEC_ID, A::CODEC_ID_VORBIS},
                                                     {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
                                                     {A::TAG_BITRATE, 256000},
                                                     {A::TAG_QUALITY, 1},
                                                     {A::TAG_CODEC_OPTIONS_ENCODE, {}},
                                                     {A::TAG_GLOBAL_HEADER, true},
                                                 });
}

void DataHelperAudioCodecVorbis::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isVorbis = OneOf({A::CODEC_ID_VORBIS});
    AddRule(rules, AudioCodecIdPath(), isVorbis, SampleRatePath(), OneOf(sampleRates_vorbis));
    AddRule(rules, AudioCodecIdPath(), isVorbis, LayoutPath(), LayoutsOf(channelLayouts_vorbis));
    const auto tie = [&rules](long long sampleRate, const SP<IPropertyConstraint>& bitrates) {
        AddRule(rules, SampleRatePath(), OneOf({sampleRate}), AudioBitratePath(), bitrates);
    };
    tie(8000, OneOf(bitrates_8000));
    tie(11025, OneOf(bitrates_11025));
    tie(16000, OneOf(bitrates_16000));
    tie(22050, OneOf(bitrates_22050));
    tie(24000, OneOf(bitrates_22050));
    tie(32000, OneOf(bitrates_32000));
    tie(44100, OneOf(bitrates_44100));
    tie(48000, OneOf(bitrates_44100));
}

void DataHelperAudioCodecVorbis::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_vorbis);
    constraints[A::TAG_QUALITY] = s_defaultQualityConstraint;
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR, A::TAG_BITRATE_MODE_VBR});
}

void DataHelperAudioCodecVorbis::CorrectFormatCodec(Core::Property& tree) const {
    AudioCodecHelper::CorrectFormatCodec(tree);
    const long long channels = ChannelsOf(tree);
    const Combination nearest =
        Nearest({channels, tree[A::TAG_SAMPLE_RATE].GetInt64(), tree[A::TAG_BITRATE].GetInt64()});
    // A layout of the right count stays, also one that is not the default of that count.
    if (nearest.channels != channels) {
        tree.SetChildT(A::TAG_LAYOUT, *LayoutRecord::Find(static_cast<int>(nearest.channels)).name);
    }
    tree.SetChildT(A::TAG_SAMPLE_RATE, nearest.sampleRate);
    tree.SetChildT(A::TAG_BITRATE, nearest.bitrate);
}

}  // namespace Norvex::Conf
