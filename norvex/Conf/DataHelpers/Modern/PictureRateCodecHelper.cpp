// What the video codecs share whose bitrate follows from the picture.

#include <algorithm>
#include <cmath>

#include "norvex/Conf/DataHelpers/Constraints/ConstraintRange.h"
#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

namespace Norvex::Conf {

namespace {

using Core::Property;
using V = IFormatCodecVideo;

/// Bits per second, beyond what any picture takes: a number out of range may not become one.
constexpr double highestBitrate = 1e15;

std::optional<long long> BitrateIn(const Property& node) {
    const auto bitrate = node.FindChild(V::TAG_BITRATE);
    if (bitrate == node.end() || bitrate->GetType() != PT_INT64) return std::nullopt;
    return bitrate->GetInt64();
}

}  // namespace

PictureRateCodecHelper::PictureRateCodecHelper(const std::string& codecId, const std::string& mode)
    : VideoCodecHelper(codecId), m_options(codecId), m_mode(mode) {}

Property PictureRateCodecHelper::GetDefaults() const {
    Property defaults = Tree(m_presetKey, {{V::TAG_CODEC_ID, m_codecId}, {V::TAG_BITRATE_MODE, m_mode}});
    defaults.AddNamed(m_options.Defaults());
    return defaults;
}

void PictureRateCodecHelper::GetConstraints(ConstraintMap& constraints) const {
    VideoCodecHelper::GetConstraints(constraints);
    constraints[V::TAG_BITRATE_MODE] = OneOf({m_mode});
    m_options.AddTo(constraints);
}

void PictureRateCodecHelper::ApplyPresetSettings(const Property& preset, Property& stream) const {
    // The common one has a bitrate of its own making in the automatic mode alone.
    Property automatic = preset;
    automatic.SetChildT(V::TAG_BITRATE_MODE, V::TAG_BITRATE_MODE_CBR_AUTO);
    VideoCodecHelper::ApplyPresetSettings(automatic, stream);
    stream.SetChildT(V::TAG_BITRATE_MODE, m_mode);
    if (preset.ChildExists(V::TAG_QUALITY)) stream.SetChild(V::TAG_QUALITY, preset[V::TAG_QUALITY]);
    SetBitrate(stream, BitrateIn(preset));
}

void PictureRateCodecHelper::CorrectFormatCodec(Property& tree) const {
    VideoCodecHelper::CorrectFormatCodec(tree);
    SetBitrate(tree, BitrateIn(tree));
}

std::string PictureRateCodecHelper::OptionOf(const Property& stream, const std::string& tag) const {
    const std::string path = Path(V::TAG_CODEC_OPTIONS_ENCODE, tag);
    if (stream.ChildExists(path) && stream[path].GetType() == PT_STRING) return stream[path].GetString();
    const Property defaults = m_options.Defaults();
    return defaults.ChildExists(tag) ? defaults[tag].GetString() : std::string();
}

void PictureRateCodecHelper::SetBitrate(Property& stream, std::optional<long long> wish) const {
    const auto width = stream.FindChild(V::TAG_WIDTH);
    const auto height = stream.FindChild(V::TAG_HEIGHT);
    const auto rate = stream.FindChild(V::TAG_FPS);
    const bool tells = width != stream.end() && height != stream.end() && rate != stream.end() &&
                       width->GetType() == PT_INT64 && height->GetType() == PT_INT64 && rate->GetType() == PT_RATIO;
    if (!tells) return;
    const Core::Ratio ratio = rate->GetRatio();
    const Picture picture = {width->GetInt64(), height->GetInt64(),
                             static_cast<double>(ratio.numerator()) / static_cast<double>(ratio.denominator())};
    if (picture.width <= 0 || picture.height <= 0 || !(picture.framesPerSecond > 0)) return;
    stream.SetChildT(V::TAG_BITRATE, std::llround(std::min(BitrateOf(picture, stream, wish), highestBitrate)));
}

EstimatedCodecHelper::EstimatedCodecHelper(const std::string& codecId, double bitsPerPixel, long long worstQuality,
                                           long long standardQuality)
    : PictureRateCodecHelper(codecId, V::TAG_BITRATE_MODE_VBR),
      m_bitsPerPixel(bitsPerPixel),
      m_worstQuality(worstQuality),
      m_standardQuality(standardQuality) {}

Property EstimatedCodecHelper::GetDefaults() const {
    Property defaults = PictureRateCodecHelper::GetDefaults();
    if (m_worstQuality != 0) defaults.SetChildT(V::TAG_QUALITY, m_standardQuality);
    return defaults;
}

void EstimatedCodecHelper::GetConstraints(ConstraintMap& constraints) const {
    PictureRateCodecHelper::GetConstraints(constraints);
    if (m_worstQuality != 0) constraints[V::TAG_QUALITY] = ConstraintRange::Create(1LL, m_worstQuality, 0LL);
}

double EstimatedCodecHelper::BitrateOf(const Picture& picture, const Property& /*stream*/,
                                       std::optional<long long> /*wish*/) const {
    return static_cast<double>(picture.width) * static_cast<double>(picture.height) * picture.framesPerSecond *
           m_bitsPerPixel;
}

}  // namespace Norvex::Conf
