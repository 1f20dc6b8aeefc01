#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// Windows Media Audio 2. The lists are the book's own choice of what FFmpeg's encoder (libavcodec/wmaenc.c) takes: up
// to 48000 Hz, up to two channels, from 24000 bits per second on.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long availableSampleRateList_wmav2[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};  // Hz

constexpr long long availableBitrateList_wmvv2[] = {
    // bits per second
    32000, 48000, 64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 288000, 320000,
};

}  // namespace

DataHelperAudioCodecWmav2::DataHelperAudioCodecWmav2() : AudioCodecHelper(A::CODEC_ID_WMAV2) {}

SP<IDataHelper> DataHelperAudioCodecWmav2::Create() {
    return Keeping(new DataHelperAudioCodecWmav2);
}

Core::Property DataHelperAudioCodecWmav2::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_WMAV2},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_QUALITY, 1},
        {A::TAG_CODEC_OPTIONS_ENCODE, {}},
        {A::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperAudioCodecWmav2::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isWmav2 = OneOf({A::CODEC_ID_WMAV2});
    AddRule(rules, AudioCodecIdPath(), isWmav2, SampleRatePath(), OneOf(availableSampleRateList_wmav2));
    AddRule(rules, AudioCodecIdPath(), isWmav2, LayoutPath(),
            LayoutsOf({A::TAG_CH_LAYOUT_MONO, A::TAG_CH_LAYOUT_STEREO}));
}

void DataHelperAudioCodecWmav2::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_wmvv2);
    constraints[A::TAG_QUALITY] = s_defaultQualityConstraint;
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR, A::TAG_BITRATE_MODE_VBR});
}

}  // namespace Norvex::Conf
