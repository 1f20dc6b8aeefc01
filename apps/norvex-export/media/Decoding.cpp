#include "Decoding.h"

#include <cstddef>
#include <string>

namespace NorvexExport::Media {

namespace {

Owned<AVCodecContext> OpenDecoder(const AVStream& stream) {
    const std::string name = Quoted(avcodec_get_name(stream.codecpar->codec_id));
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr) throw StreamError(stream, "this FFmpeg has no decoder for " + name);
    Owned<AVCodecContext> context = Own(avcodec_alloc_context3(codec));
    Check(avcodec_parameters_to_context(context.get(), stream.codecpar), "cannot set up a decoder");
    context->pkt_timebase = stream.time_base;
    context->thread_count = 0;
    const int result = avcodec_open2(context.get(), codec, nullptr);
    if (result < 0) throw StreamError(stream, "cannot open the decoder for " + name, result);
    return context;
}

}  // namespace

Decoder::Decoder(const AVStream& stream) : m_context(OpenDecoder(stream)), m_frame(Own(av_frame_alloc())) {}

void Decoder::Tolerate(int error) {
    if (error == AVERROR(ENOMEM)) throw std::bad_alloc();
    m_lastError = error;
}

SubtitleDecoder::SubtitleDecoder(const AVStream& stream)
    : m_context(OpenDecoder(stream)), m_packet(Own(av_packet_alloc())) {}

std::string_view SubtitleDecoder::Header() const {
    if (m_context->subtitle_header == nullptr) return {};
    return {reinterpret_cast<const char*>(m_context->subtitle_header),
            static_cast<std::size_t>(m_context->subtitle_header_size)};
}

}  // namespace NorvexExport::Media
