#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// AC-3 (ATSC A/52). The layouts stand beside the encoder's: validation wants both kept, while correction follows the
// encoder's list and so leaves 5.1 alone.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Bits per second: of the nominal bitrates of A/52 (table 5.18) those from 64000 to 448000, the most that DVD-Video
/// takes.
constexpr long long g_availableBitRateList[] = {
    64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 320000, 384000, 448000,
};

constexpr long long g_availableSampleRateList[] = {32000, 44100, 48000};  // Hz; A/52, table 5.6

/// The book's own choice of the modes of A/52 (table 5.8).
constexpr Name channelLayouts_ac3[] = {A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO};

}  // namespace

DataHelperAudioCodecAc3::DataHelperAudioCodecAc3() : AudioCodecHelper(A::CODEC_ID_AC3) {}

SP<IDataHelper> DataHelperAudioCodecAc3::Create() {
    return Keeping(new DataHelperAudioCodecAc3);
}

Core::Property DataHelperAudioCodecAc3::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_AC3},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecAc3::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isAc3 = OneOf({A::CODEC_ID_AC3});
    AddRule(rules, AudioCodecIdPath(), isAc3, AudioBitratePath(), OneOf(g_availableBitRateList));
    AddRule(rules, AudioCodecIdPath(), isAc3, SampleRatePath(), OneOf(g_availableSampleRateList));
    AddRule(rules, AudioCodecIdPath(), isAc3, LayoutPath(), LayoutsOf(channelLayouts_ac3));
}

void DataHelperAudioCodecAc3::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(g_availableBitRateList);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
}

}  // namespace Norvex::Conf
