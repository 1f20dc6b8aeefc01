#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// MP2 (ISO/IEC 11172-3 Layer II). Encoders also declare the half rates of MPEG-2, which are refused here.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

/// Bits per second: those of Layer II (ISO/IEC 11172-3, 2.4.2.3), without the highest, 384000.
constexpr long long availableBitrateList_mp2[] = {
    32000, 48000, 56000, 64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 320000,
};

constexpr long long availableSampleRateList[] = {32000, 44100, 48000};  // Hz; ISO/IEC 11172-3, 2.4.2.3

}  // namespace

DataHelperAudioCodecMp2::DataHelperAudioCodecMp2() : AudioCodecHelper(A::CODEC_ID_MP2) {}

SP<IDataHelper> DataHelperAudioCodecMp2::Create() {
    return Keeping(new DataHelperAudioCodecMp2);
}

Core::Property DataHelperAudioCodecMp2::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_MP2},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperAudioCodecMp2::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    Silence(rules, SampleRatePath());
    AddRule(rules, AudioCodecIdPath(), OneOf({A::CODEC_ID_MP2}), SampleRatePath(), OneOf(availableSampleRateList));
}

void DataHelperAudioCodecMp2::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_mp2);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
}

}  // namespace Norvex::Conf
