#include "Filtering.h"

#include <algorithm>
#include <climits>
#include <new>
#include <string>

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libavutil/samplefmt.h>
}

#include "Pixels.h"

namespace NorvexExport::Media {

namespace {

struct Size {
    int width = 0;
    int height = 0;
};

/// One side of a scaled picture, even so that every chroma subsampling divides it.
int EvenSide(std::int64_t length, std::int64_t numerator, std::int64_t denominator, AVRounding rounding) {
    const std::int64_t half = av_rescale_rnd(length, numerator, denominator * 2, rounding);
    return static_cast<int>(std::clamp<std::int64_t>(half, 1, INT_MAX / 2) * 2);
}

/// The size that the source's picture is scaled to before it is padded or cropped to the size of the job.
Size ScaledSize(const VideoJob& job, const AVBufferSrcParameters& source) {
    if (job.fit == Fit::Stretch) return {job.width, job.height};
    const bool covers = job.fit == Fit::Crop;
    const AVRational targetAspect = KnownAspect(ToRational(job.sampleAspect));
    AVRational sourceShape = av_mul_q({source.width, source.height}, KnownAspect(source.sample_aspect_ratio));
    if (job.orientation.SwapsSides()) sourceShape = av_inv_q(sourceShape);
    // The same in pixels of the target.
    const AVRational shape = av_div_q(sourceShape, targetAspect);
    const AVRational frame = {job.width, job.height};
    const bool keepsWidth = (av_cmp_q(shape, frame) > 0) != covers;
    const AVRounding rounding = covers ? AV_ROUND_UP : AV_ROUND_NEAR_INF;
    Size size = {job.width, job.height};
    int& free = keepsWidth ? size.height : size.width;
    const int whole = free;
    free = keepsWidth ? EvenSide(job.width, shape.den, shape.num, rounding)
                      : EvenSide(job.height, shape.num, shape.den, rounding);
    free = covers ? std::max(free, whole) : std::min(free, whole);
    return size;
}

/// What turns a stored picture upright.
std::vector<FilterStep> UprightSteps(const Orientation& orientation) {
    std::vector<FilterStep> steps;
    if (orientation.isMirrored) steps.push_back({"hflip", {}});
    if (orientation.degrees == 90) steps.push_back({"transpose", {{"dir", "clock"}}});
    if (orientation.degrees == 180) steps.insert(steps.end(), {{"hflip", {}}, {"vflip", {}}});
    if (orientation.degrees == 270) steps.push_back({"transpose", {{"dir", "cclock"}}});
    return steps;
}

/// Where a picture stands in a frame; even, so that luma and chroma stay together.
std::string CentredOffset(int outer, int inner) {
    return std::to_string((outer - inner) / 4 * 2);
}

}  // namespace

FrameKind DescribeFrame(const AVFrame& frame, AVRational sampleAspect, AVRational timeBase) {
    Owned<AVBufferSrcParameters> source = Own(av_buffersrc_parameters_alloc());
    source->format = frame.format;
    source->time_base = timeBase;
    source->width = frame.width;
    source->height = frame.height;
    source->sample_aspect_ratio = sampleAspect;
    source->sample_rate = frame.sample_rate;
#if LIBAVFILTER_VERSION_INT >= AV_VERSION_INT(9, 16, 100)
    source->color_space = frame.colorspace;
    source->color_range = frame.color_range;
#endif
    Check(av_channel_layout_copy(&source->ch_layout, &frame.ch_layout), "cannot copy a channel layout");
    const bool isFullRange =
        frame.color_range == AVCOL_RANGE_JPEG || IsFullRangeYuv(static_cast<AVPixelFormat>(frame.format));
    return {std::move(source), isFullRange};
}

bool IsSame(const FrameKind& one, const FrameKind& other) {
    const AVBufferSrcParameters& left = *one.source;
    const AVBufferSrcParameters& right = *other.source;
#if LIBAVFILTER_VERSION_INT >= AV_VERSION_INT(9, 16, 100)
    if (left.color_space != right.color_space || left.color_range != right.color_range) return false;
#endif
    return one.isFullRange == other.isFullRange && left.format == right.format && left.width == right.width &&
           left.height == right.height && av_cmp_q(left.sample_aspect_ratio, right.sample_aspect_ratio) == 0 &&
           left.sample_rate == right.sample_rate && av_channel_layout_compare(&left.ch_layout, &right.ch_layout) == 0;
}

FilterGraph::FilterGraph(AVMediaType type, AVBufferSrcParameters& source, const std::vector<FilterStep>& steps)
    : m_graph(Own(avfilter_graph_alloc())) {
    const bool isVideo = type == AVMEDIA_TYPE_VIDEO;
    m_source = Allocate(isVideo ? "buffer" : "abuffer");
    Check(av_buffersrc_parameters_set(m_source, &source), "cannot set up the source of the filters");
    Append(m_source, {});
    for (const FilterStep& step : steps) Append(Allocate(step.filter), step.options);
    m_sink = Allocate(isVideo ? "buffersink" : "abuffersink");
    Append(m_sink, {});
    Check(avfilter_graph_config(m_graph.get(), nullptr), "cannot set up the filters");
}

bool FilterGraph::Pull(AVFrame& frame) {
    const int result = av_buffersink_get_frame(m_sink, &frame);
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return false;
    Check(result, "cannot filter");
    return true;
}

AVFilterContext* FilterGraph::Allocate(const char* name) {
    const AVFilter* const filter = avfilter_get_by_name(name);
    if (filter == nullptr) throw MediaError("this FFmpeg has no filter " + Quoted(name));
    AVFilterContext* const context = avfilter_graph_alloc_filter(m_graph.get(), filter, nullptr);
    if (context == nullptr) throw std::bad_alloc();
    return context;
}

void FilterGraph::Append(AVFilterContext* filter, const Options& options) {
    const std::string name = Quoted(filter->filter->name);
    for (const auto& [key, value] : options) {
        const int result = av_opt_set(filter, key.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
        if (result < 0) Fail("the filter " + name + " does not take " + key + "=" + value, result);
    }
    const int result = avfilter_init_str(filter, nullptr);
    if (result < 0) Fail("cannot set up the filter " + name + WithOptions(options), result);
    if (m_last != nullptr) Check(avfilter_link(m_last, 0, filter, 0), "cannot connect the filters");
    m_last = filter;
}

bool IsSingle(const VideoJob& job) {
    return job.isCover || job.isStill;
}

std::vector<FilterStep> VideoSteps(const VideoJob& job, const FrameKind& frames, AVColorSpace matrix,
                                   const AVCodecContext& encoder, bool isFirst) {
    const AVBufferSrcParameters& source = *frames.source;
    const Size size = ScaledSize(job, source);
    const Conversion colours = ConversionFor(static_cast<AVPixelFormat>(source.format), matrix, source.height, encoder);
    const auto number = [](int value) { return std::to_string(value); };
    const auto ratio = [](AVRational value) { return std::to_string(value.num) + "/" + std::to_string(value.den); };

    FilterStep rate{"fps", {{"fps", ratio(encoder.framerate)}}};
    // The first picture also covers the time before it, so that the streams of the output begin together.
    if (isFirst) rate.options.emplace_back("start_time", "0");

    FilterStep scale{"scale", {{"w", number(size.width)}, {"h", number(size.height)}}};
    scale.options.emplace_back("flags", job.scaler.empty() ? "bicubic" : job.scaler);
    // The scaler copies every picture that it is told anything of, though it has the range already.
    const bool wantsFullRange = encoder.color_range == AVCOL_RANGE_JPEG;
    const bool hasRange = source.format == encoder.pix_fmt && frames.isFullRange == wantsFullRange;
    if (encoder.color_range != AVCOL_RANGE_UNSPECIFIED && !hasRange) {
        scale.options.emplace_back("out_range", wantsFullRange ? "pc" : "tv");
    }
    if (colours.from != nullptr) scale.options.emplace_back("in_color_matrix", colours.from);
    if (colours.to != nullptr) scale.options.emplace_back("out_color_matrix", colours.to);

    if (job.fields == Fields::Keep) scale.options.emplace_back("interl", "1");

    std::vector<FilterStep> steps;
    if (job.fields == Fields::Deinterlace) steps.push_back({"bwdif", {{"mode", "send_frame"}}});
    if (!IsSingle(job)) steps.push_back(rate);
    const std::vector<FilterStep> upright = UprightSteps(job.orientation);
    steps.insert(steps.end(), upright.begin(), upright.end());
    steps.push_back(scale);
    if (size.width < job.width || size.height < job.height) {
        steps.push_back({"pad",
                         {{"w", number(job.width)},
                          {"h", number(job.height)},
                          {"x", CentredOffset(job.width, size.width)},
                          {"y", CentredOffset(job.height, size.height)}}});
    } else if (size.width > job.width || size.height > job.height) {
        steps.push_back({"crop",
                         {{"w", number(job.width)},
                          {"h", number(job.height)},
                          {"x", CentredOffset(size.width, job.width)},
                          {"y", CentredOffset(size.height, job.height)}}});
    }
    steps.push_back({"setsar", {{"max", number(INT_MAX)}, {"sar", ratio(encoder.sample_aspect_ratio)}}});
    steps.push_back({"format", {{"pix_fmts", av_get_pix_fmt_name(encoder.pix_fmt)}}});
    return steps;
}

std::vector<FilterStep> AudioSteps(const AVBufferSrcParameters& source, const AVCodecContext& encoder,
                                   std::int64_t firstSample) {
    const std::string rate = std::to_string(encoder.sample_rate);
    // The resampler counts the samples of its source.
    const std::int64_t begin = av_rescale(firstSample, source.sample_rate, encoder.sample_rate);
    // "async" fills gaps and trims overlaps by the timestamps and does not stretch. The matrix of a down-mix adds up to
    // 1 at most, as it does for whole numbers by itself.
    return {{"aresample",
             {{"sample_rate", rate},
              {"async", "1"},
              {"min_hard_comp", "0.004"},
              {"first_pts", std::to_string(begin)},
              {"rematrix_maxval", "1"}}},
            {"aformat",
             {{"sample_fmts", av_get_sample_fmt_name(encoder.sample_fmt)},
              {"sample_rates", rate},
              {"channel_layouts", ChannelLayout(encoder.ch_layout).Name()}}}};
}

}  // namespace NorvexExport::Media
