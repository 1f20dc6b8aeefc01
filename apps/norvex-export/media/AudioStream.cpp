#include "AudioStream.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

#include "TranscodedStream.h"

namespace NorvexExport::Media {

namespace {

class AudioStream : public TranscodedStream {
public:
    AudioStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer)
        : TranscodedStream(input, stream, std::move(encoder), muxer) {}

    void Report(ExportResult& result) const override {
        result.audioSamples += m_samples;
        result.audioBitrates.push_back(EncoderContext().bit_rate);
    }

private:
    bool IsSingle() const override { return false; }

    Owned<AVBufferSrcParameters> Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, AVRational{0, 1}, SourceStream().time_base);
    }

    std::unique_ptr<FilterGraph> MakeGraph(AVBufferSrcParameters& source) const override {
        auto graph =
            std::make_unique<FilterGraph>(AVMEDIA_TYPE_AUDIO, source, AudioSteps(source, EncoderContext(), NextPts()));
        graph->SetFrameSize(EncoderFrameSize());
        return graph;
    }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        const int rate = frame.sample_rate > 0 ? frame.sample_rate : SourceStream().codecpar->sample_rate;
        return av_rescale_q(frame.nb_samples, AVRational{1, rate}, SourceStream().time_base);
    }

    std::int64_t EncodedDurationOf(const AVFrame& frame) const override { return frame.nb_samples; }

    /// Nothing to do: to close the graph would bring out a short frame, and encoders of a fixed frame size take
    /// one only at the end. The next graph fills the place of those samples, less than a frame, with silence.
    void EndGraph(FilterGraph& graph, std::int64_t time) const override {
        (void)graph;
        (void)time;
    }

    bool Prepare(AVFrame& frame) override {
        frame.pts = std::max(frame.pts, NextPts());
        m_samples += frame.nb_samples;
        return true;
    }

    long long m_samples = 0;
};

}  // namespace

std::unique_ptr<OutputStream> MakeAudioStream(const Input& input, const AVStream& stream, const AudioJob& job,
                                              bool globalHeader, Muxer& muxer) {
    Encoder encoder = OpenAudioEncoder(job, *stream.codecpar, globalHeader);
    return std::make_unique<AudioStream>(input, stream, std::move(encoder), muxer);
}

}  // namespace NorvexExport::Media
