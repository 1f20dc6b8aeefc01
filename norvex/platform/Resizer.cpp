#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterResize.h"

namespace Norvex::Proc {

namespace {

using Conf::FrameInfo;
using Core::Property;
using V = Conf::IFormatCodecVideo;

// The texts of the enumerations, in the order of the enumerators.
constexpr const std::string* g_frameSizeModes[] = {
    &IResize::FRAME_SIZE_CUSTOM,        &IResize::FRAME_SIZE_CUSTOM_SCALE,     &IResize::FRAME_SIZE_ORIGINAL,
    &IResize::FRAME_SIZE_HALF_ORIGINAL, &IResize::FRAME_SIZE_QUARTER_ORIGINAL,
};
constexpr const std::string* g_customModes[] = {
    &IResize::MODE_SMART_FIT, &IResize::MODE_UP_TO, &IResize::MODE_LETTERBOX,
    &IResize::MODE_STRETCH,   &IResize::MODE_AUTO,  &IResize::MODE_CROP,
};
constexpr const std::string* g_methods[] = {
    &IResize::METHOD_POINT,
    &IResize::METHOD_FAST_BILINEAR,
    &IResize::METHOD_BILINEAR,
    &IResize::METHOD_BICUBIC,
};

[[noreturn]] void FailUnknown(const std::string& tag, const std::string& value) {
    SettingsException exception;
    exception << TagDescription("Unknown value of " + tag) << TagDetails(value);
    NORVEX_THROW(exception);
}

template <class Enum, std::size_t N>
const std::string& TextOf(Enum value, const std::string& tag, const std::string* const (&texts)[N]) {
    const auto index = static_cast<std::size_t>(value);  // a negative number becomes a large one
    if (index >= N) FailUnknown(tag, std::to_string(static_cast<std::int32_t>(value)));
    return *texts[index];
}

template <class Enum, std::size_t N>
Enum ReadEnum(const Property& section, const std::string& tag, const std::string* const (&texts)[N]) {
    const std::string& text = section[tag].GetString();
    const auto* const found =
        std::find_if(std::begin(texts), std::end(texts), [&text](const std::string* name) { return *name == text; });
    if (found == std::end(texts)) FailUnknown(tag, text);
    return static_cast<Enum>(found - std::begin(texts));
}

std::int32_t ReadInt32(const Property& section, const std::string& tag) {
    return static_cast<std::int32_t>(section[tag].GetInt64());
}

/// The nearest even size that a frame can have.
std::int32_t EvenSize(double size) {
    constexpr double largest = std::numeric_limits<std::int32_t>::max() - 1;
    if (!(size > 2)) return 2;  // NaN included
    return static_cast<std::int32_t>(std::min(2 * std::round(size / 2), largest));
}

FrameInfo Scaled(const FrameInfo& input, double factor) {
    return {EvenSize(input.width * factor), EvenSize(input.height * factor), input.aspectX, input.aspectY};
}

/// The nearest even size that a frame can have without passing `limit`.
std::int32_t EvenSizeWithin(double size, double limit) {
    const std::int32_t even = EvenSize(size);
    return even > limit && even > 2 ? even - 2 : even;
}

/// Width of a pixel over its height.
double PixelAspect(const FrameInfo& frame) {
    return static_cast<double>(std::max(frame.aspectX, 1)) / std::max(frame.aspectY, 1);
}

/// The largest frame with the custom one's pixels and the input's shape within the custom frame.
FrameInfo Fitted(const FrameInfo& input, const FrameInfo& custom, bool mayEnlarge) {
    if (input.width <= 0 || input.height <= 0) return custom;
    // The input as wide as it is in pixels of the custom frame.
    const double inputWidth = input.width * PixelAspect(input) / PixelAspect(custom);
    const double widthLimit = mayEnlarge ? custom.width : std::min<double>(custom.width, inputWidth);
    const double heightLimit = mayEnlarge ? custom.height : std::min(custom.height, input.height);
    const double factor = std::min(widthLimit / inputWidth, heightLimit / input.height);
    return {EvenSizeWithin(inputWidth * factor, widthLimit), EvenSizeWithin(input.height * factor, heightLimit),
            custom.aspectX, custom.aspectY};
}

}  // namespace

void SettingsResizer::SetCustomMode(CustomModes customMode, const FrameInfo& frame) {
    frameSizeMode = FrameSizeModes::Custom;
    mode = customMode;
    width = frame.width;
    height = frame.height;
    aspectX = frame.aspectX;
    aspectY = frame.aspectY;
}

FrameInfo SettingsResizer::GetOutputFrameSize(const FrameInfo& input) const {
    switch (frameSizeMode) {
        case FrameSizeModes::CustomScale:
            return Scaled(input, scale);
        case FrameSizeModes::Original:
            return input;
        case FrameSizeModes::HalfOriginal:
            return Scaled(input, 0.5);
        case FrameSizeModes::QuarterOriginal:
            return Scaled(input, 0.25);
        case FrameSizeModes::Custom:
            break;
    }
    const FrameInfo custom = {width, height, aspectX, aspectY};
    switch (mode) {
        case CustomModes::SmartFit:
            return Fitted(input, custom, true);
        case CustomModes::UpTo:
            return Fitted(input, custom, false);
        case CustomModes::Letterbox:
        case CustomModes::Stretch:
        case CustomModes::Auto:
        case CustomModes::Crop:
            break;
    }
    return custom;
}

Property IFilterResize::Settings2Property(const SettingsResizer& settings) {
    Property filter(CLASS_ID);
    Property& section = filter.SetChild(IResize::CLASS_ID);
    section.SetChildT(Conf::IPreset::KEY_TYPE_ID, settings.implementation);
    section.SetChildT(IResize::BACKGROUND_COLOR, settings.backgroundColor);
    section.SetChildT(IResize::MODE, TextOf(settings.mode, IResize::MODE, g_customModes));
    section.SetChildT(IResize::FRAME_SIZE_MODE,
                      TextOf(settings.frameSizeMode, IResize::FRAME_SIZE_MODE, g_frameSizeModes));
    section.SetChildT(V::TAG_WIDTH, settings.width);
    section.SetChildT(V::TAG_HEIGHT, settings.height);
    section.SetChildT(V::TAG_ASPECTX, settings.aspectX);
    section.SetChildT(V::TAG_ASPECTY, settings.aspectY);
    section.SetChildT(IResize::SCALE, settings.scale);
    section.SetChildT(IResize::METHOD, TextOf(settings.method, IResize::METHOD, g_methods));
    return filter;
}

SettingsResizer IFilterResize::Property2Settings(const Property& property) {
    const Property& section = property[IResize::CLASS_ID];
    SettingsResizer settings;
    settings.implementation = section[Conf::IPreset::KEY_TYPE_ID].GetString();
    settings.backgroundColor = static_cast<std::uint32_t>(section[IResize::BACKGROUND_COLOR].GetInt64());
    settings.mode = ReadEnum<SettingsResizer::CustomModes>(section, IResize::MODE, g_customModes);
    settings.frameSizeMode =
        ReadEnum<SettingsResizer::FrameSizeModes>(section, IResize::FRAME_SIZE_MODE, g_frameSizeModes);
    settings.width = ReadInt32(section, V::TAG_WIDTH);
    settings.height = ReadInt32(section, V::TAG_HEIGHT);
    settings.aspectX = ReadInt32(section, V::TAG_ASPECTX);
    settings.aspectY = ReadInt32(section, V::TAG_ASPECTY);
    settings.scale = section[IResize::SCALE].GetDouble();
    settings.method = ReadEnum<SettingsResizer::Methods>(section, IResize::METHOD, g_methods);
    return settings;
}

}  // namespace Norvex::Proc
