#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/platform/LayoutRows.h"

namespace Norvex {

namespace {

/// The codecs that have helpers. Their numbers are here for the first lookup: FFmpeg's own names lie all over its
/// pages, most of which nothing else reads.
// clang-format off
constexpr struct {
    char name[12];
    AVCodecID id;
} g_common[] = {
    {"aac", AV_CODEC_ID_AAC}, {"ac3", AV_CODEC_ID_AC3}, {"alac", AV_CODEC_ID_ALAC}, {"amr_nb", AV_CODEC_ID_AMR_NB},
    {"apng", AV_CODEC_ID_APNG}, {"av1", AV_CODEC_ID_AV1}, {"bmp", AV_CODEC_ID_BMP}, {"dpx", AV_CODEC_ID_DPX},
    {"dts", AV_CODEC_ID_DTS}, {"dvvideo", AV_CODEC_ID_DVVIDEO}, {"eac3", AV_CODEC_ID_EAC3},
    {"flac", AV_CODEC_ID_FLAC}, {"flv1", AV_CODEC_ID_FLV1}, {"gif", AV_CODEC_ID_GIF}, {"h263", AV_CODEC_ID_H263},
    {"h264", AV_CODEC_ID_H264}, {"hap", AV_CODEC_ID_HAP}, {"hevc", AV_CODEC_ID_HEVC},
    {"jpeg2000", AV_CODEC_ID_JPEG2000}, {"jpegls", AV_CODEC_ID_JPEGLS}, {"mjpeg", AV_CODEC_ID_MJPEG},
    {"mp2", AV_CODEC_ID_MP2}, {"mp3", AV_CODEC_ID_MP3}, {"mpeg1video", AV_CODEC_ID_MPEG1VIDEO},
    {"mpeg2video", AV_CODEC_ID_MPEG2VIDEO}, {"mpeg4", AV_CODEC_ID_MPEG4}, {"pam", AV_CODEC_ID_PAM},
    {"pbm", AV_CODEC_ID_PBM}, {"pcm_bluray", AV_CODEC_ID_PCM_BLURAY}, {"pcm_s16be", AV_CODEC_ID_PCM_S16BE},
    {"pcm_s16le", AV_CODEC_ID_PCM_S16LE}, {"pcm_s24be", AV_CODEC_ID_PCM_S24BE}, {"pcm_s24le", AV_CODEC_ID_PCM_S24LE},
    {"pcm_s32be", AV_CODEC_ID_PCM_S32BE}, {"pcm_s32le", AV_CODEC_ID_PCM_S32LE}, {"pcm_s8", AV_CODEC_ID_PCM_S8},
    {"pcm_u16be", AV_CODEC_ID_PCM_U16BE}, {"pcm_u16le", AV_CODEC_ID_PCM_U16LE}, {"pcm_u24be", AV_CODEC_ID_PCM_U24BE},
    {"pcm_u24le", AV_CODEC_ID_PCM_U24LE}, {"pcm_u32be", AV_CODEC_ID_PCM_U32BE}, {"pcm_u32le", AV_CODEC_ID_PCM_U32LE},
    {"pcm_u8", AV_CODEC_ID_PCM_U8}, {"pcx", AV_CODEC_ID_PCX}, {"pgm", AV_CODEC_ID_PGM},
    {"pgmyuv", AV_CODEC_ID_PGMYUV}, {"png", AV_CODEC_ID_PNG}, {"ppm", AV_CODEC_ID_PPM},
    {"prores", AV_CODEC_ID_PRORES}, {"qtrle", AV_CODEC_ID_QTRLE}, {"sgi", AV_CODEC_ID_SGI},
    {"targa", AV_CODEC_ID_TARGA}, {"theora", AV_CODEC_ID_THEORA}, {"tiff", AV_CODEC_ID_TIFF},
    {"utvideo", AV_CODEC_ID_UTVIDEO}, {"vorbis", AV_CODEC_ID_VORBIS}, {"vp8", AV_CODEC_ID_VP8},
    {"vp9", AV_CODEC_ID_VP9}, {"wmav2", AV_CODEC_ID_WMAV2}, {"wmv2", AV_CODEC_ID_WMV2}, {"xbm", AV_CODEC_ID_XBM},
    {"xwd", AV_CODEC_ID_XWD},
};
// clang-format on

}  // namespace

const std::map<AVCodecID, std::string>& GetFFCodecsMap() {
    static const std::map<AVCodecID, std::string>& codecs = Lasting([] {
        std::map<AVCodecID, std::string> names;
        const AVCodecDescriptor* codec = nullptr;
        while ((codec = avcodec_descriptor_next(codec)) != nullptr) names.emplace(codec->id, codec->name);
        return names;
    }());
    return codecs;
}

AVCodecID CodecIDFromTextID(const std::string& codecId) {
    for (const auto& [name, id] : g_common) {
        if (name[0] == codecId[0] && name == codecId) return id;
    }
    // avcodec_descriptor_get_by_name() compares with one name after the other, and every question has a codec in it.
    using Row = std::pair<std::string_view, AVCodecID>;
    static const std::vector<Row>& rows = Lasting([] {
        std::vector<Row> byName;
        const AVCodecDescriptor* codec = nullptr;
        while ((codec = avcodec_descriptor_next(codec)) != nullptr) byName.emplace_back(codec->name, codec->id);
        std::sort(byName.begin(), byName.end());
        return byName;
    }());
    const auto row = std::lower_bound(rows.begin(), rows.end(), codecId,
                                      [](const Row& one, const std::string& name) { return one.first < name; });
    return row != rows.end() && row->first == codecId ? row->second : AV_CODEC_ID_NONE;
}

namespace Proc {

// The formats have FFmpeg's own numbers. One more of them needs a row of SampleFmtRecord.
static_assert(AV_SAMPLE_FMT_NB == static_cast<int>(SampleFormats::S64P) + 1);
static_assert(AV_SAMPLE_FMT_NONE == static_cast<int>(SampleFormats::None));

SampleFormats SampleFormatNorvexFromFFMPEG(AVSampleFormat format) {
    return static_cast<SampleFormats>(format);
}

bool IsZeroed(const AVChannelLayout* layout) {
    return layout == nullptr ||
           (layout->order == AV_CHANNEL_ORDER_UNSPEC && layout->nb_channels == 0 && layout->u.mask == 0);
}

bool IsValid(const AVChannelLayout& layout) {
    return av_channel_layout_check(&layout) != 0;
}

bool IsSupportedAVChannelLayoutMask(unsigned long long mask) {
    return Conf::FindLayoutRow(mask) != nullptr;
}

ChannelLayout NorvexFromAVChannelLayout(const AVChannelLayout& layout) {
    const Conf::LayoutRow* const row =
        layout.order == AV_CHANNEL_ORDER_NATIVE ? Conf::FindLayoutRow(layout.u.mask) : nullptr;
    return row != nullptr ? row->record.layout : ChannelLayout::Unknown;
}

}  // namespace Proc
}  // namespace Norvex
