#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"

namespace Norvex::Conf {

const std::string ModernAudio::CODEC_ID_OPUS = "opus";
const std::string ModernAudio::CODEC_ID_PCM_ALAW = "pcm_alaw";
const std::string ModernAudio::CODEC_ID_PCM_F32BE = "pcm_f32be";
const std::string ModernAudio::CODEC_ID_PCM_F32LE = "pcm_f32le";
const std::string ModernAudio::CODEC_ID_PCM_F64BE = "pcm_f64be";
const std::string ModernAudio::CODEC_ID_PCM_F64LE = "pcm_f64le";
const std::string ModernAudio::CODEC_ID_PCM_MULAW = "pcm_mulaw";
const std::string ModernAudio::CODEC_ID_WAVPACK = "wavpack";

const std::string ModernAudio::TAG_BITRATE_MODE_CVBR = "cvbr";
const std::string ModernAudio::TAG_APPLICATION = "application";
const std::string ModernAudio::TAG_FRAME_DURATION = "frame_duration";

const std::string ModernVideo::CODEC_ID_CFHD = "cfhd";
const std::string ModernVideo::CODEC_ID_DIRAC = "dirac";
const std::string ModernVideo::CODEC_ID_DNXHD = "dnxhd";
const std::string ModernVideo::CODEC_ID_EXR = "exr";
const std::string ModernVideo::CODEC_ID_FFV1 = "ffv1";
const std::string ModernVideo::CODEC_ID_FFVHUFF = "ffvhuff";
const std::string ModernVideo::CODEC_ID_HUFFYUV = "huffyuv";
const std::string ModernVideo::CODEC_ID_JPEGXL = "jpegxl";
const std::string ModernVideo::CODEC_ID_QOI = "qoi";
const std::string ModernVideo::CODEC_ID_WEBP = "webp";

const std::string ModernVideo::TAG_DNX_PROFILE_HD = "dnxhd";
const std::string ModernVideo::TAG_DNX_PROFILE_HD_X = "dnxhd_x";
const std::string ModernVideo::TAG_DNX_PROFILE_HR_444 = "dnxhr_444";
const std::string ModernVideo::TAG_DNX_PROFILE_HR_HQ = "dnxhr_hq";
const std::string ModernVideo::TAG_DNX_PROFILE_HR_HQX = "dnxhr_hqx";
const std::string ModernVideo::TAG_DNX_PROFILE_HR_LB = "dnxhr_lb";
const std::string ModernVideo::TAG_DNX_PROFILE_HR_SQ = "dnxhr_sq";

const std::string ModernVideo::TAG_CODER = "coder";
const std::string ModernVideo::TAG_COMPRESSION = "compression";
const std::string ModernVideo::TAG_CONTEXT = "context";
const std::string ModernVideo::TAG_EFFORT = "effort";
const std::string ModernVideo::TAG_LEVEL = "level";
const std::string ModernVideo::TAG_LOSSLESS = "lossless";
const std::string ModernVideo::TAG_PREDICTION = "pred";
const std::string ModernVideo::TAG_SLICES = "slices";
const std::string ModernVideo::TAG_SLICE_CRC = "slicecrc";
const std::string ModernVideo::TAG_WAVELET = "wavelet_type";
const std::string ModernVideo::TAG_WAVELET_DEPTH = "wavelet_depth";

const std::string ModernFormats::FORMAT_CAF = "caf";
const std::string ModernFormats::FORMAT_DTS = "dts";
const std::string ModernFormats::FORMAT_EAC3 = "eac3";
const std::string ModernFormats::FORMAT_EXR = "exr";
const std::string ModernFormats::FORMAT_JPEGXL = "jpegxl";
const std::string ModernFormats::FORMAT_OPUS = "opus";
const std::string ModernFormats::FORMAT_QOI = "qoi";
const std::string ModernFormats::FORMAT_TRUEHD = "truehd";
const std::string ModernFormats::FORMAT_W64 = "w64";
const std::string ModernFormats::FORMAT_WAVPACK = "wv";
const std::string ModernFormats::FORMAT_WEBP = "webp";
const std::string ModernFormats::FORMAT_WEBP_ANIM = "webp_anim";

}  // namespace Norvex::Conf
