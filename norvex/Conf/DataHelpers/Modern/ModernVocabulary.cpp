#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_OPUS) = "opus";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_ALAW) = "pcm_alaw";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_F32BE) = "pcm_f32be";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_F32LE) = "pcm_f32le";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_F64BE) = "pcm_f64be";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_F64LE) = "pcm_f64le";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_PCM_MULAW) = "pcm_mulaw";
NORVEX_CONSTANT(const std::string, ModernAudio::CODEC_ID_WAVPACK) = "wavpack";

NORVEX_CONSTANT(const std::string, ModernAudio::TAG_BITRATE_MODE_CVBR) = "cvbr";
NORVEX_CONSTANT(const std::string, ModernAudio::TAG_APPLICATION) = "application";
NORVEX_CONSTANT(const std::string, ModernAudio::TAG_FRAME_DURATION) = "frame_duration";

NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_CFHD) = "cfhd";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_DIRAC) = "dirac";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_DNXHD) = "dnxhd";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_EXR) = "exr";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_FFV1) = "ffv1";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_FFVHUFF) = "ffvhuff";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_HUFFYUV) = "huffyuv";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_JPEGXL) = "jpegxl";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_QOI) = "qoi";
NORVEX_CONSTANT(const std::string, ModernVideo::CODEC_ID_WEBP) = "webp";

NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HD) = "dnxhd";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HD_X) = "dnxhd_x";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HR_444) = "dnxhr_444";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HR_HQ) = "dnxhr_hq";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HR_HQX) = "dnxhr_hqx";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HR_LB) = "dnxhr_lb";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_DNX_PROFILE_HR_SQ) = "dnxhr_sq";

NORVEX_CONSTANT(const std::string, ModernVideo::TAG_CODER) = "coder";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_COMPRESSION) = "compression";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_CONTEXT) = "context";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_EFFORT) = "effort";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_LEVEL) = "level";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_LOSSLESS) = "lossless";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_PREDICTION) = "pred";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_SLICES) = "slices";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_SLICE_CRC) = "slicecrc";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_WAVELET) = "wavelet_type";
NORVEX_CONSTANT(const std::string, ModernVideo::TAG_WAVELET_DEPTH) = "wavelet_depth";

NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_CAF) = "caf";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_DTS) = "dts";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_EAC3) = "eac3";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_EXR) = "exr";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_JPEGXL) = "jpegxl";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_OPUS) = "opus";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_QOI) = "qoi";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_TRUEHD) = "truehd";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_W64) = "w64";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_WAVPACK) = "wv";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_WEBP) = "webp";
NORVEX_CONSTANT(const std::string, ModernFormats::FORMAT_WEBP_ANIM) = "webp_anim";

}  // namespace Norvex::Conf
