#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// MPEG-4 Visual (ISO/IEC 14496-2).

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

/// Four of the visual profiles of the standard.
constexpr Name profiles_mpeg4[] = {
    V::TAG_MPEG4_PROFILE_SIMPLE,
    V::TAG_MPEG4_PROFILE_MAIN,
    V::TAG_MPEG4_PROFILE_CORE_SCALABLE,
    V::TAG_MPEG4_PROFILE_ADVANCED_SIMPLE,
};

}  // namespace

DataHelperVideoCodecMpeg4::DataHelperVideoCodecMpeg4() : VideoCodecHelper(V::CODEC_ID_MPEG4) {}

SP<IDataHelper> DataHelperVideoCodecMpeg4::Create() {
    return Keeping(new DataHelperVideoCodecMpeg4);
}

Core::Property DataHelperVideoCodecMpeg4::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_MPEG4},
        {V::TAG_QUALITY, 12},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {{V::TAG_PROFILE, V::TAG_MPEG4_PROFILE_SIMPLE}}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecMpeg4::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
    constraints[ProfileKey()] = OneOf(profiles_mpeg4);
}

}  // namespace Norvex::Conf
