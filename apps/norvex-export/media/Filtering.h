/// What happens to pictures and sound between the decoder and the encoder.
#pragma once

#include <cstdint>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

struct FilterStep {
    const char* filter;
    Options options;
};

/// What frames are that a filter graph takes.
struct FrameKind {
    Owned<AVBufferSrcParameters> source;  ///< for the source of the graph
    bool isFullRange = false;             ///< which `source` tells in newer versions alone
};

FrameKind DescribeFrame(const AVFrame& frame, AVRational sampleAspect, AVRational timeBase);

bool IsSame(const FrameKind& one, const FrameKind& other);

/// A chain of filters from one source to one sink.
class FilterGraph {
public:
    FilterGraph(AVMediaType type, AVBufferSrcParameters& source, const std::vector<FilterStep>& steps);

    /// Makes every frame that comes out hold that many samples, apart from the last; 0 lets them be.
    void SetFrameSize(int samples) { av_buffersink_set_frame_size(m_sink, static_cast<unsigned>(samples)); }

    /// Takes the frame's content, and leaves it empty.
    void Push(AVFrame& frame) { Check(av_buffersrc_add_frame(m_source, &frame), "cannot filter"); }

    /// Says that nothing follows and that the last frame lasts until `end`, in the time base of the source.
    void Close(std::int64_t end) { Check(av_buffersrc_close(m_source, end, 0), "cannot filter"); }

    /// False where nothing is ready.
    bool Pull(AVFrame& frame);

    AVRational TimeBase() const { return av_buffersink_get_time_base(m_sink); }

private:
    AVFilterContext* Allocate(const char* name);

    void Append(AVFilterContext* filter, const Options& options);

    Owned<AVFilterGraph> m_graph;
    AVFilterContext* m_source = nullptr;  // the graph owns its filters
    AVFilterContext* m_sink = nullptr;
    AVFilterContext* m_last = nullptr;
};

/// Whether the job makes one picture of its stream rather than a film.
bool IsSingle(const VideoJob& job);

/// `matrix` is the source's; `isFirst` tells the graph at the beginning from one after a change of the source.
std::vector<FilterStep> VideoSteps(const VideoJob& job, const FrameKind& frames, AVColorSpace matrix,
                                   const AVCodecContext& encoder, bool isFirst);

/// `firstSample` is the sample of the output at which the graph begins.
std::vector<FilterStep> AudioSteps(const AVBufferSrcParameters& source, const AVCodecContext& encoder,
                                   std::int64_t firstSample);

}  // namespace NorvexExport::Media
