/// What pictures and sound have in common on their way from the input to the output.
#pragma once

#include <cstdint>
#include <memory>

#include "Decoding.h"
#include "Encoding.h"
#include "Filtering.h"
#include "Input.h"
#include "Muxing.h"
#include "OutputStream.h"

namespace NorvexExport::Media {

/// A stream that is decoded, filtered and encoded.
class TranscodedStream : public OutputStream {
public:
    int SourceIndex() const override { return m_stream.index; }

    void Take(const AVPacket& packet) override;

    bool WantsMore() const override { return !(IsSingle() && m_nextPts > 0) && !m_isOver; }

    void Finish() override;

    double Seconds() const override {
        return static_cast<double>(m_nextPts) * av_q2d(m_encoder.Context().time_base) +
               static_cast<double>(m_begin) / AV_TIME_BASE;
    }

protected:
    TranscodedStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer);

    const Input& Source() const { return m_input; }
    const AVStream& SourceStream() const { return m_stream; }
    const AVCodecContext& EncoderContext() const { return m_encoder.Context(); }
    int EncoderFrameSize() const { return m_encoder.FrameSize(); }
    bool HasGraph() const { return m_graph != nullptr; }
    void MarkCover() const { m_muxer.MarkCover(m_outputIndex); }
    /// Where the next frame of the output belongs, in the time base of the encoder.
    std::int64_t NextPts() const { return m_nextPts; }
    std::int64_t SoundDelay() const { return m_muxer.SoundDelay(m_outputIndex); }

    /// When in the film the first frame of the output is shown, in AV_TIME_BASE units as all times here.
    std::int64_t BeganAt() const { return m_begin; }
    void BeginAt(std::int64_t time) { m_begin = time; }
    /// Says that the film is over.
    void End() { m_isOver = true; }
    /// Filters a frame which stands at that time on the line of the graph.
    void Filter(AVFrame& frame, std::int64_t time);

    /// Whether the first frame is all that is wanted.
    virtual bool IsSingle() const = 0;
    /// Filters a decoded frame, that is shown or heard at that time in the film.
    virtual void TakeFrame(AVFrame& frame, std::int64_t time) = 0;
    /// What a decoded frame is for a graph.
    virtual FrameKind Describe(AVFrame& frame) const = 0;
    virtual std::unique_ptr<FilterGraph> MakeGraph(const FrameKind& frames) const = 0;
    /// How long a decoded frame lasts.
    virtual std::int64_t DurationOf(const AVFrame& frame) const = 0;
    /// The same of a frame for the encoder, in its time base.
    virtual std::int64_t EncodedDurationOf(const AVFrame& frame) const = 0;
    /// Ends a graph whose source changes at `time`, so far as it can go on elsewhere.
    virtual void EndGraph(FilterGraph& graph, std::int64_t time) const = 0;
    /// Until when on the graph's line its last frame lasts, where the film has it last until `time`.
    virtual std::int64_t EndOnGraph(std::int64_t time) const = 0;
    /// Makes a filtered frame ready for the encoder. False where it must be left out.
    virtual bool Prepare(AVFrame& frame) = 0;

private:
    void Drain();

    void Place(AVFrame& frame);

    /// Size, shape or format may change within one stream.
    void ChangeGraph(FrameKind frames, std::int64_t time);

    void EncodeFiltered();

    void Encode(const AVFrame* frame);

    void RequireFrames() const;

    const Input& m_input;
    const AVStream& m_stream;
    Decoder m_decoder;
    Encoder m_encoder;
    Muxer& m_muxer;
    int m_outputIndex;
    FrameKind m_filterable;                // what m_graph was made for
    std::unique_ptr<FilterGraph> m_graph;  // null before the first frame
    Owned<AVFrame> m_filtered;
    std::int64_t m_nextTime = 0;  // end of the frames decoded so far, in the film
    std::int64_t m_begin = 0;
    std::int64_t m_nextPts = 0;
    bool m_isOver = false;
};

}  // namespace NorvexExport::Media
