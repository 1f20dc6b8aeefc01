#include "Encoding.h"

#include <algorithm>
#include <array>
#include <climits>
#include <new>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libavutil/samplefmt.h>
}

#include "EncoderFacts.h"
#include "Input.h"
#include "Pixels.h"

namespace NorvexExport::Media {

namespace {

void SetOption(AVCodecContext& encoder, const std::string& name, const std::string& value) {
    if (name == "profile" && !CodesProfile(*encoder.codec, value)) {
        throw MediaError("the encoder " + Quoted(encoder.codec->name) + " does not code the profile " + Quoted(value));
    }
    const int result = av_opt_set(&encoder, name.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
    const std::string codec = Quoted(encoder.codec->name);
    if (result == AVERROR_OPTION_NOT_FOUND) {
        throw MediaError("the encoder " + codec + " has no option " + Quoted(name));
    }
    if (result < 0) Fail("the encoder " + codec + " does not take " + Quoted(value) + " for " + Quoted(name), result);
}

/// A value inside a list of FFmpeg's form "name=value:name=value".
std::string Escaped(const std::string& value) {
    std::string escaped;
    for (const char c : value) {
        if (c == '\\' || c == '\'' || c == ':' || c == '=') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// x265 prints by itself and knows nothing of FFmpeg's log level.
std::string X265LogLevel() {
    const int level = av_log_get_level();
    if (level < AV_LOG_ERROR) return "none";
    if (level < AV_LOG_WARNING) return "error";
    if (level < AV_LOG_INFO) return "warning";
    return "info";
}

/// The job's options for x265, with our own before them.
Options WithX265Parameters(const Options& options, const Pass& pass, const Light& light) {
    std::string parameters = "log-level=" + X265LogLevel() + X265ParametersOf(light);
    if (pass.record != nullptr) {
        parameters += ":pass=" + std::to_string(pass.number) + ":stats=" + Escaped(pass.record->StatisticsFile());
    }
    Options result;
    for (const auto& option : options) {
        if (option.first == "x265-params") {
            parameters += ":" + option.second;
        } else {
            result.push_back(option);
        }
    }
    result.emplace_back("x265-params", parameters);
    return result;
}

void SetPass(AVCodecContext& encoder, const Pass& pass) {
    if (pass.record == nullptr) return;
    const PassLog log = PassLogOf(*encoder.codec);
    if (log == PassLog::X265File) return;  // told by its parameters alone
    encoder.flags |= pass.IsRecording() ? AV_CODEC_FLAG_PASS1 : AV_CODEC_FLAG_PASS2;
    if (log == PassLog::File) SetOption(encoder, "stats", pass.record->StatisticsFile());
    if (log != PassLog::Text || !pass.IsReplaying()) return;
    if (pass.record->text.empty()) {
        throw MediaError("the encoder " + Quoted(encoder.codec->name) + " recorded nothing in its first pass");
    }
    encoder.stats_in = pass.record->text.data();  // stays the caller's
}

void SetRateControl(AVCodecContext& encoder, RateControl rateControl, long long bitrate, int quality) {
    const AVCodec& codec = *encoder.codec;
    if (!HoldsQuality(rateControl, codec)) {
        if (bitrate > 0) encoder.bit_rate = bitrate;
        return;
    }
    if (QualityControlOf(codec) == QualityControl::RateFactor) {
        encoder.bit_rate = 0;  // a bitrate would be a bound, and some encoders have one by default
        SetOption(encoder, "crf", std::to_string(quality));
        return;
    }
    const int worst = codec.id == AV_CODEC_ID_MP3 ? 9 : 31;
    encoder.flags |= AV_CODEC_FLAG_QSCALE;
    encoder.global_quality = std::min(quality, worst) * FF_QP2LAMBDA;
}

/// Bounds the peaks as well where the encoder has a buffer model that does it: on average alone these two would
/// swing widely about the bitrate.
void BoundPeaks(AVCodecContext& encoder, const VideoJob& job) {
    if (job.rateControl != RateControl::Bitrate || job.bitrate <= 0 || !IsX26x(*encoder.codec)) return;
    encoder.rc_max_rate = job.bitrate;
    encoder.rc_buffer_size = static_cast<int>(std::min<long long>(job.bitrate, INT_MAX));
}

AVSampleFormat ChooseSampleFormat(const AVCodec& codec, const std::string& name, AVSampleFormat source) {
    const std::vector<AVSampleFormat> formats = DeclaredSampleFormats(codec);
    if (!name.empty()) {
        const AVSampleFormat format = av_get_sample_fmt(name.c_str());
        if (format == AV_SAMPLE_FMT_NONE) throw MediaError("there is no sample format " + Quoted(name));
        if (Takes(formats, format)) return format;
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the sample format " + Quoted(name));
    }
    const bool isPlanar = av_sample_fmt_is_planar(source) != 0;
    const AVSampleFormat twin = isPlanar ? av_get_packed_sample_fmt(source) : av_get_planar_sample_fmt(source);
    for (const AVSampleFormat format : {source, twin}) {
        if (format != AV_SAMPLE_FMT_NONE && Takes(formats, format)) return format;
    }
    return formats.empty() ? AV_SAMPLE_FMT_S16 : formats.front();
}

void RequireSound(const AVCodec& codec, int sampleRate, const ChannelLayout& layout) {
    if (!Takes(DeclaredSampleRates(codec), sampleRate)) {
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the sample rate " +
                         std::to_string(sampleRate) + " Hz");
    }
    const std::vector<AVChannelLayout> layouts = DeclaredLayouts(codec);
    const bool takesLayout = std::any_of(layouts.begin(), layouts.end(), [&](const AVChannelLayout& declared) {
        return av_channel_layout_compare(&declared, &layout.Get()) == 0;
    });
    if (!layouts.empty() && !takesLayout) {
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the channel layout " +
                         Quoted(layout.Name()));
    }
}

void OpenEncoder(AVCodecContext& encoder, const Options& options) {
    for (const auto& [name, value] : options) SetOption(encoder, name, value);
    const std::string codec = Quoted(encoder.codec->name);  // a failure takes the codec from the context
    const int result = avcodec_open2(&encoder, encoder.codec, nullptr);
    // Encoders judge the values of many options only here, and FFmpeg does not tell which one was wrong.
    if (result < 0) Fail("cannot open the encoder " + codec + WithOptions(options), result);
}

Owned<AVCodecContext> NewEncoder(const AVCodec& codec, bool globalHeader) {
    Owned<AVCodecContext> encoder = Own(avcodec_alloc_context3(&codec));
    if (globalHeader) encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    // What is legal is settled before. Some encoders refuse by default what they declare, such as MPEG-1's economy
    // rates, and experimental ones open for those only who say that they know.
    const bool isExperimental = (codec.capabilities & AV_CODEC_CAP_EXPERIMENTAL) != 0;
    encoder->strict_std_compliance = isExperimental ? FF_COMPLIANCE_EXPERIMENTAL : FF_COMPLIANCE_UNOFFICIAL;
    return encoder;
}

}  // namespace

bool HoldsQuality(RateControl rateControl, const AVCodec& codec) {
    return rateControl == RateControl::Quality && QualityControlOf(codec) != QualityControl::None;
}

Encoder OpenVideoEncoder(const VideoJob& job, const AVCodecParameters& source, const Light& light, bool globalHeader,
                         const Pass& pass) {
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_VIDEO);
    Owned<AVCodecContext> encoder = NewEncoder(codec, globalHeader);
    encoder->width = job.width;
    encoder->height = job.height;
    encoder->pix_fmt = ChoosePixelFormat(codec, job, static_cast<AVPixelFormat>(source.format));
    encoder->sample_aspect_ratio = KnownAspect(ToRational(job.sampleAspect));
    const AVRational rate = ToRational(job.frameRate);
    encoder->framerate = IsPositive(rate) ? rate : AVRational{25, 1};  // a single picture may go without
    encoder->time_base = av_inv_q(encoder->framerate);
    SetColours(*encoder, source);
    encoder->thread_count = job.threads;
    if (job.maxBFrames) encoder->max_b_frames = *job.maxBFrames;
    if (job.keyFrameInterval) encoder->gop_size = *job.keyFrameInterval;
    if (job.fields == Fields::Keep) {
        encoder->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
        encoder->field_order = source.field_order;
    }
    SetRateControl(*encoder, job.rateControl, job.bitrate, job.quality);
    BoundPeaks(*encoder, job);
    SetPass(*encoder, pass);
    // libvpx codes transparency without the frames of VP8 that nobody sees alone.
    const bool isOfVpx = std::string_view(codec.name) == "libvpx";
    if (isOfVpx && HasFlag(encoder->pix_fmt, AV_PIX_FMT_FLAG_ALPHA)) SetOption(*encoder, "auto-alt-ref", "0");
    const bool isX265 = PassLogOf(codec) == PassLog::X265File;
    OpenEncoder(*encoder, isX265 ? WithX265Parameters(job.options, pass, light) : job.options);
    TellLight(light, *encoder);
    return Encoder(std::move(encoder), pass);
}

Encoder OpenAudioEncoder(const AudioJob& job, const AVCodecParameters& source, bool globalHeader) {
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_AUDIO);
    const ChannelLayout layout(job.layout);
    RequireSound(codec, job.sampleRate, layout);
    Owned<AVCodecContext> encoder = NewEncoder(codec, globalHeader);
    encoder->sample_rate = job.sampleRate;
    encoder->time_base = {1, job.sampleRate};
    encoder->sample_fmt = ChooseSampleFormat(codec, job.sampleFormat, static_cast<AVSampleFormat>(source.format));
    Check(av_channel_layout_copy(&encoder->ch_layout, &layout.Get()), "cannot copy a channel layout");
    SetRateControl(*encoder, job.rateControl, job.bitrate, job.quality);
    OpenEncoder(*encoder, job.options);
    return Encoder(std::move(encoder), Pass());
}

SubtitleEncoder::SubtitleEncoder(const std::string& codecId, std::string_view header, bool globalHeader) {
    const AVCodec& codec = FindEncoder(codecId, AVMEDIA_TYPE_SUBTITLE);
    if (!IsText(codec.id)) throw MediaError("no text can become subtitles of " + Quoted(codecId));
    m_context = NewEncoder(codec, globalHeader);
    m_context->time_base = subtitleClock;
    if (!header.empty()) {
        void* const copy = av_mallocz(header.size() + 1);
        if (copy == nullptr) throw std::bad_alloc();
        std::copy(header.begin(), header.end(), static_cast<char*>(copy));
        m_context->subtitle_header = static_cast<std::uint8_t*>(copy);
        m_context->subtitle_header_size = static_cast<int>(header.size());
    }
    OpenEncoder(*m_context, {});
}

Owned<AVPacket> SubtitleEncoder::Encode(const AVSubtitle& subtitle) {
    Owned<AVPacket> packet = Own(av_packet_alloc());
    constexpr int most = 1 << 20;
    m_buffer.resize(most);
    const int size = avcodec_encode_subtitle(m_context.get(), m_buffer.data(), most, &subtitle);
    if (size < 0) Fail("the encoder " + Quoted(m_context->codec->name) + " failed", size);
    Check(av_new_packet(packet.get(), size), "cannot make a packet");
    std::copy_n(m_buffer.begin(), size, packet->data);
    return packet;
}

}  // namespace NorvexExport::Media
