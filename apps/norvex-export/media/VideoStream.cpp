#include "VideoStream.h"

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
        : TranscodedStream(input, stream, std::move(encoder), muxer), m_job(job) {
        if (job.isCover) MarkCover();
    }

    void Report(ExportResult& result) const override {
        result.videoFrames += m_frames;
        result.videoBitrates.push_back(EncoderContext().bit_rate);
    }

private:
    bool IsSingle() const override { return Media::IsSingle(m_job); }

    Owned<AVBufferSrcParameters> Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, Source().SampleAspect(SourceStream(), &frame), SourceStream().time_base);
    }

    std::unique_ptr<FilterGraph> MakeGraph(AVBufferSrcParameters& source) const override {
        const AVColorSpace matrix = SourceStream().codecpar->color_space;
        const std::vector<FilterStep> steps = VideoSteps(m_job, source, matrix, EncoderContext(), !HasGraph());
        return std::make_unique<FilterGraph>(AVMEDIA_TYPE_VIDEO, source, steps);
    }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        (void)frame;
        return av_rescale_q(1, av_inv_q(Source().FrameRate(SourceStream())), SourceStream().time_base);
    }

    std::int64_t EncodedDurationOf(const AVFrame& frame) const override {
        (void)frame;
        return 1;
    }

    void EndGraph(FilterGraph& graph, std::int64_t time) const override { graph.Close(time); }

    bool Prepare(AVFrame& frame) override {
        if (IsSingle()) frame.pts = 0;  // it was not brought to any rate
        if (frame.pts < NextPts()) return false;
        frame.pict_type = AV_PICTURE_TYPE_NONE;  // the encoder would take the source's as an order
        frame.quality = EncoderContext().global_quality;
        ++m_frames;
        return true;
    }

    VideoJob m_job;
    long long m_frames = 0;
};

}  // namespace

std::unique_ptr<OutputStream> MakeVideoStream(const Input& input, const AVStream& stream, const VideoJob& job,
                                              bool globalHeader, const Pass& pass, Muxer& muxer) {
    Encoder encoder = OpenVideoEncoder(job, *stream.codecpar, LightOf(input, stream), globalHeader, pass);
    return std::make_unique<VideoStream>(input, stream, job, std::move(encoder), muxer);
}

}  // namespace NorvexExport::Media
