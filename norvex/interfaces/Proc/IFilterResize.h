#pragma once

#include <cstdint>
#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Conf/FrameInfo.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Proc {

/// The resizer's own section within the filter's: its tags and their values.
struct NORVEX_API IResize {
    static const std::string CLASS_ID;

    static const std::string FRAME_SIZE_MODE;  ///< where the size comes from
    static const std::string FRAME_SIZE_CUSTOM;
    static const std::string FRAME_SIZE_CUSTOM_SCALE;
    static const std::string FRAME_SIZE_ORIGINAL;
    static const std::string FRAME_SIZE_HALF_ORIGINAL;
    static const std::string FRAME_SIZE_QUARTER_ORIGINAL;

    static const std::string MODE;  ///< how a picture of another shape meets a custom size
    static const std::string MODE_SMART_FIT;
    static const std::string MODE_UP_TO;
    static const std::string MODE_LETTERBOX;
    static const std::string MODE_STRETCH;
    static const std::string MODE_AUTO;
    static const std::string MODE_CROP;

    static const std::string METHOD;  ///< interpolation
    static const std::string METHOD_POINT;
    static const std::string METHOD_FAST_BILINEAR;
    static const std::string METHOD_BILINEAR;
    static const std::string METHOD_BICUBIC;

    static const std::string SCALE;             ///< double, factor of FRAME_SIZE_CUSTOM_SCALE
    static const std::string BACKGROUND_COLOR;  ///< integer, 0xAARRGGBB, behind a picture that leaves bars
};

struct NORVEX_API SettingsResizer : Settings {
    /// Where the size of the output comes from.
    enum class FrameSizeModes : std::int32_t {
        Custom,           ///< from width, height and aspect, by way of the custom mode
        CustomScale,      ///< the input's, times `scale`
        Original,         ///< the input's, untouched
        HalfOriginal,     ///< half the input's width and height
        QuarterOriginal,  ///< a quarter of each
    };
    /// How a picture of another shape meets a custom frame.
    enum class CustomModes : std::int32_t {
        SmartFit,   ///< the largest frame of the input's shape within the custom one
        UpTo,       ///< the same, but never larger than the input
        Letterbox,  ///< the custom frame, the whole picture within it, bars beside it
        Stretch,    ///< the custom frame, the picture distorted to fill it
        Auto,       ///< the custom frame, distorted where the shapes nearly agree and with bars where not
        Crop,       ///< the custom frame, filled by a picture whose edges are cut off
    };
    enum class Methods : std::int32_t { Point, FastBilinear, Bilinear, Bicubic };

    std::uint32_t backgroundColor = 0xFF000000;  ///< 0xAARRGGBB
    CustomModes mode = CustomModes::Auto;
    FrameSizeModes frameSizeMode = FrameSizeModes::Original;
    std::int32_t width = 800;   ///< pixels
    std::int32_t height = 600;  ///< pixels
    std::int32_t aspectX = 1;   ///< shape of one pixel
    std::int32_t aspectY = 1;
    double scale = 1.0;
    Methods method = Methods::Bicubic;

    /// Switches to a custom frame.
    void SetCustomMode(CustomModes customMode, const Conf::FrameInfo& frame);
    /// The frame that comes out for an input frame. Sizes that are worked out are even and at least 2; an aspect
    /// below 1 counts as 1 and comes back as it is, and an input without a size fits any frame. A number outside
    /// the enumerations is a custom frame, taken as it is.
    Conf::FrameInfo GetOutputFrameSize(const Conf::FrameInfo& input) const;
};

struct NORVEX_API IFilterResize {
    static const std::string CLASS_ID;

    /// Throws SettingsException for a number that is none of its enumeration.
    static Core::Property Settings2Property(const SettingsResizer& settings);
    /// Reads the form that Settings2Property gives; of numbers, the lower 32 bits. Throws Core::PropertyException for
    /// what is missing or of the wrong type, and SettingsException for a text that names no mode or method.
    static SettingsResizer Property2Settings(const Core::Property& property);
};

}  // namespace Norvex::Proc
