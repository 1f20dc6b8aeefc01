/// Of which pixel format and which colours pictures are for an encoder.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

/// Pixel formats that say full range by themselves: yuvj420p and its kin.
bool IsFullRangeYuv(AVPixelFormat format);

/// Of the formats that will do for the job, the one nearest to the source's, which may be unknown.
AVPixelFormat ChoosePixelFormat(const AVCodec& codec, const VideoJob& job, AVPixelFormat source);

/// Tells the encoder, whose pixel format and size stand, of which colours its pictures are: the source's, but where the
/// pixel format or the codec settles them.
void SetColours(AVCodecContext& encoder, const AVCodecParameters& source);

/// How the scaler has to convert colours. Null where it need not be told.
struct Conversion {
    const char* from = nullptr;
    const char* to = nullptr;
};

/// `matrix` is what the source says of itself, `height` that of its pictures in pixels.
Conversion ConversionFor(AVPixelFormat source, AVColorSpace matrix, int height, const AVCodecContext& encoder);

}  // namespace NorvexExport::Media
