#pragma once

#include <string>

#include "norvex/foundation/Export.h"

/// The vocabulary of the second set of helpers, beside that of the classic book (IFormatCodecAudio, IFormatCodecVideo,
/// IFormatFile), whose tags it uses too. As there, a codec id is FFmpeg's name of the codec, and a container id the
/// short name of FFmpeg's muxer where there is one. The tags of encoder options, which stand under
/// IFormatCodec::TAG_CODEC_OPTIONS_ENCODE, and their values are FFmpeg's names of them.

namespace Norvex::Conf {

class NORVEX_API ModernAudio {
public:
    static const std::string CODEC_ID_OPUS;
    static const std::string CODEC_ID_PCM_ALAW;
    static const std::string CODEC_ID_PCM_F32BE;
    static const std::string CODEC_ID_PCM_F32LE;
    static const std::string CODEC_ID_PCM_F64BE;
    static const std::string CODEC_ID_PCM_F64LE;
    static const std::string CODEC_ID_PCM_MULAW;
    static const std::string CODEC_ID_WAVPACK;

    /// A value of IFormatCodec::TAG_BITRATE_MODE, of Opus alone: variable, but never far from the bitrate for long.
    static const std::string TAG_BITRATE_MODE_CVBR;

    static const std::string TAG_APPLICATION;     ///< string, of Opus: what the encoder cares for
    static const std::string TAG_FRAME_DURATION;  ///< string, of Opus: milliseconds of one frame
};

class NORVEX_API ModernVideo {
public:
    static const std::string CODEC_ID_CFHD;   ///< CineForm
    static const std::string CODEC_ID_DIRAC;  ///< VC-2, which is Dirac without prediction between frames
    static const std::string CODEC_ID_DNXHD;  ///< DNxHD and DNxHR, by the profile
    static const std::string CODEC_ID_EXR;
    static const std::string CODEC_ID_FFV1;
    static const std::string CODEC_ID_FFVHUFF;
    static const std::string CODEC_ID_HUFFYUV;
    static const std::string CODEC_ID_JPEGXL;
    static const std::string CODEC_ID_QOI;
    static const std::string CODEC_ID_WEBP;

    // Profiles of DNxHD at 8 and at 10 bits, and of DNxHR. FFmpeg tells the first two apart by the pixel format.
    static const std::string TAG_DNX_PROFILE_HD;
    static const std::string TAG_DNX_PROFILE_HD_X;
    static const std::string TAG_DNX_PROFILE_HR_444;
    static const std::string TAG_DNX_PROFILE_HR_HQ;
    static const std::string TAG_DNX_PROFILE_HR_HQX;
    static const std::string TAG_DNX_PROFILE_HR_LB;
    static const std::string TAG_DNX_PROFILE_HR_SQ;

    static const std::string TAG_CODER;          ///< string, of FFV1: the entropy coder
    static const std::string TAG_COMPRESSION;    ///< string, of OpenEXR
    static const std::string TAG_CONTEXT;        ///< integer, of FFV1: 0 small, 1 large contexts
    static const std::string TAG_EFFORT;         ///< integer, of JPEG XL: 1 is the fastest
    static const std::string TAG_LEVEL;          ///< integer, of FFV1: the version of the format
    static const std::string TAG_LOSSLESS;       ///< bool, of WebP
    static const std::string TAG_PREDICTION;     ///< string, of HuffYUV
    static const std::string TAG_SLICES;         ///< integer, of FFV1: parts that are coded side by side
    static const std::string TAG_SLICE_CRC;      ///< bool, of FFV1: each slice carries a checksum
    static const std::string TAG_WAVELET;        ///< string, of VC-2
    static const std::string TAG_WAVELET_DEPTH;  ///< integer, of VC-2: how often the picture is halved
};

class NORVEX_API ModernFormats {
public:
    static const std::string FORMAT_CAF;
    static const std::string FORMAT_DTS;
    static const std::string FORMAT_EAC3;
    static const std::string FORMAT_EXR;
    static const std::string FORMAT_JPEGXL;
    static const std::string FORMAT_OPUS;  ///< Opus in Ogg, under its own extension
    static const std::string FORMAT_QOI;
    static const std::string FORMAT_TRUEHD;
    static const std::string FORMAT_W64;
    static const std::string FORMAT_WAVPACK;
    static const std::string FORMAT_WEBP;       ///< one picture
    static const std::string FORMAT_WEBP_ANIM;  ///< a film
};

}  // namespace Norvex::Conf
