#include "EncoderFacts.h"

#include <array>

extern "C" {
#include <libavutil/opt.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

namespace {

bool HasOwnOption(const AVCodec& codec, const char* name) {
    const AVClass* options = codec.priv_class;
    return options != nullptr && av_opt_find(&options, name, nullptr, 0, AV_OPT_SEARCH_FAKE_OBJ) != nullptr;
}

}  // namespace

// What an encoder declares is read here only, for FFmpeg moved it from fields to a function.
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100)

namespace {

template <class T>
std::vector<T> Declared(const AVCodec& codec, AVCodecConfig config) {
    const void* values = nullptr;
    int count = 0;
    if (avcodec_get_supported_config(nullptr, &codec, config, 0, &values, &count) < 0 || values == nullptr) return {};
    const T* const first = static_cast<const T*>(values);
    return {first, first + count};
}

}  // namespace

std::vector<AVPixelFormat> DeclaredPixelFormats(const AVCodec& codec) {
    return Declared<AVPixelFormat>(codec, AV_CODEC_CONFIG_PIX_FORMAT);
}
std::vector<AVSampleFormat> DeclaredSampleFormats(const AVCodec& codec) {
    return Declared<AVSampleFormat>(codec, AV_CODEC_CONFIG_SAMPLE_FORMAT);
}
std::vector<int> DeclaredSampleRates(const AVCodec& codec) {
    return Declared<int>(codec, AV_CODEC_CONFIG_SAMPLE_RATE);
}
std::vector<AVChannelLayout> DeclaredLayouts(const AVCodec& codec) {
    return Declared<AVChannelLayout>(codec, AV_CODEC_CONFIG_CHANNEL_LAYOUT);
}

#else

namespace {

template <class T, class IsEnd>
std::vector<T> Declared(const T* first, const IsEnd& isEnd) {
    std::vector<T> list;
    if (first == nullptr) return list;
    for (; !isEnd(*first); ++first) list.push_back(*first);
    return list;
}

}  // namespace

std::vector<AVPixelFormat> DeclaredPixelFormats(const AVCodec& codec) {
    return Declared(codec.pix_fmts, [](AVPixelFormat format) { return format == AV_PIX_FMT_NONE; });
}
std::vector<AVSampleFormat> DeclaredSampleFormats(const AVCodec& codec) {
    return Declared(codec.sample_fmts, [](AVSampleFormat format) { return format == AV_SAMPLE_FMT_NONE; });
}
std::vector<int> DeclaredSampleRates(const AVCodec& codec) {
    return Declared(codec.supported_samplerates, [](int rate) { return rate == 0; });
}
std::vector<AVChannelLayout> DeclaredLayouts(const AVCodec& codec) {
    return Declared(codec.ch_layouts, [](const AVChannelLayout& layout) { return layout.nb_channels == 0; });
}

#endif

const AVCodec& FindEncoder(const std::string& codecId, AVMediaType type) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get_by_name(codecId.c_str());
    if (descriptor == nullptr || descriptor->type != type) {
        throw MediaError("there is no " + std::string(av_get_media_type_string(type)) + " codec " + Quoted(codecId));
    }
    const AVCodec* const codec = avcodec_find_encoder(descriptor->id);
    if (codec == nullptr) throw MediaError("this FFmpeg has no encoder for " + Quoted(codecId));
    return *codec;
}

bool IsX26x(const AVCodec& codec) {
    const std::string_view name = codec.name;
    return name == "libx264" || name == "libx265";
}

bool CodesProfile(const AVCodec& codec, std::string_view profile) {
    // FFmpeg's own encoder of AAC writes the number of any profile, and codes these alone: decoders refuse the others,
    // or are misled.
    if (std::string_view(codec.name) != "aac") return true;
    constexpr std::array<std::string_view, 3> coded = {"aac_low", "aac_main", "mpeg2_aac_low"};
    return std::find(coded.begin(), coded.end(), profile) != coded.end();
}

QualityControl QualityControlOf(const AVCodec& codec) {
    if (HasOwnOption(codec, "crf")) return QualityControl::RateFactor;
    switch (codec.id) {  // FFmpeg does not tell which encoders heed AV_CODEC_FLAG_QSCALE
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
        case AV_CODEC_ID_MSMPEG4V2:
        case AV_CODEC_ID_MSMPEG4V3:
        case AV_CODEC_ID_WMV1:
        case AV_CODEC_ID_WMV2:
        case AV_CODEC_ID_FLV1:
        case AV_CODEC_ID_H263:
        case AV_CODEC_ID_H263P:
        case AV_CODEC_ID_MJPEG:
            return QualityControl::Quantiser;
        case AV_CODEC_ID_MP3:
            return std::string_view(codec.name) == "libmp3lame" ? QualityControl::Quantiser : QualityControl::None;
        default:
            return QualityControl::None;
    }
}

PassLog PassLogOf(const AVCodec& codec) {
    constexpr std::array<std::string_view, 13> viaText = {
        "mpeg1video", "mpeg2video", "mpeg4",  "msmpeg4v2",  "msmpeg4",    "wmv1",      "wmv2",
        "flv",        "h263",       "libvpx", "libvpx-vp9", "libaom-av1", "libtheora",
    };
    if (std::find(viaText.begin(), viaText.end(), codec.name) != viaText.end()) return PassLog::Text;
    if (HasOwnOption(codec, "x265-params")) return PassLog::X265File;
    return HasOwnOption(codec, "stats") ? PassLog::File : PassLog::None;
}

}  // namespace NorvexExport::Media
