#include "norvex/Conf/DataHelpers/AudioCodecs/AudioCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

// AAC. Constant bitrate only, from a fixed list. Sample rates are the encoder's own; layouts are the encoder's where
// it names any, and the six below otherwise. Both lists are the book's own choice.

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

constexpr long long availableBitrateList_aac[] = {
    // bits per second
    32000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000, 448000, 512000,
};

constexpr Name channelLayouts_aac[] = {
    A::TAG_CH_LAYOUT_MONO,    A::TAG_CH_LAYOUT_STEREO,  A::TAG_CH_LAYOUT_2POINT1,
    A::TAG_CH_LAYOUT_5POINT0, A::TAG_CH_LAYOUT_5POINT1, A::TAG_CH_LAYOUT_7POINT1,
};

/// FFmpeg's names (libavcodec/profiles.h) of profiles and object types of ISO/IEC 14496-3; AAC Main is left out.
constexpr Name profiles_aac[] = {
    A::TAG_AAC_PROFILE_LOW,   A::TAG_AAC_PROFILE_SSR, A::TAG_AAC_PROFILE_LTP, A::TAG_AAC_PROFILE_HE,
    A::TAG_AAC_PROFILE_HE_V2, A::TAG_AAC_PROFILE_LD,  A::TAG_AAC_PROFILE_ELD,
};

}  // namespace

DataHelperAudioCodecAac::DataHelperAudioCodecAac() : AudioCodecHelper(A::CODEC_ID_AAC) {}

SP<IDataHelper> DataHelperAudioCodecAac::Create() {
    return Keeping(new DataHelperAudioCodecAac);
}

Core::Property DataHelperAudioCodecAac::GetDefaults() const {
    return AudioCodecTree({
        {A::TAG_CODEC_ID, A::CODEC_ID_AAC},
        {A::TAG_BITRATE_MODE, A::TAG_BITRATE_MODE_CBR},
        {A::TAG_BITRATE, 256000},
        {A::TAG_CODEC_OPTIONS_ENCODE, {{A::TAG_PROFILE, A::TAG_AAC_PROFILE_LOW}}},
        {A::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperAudioCodecAac::GetValidationRules(RuleList& rules) const {
    AudioCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isAac = OneOf({A::CODEC_ID_AAC});
    AddRule(rules, AudioCodecIdPath(), isAac, AudioBitratePath(), OneOf(availableBitrateList_aac));
    if (!Speaks(rules, LayoutPath())) {  // the encoder's own layouts silence the list
        AddRule(rules, AudioCodecIdPath(), isAac, LayoutPath(), LayoutsOf(channelLayouts_aac));
    }
}

void DataHelperAudioCodecAac::GetConstraints(ConstraintMap& constraints) const {
    AudioCodecHelper::GetConstraints(constraints);
    constraints[A::TAG_BITRATE] = OneOf(availableBitrateList_aac);
    constraints[ProfileKey()] = OneOf(profiles_aac);
    constraints[A::TAG_BITRATE_MODE] = OneOf({A::TAG_BITRATE_MODE_CBR});
    if (constraints.count(LayoutPath()) == 0) constraints[LayoutPath()] = OneOf(channelLayouts_aac);
}

}  // namespace Norvex::Conf
