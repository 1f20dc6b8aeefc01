#include "TranscodedStream.h"

#include <string>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace NorvexExport::Media {

TranscodedStream::TranscodedStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer)
    : m_input(input),
      m_stream(stream),
      m_decoder(stream),
      m_encoder(std::move(encoder)),
      m_muxer(muxer),
      m_outputIndex(muxer.AddStream(m_encoder.Context(), stream)) {}

void TranscodedStream::Take(const AVPacket& packet) {
    if (m_isComplete) return;
    Decode(&packet);
    // Nothing follows an attached picture that could push it out of a decoder which holds frames back.
    if (!IsOver() && IsAttachedPicture(m_stream)) Decode(nullptr);
    // Muxers hold the other streams back until they have this one.
    if (IsOver()) Complete();
}

void TranscodedStream::Finish() {
    if (m_isComplete) return;
    Decode(nullptr);
    RequireFrames();
    Complete();
}

double TranscodedStream::Seconds() const {
    return static_cast<double>(m_begin + m_muxer.Lead()) / AV_TIME_BASE +
           static_cast<double>(m_nextPts) * av_q2d(m_encoder.Context().time_base);
}

void TranscodedStream::Encode(AVFrame& frame, std::int64_t duration) {
    frame.pts = m_nextPts;
    m_nextPts += duration;
    EncodeNext(&frame);
}

void TranscodedStream::Decode(const AVPacket* packet) {
    m_decoder.Decode(packet, [this](AVFrame& frame) {
        if (IsOver()) return;
        std::int64_t time = frame.best_effort_timestamp;
        if (time == AV_NOPTS_VALUE) time = m_nextTime;
        // Where no frame says when it is shown, the first one begins the film.
        if (time == AV_NOPTS_VALUE) time = av_rescale_q(m_input.FilmStart(), av_get_time_base_q(), m_stream.time_base);
        m_nextTime = time + DurationOf(frame);
        TakeFrame(frame, m_input.FilmTime(time, m_stream));
    });
}

void TranscodedStream::Complete() {
    TakeRest();
    EncodeNext(nullptr);
    m_isComplete = true;
}

void TranscodedStream::EncodeNext(const AVFrame* frame) {
    m_encoder.Encode(frame, [&](AVPacket& packet) {
        m_muxer.Write(packet, m_outputIndex, m_encoder.Context().time_base, m_begin);
    });
}

void TranscodedStream::RequireFrames() const {
    if (m_decoder.HasDecoded()) return;
    const std::string what = "nothing of the " +
                             std::string(av_get_media_type_string(m_stream.codecpar->codec_type)) + " stream of " +
                             m_input.QuotedName() + " could be decoded";
    if (m_decoder.LastError() < 0) Fail(what, m_decoder.LastError());
    // A part of the input may lie where the stream pauses.
    if (!m_input.IsPart()) throw MediaError(what);
}

}  // namespace NorvexExport::Media
