#include "TranscodedStream.h"

#include <algorithm>
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
      m_outputIndex(muxer.AddStream(m_encoder.Context(), stream)),
      m_filtered(Own(av_frame_alloc())) {}

void TranscodedStream::Take(const AVPacket& packet) {
    if (!WantsMore()) return;
    m_decoder.Decode(&packet, [this](AVFrame& frame) { Place(frame); });
    // Nothing follows an attached picture that could push it out of a decoder which holds frames back.
    if (WantsMore() && IsSingle() && IsAttachedPicture(m_stream)) Drain();
    // Muxers hold the sound back until they have its cover.
    if (!WantsMore()) Encode(nullptr);
}

void TranscodedStream::Finish() {
    if (!WantsMore()) return;
    Drain();
    RequireFrames();
    if (WantsMore() && HasGraph()) {
        m_graph->Close(EndOnGraph(std::min(m_nextTime, m_input.FilmEnd())));
        EncodeFiltered();
    }
    Encode(nullptr);
}

void TranscodedStream::Drain() {
    m_decoder.Decode(nullptr, [this](AVFrame& frame) { Place(frame); });
}

void TranscodedStream::Place(AVFrame& frame) {
    if (!WantsMore()) return;
    const bool isTimed = frame.best_effort_timestamp != AV_NOPTS_VALUE;
    const std::int64_t time = isTimed ? m_input.FilmTime(frame.best_effort_timestamp, m_stream) : m_nextTime;
    m_nextTime = std::max(m_nextTime, time + DurationOf(frame));
    TakeFrame(frame, time);
}

void TranscodedStream::Filter(AVFrame& frame, std::int64_t time) {
    frame.pts = time;
    FrameKind kind = Describe(frame);
    if (!HasGraph() || !IsSame(m_filterable, kind)) ChangeGraph(std::move(kind), time);
    m_graph->Push(frame);
    EncodeFiltered();
}

void TranscodedStream::ChangeGraph(FrameKind frames, std::int64_t time) {
    if (HasGraph()) {
        EndGraph(*m_graph, time);
        EncodeFiltered();
    }
    m_graph = MakeGraph(frames);
    m_filterable = std::move(frames);
}

void TranscodedStream::EncodeFiltered() {
    while (WantsMore() && m_graph->Pull(*m_filtered)) {
        m_filtered->pts = av_rescale_q(m_filtered->pts, m_graph->TimeBase(), m_encoder.Context().time_base);
        if (Prepare(*m_filtered)) {
            m_nextPts = m_filtered->pts + EncodedDurationOf(*m_filtered);
            Encode(m_filtered.get());
        }
        av_frame_unref(m_filtered.get());
    }
}

void TranscodedStream::Encode(const AVFrame* frame) {
    m_encoder.Encode(
        frame, [&](AVPacket& packet) { m_muxer.Write(packet, m_outputIndex, m_encoder.Context().time_base, m_begin); });
}

void TranscodedStream::RequireFrames() const {
    if (m_decoder.HasDecoded()) return;
    const std::string what = "nothing of the " + std::string(av_get_media_type_string(m_stream.codecpar->codec_type)) +
                             " stream of " + m_input.QuotedName() + " could be decoded";
    // A part of the input may lie where the stream pauses.
    if (m_decoder.LastError() < 0 || !m_input.IsPart()) throw StreamError(m_stream, what, m_decoder.LastError());
}

}  // namespace NorvexExport::Media
