#include "norvex/Conf/Review/NameTables.h"

#include <algorithm>
#include <vector>

#include "norvex/Conf/DataHelpers/Modern/ModernVocabulary.h"
#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"
#include "norvex/interfaces/Conf/IFormatCodecSubtitle.h"
#include "norvex/interfaces/Conf/IFormatCodecVideo.h"
#include "norvex/interfaces/Conf/IFormatFile.h"
#include "norvex/interfaces/Conf/IPreset.h"
#include "norvex/interfaces/Proc/IFilterAudioFormatter.h"
#include "norvex/interfaces/Proc/IFilterAudioVolume.h"
#include "norvex/interfaces/Proc/IFilterFrameRate.h"
#include "norvex/interfaces/Proc/IFilterResample.h"
#include "norvex/interfaces/Proc/IFilterResize.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;
using C = IFormatCodec;
using F = IFormatFile;
using MA = ModernAudio;
using MF = ModernFormats;
using MV = ModernVideo;
using P = IPreset;
using R = Proc::IResize;
using S = IFormatCodecSubtitle;
using V = IFormatCodecVideo;

/// Marks what other languages say otherwise: the catalogue of translations has it. Proper names are not marked.
constexpr const char* Word(const char* text) {
    return text;
}

// clang-format off
/// Extensions: the first is what a file of the kind is usually called.
const std::vector<IdName>& Formats() {
    static const std::vector<IdName>& rows = Lasting(std::vector<IdName>{
        {F::FORMAT_3G2,        "3GPP2",                                   "3g2"},
        {F::FORMAT_3GP,        "3GPP",                                    "3gp"},
        {F::FORMAT_AAC,        Word("AAC stream"),                        "aac adts"},
        {F::FORMAT_AC3,        Word("AC-3 stream"),                       "ac3"},
        {F::FORMAT_AIFF,       "AIFF",                                    "aiff aif aifc"},
        {F::FORMAT_APNG,       "Animated PNG",                            "apng"},
        {F::FORMAT_ASF,        "ASF",                                     "asf"},
        {F::FORMAT_ASS,        Word("ASS subtitles"),                     "ass"},
        {F::FORMAT_AU,         "Sun Audio",                               "au snd"},
        {F::FORMAT_AVI,        "AVI",                                     "avi"},
        {F::FORMAT_AVIF,       "AVIF",                                    "avif"},
        {F::FORMAT_BMP,        "BMP",                                     "bmp"},
        {F::FORMAT_DPX,        "DPX",                                     "dpx"},
        {F::FORMAT_DVD,        Word("DVD program stream"),                "vob"},
        {F::FORMAT_F4A,        Word("Flash audio"),                       "f4a"},
        {F::FORMAT_FLAC,       "FLAC",                                    "flac"},
        {F::FORMAT_FLV,        "Flash Video",                             "flv"},
        {F::FORMAT_GIF,        "GIF",                                     "gif"},
        {F::FORMAT_HEIC,       "HEIC",                                    "heic"},
        {F::FORMAT_HEIF,       "HEIF",                                    "heif"},
        {F::FORMAT_IPOD,       Word("iPod video"),                        "m4v"},
        {F::FORMAT_JPEG,       "JPEG",                                    "jpg jpeg jpe jfif"},
        {F::FORMAT_JPEG2000,   "JPEG 2000",                               "jp2 j2k"},
        {F::FORMAT_JPEGLS,     "JPEG-LS",                                 "jls"},
        {F::FORMAT_M4A,        Word("MPEG-4 audio"),                      "m4a"},
        {F::FORMAT_M4B,        Word("MPEG-4 audiobook"),                  "m4b"},
        {F::FORMAT_M4R,        Word("MPEG-4 ringtone"),                   "m4r"},
        {F::FORMAT_M4V,        Word("MPEG-4 video"),                      "m4v"},
        {F::FORMAT_MATROSKA,   "Matroska",                                "mkv"},
        {F::FORMAT_MKA,        Word("Matroska audio"),                    "mka"},
        {F::FORMAT_MOV,        "QuickTime",                               "mov qt"},
        {F::FORMAT_MP3,        "MP3",                                     "mp3"},
        {F::FORMAT_MP4,        "MP4",                                     "mp4"},
        {F::FORMAT_MPEG,       Word("MPEG program stream"),               "mpg mpeg"},
        {F::FORMAT_MPEG1VIDEO, Word("MPEG-1 video stream"),               "m1v"},
        {F::FORMAT_MPEG2TS,    Word("MPEG transport stream, Blu-ray"),    "m2ts mts"},
        {F::FORMAT_MPEG2VIDEO, Word("MPEG-2 video stream"),               "m2v"},
        {F::FORMAT_MPEGTS,     Word("MPEG transport stream"),             "ts m2t"},
        {F::FORMAT_MXF,        "MXF",                                     "mxf"},
        {F::FORMAT_OGG,        "Ogg",                                     "ogg oga"},
        {F::FORMAT_OGV,        Word("Ogg video"),                         "ogv"},
        {F::FORMAT_PAM,        "PAM",                                     "pam"},
        {F::FORMAT_PBM,        "PBM",                                     "pbm"},
        {F::FORMAT_PCX,        "PCX",                                     "pcx"},
        {F::FORMAT_PGM,        "PGM",                                     "pgm"},
        {F::FORMAT_PGMYUV,     "PGMYUV",                                  "pgmyuv"},
        {F::FORMAT_PNG,        "PNG",                                     "png"},
        {F::FORMAT_PPM,        "PPM",                                     "ppm"},
        {F::FORMAT_QFX_1_0,    "QFX 1.0",                                 "qfx"},
        {F::FORMAT_SGI,        "SGI",                                     "sgi"},
        {F::FORMAT_SRT,        Word("SubRip subtitles"),                  "srt"},
        {F::FORMAT_SSA,        Word("SSA subtitles"),                     "ssa"},
        {F::FORMAT_SVCD,       "Super Video CD",                          "mpg"},
        {F::FORMAT_SWF,        "Flash SWF",                               "swf"},
        {F::FORMAT_TARGA,      "Targa",                                   "tga"},
        {F::FORMAT_TIFF,       "TIFF",                                    "tif tiff"},
        {F::FORMAT_VCD,        "Video CD",                                "mpg"},
        {F::FORMAT_VOB,        Word("MPEG-2 program stream"),             "vob"},
        {F::FORMAT_WAV,        "WAV",                                     "wav wave"},
        {F::FORMAT_WEBM,       "WebM",                                    "webm"},
        {F::FORMAT_WMA,        "Windows Media Audio",                     "wma"},
        {F::FORMAT_WMV,        "Windows Media Video",                     "wmv"},
        {F::FORMAT_XBM,        "X BitMap",                                "xbm"},
        {F::FORMAT_XWD,        "X Window Dump",                           "xwd"},
        {MF::FORMAT_CAF,       "Core Audio Format",                       "caf"},
        {MF::FORMAT_DTS,       Word("DTS stream"),                        "dts"},
        {MF::FORMAT_EAC3,      Word("E-AC-3 stream"),                     "eac3 ec3"},
        {MF::FORMAT_EXR,       "OpenEXR",                                 "exr"},
        {MF::FORMAT_JPEGXL,    "JPEG XL",                                 "jxl"},
        {MF::FORMAT_OPUS,      Word("Opus in Ogg"),                       "opus"},
        {MF::FORMAT_QOI,       "QOI",                                     "qoi"},
        {MF::FORMAT_TRUEHD,    Word("TrueHD stream"),                     "thd truehd"},
        {MF::FORMAT_W64,       "Wave64",                                  "w64"},
        {MF::FORMAT_WAVPACK,   "WavPack",                                 "wv"},
        {MF::FORMAT_WEBP,      "WebP",                                    "webp"},
        {MF::FORMAT_WEBP_ANIM, Word("Animated WebP"),                     "webp"},
    });
    return rows;
}

const std::vector<IdName>& VideoCodecs() {
    static const std::vector<IdName>& rows = Lasting(std::vector<IdName>{
        {V::CODEC_ID_APNG,       "Animated PNG",           ""},
        {V::CODEC_ID_AV1,        "AV1",                    ""},
        {V::CODEC_ID_BMP,        "BMP",                    ""},
        {V::CODEC_ID_DPX,        "DPX",                    ""},
        {V::CODEC_ID_DVVIDEO,    "DV",                     ""},
        {V::CODEC_ID_FLV1,       "Sorenson H.263",         "Flash Video"},
        {V::CODEC_ID_GIF,        "GIF",                    ""},
        {V::CODEC_ID_H263,       "H.263",                  ""},
        {V::CODEC_ID_H264,       "H.264",                  "AVC"},
        {V::CODEC_ID_H265,       "H.265",                  "HEVC"},
        {V::CODEC_ID_HAP,        "Hap",                    ""},
        {V::CODEC_ID_JPEG2000,   "JPEG 2000",              ""},
        {V::CODEC_ID_JPEGLS,     "JPEG-LS",                ""},
        {V::CODEC_ID_MJPEG,      "Motion JPEG",            "JPEG"},
        {V::CODEC_ID_MPEG1VIDEO, "MPEG-1",                 ""},
        {V::CODEC_ID_MPEG2VIDEO, "MPEG-2",                 ""},
        {V::CODEC_ID_MPEG4,      "MPEG-4",                 "DivX, Xvid"},
        {V::CODEC_ID_PAM,        "PAM",                    ""},
        {V::CODEC_ID_PBM,        "PBM",                    ""},
        {V::CODEC_ID_PCX,        "PCX",                    ""},
        {V::CODEC_ID_PGM,        "PGM",                    ""},
        {V::CODEC_ID_PGMYUV,     "PGMYUV",                 ""},
        {V::CODEC_ID_PNG,        "PNG",                    ""},
        {V::CODEC_ID_PPM,        "PPM",                    ""},
        {V::CODEC_ID_PRORES,     "Apple ProRes",           ""},
        {V::CODEC_ID_QTRLE,      "QuickTime Animation",    "RLE"},
        {V::CODEC_ID_SGI,        "SGI",                    ""},
        {V::CODEC_ID_TARGA,      "Targa",                  "TGA"},
        {V::CODEC_ID_THEORA,     "Theora",                 ""},
        {V::CODEC_ID_TIFF,       "TIFF",                   ""},
        {V::CODEC_ID_UTVIDEO,    "Ut Video",               ""},
        {V::CODEC_ID_VC1,        "VC-1",                   ""},
        {V::CODEC_ID_VP8,        "VP8",                    ""},
        {V::CODEC_ID_VP9,        "VP9",                    ""},
        {V::CODEC_ID_WMV2,       "Windows Media Video 8",  "WMV2"},
        {V::CODEC_ID_WMV3,       "Windows Media Video 9",  "WMV3"},
        {V::CODEC_ID_XBM,        "X BitMap",               ""},
        {V::CODEC_ID_XWD,        "X Window Dump",          ""},
        {MV::CODEC_ID_CFHD,      "CineForm",               ""},
        {MV::CODEC_ID_DIRAC,     "VC-2",                   "Dirac Pro"},
        {MV::CODEC_ID_DNXHD,     "DNxHD",                  "DNxHR"},
        {MV::CODEC_ID_EXR,       "OpenEXR",                ""},
        {MV::CODEC_ID_FFV1,      "FFV1",                   ""},
        {MV::CODEC_ID_FFVHUFF,   "HuffYUV",                "FFmpeg"},
        {MV::CODEC_ID_HUFFYUV,   "HuffYUV",                ""},
        {MV::CODEC_ID_JPEGXL,    "JPEG XL",                ""},
        {MV::CODEC_ID_QOI,       "QOI",                    ""},
        {MV::CODEC_ID_WEBP,      "WebP",                   ""},
    });
    return rows;
}

const std::vector<IdName>& AudioCodecs() {
    static const std::vector<IdName>& rows = Lasting(std::vector<IdName>{
        {C::CODEC_ID_AUTO,       Word("automatic"),              ""},
        {A::CODEC_ID_AAC,        "AAC",                          ""},
        {A::CODEC_ID_AC3,        "AC-3",                         "Dolby Digital"},
        {A::CODEC_ID_ALAC,       "Apple Lossless",               "ALAC"},
        {A::CODEC_ID_AMR_NB,     "AMR-NB",                       ""},
        {A::CODEC_ID_DTS,        "DTS",                          ""},
        {A::CODEC_ID_EAC3,       "E-AC-3",                       "Dolby Digital Plus"},
        {A::CODEC_ID_FLAC,       "FLAC",                         ""},
        {A::CODEC_ID_MP2,        "MP2",                          ""},
        {A::CODEC_ID_MP3,        "MP3",                          ""},
        {A::CODEC_ID_PCM_BLURAY, Word("PCM of Blu-ray"),         ""},
        {A::CODEC_ID_PCM_S16BE,  Word("PCM 16 bit"),             Word("big-endian")},
        {A::CODEC_ID_PCM_S16LE,  Word("PCM 16 bit"),             ""},
        {A::CODEC_ID_PCM_S24BE,  Word("PCM 24 bit"),             Word("big-endian")},
        {A::CODEC_ID_PCM_S24LE,  Word("PCM 24 bit"),             ""},
        {A::CODEC_ID_PCM_S32BE,  Word("PCM 32 bit"),             Word("big-endian")},
        {A::CODEC_ID_PCM_S32LE,  Word("PCM 32 bit"),             ""},
        {A::CODEC_ID_PCM_S8,     Word("PCM 8 bit"),              ""},
        {A::CODEC_ID_PCM_U16BE,  Word("PCM 16 bit, unsigned"),   Word("big-endian")},
        {A::CODEC_ID_PCM_U16LE,  Word("PCM 16 bit, unsigned"),   ""},
        {A::CODEC_ID_PCM_U24BE,  Word("PCM 24 bit, unsigned"),   Word("big-endian")},
        {A::CODEC_ID_PCM_U24LE,  Word("PCM 24 bit, unsigned"),   ""},
        {A::CODEC_ID_PCM_U32BE,  Word("PCM 32 bit, unsigned"),   Word("big-endian")},
        {A::CODEC_ID_PCM_U32LE,  Word("PCM 32 bit, unsigned"),   ""},
        {A::CODEC_ID_PCM_U8,     Word("PCM 8 bit, unsigned"),    ""},
        {A::CODEC_ID_TRUEHD,     "Dolby TrueHD",                 ""},
        {A::CODEC_ID_VORBIS,     "Vorbis",                       ""},
        {A::CODEC_ID_WMAV2,      "Windows Media Audio 2",        "WMA"},
        {MA::CODEC_ID_OPUS,      "Opus",                         ""},
        {MA::CODEC_ID_PCM_ALAW,  "G.711 A-law",                  ""},
        {MA::CODEC_ID_PCM_F32BE, Word("PCM 32 bit float"),       Word("big-endian")},
        {MA::CODEC_ID_PCM_F32LE, Word("PCM 32 bit float"),       ""},
        {MA::CODEC_ID_PCM_F64BE, Word("PCM 64 bit float"),       Word("big-endian")},
        {MA::CODEC_ID_PCM_F64LE, Word("PCM 64 bit float"),       ""},
        {MA::CODEC_ID_PCM_MULAW, "G.711 mu-law",                 ""},
        {MA::CODEC_ID_WAVPACK,   "WavPack",                      ""},
    });
    return rows;
}

const std::vector<IdName>& SubtitleCodecs() {
    static const std::vector<IdName>& rows = Lasting(std::vector<IdName>{
        {S::CODEC_ID_ASS,                "ASS",                           ""},
        {S::CODEC_ID_DVB_SUBTITLE,       Word("DVB subtitles"),           ""},
        {S::CODEC_ID_DVB_TELETEXT,       Word("DVB teletext"),            ""},
        {S::CODEC_ID_DVD_SUBTITLE,       Word("DVD subtitles"),           "VobSub"},
        {S::CODEC_ID_HDMV_PGS_SUBTITLE,  Word("Blu-ray subtitles"),       "PGS"},
        {S::CODEC_ID_HDMV_TEXT_SUBTITLE, Word("Blu-ray text subtitles"),  ""},
        {S::CODEC_ID_MOV_TEXT,           Word("MPEG-4 timed text"),       "tx3g"},
        {S::CODEC_ID_SRT,                Word("SubRip with its times"),   ""},
        {S::CODEC_ID_SSA,                "SSA",                           ""},
        {S::CODEC_ID_SUBRIP,             "SubRip",                        ""},
        {S::CODEC_ID_TEXT,               Word("plain text"),              ""},
        {S::CODEC_ID_XSUB,               Word("DivX subtitles"),          "XSUB"},
    });
    return rows;
}

const std::vector<TagName>& Tags() {
    static const std::vector<TagName>& rows = Lasting(std::vector<TagName>{
        {P::KEY_FORMAT,                              Word("container"),                Unit::Section},
        {P::KEY_FILTER_VIDEO_CODEC,                  Word("video codec"),              Unit::Section},
        {P::KEY_FILTER_AUDIO_CODEC,                  Word("audio codec"),              Unit::Section},
        {P::KEY_FILTER_SUBTITLE_CODEC,               Word("subtitle codec"),           Unit::Section},
        {P::KEY_STREAMS,                             Word("streams"),                  Unit::Section},
        {P::KEY_TYPE_ID,                             Word("kind"),                     Unit::Text},
        {V::TAG_FORMAT_CODEC_VIDEO,                  Word("video stream"),             Unit::Section},
        {A::TAG_FORMAT_CODEC_AUDIO,                  Word("audio stream"),             Unit::Section},
        {C::TAG_CODEC_OPTIONS_ENCODE,                Word("encoder options"),          Unit::Section},
        {Proc::IFilterAudioFormatter::CLASS_ID,      Word("audio packets"),            Unit::Section},
        {Proc::IAudioFormatter::CLASS_ID,            Word("audio packets"),            Unit::Section},
        {Proc::IFilterAudioVolume::CLASS_ID,         Word("volume"),                   Unit::Section},
        {Proc::IFilterFrameRate::CLASS_ID,           Word("frame rate"),               Unit::Section},
        {Proc::IFilterResample::CLASS_ID,            Word("resampling"),               Unit::Section},
        {Proc::IResample::CLASS_ID,                  Word("resampling"),               Unit::Section},
        {Proc::IFilterResize::CLASS_ID,              Word("resizing"),                 Unit::Section},
        {R::CLASS_ID,                                Word("resizing"),                 Unit::Section},
        // of containers
        {F::TAG_CONTAINER,                           Word("container"),                Unit::Container},
        {F::TAG_DISABLE_FOR_LOSSLESS,                Word("not with lossless streams"), Unit::Flag},
        {F::TAG_DISK_SIZE,                           Word("disc size"),                Unit::Bytes},
        {F::TAG_DVD_STANDARD,                        Word("television standard"),      Unit::Text},
        {F::TAG_PROGRESSIVE_READ,                    Word("index in front"),           Unit::Flag},
        {F::TAG_PSP_MODE,                            Word("for the PSP"),              Unit::Flag},
        {F::TAG_LIMITS,                              Word("streams at most"),          Unit::Section},
        {F::TAG_LIMITS_VIDEO,                        Word("video"),                    Unit::Count},
        {F::TAG_LIMITS_AUDIO,                        Word("audio"),                    Unit::Count},
        {F::TAG_LIMITS_SUBTITLE,                     Word("subtitles"),                Unit::Count},
        {F::TAG_LIMITS_OTHER,                        Word("other types"),              Unit::Count},
        // of codecs
        {C::TAG_CODEC_ID,                            Word("codec"),                    Unit::Codec},
        {C::TAG_BITRATE,                             Word("bitrate"),                  Unit::BitsPerSecond},
        {C::TAG_BITRATE_MODE,                        Word("bitrate mode"),             Unit::Text},
        {C::TAG_QUALITY,                             Word("quality"),                  Unit::Count},
        {C::TAG_PROFILE,                             Word("profile"),                  Unit::Text},
        {C::TAG_PRESET,                              Word("encoder preset"),           Unit::Text},
        {C::TAG_FORMAT,                              Word("variant"),                  Unit::Text},
        {C::TAG_GLOBAL_HEADER,                       Word("global header"),            Unit::Flag},
        {C::TAG_THREAD_NUMBER,                       Word("threads"),                  Unit::Count},
        {C::TAG_FOURCC,                              Word("four-character code"),      Unit::FourCC},
        {C::TAG_LOSSLESS,                            Word("lossless"),                 Unit::Flag},
        {C::TAG_MAIN_STREAM,                         Word("main stream"),              Unit::Flag},
        {A::TAG_SAMPLE_RATE,                         Word("sample rate"),              Unit::Hertz},
        {A::TAG_SAMPLE_FORMAT,                       Word("sample format"),            Unit::SampleFormat},
        {A::TAG_LAYOUT,                              Word("channels"),                 Unit::Layout},
        {A::TAG_BITS_PER_SAMPLE,                     Word("bits per sample"),          Unit::Bits},
        {V::TAG_WIDTH,                               Word("width"),                    Unit::Pixels},
        {V::TAG_HEIGHT,                              Word("height"),                   Unit::Pixels},
        {V::TAG_ASPECTX,                             Word("width of a pixel"),         Unit::Count},
        {V::TAG_ASPECTY,                             Word("height of a pixel"),        Unit::Count},
        {V::TAG_FPS,                                 Word("frame rate"),               Unit::FramesPerSecond},
        {V::TAG_BITS_PER_PIXEL,                      Word("bits per pixel"),           Unit::Bits},
        {V::TAG_MAX_B_FRAME_SEQUENCE,                Word("B-frames in a row"),        Unit::Frames},
        {V::TAG_MAX_I_FRAME_INTERVAL,                Word("key frame interval"),       Unit::Frames},
        {V::TAG_MULTIPASS_ENCODING,                  Word("passes"),                   Unit::Text},
        {V::TAG_APPROVED_VBR_MODE_ONLY,              Word("bitrate beside the quality"), Unit::Flag},
        {V::TAG_COVER_FLAG,                          Word("cover picture"),            Unit::Flag},
        {V::TAG_DISABLE_TRANSPARENCY,                Word("without transparency"),     Unit::Flag},
        {V::TAG_USE_HW_CONTEXT,                      Word("hardware context"),         Unit::Flag},
        {V::TAG_X264_TUNE,                           Word("tuning"),                   Unit::Text},
        {MA::TAG_APPLICATION,                        Word("made for"),                 Unit::Text},
        {MA::TAG_FRAME_DURATION,                     Word("frame duration"),           Unit::Milliseconds},
        {MV::TAG_CODER,                              Word("entropy coder"),            Unit::Text},
        {MV::TAG_COMPRESSION,                        Word("compression"),              Unit::Text},
        {MV::TAG_CONTEXT,                            Word("contexts"),                 Unit::Text},
        {MV::TAG_EFFORT,                             Word("effort"),                   Unit::Count},
        {MV::TAG_LEVEL,                              Word("version of the format"),    Unit::Count},
        {MV::TAG_PREDICTION,                         Word("prediction"),               Unit::Text},
        {MV::TAG_SLICES,                             Word("slices"),                   Unit::Count},
        {MV::TAG_SLICE_CRC,                          Word("checksum in each slice"),   Unit::Flag},
        {MV::TAG_WAVELET,                            Word("wavelet"),                  Unit::Text},
        {MV::TAG_WAVELET_DEPTH,                      Word("wavelet levels"),           Unit::Count},
        // of filters
        {Proc::IFilterAudioFormatter::PACKET_DURATION, Word("packet duration"),        Unit::Microseconds},
        {Proc::IFilterAudioVolume::VOLUME_VALUE,     Word("volume"),                   Unit::PerCent},
        {R::FRAME_SIZE_MODE,                         Word("frame size"),               Unit::FrameSize},
        {R::MODE,                                    Word("fitting"),                  Unit::Text},
        {R::METHOD,                                  Word("interpolation"),            Unit::Text},
        {R::SCALE,                                   Word("scale"),                    Unit::Factor},
        {R::BACKGROUND_COLOR,                        Word("background colour"),        Unit::Colour},
    });
    return rows;
}

/// Values that are texts.
struct ValueName {
    ValueName(const std::string& ofTag, const std::string& called, const char* text)
        : tag(&ofTag), value(&called), name(text) {}

    const std::string* tag;
    const std::string* value;
    const char* name;
};
const std::vector<ValueName>& Values() {
    static const std::vector<ValueName>& rows = Lasting(std::vector<ValueName>{
        {P::KEY_TYPE_ID,        P::STREAM_TYPE_VIDEO,                Word("video")},
        {P::KEY_TYPE_ID,        P::STREAM_TYPE_AUDIO,                Word("audio")},
        {P::KEY_TYPE_ID,        P::STREAM_TYPE_SUBTITLES_TEXT,       Word("subtitles")},
        {P::KEY_TYPE_ID,        Proc::ImplNames::DEFAULT,            Word("usual")},
        {F::TAG_DVD_STANDARD,   F::DVD_STANDARD_PAL,                 "PAL"},
        {F::TAG_DVD_STANDARD,   F::DVD_STANDARD_NTSC,                "NTSC"},
        {C::TAG_BITRATE_MODE,   C::TAG_BITRATE_MODE_CBR,             Word("constant")},
        {C::TAG_BITRATE_MODE,   C::TAG_BITRATE_MODE_VBR,             Word("variable")},
        {C::TAG_BITRATE_MODE,   C::TAG_BITRATE_MODE_CBR_AUTO,        Word("constant, chosen by the system")},
        {C::TAG_BITRATE_MODE,   MA::TAG_BITRATE_MODE_CVBR,           Word("variable within bounds")},
        {V::TAG_MULTIPASS_ENCODING, V::TAG_ONE_PASS_MODE,            Word("one pass")},
        {V::TAG_MULTIPASS_ENCODING, V::TAG_TWO_PASS_MODE,            Word("two passes")},
        {A::TAG_LAYOUT,         A::TAG_CH_LAYOUT_UNKNOWN,            Word("as the source")},
        {A::TAG_LAYOUT,         A::TAG_CH_LAYOUT_MONO,               Word("mono")},
        {A::TAG_LAYOUT,         A::TAG_CH_LAYOUT_STEREO,             Word("stereo")},
        {A::TAG_LAYOUT,         A::TAG_CH_LAYOUT_STEREO_DOWNMIX,     Word("stereo downmix")},

        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_BASELINE,        "Baseline"},
        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_MAIN,            "Main"},  // of other codecs too
        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_HIGH,            "High"},
        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_HIGH10,          "High 10"},
        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_HIGH422,         "High 4:2:2"},
        {C::TAG_PROFILE,        V::TAG_X264_PROFILE_HIGH444,         "High 4:4:4"},
        {C::TAG_PROFILE,        V::TAG_X265_PROFILE_MAIN10,          "Main 10"},
        {C::TAG_PROFILE,        V::TAG_MPEG4_PROFILE_SIMPLE,         "Simple"},
        {C::TAG_PROFILE,        V::TAG_MPEG4_PROFILE_ADVANCED_SIMPLE, "Advanced Simple"},
        {C::TAG_PROFILE,        V::TAG_MPEG4_PROFILE_CORE_SCALABLE,  "Core Scalable"},
        {C::TAG_PROFILE,        V::TAG_PRORES_PROFILE_422,           "422"},
        {C::TAG_PROFILE,        V::TAG_VP9_PROFILE_0,                "Profile 0"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HD,              "DNxHD 8 bit"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HD_X,            "DNxHD 10 bit"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HR_LB,           "DNxHR LB"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HR_SQ,           "DNxHR SQ"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HR_HQ,           "DNxHR HQ"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HR_HQX,          "DNxHR HQX"},
        {C::TAG_PROFILE,        MV::TAG_DNX_PROFILE_HR_444,          "DNxHR 444"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_LOW,              "AAC-LC"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_SSR,              "AAC-SSR"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_LTP,              "AAC-LTP"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_HE,               "HE-AAC"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_HE_V2,            "HE-AAC v2"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_LD,               "AAC-LD"},
        {C::TAG_PROFILE,        A::TAG_AAC_PROFILE_ELD,              "AAC-ELD"},

        {C::TAG_PRESET,         V::TAG_X264_PRESET_ULTRAFAST,        Word("ultra fast")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_SUPERFAST,        Word("super fast")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_VERYFAST,         Word("very fast")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_FASTER,           Word("faster")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_FAST,             Word("fast")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_MEDIUM,           Word("medium")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_SLOW,             Word("slow")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_SLOWER,           Word("slower")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_VERYSLOW,         Word("very slow")},
        {C::TAG_PRESET,         V::TAG_X264_PRESET_PLACEBO,          Word("placebo")},

        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_FILM,               Word("film")},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_ANIMATION,          Word("animation")},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_GRAIN,              Word("film grain")},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_STILLIMAGE,         Word("still image")},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_PSNR,               "PSNR"},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_SSIM,               "SSIM"},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_FASTDECODE,         Word("fast decoding")},
        {V::TAG_X264_TUNE,      V::TAG_X264_TUNE_ZEROLATENCY,        Word("no delay")},

        {C::TAG_FORMAT,         V::TAG_FORMAT_HAP,                   "Hap"},
        {C::TAG_FORMAT,         V::TAG_FORMAT_HAP_ALPHA,             "Hap Alpha"},
        {C::TAG_FORMAT,         V::TAG_FORMAT_HAP_Q,                 "Hap Q"},

        {R::FRAME_SIZE_MODE,    R::FRAME_SIZE_CUSTOM,                Word("as given")},
        {R::FRAME_SIZE_MODE,    R::FRAME_SIZE_CUSTOM_SCALE,          Word("the source's, scaled")},
        {R::FRAME_SIZE_MODE,    R::FRAME_SIZE_ORIGINAL,              Word("the source's")},
        {R::FRAME_SIZE_MODE,    R::FRAME_SIZE_HALF_ORIGINAL,         Word("half the source's")},
        {R::FRAME_SIZE_MODE,    R::FRAME_SIZE_QUARTER_ORIGINAL,      Word("a quarter of the source's")},
        {R::MODE,               R::MODE_SMART_FIT,                   Word("fit within")},
        {R::MODE,               R::MODE_UP_TO,                       Word("fit within, never larger")},
        {R::MODE,               R::MODE_LETTERBOX,                   Word("bars beside the picture")},
        {R::MODE,               R::MODE_STRETCH,                     Word("stretch")},
        {R::MODE,               R::MODE_AUTO,                        Word("stretch a little, else bars")},
        {R::MODE,               R::MODE_CROP,                        Word("fill and cut off")},
        {R::METHOD,             R::METHOD_POINT,                     Word("nearest pixel")},
        {R::METHOD,             R::METHOD_FAST_BILINEAR,             Word("bilinear, fast")},
        {R::METHOD,             R::METHOD_BILINEAR,                  Word("bilinear")},
        {R::METHOD,             R::METHOD_BICUBIC,                   Word("bicubic")},
    });
    return rows;
}

/// Values of encoder options for which the vocabulary has no constant: FFmpeg spells them.
struct OptionName {
    OptionName(const std::string& ofTag, const char* called, const char* text)
        : tag(&ofTag), value(called), name(text) {}

    const std::string* tag;
    const char* value;
    const char* name;
};
const std::vector<OptionName>& Options() {
    static const std::vector<OptionName>& rows = Lasting(std::vector<OptionName>{
        // WebP's presets
        {C::TAG_PRESET,        "default",      Word("usual")},
        {C::TAG_PRESET,        "picture",      Word("indoor picture")},
        {C::TAG_PRESET,        "photo",        Word("outdoor photo")},
        {C::TAG_PRESET,        "drawing",      Word("drawing")},
        {C::TAG_PRESET,        "icon",         Word("icon")},
        {C::TAG_PRESET,        "text",         Word("lettering")},
        {C::TAG_FORMAT,        "half",         Word("16 bit float")},
        {C::TAG_FORMAT,        "float",        Word("32 bit float")},
        {MA::TAG_APPLICATION,  "audio",        Word("music and everything")},
        {MA::TAG_APPLICATION,  "voip",         Word("speech")},
        {MA::TAG_APPLICATION,  "lowdelay",     Word("low delay")},
        {MV::TAG_CODER,        "range_def",    Word("range coder, usual table")},
        {MV::TAG_CODER,        "range_tab",    Word("range coder, own table")},
        {MV::TAG_CODER,        "rice",         "Golomb-Rice"},
        {MV::TAG_CONTEXT,      "0",            Word("small")},
        {MV::TAG_CONTEXT,      "1",            Word("large")},
        {MV::TAG_COMPRESSION,  "none",         Word("none")},
        {MV::TAG_COMPRESSION,  "rle",          "RLE"},
        {MV::TAG_COMPRESSION,  "zip1",         Word("ZIP, line by line")},
        {MV::TAG_COMPRESSION,  "zip16",        Word("ZIP, 16 lines each")},
        {MV::TAG_PREDICTION,   "left",         Word("from the left")},
        {MV::TAG_PREDICTION,   "plane",        Word("from left and above")},
        {MV::TAG_PREDICTION,   "median",       Word("median")},
        {MV::TAG_WAVELET,      "9_7",          "Deslauriers-Dubuc 9/7"},
        {MV::TAG_WAVELET,      "5_3",          "LeGall 5/3"},
        {MV::TAG_WAVELET,      "haar",         "Haar"},
        {MV::TAG_WAVELET,      "haar_noshift", Word("Haar without shift")},
    });
    return rows;
}
// clang-format on

template <class Row, class IsWanted>
const Row* FindRow(const std::vector<Row>& rows, const IsWanted& isWanted) {
    const auto row = std::find_if(rows.begin(), rows.end(), isWanted);
    return row != rows.end() ? &*row : nullptr;
}

}  // namespace

const IdName* FindIdName(const std::string& kind, const std::string& id) {
    const auto isWanted = [&id](const IdName& row) { return *row.id == id; };
    if (kind == P::KEY_FORMAT) return FindRow(Formats(), isWanted);
    if (kind == P::KEY_FILTER_VIDEO_CODEC || kind == V::TAG_FORMAT_CODEC_VIDEO) return FindRow(VideoCodecs(), isWanted);
    if (kind == P::KEY_FILTER_AUDIO_CODEC || kind == A::TAG_FORMAT_CODEC_AUDIO) return FindRow(AudioCodecs(), isWanted);
    if (kind == P::KEY_FILTER_SUBTITLE_CODEC) return FindRow(SubtitleCodecs(), isWanted);
    return nullptr;
}

const TagName* FindTagName(const std::string& tag) {
    return FindRow(Tags(), [&tag](const TagName& row) { return *row.tag == tag; });
}

const char* FindValueName(const std::string& tag, const std::string& value) {
    const ValueName* const known =
        FindRow(Values(), [&](const ValueName& row) { return *row.tag == tag && *row.value == value; });
    if (known != nullptr) return known->name;
    const OptionName* const option =
        FindRow(Options(), [&](const OptionName& row) { return *row.tag == tag && row.value == value; });
    return option != nullptr ? option->name : nullptr;
}

}  // namespace Norvex::Conf
