#include "VideoStream.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/mathematics.h>
}

#include "SteadyRate.h"
#include "TranscodedStream.h"

namespace NorvexExport::Media {

namespace {

class VideoStream : public TranscodedStream {
public:
    VideoStream(const Input& input, const AVStream& stream, const VideoJob& job, Encoder encoder, Muxer& muxer)
        : TranscodedStream(input, stream, std::move(encoder), muxer),
          m_job(job),
          m_rate(EncoderContext().framerate, SourceRate()),
          m_filtered(Own(av_frame_alloc())) {
        if (job.isCover) MarkCover();
    }

    void Report(ExportResult& result) const override {
        result.videoFrames += m_frames;
        result.videoBitrates.push_back(EncoderContext().bit_rate);
    }

    /// Where pictures can only stand at their numbers, the film waits for the first one to reach its own.
    std::int64_t LeadWanted() const override {
        if (IsSingle(m_job) || Output().PlacesStreams() || SourceStream().start_time == AV_NOPTS_VALUE) return 0;
        const std::int64_t first = Source().FilmTime(SourceStream().start_time, SourceStream());
        const AVRational picture = av_inv_q(EncoderContext().framerate);
        const std::int64_t number = av_rescale_q_rnd(first, av_get_time_base_q(), picture, AV_ROUND_UP);
        return std::max<std::int64_t>(0, av_rescale_q(number, picture, av_get_time_base_q()) - std::max<std::int64_t>(first, 0));
    }

private:
    AVRational SourceRate() const { return Source().FrameRate(SourceStream()); }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        const std::int64_t steady = av_rescale_q(1, av_inv_q(SourceRate()), SourceStream().time_base);
        return std::max(steady, DurationIn(frame));
    }

    bool IsOver() const override { return m_isOver; }

    void TakeFrame(AVFrame& frame, std::int64_t time) override {
        const std::int64_t end = time + av_rescale_q(DurationOf(frame), SourceStream().time_base, av_get_time_base_q());
        Place(frame, time);
        m_end = std::min(end, Source().FilmEnd());
    }

    void TakeRest() override {
        if (!m_rate.HasBegun() || (IsSingle(m_job) && m_frames > 0)) return;
        m_rate.Finish(m_end - BeganAt(), m_emit);
    }

    /// A picture that was shown before the film begins is shown until the next one.
    void Place(AVFrame& frame, std::int64_t time) {
        if (time >= Source().FilmEnd() && m_rate.HasBegun()) {
            m_isOver = true;
            return;
        }
        if (!m_rate.HasBegun()) {
            BeginAt(Output().PlacesStreams() ? std::max<std::int64_t>(time, 0) : -Output().Lead());
        }
        if (IsSingle(m_job)) {
            if (time > 0 && m_rate.HasBegun())
        }
        m_rate.Take(frame, std::max<std::int64_t>(time, 0) - BeganAt(), !Output().PlacesStreams(), m_emit);
    }
};
