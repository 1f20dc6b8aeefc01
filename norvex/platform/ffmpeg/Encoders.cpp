// What an encoder of the running build declares. Nothing else of the library looks at encoders, so that a test can
// put a build of its own making in the place of this file.

extern "C" {
#include <libavutil/opt.h>
}

#include <algorithm>
#include <charconv>
#include <system_error>

#include "norvex/foundation/Lasting.h"
#include "norvex/interfaces/Proc/FFmpegLayer.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Proc {

namespace {

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100)

template <class Entry>
const Entry* SupportedConfig(const AVCodec* codec, AVCodecConfig config) {
    if (codec == nullptr) return nullptr;
    const void* list = nullptr;
    const int result = avcodec_get_supported_config(nullptr, codec, config, 0, &list, nullptr);
    return result >= 0 ? static_cast<const Entry*>(list) : nullptr;
}

const AVRational* FrameRates(const AVCodec* c) {
    return SupportedConfig<AVRational>(c, AV_CODEC_CONFIG_FRAME_RATE);
}
const AVPixelFormat* PixelFormatsOf(const AVCodec* c) {
    return SupportedConfig<AVPixelFormat>(c, AV_CODEC_CONFIG_PIX_FORMAT);
}
const AVSampleFormat* SampleFormatsOf(const AVCodec* c) {
    return SupportedConfig<AVSampleFormat>(c, AV_CODEC_CONFIG_SAMPLE_FORMAT);
}
const int* SampleRates(const AVCodec* c) {
    return SupportedConfig<int>(c, AV_CODEC_CONFIG_SAMPLE_RATE);
}
const AVChannelLayout* ChannelLayouts(const AVCodec* c) {
    return SupportedConfig<AVChannelLayout>(c, AV_CODEC_CONFIG_CHANNEL_LAYOUT);
}

#else

const AVRational* FrameRates(const AVCodec* c) {
    return c != nullptr ? c->supported_framerates : nullptr;
}
const AVPixelFormat* PixelFormatsOf(const AVCodec* c) {
    return c != nullptr ? c->pix_fmts : nullptr;
}
const AVSampleFormat* SampleFormatsOf(const AVCodec* c) {
    return c != nullptr ? c->sample_fmts : nullptr;
}
const int* SampleRates(const AVCodec* c) {
    return c != nullptr ? c->supported_samplerates : nullptr;
}
const AVChannelLayout* ChannelLayouts(const AVCodec* c) {
    return c != nullptr ? c->ch_layouts : nullptr;
}

#endif

/// What avcodec_find_encoder() gives, which goes through all that FFmpeg has: the first lookup of a helper asks sixty
/// times.
const AVCodec* DefaultEncoder(AVCodecID codec) {
    static const std::vector<const AVCodec*>& encoders = Lasting([] {
        std::vector<const AVCodec*> all;
        void* position = nullptr;
        while (const AVCodec* const entry = av_codec_iterate(&position)) {
            if (av_codec_is_encoder(entry) != 0) all.push_back(entry);
        }
        std::stable_sort(all.begin(), all.end(),
                         [](const AVCodec* one, const AVCodec* two) { return one->id < two->id; });
        return all;
    }());
    const auto first = std::lower_bound(encoders.begin(), encoders.end(), codec,
                                        [](const AVCodec* encoder, AVCodecID id) { return encoder->id < id; });
    if (first == encoders.end() || (*first)->id != codec) return nullptr;
    // FFmpeg prefers others to experimental ones.
    return ((*first)->capabilities & AV_CODEC_CAP_EXPERIMENTAL) == 0 ? *first : avcodec_find_encoder(codec);
}

}  // namespace

SafeEncoderCodec FindEncoder(const std::string& codecId, const std::string& implName) {
    if (implName != ImplNames::FFMPEG) return {};
    return SafeEncoderCodec(DefaultEncoder(CodecIDFromTextID(codecId)));
}

std::vector<AVRational> SafeEncoderCodec::GetSupportedFrameRates() const {
    std::vector<AVRational> rates;
    // The entry that ends the list is 0/0.
    for (const AVRational* rate = FrameRates(m_codec); rate != nullptr && (rate->num != 0 || rate->den != 0); ++rate) {
        rates.push_back(*rate);
    }
    return rates;
}

const AVPixelFormat* SafeEncoderCodec::GetSupportedPixelFormats() const {
    return PixelFormatsOf(m_codec);
}

const AVSampleFormat* SafeEncoderCodec::GetSupportedSampleFormats() const {
    return SampleFormatsOf(m_codec);
}

const int* SafeEncoderCodec::GetSupportedSampleRates() const {
    return SampleRates(m_codec);
}

const AVChannelLayout* SafeEncoderCodec::GetSupportedChannelLayouts() const {
    return ChannelLayouts(m_codec);
}

bool SafeEncoderCodec::TakesOption(const std::string& option, const std::string& value) const {
    // The encoder's own options stand before those of all codecs.
    for (const AVClass* options : {m_codec->priv_class, avcodec_get_class()}) {
        const auto find = [&options](const std::string& name, const char* unit) {
            return options == nullptr ? nullptr : av_opt_find(&options, name.c_str(), unit, 0, AV_OPT_SEARCH_FAKE_OBJ);
        };
        const AVOption* const found = find(option, nullptr);
        if (found == nullptr) continue;
        if (found->unit != nullptr && find(value, found->unit) != nullptr) return true;
        double number = 0;
        const char* const end = value.data() + value.size();
        const auto [last, error] = std::from_chars(value.data(), end, number);
        const bool isNumber = error == std::errc() && last == end;
        return isNumber ? found->min <= number && number <= found->max : found->type == AV_OPT_TYPE_STRING;
    }
    return false;
}

}  // namespace Norvex::Proc
