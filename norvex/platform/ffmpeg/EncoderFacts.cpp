#include "norvex/interfaces/Proc/EncoderFacts.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdint>

namespace Norvex::Proc {

namespace {

std::string SamplingOf(const AVPixFmtDescriptor& format) {
    const auto has = [&format](std::uint64_t flag) { return (format.flags & flag) != 0; };
    const std::string name = format.name;
    if (has(AV_PIX_FMT_FLAG_HWACCEL)) return "hardware";
    if (has(AV_PIX_FMT_FLAG_PAL)) return "palette";
    if (has(AV_PIX_FMT_FLAG_BAYER)) return "Bayer";
    if (has(AV_PIX_FMT_FLAG_RGB)) return "RGB";
    if (name.compare(0, 3, "xyz") == 0) return "XYZ";  // which FFmpeg has no flag for
    if (format.nb_components < 3) return "grey";
    const struct {
        int width, height;  ///< how often the width and the height of chroma are halved
        const char* name;
    } samplings[] = {{0, 0, "4:4:4"}, {1, 0, "4:2:2"}, {1, 1, "4:2:0"},
                     {2, 0, "4:1:1"}, {2, 2, "4:1:0"}, {0, 1, "4:4:0"}};
    for (const auto& sampling : samplings) {
        if (sampling.width == format.log2_chroma_w && sampling.height == format.log2_chroma_h) return sampling.name;
    }
    return "YUV";
}

PixelFormatFacts FactsOf(const AVPixFmtDescriptor& format) {
    PixelFormatFacts facts;
    facts.name = format.name;
    facts.sampling = SamplingOf(format);
    facts.alpha = (format.flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    facts.isFloat = (format.flags & AV_PIX_FMT_FLAG_FLOAT) != 0;
    for (int i = 0; i < format.nb_components; ++i) facts.bits = std::max(facts.bits, format.comp[i].depth);
    return facts;
}

}  // namespace

EncoderFacts FactsOf(const SafeEncoderCodec& encoder) {
    EncoderFacts facts;
    if (!encoder) return facts;
    const AVPixelFormat* format = encoder.GetSupportedPixelFormats();
    for (; format != nullptr && *format != AV_PIX_FMT_NONE; ++format) {
        if (const AVPixFmtDescriptor* const described = av_pix_fmt_desc_get(*format)) {
            facts.pixelFormats.push_back(FactsOf(*described));
        }
    }
    const auto can = [&encoder](int capability) { return (encoder->capabilities & capability) != 0; };
    facts.isHardware = can(AV_CODEC_CAP_HARDWARE | AV_CODEC_CAP_HYBRID);
    facts.isExperimental = can(AV_CODEC_CAP_EXPERIMENTAL);
    facts.threadsFrames = can(AV_CODEC_CAP_FRAME_THREADS);
    facts.threadsSlices = can(AV_CODEC_CAP_SLICE_THREADS);
    facts.threadsItself = can(AV_CODEC_CAP_OTHER_THREADS);
    if (const AVCodecDescriptor* const codec = avcodec_descriptor_get(encoder->id)) {
        facts.isLossless = (codec->props & AV_CODEC_PROP_LOSSLESS) != 0;
        facts.isLossy = (codec->props & AV_CODEC_PROP_LOSSY) != 0;
        facts.isIntraOnly = (codec->props & AV_CODEC_PROP_INTRA_ONLY) != 0;
    }
    return facts;
}

}  // namespace Norvex::Proc
