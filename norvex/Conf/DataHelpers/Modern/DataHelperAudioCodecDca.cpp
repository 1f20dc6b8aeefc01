#include <algorithm>
#include <iterator>

#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// DTS Coherent Acoustics (ETSI TS 102 114).

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Bits per second: the targeted transmission bitrates of TS 102 114.
constexpr long long availableBitrateList_dca[] = {
    32000,  56000,  64000,  96000,  112000,  128000,  192000,  224000,  256000,  320000,  384000,  448000,  512000,
    576000, 640000, 768000, 960000, 1024000, 1152000, 1280000, 1344000, 1408000, 1411200, 1472000, 1536000,
};

/// Hz: those of the core (TS 102 114, SFREQ), all of which FFmpeg's encoder takes.
constexpr long long availableSampleRateList_dca[] = {
    8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000,
};

/// Those of FFmpeg's encoder (libavcodec/dcaenc.c).
constexpr Name channelLayouts_dca[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,  A::TAG_CH_LAYOUT_2_2,
    A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1,
};

/// Bits per second below which FFmpeg's encoder has no room for what it must write: for 512 samples 132 bits, 1389 for
/// each channel, and 72 for that of low frequencies, which only the layout of six has.
double LowestBitrate(int channels, double sampleRate) {
    const int bits = 132 + 1389 * std::min(channels, 5) + (channels > 5 ? 72 : 0);
    return bits * sampleRate / 512.0;
}

}  // namespace

DataHelperAudioCodecDca::DataHelperAudioCodecDca()
    : AudioCodecHelper(A::CODEC_ID_DTS), m_rates(RatesTaken(A::CODEC_ID_DTS, availableSampleRateList_dca)) {}

Core::Property DataHelperAudioCodecDca::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, m_codecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 768000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecDca::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isDts = OneOf({m_codecId});
    AddRule(rules, AudioCodecIdPath(), isDts, AudioBitratePath(), OneOf(availableBitrateList_dca));
    Silence(rules, SampleRatePath());
    AddRule(rules, AudioCodecIdPath(), isDts, SampleRatePath(), ConstraintSet::Create(m_rates));
    if (!Speaks(rules, LayoutPath())) {
        AddRule(rules, AudioCodecIdPath(), isDts, LayoutPath(), LayoutsOf(channelLayouts_dca));
    }
}

void DataHelperAudioCodecDca::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_dca);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
}

void DataHelperAudioCodecDca::CorrectFormatCodec(Core::Property& tree) const {
    AudioCodecHelper::CorrectFormatCodec(tree);
    const double lowest = LowestBitrate(ChannelsOf(tree), static_cast<double>(tree[A::TAG_SAMPLE_RATE].GetInt64()));
    const auto* const enough =
        std::find_if(std::begin(availableBitrateList_dca), std::end(availableBitrateList_dca) - 1,
                     [lowest](long long rate) { return static_cast<double>(rate) >= lowest; });
    tree.SetChildT(A::TAG_BITRATE, std::max(tree[A::TAG_BITRATE].GetInt64(), *enough));
}

}  // namespace Norvex::Conf
