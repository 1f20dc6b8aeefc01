#include "norvex/Conf/DataHelpers/Modern/ModernHelpers.h"
#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

// The picture codecs of today: WebP (RFC 9649), which codes films too, JPEG XL (ISO/IEC 18181), OpenEXR and QOI. WebP
// and JPEG XL are steered by quality, in which 1 is the best; the host stretches it over the encoder's own scale.

namespace Norvex::Conf {

namespace {

using MV = ModernVideo;
using V = IFormatCodecVideo;

}  // namespace

// libwebp's standard, 75 of 100, is 13 of 51.
DataHelperVideoCodecWebp::DataHelperVideoCodecWebp()
    : EstimatedCodecHelper(MV::CODEC_ID_WEBP, 1.0, V::MAX_QUALITY, 13) {
    m_options.Add(V::TAG_PRESET, "default", {"default", "picture", "photo", "drawing", "icon", "text"});
    m_options.Add(MV::TAG_LOSSLESS, false);
}

// libjxl's standard, a distance of 1 out of 15, is 4 of 51: no difference that is seen.
DataHelperVideoCodecJpegXl::DataHelperVideoCodecJpegXl()
    : EstimatedCodecHelper(MV::CODEC_ID_JPEGXL, 1.5, V::MAX_QUALITY, 4) {
    m_options.Add(MV::TAG_EFFORT, 7, {1, 2, 3, 4, 5, 6, 7, 8, 9});
}

// Three half floats a pixel, of which ZIP leaves about half.
DataHelperVideoCodecOpenExr::DataHelperVideoCodecOpenExr() : EstimatedCodecHelper(MV::CODEC_ID_EXR, 24.0) {
    m_options.Add(MV::TAG_COMPRESSION, "zip16", {"zip16", "zip1", "rle", "none"});
    m_options.Add(V::TAG_FORMAT, "half", {"half", "float"}, "format");
}

DataHelperVideoCodecQoi::DataHelperVideoCodecQoi() : EstimatedCodecHelper(MV::CODEC_ID_QOI, 12.0) {}

}  // namespace Norvex::Conf
