/// What every part of the media half stands on: failures, ownership of FFmpeg's objects, numbers, formats, channels.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersrc.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/pixfmt.h>
}

#include "norvex-export/Media.h"

namespace NorvexExport::Media {

using Options = std::vector<std::pair<std::string, std::string>>;

/// A name for a message, on one line whatever characters it holds.
std::string Quoted(std::string text);

[[noreturn]] void Fail(const std::string& what, int error);
[[noreturn]] void Fail(const std::string& what, const std::error_code& error);
int Check(int result, const char* what);

/// Nothing can be made of one stream of the input. The others can do without it.
class StreamError : public MediaError {
public:
    /// `error` is FFmpeg's, 0 where there is none.
    StreamError(const AVStream& stream, const std::string& what, int error = 0);

    int StreamIndex() const { return m_streamIndex; }

private:
    int m_streamIndex;
};

/// The options that something was given, for the message that it failed with them; empty without options.
std::string WithOptions(const Options& options);

struct Release {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    void operator()(AVBufferSrcParameters* source) const {
        av_channel_layout_uninit(&source->ch_layout);
        av_free(source);
    }
};

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

struct CloseOutput {
    void operator()(AVFormatContext* context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

template <class T>
using Owned = std::unique_ptr<T, Release>;

/// Takes over what an allocating function of FFmpeg returned.
template <class T>
Owned<T> Own(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return Owned<T>(object);
}

AVRational ToRational(const Fraction& fraction);
Fraction ToFraction(AVRational rational);
bool IsPositive(AVRational rational);

/// Shape of one pixel; FFmpeg says 0 for the unknown one.
AVRational KnownAspect(AVRational aspect);

/// How the stream's pictures are turned for a viewer, as nine numbers; null where the stream does not say.
const std::int32_t* DisplayMatrix(const AVStream& stream);

bool HasFlag(AVPixelFormat format, unsigned flag);
bool IsYuv(AVPixelFormat format);

/// A channel layout as a value.
class ChannelLayout {
public:
    /// The given one, or the default one of its count where it only says a count.
    explicit ChannelLayout(const AVChannelLayout& layout);
    explicit ChannelLayout(const std::string& name) {
        const int result = av_channel_layout_from_string(&m_layout, name.c_str());
        if (result < 0) Fail("there is no channel layout " + Quoted(name), result);
    }
    ChannelLayout(const ChannelLayout&) = delete;
    ChannelLayout& operator=(const ChannelLayout&) = delete;
    ~ChannelLayout() { av_channel_layout_uninit(&m_layout); }

    const AVChannelLayout& Get() const { return m_layout; }
    std::string Name() const;

private:
    AVChannelLayout m_layout{};
};

}  // namespace NorvexExport::Media
