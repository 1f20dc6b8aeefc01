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

    bool WantsMore() const override { return !m_isComplete; }

    void Finish() override;

    double Seconds() const override;

protected:
    TranscodedStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer);

    const Input& Source() const { return m_input; }
    const AVStream& SourceStream() const { return m_stream; }
    const AVCodecContext& EncoderContext() const { return m_encoder.Context(); }
    int EncoderFrameSize() const { return m_encoder.FrameSize(); }
    const Muxer& Output() const { return m_muxer; }
    void MarkCover() const { m_muxer.MarkCover(m_outputIndex); }

    /// Takes a decoded frame, with its time in the film in AV_TIME_BASE units.
    virtual void TakeFrame(AVFrame& frame, std::int64_t time) = 0;
    /// Encodes what was held back.
    virtual void TakeRest() = 0;
    /// Whether further frames would change nothing.
    virtual bool IsOver() const = 0;
    /// How long a decoded frame lasts, in the time base of the stream.
    virtual std::int64_t DurationOf(const AVFrame& frame) const = 0;

    /// When in the film the encoder's clock shows 0, in AV_TIME_BASE units. Before the first frame is encoded.
    void BeginAt(std::int64_t time) { m_begin = time; }
    std::int64_t BeganAt() const { return m_begin; }

    /// Where the next frame of the output belongs, in the time base of the encoder.
    std::int64_t NextPts() const { return m_nextPts; }
    /// Encodes a frame that is to stand there and last that long.
    void Encode(AVFrame& frame, std::int64_t duration);

private:
    void Decode(const AVPacket* packet);
    void Complete();
    void EncodeNext(const AVFrame* frame);
    void RequireFrames() const;

    const Input& m_input;
    const AVStream& m_stream;
    Decoder m_decoder;
    Encoder m_encoder;
    Muxer& m_muxer;
    int m_outputIndex;
    std::int64_t m_nextTime = AV_NOPTS_VALUE;  // end of the last decoded frame, in the time base of the stream
    std::int64_t m_begin = 0;
    std::int64_t m_nextPts = 0;
    bool m_isComplete = false;
};

}  // namespace NorvexExport::Media
