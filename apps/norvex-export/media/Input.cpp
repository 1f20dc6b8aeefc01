#include "Input.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <utility>

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/pixdesc.h>
#include <libavutil/samplefmt.h>
}

#include "Files.h"
#include "Tags.h"

namespace NorvexExport::Media {

namespace {

/// Any text file opens as a terminal recording or a text picture, which is never what the user means.
bool IsTextArt(AVCodecID codec) {
    return codec == AV_CODEC_ID_ANSI || codec == AV_CODEC_ID_BINTEXT || codec == AV_CODEC_ID_XBIN ||
           codec == AV_CODEC_ID_IDF;
}

/// Whether the stream says enough of itself to be decoded.
bool IsDecodable(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    if (avcodec_find_decoder(parameters.codec_id) == nullptr || IsTextArt(parameters.codec_id)) return false;
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO) return parameters.width > 0 && parameters.height > 0;
    if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
        return parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0;
    }
    return parameters.codec_type == AVMEDIA_TYPE_SUBTITLE;
}

/// In AV_TIME_BASE units, or none where the packet does not say.
std::optional<std::int64_t> ShownAt(const AVPacket& packet, const AVStream& stream) {
    if (packet.pts == AV_NOPTS_VALUE) return TimeLine::StampOf(packet, stream);
    return av_rescale_q(packet.pts, stream.time_base, av_get_time_base_q());
}

/// What decoders of sound want to hear before a beginning, in AV_TIME_BASE units.
constexpr std::int64_t preroll = AV_TIME_BASE / 5;

/// Streams of a millisecond clock may give the clock itself for their rate.
bool IsFrameRate(AVRational rate) {
    return IsPositive(rate) && av_q2d(rate) < 1000;
}

std::vector<std::string> DispositionNames(const AVStream& stream) {
    std::vector<std::string> names;
    for (unsigned bit = 0; bit < 31; ++bit) {
        const int disposition = static_cast<int>(1U << bit);
        if ((stream.disposition & disposition) == 0) continue;
        if (const char* const name = av_disposition_to_string(disposition)) names.emplace_back(name);
    }
    return names;
}

/// Whether the stream belongs to programmes of a transport stream, and the main stream to none of them.
bool IsElsewhere(const AVFormatContext& input, int main, int index) {
    bool hasProgramme = false;
    for (unsigned i = 0; i < input.nb_programs; ++i) {
        const AVProgram& programme = *input.programs[i];
        unsigned* const end = programme.stream_index + programme.nb_stream_indexes;
        const auto holds = [&](int stream) {
            return std::any_of(programme.stream_index, end, [&](unsigned s) { return static_cast<int>(s) == stream; });
        };
        if (!holds(index)) continue;
        if (holds(main)) return false;
        hasProgramme = true;
    }
    return hasProgramme;
}

/// Streams of data that muxers write by themselves: the titles of chapters, and the time code of a tag.
bool IsWrittenAnew(const AVStream& stream) {
    const unsigned tag = stream.codecpar->codec_tag;
    return tag == MKTAG('t', 'e', 'x', 't') || tag == MKTAG('t', 'm', 'c', 'd');
}

/// What streams of all kinds tell, in the description of any of them.
template <class Source>
Source DescribeStream(const AVStream& stream, bool isMain) {
    const AVCodecParameters& parameters = *stream.codecpar;
    Source source;
    source.streamIndex = stream.index;
    source.codecId = avcodec_get_name(parameters.codec_id);
    const std::string language = TagOf(stream.metadata, "language");
    source.language = language == "und" ? "" : language;  // "undetermined", by which MP4 says that it does not know
    source.title = TitleOf(stream);
    source.dispositions = DispositionNames(stream);
    source.isMain = isMain;
    source.isDecodable = IsDecodable(stream);
    source.codecTag = parameters.codec_tag;
    source.codecDataSize = static_cast<std::size_t>(parameters.extradata_size);
    return source;
}

VideoSource DescribeVideo(const Input& input, const AVStream& stream, bool isMain) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const char* const format = av_get_pix_fmt_name(static_cast<AVPixelFormat>(parameters.format));
    auto source = DescribeStream<VideoSource>(stream, isMain);
    source.width = parameters.width;
    source.height = parameters.height;
    source.sampleAspect = ToFraction(input.SampleAspect(stream, nullptr));
    source.orientation = OrientationOf(stream);
    source.isInterlaced = parameters.field_order > AV_FIELD_PROGRESSIVE;
    source.frameRate = ToFraction(input.FrameRate(stream));
    source.pixelFormat = format != nullptr ? format : "";
    source.isAttachedPicture = IsAttachedPicture(stream);
    return source;
}

AudioSource DescribeAudio(const AVStream& stream, bool isMain) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const char* const format = av_get_sample_fmt_name(static_cast<AVSampleFormat>(parameters.format));
    auto source = DescribeStream<AudioSource>(stream, isMain);
    source.sampleRate = parameters.sample_rate;
    source.channels = parameters.ch_layout.nb_channels;
    if (source.channels > 0) source.layout = ChannelLayout(parameters.ch_layout).Name();
    source.sampleFormat = format != nullptr ? format : "";
    return source;
}

SubtitleSource DescribeSubtitle(const AVStream& stream, bool isMain) {
    auto source = DescribeStream<SubtitleSource>(stream, isMain);
    source.isText = IsText(stream.codecpar->codec_id);
    return source;
}

AttachmentSource DescribeAttachment(const AVStream& stream) {
    auto source = DescribeStream<AttachmentSource>(stream, false);
    source.fileName = TagOf(stream.metadata, "filename");
    return source;
}

}  // namespace

bool IsAttachedPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool IsText(AVCodecID codec) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

double Input::Duration() const {
    if (m_context->duration > 0) return static_cast<double>(m_context->duration) / AV_TIME_BASE;
    double longest = 0;
    for (unsigned i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& stream = *m_context->streams[i];
        if (stream.duration == AV_NOPTS_VALUE) continue;
        longest = std::max(longest, static_cast<double>(stream.duration) * av_q2d(stream.time_base));
    }
    return longest;
}

bool Input::StatesDuration() const {
    // What else there is was guessed from the stamps themselves, or from the size of the file: also by the demuxers of
    // Ogg, whose stamps may jump, and of FLV, which read the last of them.
    const AVInputFormat& format = *m_context->iformat;
    const bool isRead = (format.flags & AVFMT_TS_DISCONT) != 0 || std::string_view(format.name) == "flv";
    return m_context->duration_estimation_method == AVFMT_DURATION_FROM_STREAM && !isRead;
}

const AVStream* Input::BestStream(AVMediaType type, int related) const {
    const int best = av_find_best_stream(m_context.get(), type, -1, related, nullptr, 0);
    if (best >= 0) {
        const AVStream& stream = *m_context->streams[best];
        if (IsDecodable(stream) && !IsAttachedPicture(stream)) return &stream;
    }
    const AVStream* picture = nullptr;
    for (unsigned i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& stream = *m_context->streams[i];
        if (stream.codecpar->codec_type != type || !IsDecodable(stream)) continue;
        if (!IsAttachedPicture(stream)) return &stream;
        if (picture == nullptr) picture = &stream;
    }
    return picture;
}

const AVStream& Input::Select(int index, AVMediaType type) {
    if (!Exists(index) || m_context->streams[index]->codecpar->codec_type != type) {
        throw MediaError(m_name + " has no " + av_get_media_type_string(type) + " stream " + std::to_string(index));
    }
    return Select(index);
}

const AVStream& Input::Select(int index) {
    if (!Exists(index)) throw MediaError(m_name + " has no stream " + std::to_string(index));
    if (m_selected.empty()) {
        for (unsigned i = 0; i < m_context->nb_streams; ++i) m_context->streams[i]->discard = AVDISCARD_ALL;
    }
    m_selected.push_back(index);
    m_context->streams[index]->discard = AVDISCARD_DEFAULT;
    return *m_context->streams[index];
}

std::int64_t Input::StartTime() const {
    std::int64_t selected = AV_NOPTS_VALUE;
    std::int64_t any = AV_NOPTS_VALUE;
    for (int index = 0; index < static_cast<int>(m_context->nb_streams); ++index) {
        const AVStream& stream = *m_context->streams[index];
        if (!IsTimed(stream) || stream.start_time == AV_NOPTS_VALUE) continue;
        const std::int64_t start =
            av_rescale_q(stream.start_time, stream.time_base, av_get_time_base_q()) + m_timeLine.FirstMoved(stream);
        const auto take = [&](std::int64_t& earliest) {
            earliest = earliest == AV_NOPTS_VALUE ? start : std::min(earliest, start);
        };
        take(any);
        if (IsSelected(index)) take(selected);
    }
    const std::int64_t earliest = selected == AV_NOPTS_VALUE ? any : selected;
    return earliest == AV_NOPTS_VALUE ? 0 : earliest;
}

AVRational Input::FrameRate(const AVStream& stream) const {
    const AVRational guess = av_guess_frame_rate(m_context.get(), Mutable(stream), nullptr);
    if (IsFrameRate(guess)) return guess;
    return IsFrameRate(stream.avg_frame_rate) ? stream.avg_frame_rate : AVRational{25, 1};
}

void Input::Begin(const Span& span, int copied) {
    m_timeLine.Expect(StatedEnd());
    ReadBeginnings();
    const std::int64_t start = StartTime();
    m_isPart = span.begin > 0 || span.end != Span::endless;
    m_zero = start + span.begin;
    if (span.begin > 0) {
        // Where stamps may jump, none of them tells where to go.
        if ((m_context->iformat->flags & AVFMT_TS_DISCONT) == 0) Seek(m_zero - preroll);
        ReadUpTo(m_zero, copied);
    }
    // What goes over as it is begins earlier and ends where it was asked to; what is encoded lasts as long.
    const std::int64_t earlier = copied >= 0 ? start + span.begin - m_zero : 0;
    m_end = span.end == Span::endless ? span.end : span.end - span.begin + earlier;
}

void Input::Delay(std::int64_t time) {
    m_zero -= time;
    if (m_end != Span::endless) m_end += time;
}

bool Input::IsFilmOver() const {
    // Packets of one time stand that far from each other at most.
    constexpr std::int64_t apart = std::int64_t{5} * AV_TIME_BASE;
    return m_end != Span::endless && m_position - apart > m_end;
}

bool Input::Read(AVPacket& packet) {
    if (m_placed.empty()) {
        if (!ReadPlaced(packet)) return false;
    } else {
        av_packet_unref(&packet);
        av_packet_move_ref(&packet, m_placed.front().get());
        m_placed.pop_front();
    }
    const std::int64_t ticks = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
    const AVStream& stream = Stream(packet.stream_index);
    if (ticks != AV_NOPTS_VALUE) m_position = std::max(m_position, FilmTime(ticks, stream));
    return true;
}

bool Input::ReadPlaced(AVPacket& packet) {
    if (m_ahead.empty()) {
        if (!ReadStamped(packet)) return false;
    } else {
        av_packet_unref(&packet);
        av_packet_move_ref(&packet, m_ahead.front().get());
        m_ahead.pop_front();
    }
    const AVStream& stream = Stream(packet.stream_index);
    m_timeLine.Place(packet, stream, [&] { return PeekAhead(packet); });
    return true;
}

bool Input::ReadStamped(AVPacket& packet) {
    // A damaged file may give an error where a packet should be and go on behind it.
    constexpr int patience = 100;
    int result = 0;
    for (int failures = 0; failures < patience; ++failures) {
        av_packet_unref(&packet);
        result = av_read_frame(m_context.get(), &packet);
        if (result >= 0) return true;
        if (result != AVERROR_INVALIDDATA && result != AVERROR(EAGAIN)) break;
    }
    // A disk that fails looks like the end of the file to some demuxers.
    if (result == AVERROR_EOF && m_context->pb != nullptr && m_context->pb->error < 0) result = m_context->pb->error;
    if (result != AVERROR_EOF) Fail("cannot read " + m_name, result);
    return false;
}

TimeLine::Ahead Input::PeekAhead(const AVPacket& current) {
    const AVStream& stream = Stream(current.stream_index);
    constexpr std::size_t most = 500;
    TimeLine::Ahead ahead;
    std::vector<TimeLine::Coming>& coming = ahead.coming;
    const auto take = [&](const AVPacket& packet) {
        if (packet.stream_index != stream.index) return;
        const std::int64_t duration = std::max<std::int64_t>(packet.duration, 0);
        coming.push_back(
            {TimeLine::StampOf(packet, stream), av_rescale_q(duration, stream.time_base, av_get_time_base_q())});
    };
    for (auto packet = m_ahead.begin(); packet != m_ahead.end() && coming.size() < TimeLine::peeked; ++packet) {
        take(**packet);
    }
    while (m_ahead.size() < most && coming.size() < TimeLine::peeked) {
        Owned<AVPacket> packet = Own(av_packet_alloc());
        if (!ReadStamped(*packet)) break;
        take(*packet);
        m_ahead.push_back(std::move(packet));
    }
    const auto shown = ShownAt(current, stream);
    std::vector<bool> isKnown(m_context->nb_streams);
    const auto look = [&](const AVPacket& packet) {
        const AVStream& other = Stream(packet.stream_index);
        const auto index = static_cast<std::size_t>(other.index);
        const auto begin = ShownAt(packet, other);
        // What is far away belongs to the part before.
        if (!shown || !begin || !IsTimed(other) || isKnown[index] || std::llabs(*shown - *begin) >= AV_TIME_BASE)
            return;
        isKnown[index] = true;
        ahead.lead = std::max(ahead.lead, *shown - *begin);
        if (ahead.picture || other.codecpar->codec_type != AVMEDIA_TYPE_VIDEO) return;
        const std::int64_t duration = av_rescale_q(packet.duration, other.time_base, av_get_time_base_q());
        ahead.picture = TimeLine::FirstPicture{other.index, *begin, duration};
    };
    look(current);
    for (const Owned<AVPacket>& packet : m_ahead) look(*packet);
    return ahead;
}

void Input::ReadBeginnings() {
    constexpr std::size_t most = 100;
    const auto hasBegun = [this](int index) { return !IsTimed(Stream(index)) || m_timeLine.HasBegun(Stream(index)); };
    while (m_placed.size() < most && !std::all_of(m_selected.begin(), m_selected.end(), hasBegun)) {
        Owned<AVPacket> packet = Own(av_packet_alloc());
        if (!ReadPlaced(*packet)) return;
        m_placed.push_back(std::move(packet));
    }
}

std::int64_t Input::StatedEnd() const {
    if (!StatesDuration() || m_context->duration <= 0) return AV_NOPTS_VALUE;
    return StartTime() + m_context->duration + AV_TIME_BASE;
}

bool Input::IsSelected(int index) const {
    return std::find(m_selected.begin(), m_selected.end(), index) != m_selected.end();
}

void Input::Seek(std::int64_t time) {
    // Where that fails all is read, and what lies before the film left out.
    if (av_seek_frame(m_context.get(), -1, time, AVSEEK_FLAG_BACKWARD) < 0) return;
    m_ahead.clear();
    m_placed.clear();
    m_timeLine = TimeLine();
    m_timeLine.Expect(StatedEnd());
}

void Input::ReadUpTo(std::int64_t time, int copied) {
    const auto selectedOf = [this](AVMediaType type) {
        return std::find_if(m_selected.begin(), m_selected.end(), [&](int index) {
            return IsTimed(Stream(index)) && Stream(index).codecpar->codec_type == type;
        });
    };
    auto lead = selectedOf(AVMEDIA_TYPE_VIDEO);
    const bool isOfPictures = lead != m_selected.end();
    if (!isOfPictures) lead = selectedOf(AVMEDIA_TYPE_AUDIO);
    if (lead == m_selected.end()) return;  // the rest is short, and tells by itself when it is shown
    const int leader = copied >= 0 ? copied : *lead;

    std::vector<const AVPacket*> keys(m_context->nb_streams);  // the last of each stream before the time
    const auto leaveOut = [&] {
        std::vector<bool> isBehindKey(keys.size());
        const AVPacket* const key = copied >= 0 ? keys[static_cast<std::size_t>(copied)] : nullptr;
        const std::int64_t beginning = key != nullptr ? *ShownAt(*key, Stream(copied)) : time;
        const auto isNeeded = [&](const AVPacket& packet) {
            const auto index = static_cast<std::size_t>(packet.stream_index);
            const AVMediaType type = Stream(packet.stream_index).codecpar->codec_type;
            if (&packet == keys[index]) isBehindKey[index] = true;
            if (type == AVMEDIA_TYPE_VIDEO) return keys[index] == nullptr || isBehindKey[index];
            const auto shown = ShownAt(packet, Stream(packet.stream_index));
            // Sound is kept for a second more, as the film may begin with a picture before the time.
            const std::int64_t before = type == AVMEDIA_TYPE_AUDIO ? AV_TIME_BASE : TimeLine::longestGap;
            return !shown || *shown >= beginning - before;
        };
        std::deque<Owned<AVPacket>> needed;
        for (Owned<AVPacket>& packet : m_placed) {
            if (isNeeded(*packet)) needed.push_back(std::move(packet));
        }
        m_placed = std::move(needed);
    };
    // What was read to see the beginnings comes again.
    std::deque<Owned<AVPacket>> again = std::exchange(m_placed, {});
    std::size_t many = 1000;
    bool isThere = false;
    while (!isThere) {
        Owned<AVPacket> packet = Own(av_packet_alloc());
        if (!again.empty()) {
            packet = std::move(again.front());
            again.pop_front();
        } else if (!ReadPlaced(*packet))
            throw MediaError(m_name + " ends before what is wanted of it begins");
        const AVStream& stream = Stream(packet->stream_index);
        const auto stamp = TimeLine::StampOf(*packet, stream);
        const std::int64_t duration = av_rescale_q(packet->duration, stream.time_base, av_get_time_base_q());
        isThere = packet->stream_index == leader && stamp && *stamp + duration > time;
        const auto shown = ShownAt(*packet, stream);
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0 && shown && *shown <= time) {
            keys[static_cast<std::size_t>(packet->stream_index)] = packet.get();
        }
        m_placed.push_back(std::move(packet));
        if (m_placed.size() < many) continue;
        leaveOut();
        many = 2 * m_placed.size() + 1000;
    }
    std::move(again.begin(), again.end(), std::back_inserter(m_placed));
    leaveOut();
    if (!isOfPictures) return;
    // The picture that is shown then begins the film, or the one that the stream can be decoded from.
    std::optional<std::int64_t> first;
    for (const Owned<AVPacket>& packet : m_placed) {
        const bool isKey = (packet->flags & AV_PKT_FLAG_KEY) != 0;
        if (packet->stream_index != leader || (copied >= 0 && !isKey)) continue;
        const auto shown = ShownAt(*packet, Stream(leader));
        if (shown && *shown <= time && (!first || *shown > *first)) first = *shown;
    }
    if (first && (copied >= 0 || time - *first < AV_TIME_BASE)) m_zero = *first;
}

Input::OwnedContext Input::Open(const std::string& path) {
    RequireReadAgain(path);
    AVFormatContext* context = nullptr;  // avformat_open_input frees it where it fails
    const int result = avformat_open_input(&context, FileUrl(path).c_str(), nullptr, nullptr);
    if (result < 0) Fail("cannot open " + Quoted(path), result);
    // Program streams tell the time of one picture in several: the others are told by their order and their rate.
    if (std::string_view(context->iformat->name) == "mpeg") context->flags |= AVFMT_FLAG_GENPTS;
    return OwnedContext(context);
}

void DescribeStreams(const Input& input, InputInfo& info) {
    const AVStream* const video = input.BestStream(AVMEDIA_TYPE_VIDEO, -1);
    const AVStream* const audio = input.BestStream(AVMEDIA_TYPE_AUDIO, video != nullptr ? video->index : -1);
    const AVStream* const timed = video != nullptr ? video : audio;
    const AVStream* const subtitle = input.BestStream(AVMEDIA_TYPE_SUBTITLE, timed != nullptr ? timed->index : -1);
    const auto describeProgramme = [&](auto& streams) {
        for (auto& source : streams) {
            source.isInMainProgramme =
                timed == nullptr || !IsElsewhere(input.Context(), timed->index, source.streamIndex);
        }
    };
    info.chapters = static_cast<int>(input.Context().nb_chapters);
    for (int index = 0; index < input.StreamCount(); ++index) {
        const AVStream& stream = input.Stream(index);
        switch (stream.codecpar->codec_type) {
            case AVMEDIA_TYPE_VIDEO:
                info.video.push_back(DescribeVideo(input, stream, &stream == video));
                break;
            case AVMEDIA_TYPE_AUDIO:
                info.audio.push_back(DescribeAudio(stream, &stream == audio));
                break;
            case AVMEDIA_TYPE_SUBTITLE:
                info.subtitles.push_back(DescribeSubtitle(stream, &stream == subtitle));
                break;
            case AVMEDIA_TYPE_ATTACHMENT:
                info.attachments.push_back(DescribeAttachment(stream));
                break;
            default:
                if (!IsWrittenAnew(stream)) info.data.push_back(DescribeStream<StreamSource>(stream, false));
        }
    }
    describeProgramme(info.video), describeProgramme(info.audio), describeProgramme(info.subtitles);
    describeProgramme(info.attachments), describeProgramme(info.data);
}

}  // namespace NorvexExport::Media
