#include "Pixels.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include "EncoderFacts.h"

namespace NorvexExport::Media {

namespace {

/// Codecs whose pictures are of full range; players expect the limited one of all others.
bool IsFullRangeCodec(AVCodecID codec) {
    return codec == AV_CODEC_ID_MJPEG;
}

/// Codecs that have no place for a matrix: their pictures are of ITU-R BT.601 (JFIF, and RFC 9649 of WebP).
bool IsOfBt601(AVCodecID codec) {
    return codec == AV_CODEC_ID_MJPEG || codec == AV_CODEC_ID_WEBP;
}

bool IsRgb(AVPixelFormat format) {
    return HasFlag(format, AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL);
}

/// What a player guesses that is told nothing.
AVColorSpace GuessedMatrix(int height) {
    return height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

/// The scaler's name of a matrix, null for one that it does not know.
const char* NameOf(AVColorSpace matrix) {
    switch (matrix) {
        case AVCOL_SPC_BT709:
            return "bt709";
        case AVCOL_SPC_FCC:
            return "fcc";
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            return "smpte170m";
        case AVCOL_SPC_SMPTE240M:
            return "smpte240m";
        case AVCOL_SPC_BT2020_NCL:
        case AVCOL_SPC_BT2020_CL:
            return "bt2020";
        default:
            return nullptr;
    }
}

/// The encoder's formats that suit the range of its codec: the yuvj ones for full range, the others otherwise. Those
/// with a palette are left out where there is any other: the scaler makes no palettes.
std::vector<AVPixelFormat> SuitablePixelFormats(const AVCodec& codec, bool keepsAlpha) {
    std::vector<AVPixelFormat> formats = DeclaredPixelFormats(codec);
    const auto prefer = [&formats](const auto& isPreferred) {
        const auto others = std::stable_partition(formats.begin(), formats.end(), isPreferred);
        if (others != formats.begin()) formats.erase(others, formats.end());
    };
    prefer([](AVPixelFormat format) { return !HasFlag(format, AV_PIX_FMT_FLAG_PAL); });
    const bool wantsFullRange = IsFullRangeCodec(codec.id);
    prefer([&](AVPixelFormat format) { return IsFullRangeYuv(format) == wantsFullRange; });
    if (!keepsAlpha) prefer([](AVPixelFormat format) { return !HasFlag(format, AV_PIX_FMT_FLAG_ALPHA); });
    return formats;
}

/// "4:2:0" and the like; empty for formats without colours or with no form of such a name.
std::string SubsamplingOf(const AVPixFmtDescriptor& format) {
    if (format.nb_components < 3) return (format.flags & AV_PIX_FMT_FLAG_PAL) != 0 ? "4:4:4" : "";
    const int wide = format.log2_chroma_w, high = format.log2_chroma_h;
    if (wide == 0 && high == 0) return "4:4:4";
    if (wide == 1) return high == 0 ? "4:2:2" : "4:2:0";
    return wide == 2 && high == 0 ? "4:1:1" : "";
}

std::vector<std::string> LossesBetween(const AVPixFmtDescriptor& source, const AVPixFmtDescriptor& target) {
    std::vector<std::string> losses;
    const auto has = [](const AVPixFmtDescriptor& format, unsigned flag) { return (format.flags & flag) != 0; };
    if (has(source, AV_PIX_FMT_FLAG_ALPHA) && !has(target, AV_PIX_FMT_FLAG_ALPHA)) {
        losses.emplace_back("its transparency");
    }
    const int depth = source.comp[0].depth, kept = target.comp[0].depth;
    if (depth > kept) losses.push_back(std::to_string(depth - kept) + " of its " + std::to_string(depth) + " bits");
    const std::string before = SubsamplingOf(source), after = SubsamplingOf(target);
    const bool isColourless = target.nb_components < 3 && !has(target, AV_PIX_FMT_FLAG_PAL);
    if (!before.empty() && isColourless) losses.emplace_back("its colours");
    const int area = source.log2_chroma_w + source.log2_chroma_h, left = target.log2_chroma_w + target.log2_chroma_h;
    if (!before.empty() && !isColourless && left > area)
        losses.push_back("detail of its colours (" + before + " becomes " + after + ")");
    return losses;
}

}  // namespace

bool IsFullRangeYuv(AVPixelFormat format) {
    const char* const name = av_get_pix_fmt_name(format);
    return name != nullptr && std::string_view(name).substr(0, 4) == "yuvj";
}

AVPixelFormat ChoosePixelFormat(const AVCodec& codec, const VideoJob& job, AVPixelFormat source) {
    std::vector<AVPixelFormat> formats = SuitablePixelFormats(codec, job.keepsAlpha);
    if (!job.pixelFormats.empty()) {
        std::vector<AVPixelFormat> wanted;
        for (const std::string& name : job.pixelFormats) {
            const AVPixelFormat format = av_get_pix_fmt(name.c_str());
            if (format != AV_PIX_FMT_NONE && Takes(formats, format)) wanted.push_back(format);
        }
        if (wanted.empty()) {
            throw MediaError("the encoder " + Quoted(codec.name) + " does not take the pixel format " +
                             Quoted(job.pixelFormats.front()));
        }
        formats = wanted;
    }
    if (formats.empty()) return source != AV_PIX_FMT_NONE ? source : AV_PIX_FMT_YUV420P;
    if (source == AV_PIX_FMT_NONE) return formats.front();
    formats.push_back(AV_PIX_FMT_NONE);
    const int hasAlpha = HasFlag(source, AV_PIX_FMT_FLAG_ALPHA) ? 1 : 0;
    return avcodec_find_best_pix_fmt_of_list(formats.data(), source, hasAlpha, nullptr);
}

void SetColours(AVCodecContext& encoder, const AVCodecParameters& source) {
    encoder.color_primaries = source.color_primaries;
    encoder.color_trc = source.color_trc;
    if (!IsYuv(encoder.pix_fmt)) return;
    encoder.color_range = IsFullRangeCodec(encoder.codec->id) ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    encoder.chroma_sample_location = source.chroma_location;
    encoder.colorspace = source.color_space;
    if (IsOfBt601(encoder.codec->id)) {
        encoder.colorspace = AVCOL_SPC_BT470BG;
    } else if (IsRgb(static_cast<AVPixelFormat>(source.format))) {
        encoder.colorspace = GuessedMatrix(encoder.height);
    } else if (encoder.colorspace == AVCOL_SPC_RGB) {
        encoder.colorspace = AVCOL_SPC_UNSPECIFIED;
    }
}

Conversion ConversionFor(AVPixelFormat source, AVColorSpace matrix, int height, const AVCodecContext& encoder) {
    const bool isUnknown = matrix == AVCOL_SPC_UNSPECIFIED || matrix == AVCOL_SPC_RGB;
    const char* const from = IsRgb(source) ? nullptr : NameOf(isUnknown ? GuessedMatrix(height) : matrix);
    const char* const to = IsYuv(encoder.pix_fmt) ? NameOf(encoder.colorspace) : nullptr;
    const bool isKept = !IsRgb(source) && IsYuv(encoder.pix_fmt) && encoder.colorspace == matrix;
    if (isKept) return {};
    return {from, to};
}

}  // namespace NorvexExport::Media

namespace NorvexExport {

PixelFormat ChoosePixelFormat(const VideoJob& job, const std::string& source) {
    const AVPixelFormat given = av_get_pix_fmt(source.c_str());
    const AVCodec& codec = Media::FindEncoder(job.codecId, AVMEDIA_TYPE_VIDEO);
    const AVPixelFormat chosen = Media::ChoosePixelFormat(codec, job, given);
    PixelFormat format;
    format.name = av_get_pix_fmt_name(chosen);
    if (given != AV_PIX_FMT_NONE) {
        format.losses = Media::LossesBetween(*av_pix_fmt_desc_get(given), *av_pix_fmt_desc_get(chosen));
    }
    return format;
}

}  // namespace NorvexExport
