#include "VideoStream.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/mathematics.h>
}

#include "TranscodedStream.h"

namespace NorvexExport::Media {

namespace {

class VideoStream : public TranscodedStream {
public:
    VideoStream(const Input& input, const AVStream& stream, const VideoJob& job, Encoder encoder, Muxer& muxer)
        : TranscodedStream(input, stream, std::move(encoder), muxer), m_job(job), m_lead(Lead()) {
        if (job.isCover) MarkCover();
    }

    void Report(ExportResult& result) const override {
        result.videoFrames += m_frames;
        result.videoBitrates.push_back(EncoderContext().bit_rate);
    }

private:
    bool IsSingle() const override { return Media::IsSingle(m_job); }

    FrameKind Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, Source().SampleAspect(SourceStream(), &frame), av_get_time_base_q());
    }

    std::unique_ptr<FilterGraph> MakeGraph(const FrameKind& frames) const override {
        const AVColorSpace matrix = SourceStream().codecpar->color_space;
        const std::vector<FilterStep> steps = VideoSteps(m_job, frames, matrix, EncoderContext(), !HasGraph());
        return std::make_unique<FilterGraph>(AVMEDIA_TYPE_VIDEO, *frames.source, steps);
    }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        const std::int64_t steady = av_rescale_q(1, av_inv_q(SourceRate()), av_get_time_base_q());
        const std::int64_t told = av_rescale_q(TicksOf(frame), SourceStream().time_base, av_get_time_base_q());
        return std::max(steady, std::min(told, TimeLine::longestGap));
    }

    /// The grid of the output's pictures goes through the first one, so that each stands at its own time. The first one
    /// also covers the time before it, so that the streams of the output begin together.
    void TakeFrame(AVFrame& frame, std::int64_t time) override {
        // A part of the input begins with the picture that is shown then.
        if (IsSingle() && Source().IsPart() && time + DurationOf(frame) <= 0) return;
        if (!m_hasBegun) {
            const AVRational unit = av_get_time_base_q();
            const AVRational picture = av_inv_q(EncoderContext().framerate);
            constexpr std::int64_t rounding = 100;
            const std::int64_t number = av_rescale_q_rnd(time + rounding, unit, picture, AV_ROUND_DOWN);
            if (!IsSingle()) BeginAt(std::max<std::int64_t>(0, time - av_rescale_q(number, picture, unit)));
            m_hasBegun = true;
        }
        Filter(frame, time - BeganAt() + m_lead);
    }

    /// Half a picture of the output less half a one of the source, in AV_TIME_BASE units: where pictures are left out,
    /// each number of the output gets the one that is nearest, rather than the last of those that round to it.
    std::int64_t Lead() const {
        const double output = 1 / av_q2d(EncoderContext().framerate);
        const double source = 1 / av_q2d(SourceRate());
        return IsSingle() ? 0 : std::llround(std::max(0.0, output - source) / 2 * AV_TIME_BASE);
    }

    /// What is too short for a picture of its own is not lost where there is none before it.
    std::int64_t EndOnGraph(std::int64_t time) const override {
        const std::int64_t picture = av_rescale_q(1, av_inv_q(EncoderContext().framerate), av_get_time_base_q());
        return NextPts() > 0 ? time - BeganAt() : std::max(time - BeganAt(), picture);
    }

    std::int64_t EncodedDurationOf(const AVFrame& frame) const override {
        (void)frame;
        return 1;
    }

    void EndGraph(FilterGraph& graph, std::int64_t time) const override { graph.Close(time); }

    bool Prepare(AVFrame& frame) override {
        if (IsSingle()) frame.pts = 0;  // it was not brought to any rate
        if (frame.pts < NextPts()) return false;
        if (IsBehindEnd(frame.pts)) {
            End();
            return false;
        }
        frame.pict_type = AV_PICTURE_TYPE_NONE;  // the encoder would take the source's as an order
        frame.quality = EncoderContext().global_quality;
        ++m_frames;
        return true;
    }

    AVRational SourceRate() const { return Source().FrameRate(SourceStream()); }

    static std::int64_t TicksOf(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
        return frame.duration;
#else
        return frame.pkt_duration;
#endif
    }

    bool IsBehindEnd(std::int64_t number) const {
        if (IsSingle() || Source().FilmEnd() == Span::endless) return false;
        const AVRational picture = EncoderContext().time_base;
        return number > 0 && number >= av_rescale_q(Source().FilmEnd() - BeganAt(), av_get_time_base_q(), picture);
    }

    VideoJob m_job;
    std::int64_t m_lead;
    bool m_hasBegun = false;
    long long m_frames = 0;
};

}  // namespace

std::unique_ptr<OutputStream> MakeVideoStream(const Input& input, const AVStream& stream, const VideoJob& job,
                                              bool globalHeader, const Pass& pass, Muxer& muxer) {
    Encoder encoder = OpenVideoEncoder(job, *stream.codecpar, LightOf(input, stream), globalHeader, pass);
    return std::make_unique<VideoStream>(input, stream, job, std::move(encoder), muxer);
}

}  // namespace NorvexExport::Media
