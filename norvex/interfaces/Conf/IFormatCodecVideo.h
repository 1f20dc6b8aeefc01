#pragma once

#include <string>

#include "norvex/foundation/Export.h"
#include "norvex/interfaces/Conf/IFormatCodec.h"

namespace Norvex::Conf {

/// The vocabulary of video and still picture codecs, and the description of one video stream.
class NORVEX_API IFormatCodecVideo : public IFormatCodec {
public:
    // Codec ids.
    static const std::string CODEC_ID_APNG;
    static const std::string CODEC_ID_AV1;
    static const std::string CODEC_ID_BMP;
    static const std::string CODEC_ID_DPX;
    static const std::string CODEC_ID_DVVIDEO;
    static const std::string CODEC_ID_FLV1;
    static const std::string CODEC_ID_GIF;
    static const std::string CODEC_ID_H263;
    static const std::string CODEC_ID_H264;
    static const std::string CODEC_ID_H265;
    static const std::string CODEC_ID_HAP;
    static const std::string CODEC_ID_JPEG2000;
    static const std::string CODEC_ID_JPEGLS;
    static const std::string CODEC_ID_MJPEG;
    static const std::string CODEC_ID_MPEG1VIDEO;
    static const std::string CODEC_ID_MPEG2VIDEO;
    static const std::string CODEC_ID_MPEG4;
    static const std::string CODEC_ID_PAM;
    static const std::string CODEC_ID_PBM;
    static const std::string CODEC_ID_PCX;
    static const std::string CODEC_ID_PGM;
    static const std::string CODEC_ID_PGMYUV;
    static const std::string CODEC_ID_PNG;
    static const std::string CODEC_ID_PPM;
    static const std::string CODEC_ID_PRORES;
    static const std::string CODEC_ID_QTRLE;
    static const std::string CODEC_ID_SGI;
    static const std::string CODEC_ID_TARGA;
    static const std::string CODEC_ID_THEORA;
    static const std::string CODEC_ID_TIFF;
    static const std::string CODEC_ID_UTVIDEO;
    static const std::string CODEC_ID_VC1;
    static const std::string CODEC_ID_VP8;
    static const std::string CODEC_ID_VP9;
    static const std::string CODEC_ID_WMV2;
    static const std::string CODEC_ID_WMV3;
    static const std::string CODEC_ID_XBM;
    static const std::string CODEC_ID_XWD;

    // Parameters.
    static const std::string TAG_WIDTH;                 ///< integer, pixels
    static const std::string TAG_HEIGHT;                ///< integer, pixels
    static const std::string TAG_ASPECTX;               ///< integer, shape of one pixel: its width
    static const std::string TAG_ASPECTY;               ///< integer, shape of one pixel: its height
    static const std::string TAG_FPS;                   ///< ratio, frames per second
    static const std::string TAG_BITS_PER_PIXEL;        ///< integer
    static const std::string TAG_MAX_B_FRAME_SEQUENCE;  ///< integer, frames
    static const std::string TAG_MAX_I_FRAME_INTERVAL;  ///< integer, frames
    static const std::string TAG_MULTIPASS_ENCODING;    ///< string, one of the two below
    static const std::string TAG_ONE_PASS_MODE;
    static const std::string TAG_TWO_PASS_MODE;
    static const std::string TAG_APPROVED_VBR_MODE_ONLY;  ///< bool, a bitrate given beside a quality counts
    static const std::string TAG_COVER_FLAG;              ///< bool, the stream is a cover picture
    static const std::string TAG_DISABLE_TRANSPARENCY;    ///< bool
    static const std::string TAG_USE_HW_CONTEXT;          ///< bool
    static const std::string TAG_FORMAT_CODEC_VIDEO;      ///< name of the flat node of one video stream

    // x264: presets, profiles (ITU-T H.264 Annex A) and tunes by the encoder's names.
    static const std::string TAG_X264_PRESET_FAST;
    static const std::string TAG_X264_PRESET_FASTER;
    static const std::string TAG_X264_PRESET_MEDIUM;
    static const std::string TAG_X264_PRESET_PLACEBO;
    static const std::string TAG_X264_PRESET_SLOW;
    static const std::string TAG_X264_PRESET_SLOWER;
    static const std::string TAG_X264_PRESET_SUPERFAST;
    static const std::string TAG_X264_PRESET_ULTRAFAST;
    static const std::string TAG_X264_PRESET_VERYFAST;
    static const std::string TAG_X264_PRESET_VERYSLOW;
    static const std::string TAG_X264_PROFILE_BASELINE;
    static const std::string TAG_X264_PROFILE_HIGH;
    static const std::string TAG_X264_PROFILE_HIGH10;
    static const std::string TAG_X264_PROFILE_HIGH422;
    static const std::string TAG_X264_PROFILE_HIGH444;
    static const std::string TAG_X264_PROFILE_MAIN;
    static const std::string TAG_X264_TUNE;  ///< string, under TAG_CODEC_OPTIONS_ENCODE
    static const std::string TAG_X264_TUNE_ANIMATION;
    static const std::string TAG_X264_TUNE_FASTDECODE;
    static const std::string TAG_X264_TUNE_FILM;
    static const std::string TAG_X264_TUNE_GRAIN;
    static const std::string TAG_X264_TUNE_PSNR;
    static const std::string TAG_X264_TUNE_SSIM;
    static const std::string TAG_X264_TUNE_STILLIMAGE;
    static const std::string TAG_X264_TUNE_ZEROLATENCY;

    // x265: presets and profiles (ITU-T H.265 Annex A) by the encoder's names.
    static const std::string TAG_X265_PRESET_FAST;
    static const std::string TAG_X265_PRESET_FASTER;
    static const std::string TAG_X265_PRESET_MEDIUM;
    static const std::string TAG_X265_PRESET_PLACEBO;
    static const std::string TAG_X265_PRESET_SLOW;
    static const std::string TAG_X265_PRESET_SLOWER;
    static const std::string TAG_X265_PRESET_SUPERFAST;
    static const std::string TAG_X265_PRESET_ULTRAFAST;
    static const std::string TAG_X265_PRESET_VERYFAST;
    static const std::string TAG_X265_PRESET_VERYSLOW;
    static const std::string TAG_X265_PROFILE_MAIN;
    static const std::string TAG_X265_PROFILE_MAIN10;

    // Values of other encoders.
    static const std::string TAG_AV1_PRESET_FASTER;
    static const std::string TAG_AV1_PROFILE_MAIN;
    static const std::string TAG_FORMAT_HAP;
    static const std::string TAG_FORMAT_HAP_ALPHA;
    static const std::string TAG_FORMAT_HAP_Q;
    static const std::string TAG_MPEG4_PROFILE_ADVANCED_SIMPLE;
    static const std::string TAG_MPEG4_PROFILE_CORE_SCALABLE;
    static const std::string TAG_MPEG4_PROFILE_MAIN;
    static const std::string TAG_MPEG4_PROFILE_SIMPLE;
    static const std::string TAG_PRORES_PROFILE_422;
    static const std::string TAG_VP9_PROFILE_0;

    /// The top of the default video bitrate range in bits per second: what the highest levels of H.264, H.265 and
    /// AV1 carry (6.2 and 6.3).
    static constexpr long long MAX_VIDEO_BITRATE = 800000000;

    /// The number of the AVPixelFormat.
    virtual int GetPixelFormat() const = 0;
};

}  // namespace Norvex::Conf
