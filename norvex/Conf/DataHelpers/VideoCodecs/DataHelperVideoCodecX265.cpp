#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"

// H.265. The lists are x265's, from its fastest preset to its slowest; the profiles are of ITU-T H.265, Annex A.

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

constexpr Name presets_x265[] = {
    V::TAG_X265_PRESET_ULTRAFAST, V::TAG_X265_PRESET_SUPERFAST, V::TAG_X265_PRESET_VERYFAST, V::TAG_X265_PRESET_FASTER,
    V::TAG_X265_PRESET_FAST,      V::TAG_X265_PRESET_MEDIUM,    V::TAG_X265_PRESET_SLOW,     V::TAG_X265_PRESET_SLOWER,
    V::TAG_X265_PRESET_VERYSLOW,  V::TAG_X265_PRESET_PLACEBO,
};

constexpr Name profiles_x265[] = {V::TAG_X265_PROFILE_MAIN, V::TAG_X265_PROFILE_MAIN10};

}  // namespace

DataHelperVideoCodecX265::DataHelperVideoCodecX265() : VideoCodecHelper(V::CODEC_ID_H265) {}

SP<IDataHelper> DataHelperVideoCodecX265::Create() {
    return Keeping(new DataHelperVideoCodecX265);
}

Core::Property DataHelperVideoCodecX265::GetDefaults() const {
    // The automatic mode is none that a user can choose, and stays so until a preset or a correction settles it.
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_H265},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 1},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR_AUTO},
        {V::TAG_GLOBAL_HEADER, true},
        {V::TAG_CODEC_OPTIONS_ENCODE,
         {
             {V::TAG_PRESET, V::TAG_X265_PRESET_FASTER},
             {V::TAG_PROFILE, V::TAG_X265_PROFILE_MAIN},
             {V::TAG_USE_HW_CONTEXT, true},
         }},
    });
}

void DataHelperVideoCodecX265::GetValidationRules(RuleList& rules) const {
    VideoCodecHelper::GetValidationRules(rules);
    // Bound to the default preset, where H.264's rule is bound to the fastest: with the default, ten bits are out of
    // reach.
    AddRule(rules, Path(IPreset::KEY_FILTER_VIDEO_CODEC, PresetKey()), OneOf({V::TAG_X265_PRESET_FASTER}),
            Path(IPreset::KEY_FILTER_VIDEO_CODEC, ProfileKey()), OneOf({V::TAG_X265_PROFILE_MAIN}));
}

void DataHelperVideoCodecX265::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
    constraints[PresetKey()] = OneOf(presets_x265);
    constraints[ProfileKey()] = OneOf(profiles_x265);
}

}  // namespace Norvex::Conf
