#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/VideoCodecs/VideoCodecHelpers.h"
#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// MPEG-1 (ISO/IEC 11172-2) and MPEG-2 video (ISO/IEC 13818-2). Both bound the frame size. MPEG-2 alone goes with any
// frame rate, and it alone sets the shape of its groups of pictures.

namespace Norvex::Conf {

namespace {

using V = IFormatCodecVideo;

/// The bounds are the book's own, within the 12 bits that MPEG-1 has for a size and the 14 of MPEG-2. The step is a
/// hint for controls; that sizes are even is the resizer's rule.
void AddSizeRules(RuleList& rules, const std::string& codecId) {
    const SP<IPropertyConstraint> isThisCodec = OneOf({codecId});
    AddRule(rules, VideoCodecIdPath(), isThisCodec, WidthPath(), ConstraintRange::Create(32LL, 3840LL, 2LL));
    AddRule(rules, VideoCodecIdPath(), isThisCodec, HeightPath(), ConstraintRange::Create(32LL, 2160LL, 2LL));
}

}  // namespace

DataHelperVideoCodecMpeg1::DataHelperVideoCodecMpeg1() : VideoCodecHelper(V::CODEC_ID_MPEG1VIDEO) {}

SP<IDataHelper> DataHelperVideoCodecMpeg1::Create() {
    return Keeping(new DataHelperVideoCodecMpeg1);
}

Core::Property DataHelperVideoCodecMpeg1::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_MPEG1VIDEO},
        {V::TAG_QUALITY, 12},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecMpeg1::GetValidationRules(RuleList& rules) const {
    VideoCodecHelper::GetValidationRules(rules);
    AddSizeRules(rules, V::CODEC_ID_MPEG1VIDEO);
}

void DataHelperVideoCodecMpeg1::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

DataHelperVideoCodecMpeg2::DataHelperVideoCodecMpeg2() : VideoCodecHelper(V::CODEC_ID_MPEG2VIDEO) {}

SP<IDataHelper> DataHelperVideoCodecMpeg2::Create() {
    return Keeping(new DataHelperVideoCodecMpeg2);
}

Core::Property DataHelperVideoCodecMpeg2::GetDefaults() const {
    return VideoCodecTree({
        {V::TAG_CODEC_ID, V::CODEC_ID_MPEG2VIDEO},
        {V::TAG_QUALITY, 12},
        {V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR},
        {V::TAG_BITRATE, 2000000},
        {V::TAG_MAX_I_FRAME_INTERVAL, 15},  // as FFmpeg's target "pal-dvd"
        {V::TAG_MAX_B_FRAME_SEQUENCE, 2},
        {V::TAG_CODEC_OPTIONS_ENCODE, {}},
        {V::TAG_GLOBAL_HEADER, true},
    });
}

void DataHelperVideoCodecMpeg2::GetValidationRules(RuleList& rules) const {
    RuleList encoderRules;
    VideoCodecHelper::GetValidationRules(encoderRules);
    Silence(encoderRules, FrameRatePath());
    rules.insert(rules.end(), encoderRules.begin(), encoderRules.end());
    AddSizeRules(rules, V::CODEC_ID_MPEG2VIDEO);
}

void DataHelperVideoCodecMpeg2::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    AddRateControl(constraints, {V::TAG_BITRATE_MODE_CBR, V::TAG_BITRATE_MODE_VBR});
}

}  // namespace Norvex::Conf
