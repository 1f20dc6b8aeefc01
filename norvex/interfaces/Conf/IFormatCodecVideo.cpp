#include "norvex/interfaces/Conf/IFormatCodecVideo.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_APNG) = "apng";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_AV1) = "av1";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_BMP) = "bmp";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_DPX) = "dpx";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_DVVIDEO) = "dvvideo";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_FLV1) = "flv1";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_GIF) = "gif";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_H263) = "h263";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_H264) = "h264";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_H265) = "hevc";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_HAP) = "hap";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_JPEG2000) = "jpeg2000";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_JPEGLS) = "jpegls";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_MJPEG) = "mjpeg";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_MPEG1VIDEO) = "mpeg1video";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_MPEG2VIDEO) = "mpeg2video";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_MPEG4) = "mpeg4";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PAM) = "pam";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PBM) = "pbm";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PCX) = "pcx";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PGM) = "pgm";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PGMYUV) = "pgmyuv";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PNG) = "png";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PPM) = "ppm";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_PRORES) = "prores";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_QTRLE) = "qtrle";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_SGI) = "sgi";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_TARGA) = "targa";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_THEORA) = "theora";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_TIFF) = "tiff";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_UTVIDEO) = "utvideo";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_VC1) = "vc1";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_VP8) = "vp8";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_VP9) = "vp9";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_WMV2) = "wmv2";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_WMV3) = "wmv3";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_XBM) = "xbm";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::CODEC_ID_XWD) = "xwd";

NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_WIDTH) = "width";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_HEIGHT) = "height";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_ASPECTX) = "aspect_x";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_ASPECTY) = "aspect_y";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_FPS) = "frame_rate";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_BITS_PER_PIXEL) = "bits_per_pixel";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MAX_B_FRAME_SEQUENCE) = "max_b_frames";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MAX_I_FRAME_INTERVAL) = "key_frame_interval";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MULTIPASS_ENCODING) = "passes";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_ONE_PASS_MODE) = "one_pass";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_TWO_PASS_MODE) = "two_pass";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_APPROVED_VBR_MODE_ONLY) = "approved_vbr_only";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_COVER_FLAG) = "cover";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_DISABLE_TRANSPARENCY) = "disable_transparency";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_USE_HW_CONTEXT) = "use_hw_context";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_FORMAT_CODEC_VIDEO) = "format_codec_video";

NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_FAST) = "fast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_FASTER) = "faster";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_MEDIUM) = "medium";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_PLACEBO) = "placebo";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_SLOW) = "slow";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_SLOWER) = "slower";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_SUPERFAST) = "superfast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_ULTRAFAST) = "ultrafast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_VERYFAST) = "veryfast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PRESET_VERYSLOW) = "veryslow";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_BASELINE) = "baseline";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_HIGH) = "high";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_HIGH10) = "high10";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_HIGH422) = "high422";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_HIGH444) = "high444";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_PROFILE_MAIN) = "main";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE) = "tune";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_ANIMATION) = "animation";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_FASTDECODE) = "fastdecode";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_FILM) = "film";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_GRAIN) = "grain";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_PSNR) = "psnr";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_SSIM) = "ssim";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_STILLIMAGE) = "stillimage";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X264_TUNE_ZEROLATENCY) = "zerolatency";

NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_FAST) = "fast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_FASTER) = "faster";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_MEDIUM) = "medium";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_PLACEBO) = "placebo";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_SLOW) = "slow";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_SLOWER) = "slower";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_SUPERFAST) = "superfast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_ULTRAFAST) = "ultrafast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_VERYFAST) = "veryfast";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PRESET_VERYSLOW) = "veryslow";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PROFILE_MAIN) = "main";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_X265_PROFILE_MAIN10) = "main10";

NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_AV1_PRESET_FASTER) = "faster";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_AV1_PROFILE_MAIN) = "main";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_FORMAT_HAP) = "hap";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_FORMAT_HAP_ALPHA) = "hap_alpha";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_FORMAT_HAP_Q) = "hap_q";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MPEG4_PROFILE_ADVANCED_SIMPLE) = "advanced_simple";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MPEG4_PROFILE_CORE_SCALABLE) = "core_scalable";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MPEG4_PROFILE_MAIN) = "main";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_MPEG4_PROFILE_SIMPLE) = "simple";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_PRORES_PROFILE_422) = "422";
NORVEX_CONSTANT(const std::string, IFormatCodecVideo::TAG_VP9_PROFILE_0) = "profile0";

}  // namespace Norvex::Conf
