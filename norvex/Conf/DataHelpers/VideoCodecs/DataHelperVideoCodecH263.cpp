#include "norvex/Conf/DataHelpers/Constraints/SizeConstraints.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// H.263 (ITU-T H.263). A picture has one of five sizes.

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

/// Sub-QCIF, QCIF, CIF, 4CIF and 16CIF, in pixels.
SizeConstraints::SizeList StandardSizes() {
    return {{128, 96}, {176, 144}, {352, 288}, {704, 576}, {1408, 1152}};
}

}  // namespace

DataHelperVideoCodecH263::DataHelperVideoCodecH263() : VideoCodecHelper(V::CODEC_ID_H263) {}

SP<IDataHelper> DataHelperVideoCodecH263::Create() {
    return Keeping(new DataHelperVideoCodecH263);
}

Core::Property DataHelperVideoCodecH263::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_H263},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_QUALITY, 1},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
    });
}

void DataHelperVideoCodecH263::GetValidationRules(RuleList& rules) const {
    VideoCodecHelper::GetValidationRules(rules);
    AddRule(rules, VideoCodecIdPath(), OneOf({V::CODEC_ID_H263}), FrameSizeModePath(),
            SizeConstraints::Create(StandardSizes()));
}

void DataHelperVideoCodecH263::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

}  // namespace Norvex::Conf
