/// What HDR10 tells of light: of the display that the pictures were made on (SMPTE ST 2086), and of the brightest of
/// them (CTA-861.3).
#pragma once

#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/mastering_display_metadata.h>
}

#include "Basics.h"
#include "Input.h"

namespace NorvexExport::Media {

struct Light {
    std::optional<AVMasteringDisplayMetadata> display;
    std::optional<AVContentLightMetadata> content;
};

/// What the stream tells, or else its first picture; nothing where the pictures are not of HDR10's transfer.
Light LightOf(const Input& input, const AVStream& stream);

/// The same as parameters of x265, each with a colon before it.
std::string X265ParametersOf(const Light& light);

/// Has the container of an opened encoder tell it.
void TellLight(const Light& light, AVCodecContext& encoder);

}  // namespace NorvexExport::Media
