#include <algorithm>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintMethod.h"
#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// The wavelet codecs of studios: CineForm (VC-5, SMPTE ST 2073) and VC-2 (SMPTE ST 2042), which FFmpeg calls by its
// parent Dirac.

namespace Norvex::Conf {

namespace {

using MV = ModernVideo;
using V = IFormatCodecVideo;

/// Steps of FFmpeg's encoder of CineForm, from "film3+" to "low".
constexpr long long worstQuality_cfhd = 13;
constexpr long long standardQuality_cfhd = 4;  // "film2"

/// Whether a size in pixels is a whole number of steps.
template <long long Step>
bool IsMultipleOf(const Core::Property& size) {
    return size.GetType() == PT_INT64 && size.GetInt64() % Step == 0;
}

/// Widths with which FFmpeg's decoder of CineForm wants the height in steps of 16 as well.
bool IsOddMultipleOf16(const Core::Property& width) {
    return IsMultipleOf<16>(width) && !IsMultipleOf<32>(width);
}

/// Bits per pixel and frame below which FFmpeg's encoder of VC-2 writes more than it is told, and in the end nothing:
/// 136 bytes for each slice of 32 by 16 pixels, its standard.
constexpr double lowestBitsPerPixel_vc2 = 136.0 * 8 / (32 * 16);
/// A quarter of the 16 bits that 4:2:2 has.
constexpr double standardBitsPerPixel_vc2 = 4;

}  // namespace

DataHelperVideoCodecCineForm::DataHelperVideoCodecCineForm()
    : EstimatedCodecHelper(MV::CODEC_ID_CFHD, 4.0, worstQuality_cfhd, standardQuality_cfhd) {}

void DataHelperVideoCodecCineForm::GetValidationRules(RuleList& rules) const {
    EstimatedCodecHelper::GetValidationRules(rules);
    const SP<IPropertyConstraint> isCineForm = OneOf({m_codecId});
    const SP<IPropertyConstraint> steps16 = ConstraintMethod::Create(IsMultipleOf<16>, "a multiple of 16");
    // The encoder refuses other widths. Of other heights it says nothing, and reads past its picture.
    AddRule(rules, VideoCodecIdPath(), isCineForm, WidthPath(), steps16);
    AddRule(rules, VideoCodecIdPath(), isCineForm, HeightPath(),
            ConstraintMethod::Create(IsMultipleOf<8>, "a multiple of 8"));
    AddRule(rules, WidthPath(), ConstraintMethod::Create(IsOddMultipleOf16, "an odd multiple of 16"), HeightPath(),
            steps16);
    // Narrower ones are written, and not read back.
    AddRule(rules, VideoCodecIdPath(), isCineForm, WidthPath(), ConstraintRange::Create(48LL, 8192LL, 16LL));
}

DataHelperVideoCodecVc2::DataHelperVideoCodecVc2()
    : PictureRateCodecHelper(MV::CODEC_ID_DIRAC, V::TAG_BITRATE_MODE_CBR) {
    m_options.Add(MV::TAG_WAVELET, "9_7", {"9_7", "5_3", "haar", "haar_noshift"});  // of ST 2042 what the encoder has
    m_options.Add(MV::TAG_WAVELET_DEPTH, 4, {1, 2, 3, 4, 5});
}

void DataHelperVideoCodecVc2::GetConstraints(ConstraintMap& constraints) const {
    PictureRateCodecHelper::GetConstraints(constraints);
    constraints[V::TAG_BITRATE] = s_defaultVideoBitrateConstraint;
}

double DataHelperVideoCodecVc2::BitrateOf(const Picture& picture, const Core::Property& /*stream*/,
                                          std::optional<long long> wish) const {
    const double pixelsPerSecond =
        static_cast<double>(picture.width) * static_cast<double>(picture.height) * picture.framesPerSecond;
    const double wanted = wish ? static_cast<double>(*wish) : standardBitsPerPixel_vc2 * pixelsPerSecond;
    const double most = static_cast<double>(V::MAX_VIDEO_BITRATE);
    return std::clamp(wanted, std::min(lowestBitsPerPixel_vc2 * pixelsPerSecond, most), most);
}

}  // namespace Norvex::Conf
