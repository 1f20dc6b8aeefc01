#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// Enhanced AC-3 (ATSC A/52, Annex E).

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Bits per second: the nominal bitrates of AC-3 (A/52, table 5.18), and beyond them what a frame of 2048 words and
/// 1536 samples carries at 48000 Hz (E2.3.1.3). FFmpeg's encoder takes them all at each of its rates.
constexpr long long availableBitrateList_eac3[] = {
    32000,  40000,  48000,  56000,  64000,  80000,  96000,  112000, 128000, 160000, 192000,
    224000, 256000, 320000, 384000, 448000, 512000, 576000, 640000, 768000, 896000, 1024000,
};

constexpr long long availableSampleRateList_eac3[] = {32000, 44100, 48000};  // Hz; A/52, table 5.6

/// The audio coding modes of A/52 (table 5.8), without and with the channel of low frequencies.
constexpr Name channelLayouts_eac3[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,  A::TAG_CH_LAYOUT_SURROUND, A::TAG_CH_LAYOUT_2_1,
    A::TAG_CH_LAYOUT_4POINT0, A::TAG_CH_LAYOUT_2_2,     A::TAG_CH_LAYOUT_5POINT0,  A::TAG_CH_LAYOUT_2POINT1,
    A::TAG_CH_LAYOUT_3POINT1, A::TAG_CH_LAYOUT_4POINT1, A::TAG_CH_LAYOUT_5POINT1,
};

}  // namespace

DataHelperAudioCodecEac3::DataHelperAudioCodecEac3() : AudioCodecHelper(A::CODEC_ID_EAC3) {}

Core::Property DataHelperAudioCodecEac3::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, m_codecId},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecEac3::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isEac3 = OneOf({m_codecId});
    AddRule(rules, AudioCodecIdPath(), isEac3, AudioBitratePath(), OneOf(availableBitrateList_eac3));
    if (!Speaks(rules, SampleRatePath())) {
        AddRule(rules, AudioCodecIdPath(), isEac3, SampleRatePath(), OneOf(availableSampleRateList_eac3));
    }
    if (!Speaks(rules, LayoutPath())) {
        AddRule(rules, AudioCodecIdPath(), isEac3, LayoutPath(), LayoutsOf(channelLayouts_eac3));
    }
}

void DataHelperAudioCodecEac3::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_eac3);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
}

}  // namespace Norvex::Conf
