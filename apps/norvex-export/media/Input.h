/// What an input holds, and its packets.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "Basics.h"
#include "TimeLine.h"
#include "norvex-export/Media.h"

namespace NorvexExport::Media {

bool IsAttachedPicture(const AVStream& stream);

/// Whether the codec's subtitles are text, as against pictures.
bool IsText(AVCodecID codec);

/// The demuxer of one file, and the clock of the film that is made of it.
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
    /// Whether the header says how long the input lasts.
    bool StatesDuration() const;

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

    /// Goes to the beginning of the film, once all its streams are selected. That is the picture that is shown then,
    /// and where pictures of a stream go over as they are (`copied`, else -1), the last of its key pictures before.
    /// Throws MediaError where the input ends before it.
    void Begin(const Span& span, int copied);

    /// Lets the film begin that much before its first packet, in AV_TIME_BASE units.
    void Delay(std::int64_t time);

    /// Whether the film is not all of the input.
    bool IsPart() const { return m_isPart; }

    /// When something of a stream happens in the film, in AV_TIME_BASE units. `ticks` are of a packet that was read.
    std::int64_t FilmTime(std::int64_t ticks, const AVStream& stream) const {
        return av_rescale_q(ticks, stream.time_base, av_get_time_base_q()) - m_zero;
    }

    /// When the film begins on the line of the packets, and how long it may last; in AV_TIME_BASE units.
    std::int64_t FilmStart() const { return m_zero; }
    std::int64_t FilmEnd() const { return m_end; }
    /// Whether all packets of the film were read.
    bool IsFilmOver() const;

    /// `frame` may be null.
    AVRational SampleAspect(const AVStream& stream, AVFrame* frame) const {
        return KnownAspect(av_guess_sample_aspect_ratio(m_context.get(), Mutable(stream), frame));
    }

    /// False at the end of the file. The stamps are those of the time line, without jumps.
    bool Read(AVPacket& packet);

    const TimeLine& Times() const { return m_timeLine; }

private:
    using OwnedContext = std::unique_ptr<AVFormatContext, CloseInput>;

    static OwnedContext Open(const std::string& path);

    /// The last time that the header tells of, in AV_TIME_BASE units; AV_NOPTS_VALUE where it does not.
    std::int64_t StatedEnd() const;
    bool IsSelected(int index) const;
    /// Takes what was read ahead first.
    bool ReadPlaced(AVPacket& packet);
    bool ReadStamped(AVPacket& packet);
    TimeLine::Ahead PeekAhead(const AVPacket& current);
    void ReadBeginnings();
    void Seek(std::int64_t time);
    void ReadUpTo(std::int64_t time, int copied);

    bool Exists(int index) const { return index >= 0 && static_cast<unsigned>(index) < m_context->nb_streams; }

    AVStream* Mutable(const AVStream& stream) const { return m_context->streams[stream.index]; }

    std::string m_path;
    std::string m_name;
    OwnedContext m_context;
    std::vector<int> m_selected;
    TimeLine m_timeLine;
    std::deque<Owned<AVPacket>> m_ahead;   // read to bear out a stamp, and not placed yet
    std::deque<Owned<AVPacket>> m_placed;  // read to find where the film begins
    bool m_isPart = false;
    std::int64_t m_zero = 0;
    std::int64_t m_end = Span::endless;
    std::int64_t m_position = 0;  // where the packets have come to, in the film
};

/// Adds all streams of the input to their lists.
void DescribeStreams(const Input& input, InputInfo& info);

}  // namespace NorvexExport::Media
