#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"

// H.264. The one codec with a tune, and the one with a choice of passes. Driven by quality, without a bitrate of its
// own. The lists are x264's, from its fastest preset to its slowest; the profiles are of ITU-T H.264, Annex A.

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

constexpr Name presets_x264[] = {
    V::TAG_X264_PRESET_ULTRAFAST, V::TAG_X264_PRESET_SUPERFAST, V::TAG_X264_PRESET_VERYFAST, V::TAG_X264_PRESET_FASTER,
    V::TAG_X264_PRESET_FAST,      V::TAG_X264_PRESET_MEDIUM,    V::TAG_X264_PRESET_SLOW,     V::TAG_X264_PRESET_SLOWER,
    V::TAG_X264_PRESET_VERYSLOW,  V::TAG_X264_PRESET_PLACEBO,
};

constexpr Name profiles_x264[] = {
    V::TAG_X264_PROFILE_BASELINE, V::TAG_X264_PROFILE_MAIN,    V::TAG_X264_PROFILE_HIGH,
    V::TAG_X264_PROFILE_HIGH10,   V::TAG_X264_PROFILE_HIGH422, V::TAG_X264_PROFILE_HIGH444,
};

constexpr Name tunes_x264[] = {
    V::TAG_X264_TUNE_FILM, V::TAG_X264_TUNE_ANIMATION, V::TAG_X264_TUNE_GRAIN,      V::TAG_X264_TUNE_STILLIMAGE,
    V::TAG_X264_TUNE_PSNR, V::TAG_X264_TUNE_SSIM,      V::TAG_X264_TUNE_FASTDECODE, V::TAG_X264_TUNE_ZEROLATENCY,
};

constexpr Name passes_x264[] = {V::TAG_ONE_PASS_MODE, V::TAG_TWO_PASS_MODE};

}  // namespace

DataHelperVideoCodecX264::DataHelperVideoCodecX264() : VideoCodecHelper(V::CODEC_ID_H264) {}

SP<IDataHelper> DataHelperVideoCodecX264::Create() {
    return Keeping(new DataHelperVideoCodecX264);
}

Core::Property DataHelperVideoCodecX264::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_H264},
        {V::TAG_QUALITY, 14},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_VBR},
        {V::TAG_MULTIPASS_ENCODING, V::TAG_ONE_PASS_MODE},
        {V::TAG_GLOBAL_HEADER, true},
        {V::TAG_CODEC_OPTIONS_ENCODE,
         {
             {V::TAG_PRESET, V::TAG_X264_PRESET_FASTER},
             {V::TAG_PROFILE, V::TAG_X264_PROFILE_MAIN},
             {V::TAG_X264_TUNE, V::TAG_X264_TUNE_FILM},
             {V::TAG_USE_HW_CONTEXT, true},
         }},
    });
}

void DataHelperVideoCodecX264::GetValidationRules(RuleList& rules) const {
    VideoCodecHelper::GetValidationRules(rules);
    // The fastest preset turns off what every profile but the simplest is for.
    AddRule(rules, Path(IPreset::KEY_FILTER_VIDEO_CODEC, PresetKey()), OneOf({V::TAG_X264_PRESET_ULTRAFAST}),
            Path(IPreset::KEY_FILTER_VIDEO_CODEC, ProfileKey()), OneOf({V::TAG_X264_PROFILE_BASELINE}));
}

void DataHelperVideoCodecX264::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
    constraints[PresetKey()] = OneOf(presets_x264);
    constraints[ProfileKey()] = OneOf(profiles_x264);
    constraints[Path(V::TAG_CODEC_OPTIONS_ENCODE, V::TAG_X264_TUNE)] = OneOf(tunes_x264);
    constraints[V::TAG_MULTIPASS_ENCODING] = OneOf(passes_x264);
}

}  // namespace Norvex::Conf
