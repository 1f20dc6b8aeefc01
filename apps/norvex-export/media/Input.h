/// What an input holds, and its packets.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

bool IsAttachedPicture(const AVStream& stream);

/// Whether the codec's subtitles are text, as against pictures.
bool IsText(AVCodecID codec);

/// The demuxer of one file.
class Input {
public:
    explicit Input(const std::string& path) : m_path(path), m_name(Quoted(path)), m_context(Open(path)) {
        const int result = avformat_find_stream_info(m_context.get(), nullptr);
        if (result < 0) Fail("cannot read " + m_name, result);
    }

    const std::string& Path() const { return m_path; }
    const std::string& QuotedName() const { return m_name; }
    const char* Container() const { return m_context->iformat->name; }

    /// Seconds, 0 where unknown.
    double Duration() const;

    /// The stream a player would take, or null. `related` is a stream whose programme it should belong to, or -1.
    const AVStream* BestStream(AVMediaType type, int related) const;

    const AVFormatContext& Context() const { return *m_context; }
    int StreamCount() const { return static_cast<int>(m_context->nb_streams); }
    const AVStream& Stream(int index) const { return *m_context->streams[index]; }

    /// The stream of that number, which must be of that type; all streams not asked for are skipped from then on.
    const AVStream& Select(int index, AVMediaType type);

    /// The same of any type.
    const AVStream& Select(int index);

    /// When the first of the selected streams begins, in AV_TIME_BASE units. Where none of them has a time line of
    /// its own, when the first of all streams that have one begins.
    std::int64_t StartTime() const;

    AVRational FrameRate(const AVStream& stream) const;

    /// `frame` may be null.
    AVRational SampleAspect(const AVStream& stream, AVFrame* frame) const {
        return KnownAspect(av_guess_sample_aspect_ratio(m_context.get(), Mutable(stream), frame));
    }

    /// False at the end of the file.
    bool Read(AVPacket& packet);

private:
    using OwnedContext = std::unique_ptr<AVFormatContext, CloseInput>;

    static OwnedContext Open(const std::string& path);

    bool Exists(int index) const { return index >= 0 && static_cast<unsigned>(index) < m_context->nb_streams; }

    AVStream* Mutable(const AVStream& stream) const { return m_context->streams[stream.index]; }

    std::string m_path;
    std::string m_name;
    OwnedContext m_context;
    std::vector<int> m_selected;
};

/// Adds all streams of the input to their lists.
void DescribeStreams(const Input& input, InputInfo& info);

}  // namespace NorvexExport::Media
