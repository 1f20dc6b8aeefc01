#include "norvex/Conf/DataHelpers/Constraints/SizeConstraints.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// DV (SMPTE 314M, IEC 61834). Constant bitrate only, and one size for each of the two television systems.

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

/// The 525-line and the 625-line system, in pixels.
constexpr SizeConstraints::SizeList::value_type sizes_dv[] = {{720, 480}, {720, 576}};

}  // namespace

DataHelperVideoCodecDV::DataHelperVideoCodecDV() : VideoCodecHelper(V::CODEC_ID_DVVIDEO) {}

SP<IDataHelper> DataHelperVideoCodecDV::Create() {
    return Keeping(new DataHelperVideoCodecDV);
}

Core::Property DataHelperVideoCodecDV::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_DVVIDEO},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 1},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperVideoCodecDV::GetValidationRules(RuleList& rules) const {
    VideoCodecHelper::GetValidationRules(rules);
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_DVVIDEO}), FrameSizeModePath(),
            SizeConstraints::Create({std::begin(sizes_dv), std::end(sizes_dv)}));
}

void DataHelperVideoCodecDV::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR});
}

}  // namespace Norvex::Conf
