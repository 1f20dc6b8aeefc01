#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/channel_layout.h>
}

#include <cstdint>
#include <cstring>

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

namespace {

/// FFmpeg's name of a layout, or another where it has none.
std::string NameOf(std::uint64_t mask, const char* otherwise) {
    // FFmpeg 5 names none of those below, and this runs while the library is loaded.
    if (LIBAVUTIL_VERSION_MAJOR < 58) return otherwise;
    AVChannelLayout layout{};
    char name[64] = "";
    if (av_channel_layout_from_mask(&layout, mask) < 0) return otherwise;
    const int length = av_channel_layout_describe(&layout, name, sizeof name);
    // A layout without a name is told channel by channel.
    return length > 0 && std::strchr(name, ' ') == nullptr ? name : otherwise;
}

}  // namespace

NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_AAC) = "aac";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_AC3) = "ac3";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_ALAC) = "alac";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_AMR_NB) = "amr_nb";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_DTS) = "dts";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_EAC3) = "eac3";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_FLAC) = "flac";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_MP2) = "mp2";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_MP3) = "mp3";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_BLURAY) = "pcm_bluray";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S16BE) = "pcm_s16be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S16LE) = "pcm_s16le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S24BE) = "pcm_s24be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S24LE) = "pcm_s24le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S32BE) = "pcm_s32be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S32LE) = "pcm_s32le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_S8) = "pcm_s8";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U16BE) = "pcm_u16be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U16LE) = "pcm_u16le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U24BE) = "pcm_u24be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U24LE) = "pcm_u24le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U32BE) = "pcm_u32be";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U32LE) = "pcm_u32le";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_PCM_U8) = "pcm_u8";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_TRUEHD) = "truehd";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_VORBIS) = "vorbis";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::CODEC_ID_WMAV2) = "wmav2";

NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_SAMPLE_RATE) = "sample_rate";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_SAMPLE_FORMAT) = "sample_format";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_LAYOUT) = "channel_layout";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_BITS_PER_SAMPLE) = "bits_per_sample";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO) = "format_codec_audio";

NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_2POINT1) = "2.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_2_1) = "3.0(back)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_2_2) = "quad(side)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_3POINT1) = "3.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_4POINT0) = "4.0";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_4POINT1) = "4.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT0) = "5.0(side)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT0_BACK) = "5.0";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1) = "5.1(side)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1_BACK) = "5.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_6POINT0) = "6.0";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_6POINT0_FRONT) = "6.0(front)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_6POINT1) = "6.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_6POINT1_BACK) = "6.1(back)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_6POINT1_FRONT) = "6.1(front)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT0) = "7.0";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT0_FRONT) = "7.0(front)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT1) = "7.1";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT1_WIDE) = "7.1(wide-side)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT1_WIDE_BACK) = "7.1(wide)";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_22POINT2) = "22.2";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_HEXADECAGONAL) = "hexadecagonal";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_HEXAGONAL) = "hexagonal";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_MONO) = "mono";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_OCTAGONAL) = "octagonal";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_QUAD) = "quad";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_STEREO) = "stereo";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_STEREO_DOWNMIX) = "downmix";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_SURROUND) = "3.0";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_UNKNOWN) = "unknown";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_3POINT1POINT2) = "3.1.2";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1POINT2) = NameOf(0x560f, "5.1.2(side)");
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1POINT2_BACK) = NameOf(0x503f, "5.1.2(back)");
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1POINT4) = NameOf(0x2d60f, "5.1.4(side)");
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_5POINT1POINT4_BACK) = NameOf(0x2d03f,
                                                                                                 "5.1.4(back)");
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT1POINT2) = "7.1.2";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT1POINT4) = "7.1.4";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_7POINT2POINT3) = "7.2.3";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_9POINT1POINT4) = "9.1.4";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_9POINT1POINT6) = "9.1.6";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_BINAURAL) = "binaural";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_CH_LAYOUT_CUBE) = "cube";

NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_ELD) = "aac_eld";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_HE) = "aac_he";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_HE_V2) = "aac_he_v2";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_LD) = "aac_ld";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_LOW) = "aac_low";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_LTP) = "aac_ltp";
NORVEX_CONSTANT(const std::string, IFormatCodecAudio::TAG_AAC_PROFILE_SSR) = "aac_ssr";

}  // namespace Norvex::Conf
