#include "AudioStream.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/samplefmt.h>
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

    FrameKind Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, AVRational{0, 1}, av_get_time_base_q());
    }

    std::unique_ptr<FilterGraph> MakeGraph(const FrameKind& frames) const override {
        auto graph = std::make_unique<FilterGraph>(AVMEDIA_TYPE_AUDIO, *frames.source,
                                                   AudioSteps(*frames.source, EncoderContext(), NextPts()));
        graph->SetFrameSize(EncoderFrameSize());
        return graph;
    }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        return av_rescale_q(frame.nb_samples, AVRational{1, RateOf(frame)}, av_get_time_base_q());
    }

    void TakeFrame(AVFrame& frame, std::int64_t time) override {
        if (!m_delay) m_delay = SoundDelay();
        time += *m_delay;
        const int rate = RateOf(frame);
        const std::int64_t next = m_rate > 0 ? Heard() : 0;
        if (m_rate == 0 || IsOff(time - next) || HasJumped(time, time - next)) {
            FillUpTo(time, frame, next);
            SetTo(time, rate);
        } else if (rate != m_rate) {
            SetTo(next, rate);
        }
        const std::int64_t begin = Heard();
        m_samplesHeard += frame.nb_samples;
        Filter(frame, begin);
    }

    std::int64_t EndOnGraph(std::int64_t time) const override { return time; }

    /// Where in the film the sound has come to, as its samples tell.
    std::int64_t Heard() const {
        return m_anchor + av_rescale_q(m_samplesHeard, AVRational{1, m_rate}, av_get_time_base_q());
    }

    void SetTo(std::int64_t time, int rate) {
        m_anchor = time;
        m_samplesHeard = 0;
        m_rate = rate;
        m_drift = 0;
    }

    /// Whether the sound must be cut or filled to stay in step. Coarse clocks scatter about the time that the samples
    /// tell, and only what lasts is more than that.
    bool IsOff(std::int64_t deviation) {
        constexpr std::int64_t scatter = std::int64_t{50} * AV_TIME_BASE / 1000;
        m_drift += (static_cast<double>(deviation) - m_drift) / 8;
        const std::int64_t off = std::abs(deviation);
        return off > scatter || (off > bearable && std::abs(m_drift) > static_cast<double>(bearable));
    }

    /// Whether the sound is off because the input's time has jumped: then it is so for good.
    bool HasJumped(std::int64_t time, std::int64_t deviation) {
        if (m_jumps != Source().Times().Jumps()) m_jumpedAt = time;
        m_jumps = Source().Times().Jumps();
        // The jump may have been met in another stream, and that of the sound be still to come.
        if (!m_jumpedAt || time - *m_jumpedAt > AV_TIME_BASE || std::abs(deviation) <= bearable) return false;
        m_jumpedAt.reset();
        return true;
    }

    /// Silence from `begin` to `time` for a frame that is to stand there: piece by piece, where to leave it to the
    /// resampler would take the memory for all of it at once.
    void FillUpTo(std::int64_t time, const AVFrame& frame, std::int64_t begin) {
        const AVRational second = {1, 1};
        begin = std::max<std::int64_t>(begin, 0);
        for (; time - begin > 2 * AV_TIME_BASE && begin < Source().FilmEnd(); begin += AV_TIME_BASE) {
            const Owned<AVFrame> silence = Own(av_frame_alloc());
            silence->format = frame.format;
            silence->sample_rate = frame.sample_rate;
            silence->nb_samples = static_cast<int>(av_rescale_q(1, second, AVRational{1, frame.sample_rate}));
            Check(av_channel_layout_copy(&silence->ch_layout, &frame.ch_layout), "cannot copy a channel layout");
            Check(av_frame_get_buffer(silence.get(), 0), "cannot make silence");
            Check(av_samples_set_silence(silence->extended_data, 0, silence->nb_samples, frame.ch_layout.nb_channels,
                                         static_cast<AVSampleFormat>(frame.format)),
                  "cannot make silence");
            Filter(*silence, begin);
        }
    }

    int RateOf(const AVFrame& frame) const {
        return frame.sample_rate > 0 ? frame.sample_rate : SourceStream().codecpar->sample_rate;
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
        if (Source().FilmEnd() != Span::endless) {
            const std::int64_t end = av_rescale_q(Source().FilmEnd() + m_delay.value_or(0), av_get_time_base_q(),
                                                  EncoderContext().time_base);
            frame.nb_samples = static_cast<int>(std::min<std::int64_t>(frame.nb_samples, end - frame.pts));
            if (frame.nb_samples <= 0) End();
            if (frame.nb_samples <= 0) return false;
        }
        m_samples += frame.nb_samples;
        return true;
    }

    static constexpr std::int64_t bearable = std::int64_t{8} * AV_TIME_BASE / 1000;

    std::int64_t m_anchor = 0;               // where in the film the samples were last set to their time
    std::int64_t m_samplesHeard = 0;         // since then
    int m_rate = 0;                          // of them, 0 before the first
    double m_drift = 0;                      // of the stamps from what the samples tell, smoothed
    long long m_jumps = 0;                   // of the input, that the sound has heard of
    std::optional<std::int64_t> m_jumpedAt;  // the last of them, while the sound may still have to follow
    std::optional<std::int64_t> m_delay;     // that the container asks of the sound
    long long m_samples = 0;
};

}  // namespace

std::unique_ptr<OutputStream> MakeAudioStream(const Input& input, const AVStream& stream, const AudioJob& job,
                                              bool globalHeader, Muxer& muxer) {
    Encoder encoder = OpenAudioEncoder(job, *stream.codecpar, globalHeader);
    return std::make_unique<AudioStream>(input, stream, std::move(encoder), muxer);
}

}  // namespace NorvexExport::Media
