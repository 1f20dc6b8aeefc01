#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// FLAC and ALAC. A lossless encoder has no bitrate to choose, so neither constrains mode, bitrate or quality:
// correction writes what the stream will take, by a table of how well PCM shrinks.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Hz: those that a frame of FLAC numbers (RFC 9639, 9.1.2), without 88200, 176400 and 192000.
constexpr long long g_possibleSamplerates[] = {8000, 16000, 22050, 24000, 32000, 44100, 48000, 96000};

constexpr long long g_possibleChannels[] = {1, 2, 3, 4, 5, 6};

// clang-format off
/// The estimated bitrate over that of PCM, the book's own: a row for each sample rate, a column for each count of
/// channels.
constexpr double g_coeff[std::size(g_possibleSamplerates)][std::size(g_possibleChannels)] = {
    //     1         2         3         4         5         6
    {0.789063, 0.8125,   0.544271, 0.431641, 0.357812, 0.299479},  //  8000
    {0.742188, 0.761719, 0.511719, 0.408203, 0.339062, 0.282552},  // 16000
    {0.719955, 0.736961, 0.495087, 0.396117, 0.329365, 0.274471},  // 22050
    {0.713542, 0.730469, 0.491319, 0.392578, 0.326562, 0.272569},  // 24000
    {0.6875,   0.704102, 0.473307, 0.379395, 0.316016, 0.263346},  // 32000
    {0.65051,  0.666808, 0.446901, 0.359269, 0.299887, 0.250142},  // 44100
    {0.628906, 0.645833, 0.432726, 0.348633, 0.291406, 0.242839},  // 48000
    {0.380859, 0.396159, 0.263889, 0.21875,  0.185156, 0.154405},  // 96000
};
// clang-format on

/// The book's own choice, of up to the eight channels of RFC 9639 (9.1.3).
constexpr Name channelLayouts_flac[] = {
    A::TAG_CH_LAYOUT_MONO,         A::TAG_CH_LAYOUT_STEREO,       A::TAG_CH_LAYOUT_2POINT1, A::TAG_CH_LAYOUT_2_1,
    A::TAG_CH_LAYOUT_2_2,          A::TAG_CH_LAYOUT_QUAD,         A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1,
    A::TAG_CH_LAYOUT_5POINT0_BACK, A::TAG_CH_LAYOUT_5POINT1_BACK, A::TAG_CH_LAYOUT_7POINT1,
};

/// The index of the nearest entry of an ascending list, of two equally near ones the first.
template <std::size_t N>
std::size_t NearestIndex(const long long (&list)[N], long long value) {
    value = std::clamp(value, list[0], list[N - 1]);  // ALAC's rates have no bounds, and a distance may not overflow
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < N; ++i) {
        if (std::llabs(list[i] - value) < std::llabs(list[nearest] - value)) nearest = i;
    }
    return nearest;
}

}  // namespace

Core::Property LosslessAudioCodecHelper::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, GetCodecID()},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_VBR},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
        {A::TAG_GLOBAL_HEADER, true},
    });
}

void LosslessAudioCodecHelper::ApplyPresetSettings(const Core::Property& /*preset*/, Core::Property& stream) const {
    stream.SetChildT(A::TAG_CODEC_ID, GetCodecID());
}

void LosslessAudioCodecHelper::CorrectFormatCodec(Core::Property& tree) const {
    CorrectAudioResamplerSettings(tree);
    tree.SetChildT(A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_VBR);
    tree.SetChildT(A::TAG_BITRATE, DataHelperAudioCodecFlac::CalculateBitrate(tree));
}

DataHelperAudioCodecFlac::DataHelperAudioCodecFlac() : LosslessAudioCodecHelper(A::CODEC_ID_FLAC) {}

SP<IDataHelper> DataHelperAudioCodecFlac::Create() {
    return Keeping(new DataHelperAudioCodecFlac);
}

long long DataHelperAudioCodecFlac::CalculateBitrate(const Core::Property& tree) {
    const AudioFormat sound = AudioFormatOf(tree);
    const std::size_t row = NearestIndex(g_possibleSamplerates, sound.sampleRate);
    const std::size_t column = NearestIndex(g_possibleChannels, sound.channels);
    // The table's own values and not the stream's: beyond its edges the estimate stays what it is there.
    const long long pcmBitrate = g_possibleSamplerates[row] * sound.bitsPerSample * g_possibleChannels[column];
    return static_cast<long long>(static_cast<double>(pcmBitrate) * g_coeff[row][column]);
}

void DataHelperAudioCodecFlac::GetValidationRules(RuleList& rules) const {
    LosslessAudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isFlac = OneOf({A::CODEC_ID_FLAC});
    AddRule(rules, AudioCodecIdPath(), isFlac, SampleRatePath(), OneOf(g_possibleSamplerates));
    AddRule(rules, AudioCodecIdPath(), isFlac, LayoutPath(), LayoutsOf(channelLayouts_flac));
}

DataHelperAudioCodecAlac::DataHelperAudioCodecAlac() : LosslessAudioCodecHelper(A::CODEC_ID_ALAC) {}

SP<IDataHelper> DataHelperAudioCodecAlac::Create() {
    return Keeping(new DataHelperAudioCodecAlac);
}

}  // namespace Norvex::Conf
