#include "Streams.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

extern "C" {
#include <libavcodec/bsf.h>
#include <libavutil/mathematics.h>
}

#include "Basics.h"
#include "Decoding.h"
#include "Filtering.h"

namespace NorvexExport::Media {

namespace {

/// A stream that is decoded, filtered and encoded.
class TranscodedStream : public OutputStream {
public:
    int SourceIndex() const override { return m_stream.index; }

    void Take(const AVPacket& packet) override {
        if (!WantsMore()) return;
        m_decoder.Decode(&packet, [this](AVFrame& frame) { Filter(frame); });
        // Nothing follows an attached picture that could push it out of a decoder which holds frames back.
        if (WantsMore() && IsSingle() && IsAttachedPicture(m_stream)) Drain();
        // Muxers hold the sound back until they have its cover.
        if (!WantsMore()) Encode(nullptr);
    }

    bool WantsMore() const override { return !(IsSingle() && m_nextPts > 0); }

    void Finish() override {
        if (!WantsMore()) return;
        Drain();
        RequireFrames();
        if (WantsMore()) {
            m_graph->Close(m_nextTime);
            EncodeFiltered();
        }
        Encode(nullptr);
    }

    double Seconds() const override { return static_cast<double>(m_nextPts) * av_q2d(m_encoder.Context().time_base); }

protected:
    TranscodedStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer)
        : m_input(input),
          m_stream(stream),
          m_decoder(stream),
          m_encoder(std::move(encoder)),
          m_muxer(muxer),
          m_outputIndex(muxer.AddStream(m_encoder.Context())),
          m_startTime(av_rescale_q(input.StartTime(), av_get_time_base_q(), stream.time_base)),
          m_filtered(Own(av_frame_alloc())) {}

    const Input& Source() const { return m_input; }
    const AVStream& SourceStream() const { return m_stream; }
    const AVCodecContext& EncoderContext() const { return m_encoder.Context(); }
    int EncoderFrameSize() const { return m_encoder.FrameSize(); }
    bool HasGraph() const { return m_graph != nullptr; }
    void MarkCover() const { m_muxer.MarkCover(m_outputIndex); }
    /// Where the next frame of the output belongs, in the time base of the encoder.
    std::int64_t NextPts() const { return m_nextPts; }

    /// Whether the first frame is all that is wanted.
    virtual bool IsSingle() const = 0;
    /// What a decoded frame is, as the source of a graph takes it.
    virtual Owned<AVBufferSrcParameters> Describe(AVFrame& frame) const = 0;
    virtual std::unique_ptr<FilterGraph> MakeGraph(AVBufferSrcParameters& source) const = 0;
    /// How long a decoded frame lasts, in the time base of the stream.
    virtual std::int64_t DurationOf(const AVFrame& frame) const = 0;
    /// The same of a frame for the encoder, in its time base.
    virtual std::int64_t EncodedDurationOf(const AVFrame& frame) const = 0;
    /// Ends a graph whose source changes at `time`, so far as it can go on elsewhere.
    virtual void EndGraph(FilterGraph& graph, std::int64_t time) const = 0;
    /// Makes a filtered frame ready for the encoder. False where it must be left out.
    virtual bool Prepare(AVFrame& frame) = 0;

private:
    void Drain() {
        m_decoder.Decode(nullptr, [this](AVFrame& frame) { Filter(frame); });
    }

    void Filter(AVFrame& frame) {
        if (!WantsMore()) return;
        if (frame.best_effort_timestamp == AV_NOPTS_VALUE) {
            frame.pts = m_nextTime;
        } else {
            frame.pts = frame.best_effort_timestamp - m_startTime;
        }
        const std::int64_t end = frame.pts + DurationOf(frame);
        Owned<AVBufferSrcParameters> source = Describe(frame);
        if (!HasGraph() || !IsSame(*m_source, *source)) ChangeGraph(std::move(source), frame.pts);
        m_nextTime = std::max(m_nextTime, end);
        m_graph->Push(frame);
        EncodeFiltered();
    }

    /// Size, shape or format may change within one stream.
    void ChangeGraph(Owned<AVBufferSrcParameters> source, std::int64_t time) {
        if (HasGraph()) {
            EndGraph(*m_graph, time);
            EncodeFiltered();
        }
        m_graph = MakeGraph(*source);
        m_source = std::move(source);
    }

    void EncodeFiltered() {
        while (m_graph->Pull(*m_filtered)) {
            m_filtered->pts = av_rescale_q(m_filtered->pts, m_graph->TimeBase(), m_encoder.Context().time_base);
            if (Prepare(*m_filtered)) {
                m_nextPts = m_filtered->pts + EncodedDurationOf(*m_filtered);
                Encode(m_filtered.get());
            }
            av_frame_unref(m_filtered.get());
        }
    }

    void Encode(const AVFrame* frame) {
        m_encoder.Encode(
            frame, [&](AVPacket& packet) { m_muxer.Write(packet, m_outputIndex, m_encoder.Context().time_base); });
    }

    void RequireFrames() const {
        if (m_decoder.HasDecoded()) return;
        const std::string what = "nothing of the " +
                                 std::string(av_get_media_type_string(m_stream.codecpar->codec_type)) + " stream of " +
                                 m_input.QuotedName() + " could be decoded";
        if (m_decoder.LastError() < 0) Fail(what, m_decoder.LastError());
        throw MediaError(what);
    }

    const Input& m_input;
    const AVStream& m_stream;
    Decoder m_decoder;
    Encoder m_encoder;
    Muxer& m_muxer;
    int m_outputIndex;
    std::int64_t m_startTime;               // of the input, which becomes 0; in the time base of the stream
    Owned<AVBufferSrcParameters> m_source;  // what m_graph was made for
    std::unique_ptr<FilterGraph> m_graph;   // null before the first frame
    Owned<AVFrame> m_filtered;
    std::int64_t m_nextTime = 0;  // end of the frames decoded so far, in the time base of the stream
    std::int64_t m_nextPts = 0;
};

class VideoStream : public TranscodedStream {
public:
    VideoStream(const Input& input, const AVStream& stream, const VideoJob& job, Encoder encoder, Muxer& muxer)
        : TranscodedStream(input, stream, std::move(encoder), muxer), m_job(job) {
        if (job.isCover) MarkCover();
    }

    void Report(ExportResult& result) const override {
        result.videoFrames = m_frames;
        result.videoBitrate = EncoderContext().bit_rate;
    }

private:
    bool IsSingle() const override { return Media::IsSingle(m_job); }

    Owned<AVBufferSrcParameters> Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, Source().SampleAspect(SourceStream(), &frame), SourceStream().time_base);
    }

    std::unique_ptr<FilterGraph> MakeGraph(AVBufferSrcParameters& source) const override {
        const std::vector<FilterStep> steps = VideoSteps(m_job, source, EncoderContext(), !HasGraph());
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

class AudioStream : public TranscodedStream {
public:
    AudioStream(const Input& input, const AVStream& stream, Encoder encoder, Muxer& muxer)
        : TranscodedStream(input, stream, std::move(encoder), muxer) {}

    void Report(ExportResult& result) const override {
        result.audioSamples = m_samples;
        result.audioBitrate = EncoderContext().bit_rate;
    }

private:
    bool IsSingle() const override { return false; }

    Owned<AVBufferSrcParameters> Describe(AVFrame& frame) const override {
        return DescribeFrame(frame, AVRational{0, 1}, SourceStream().time_base);
    }

    std::unique_ptr<FilterGraph> MakeGraph(AVBufferSrcParameters& source) const override {
        auto graph =
            std::make_unique<FilterGraph>(AVMEDIA_TYPE_AUDIO, source, AudioSteps(source, EncoderContext(), NextPts()));
        graph->SetFrameSize(EncoderFrameSize());
        return graph;
    }

    std::int64_t DurationOf(const AVFrame& frame) const override {
        const int rate = frame.sample_rate > 0 ? frame.sample_rate : SourceStream().codecpar->sample_rate;
        return av_rescale_q(frame.nb_samples, AVRational{1, rate}, SourceStream().time_base);
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
        m_samples += frame.nb_samples;
        return true;
    }

    long long m_samples = 0;
};

/// Whether a line of SSA, the form in which all decoders of text give it, shows nothing.
bool IsEmpty(const char* line) {
    constexpr int fieldsBeforeText = 8;
    for (int field = 0; field < fieldsBeforeText; ++field) {
        const char* const comma = std::strchr(line, ',');
        if (comma == nullptr) return true;
        line = comma + 1;
    }
    for (; *line != '\0'; ++line) {
        const char* const end = *line == '{' ? std::strchr(line, '}') : nullptr;
        if (end != nullptr) {
            line = end;  // a style, which shows nothing by itself
        } else if (*line == '\\' && line[1] != '\0' && std::strchr("Nnh", line[1]) != nullptr) {
            ++line;
        } else if (std::strchr(" \t\r\n", *line) == nullptr) {
            return false;
        }
    }
    return true;
}

/// Subtitles that are decoded and encoded, event by event.
class SubtitleStream : public OutputStream {
public:
    SubtitleStream(const Input& input, const AVStream& stream, const SubtitleJob& job, bool globalHeader, Muxer& muxer)
        : m_input(input),
          m_stream(stream),
          m_decoder(stream),
          m_encoder(job.codecId, m_decoder.Header(), globalHeader),
          m_muxer(muxer),
          m_outputIndex(muxer.AddStream(m_encoder.Context())),
          m_startTime(input.StartTime()) {}

    int SourceIndex() const override { return m_stream.index; }
    bool WantsMore() const override { return true; }
    double Seconds() const override { return static_cast<double>(m_end) / AV_TIME_BASE; }
    void Report(ExportResult& result) const override { result.subtitles = m_events; }

    void Take(const AVPacket& packet) override {
        m_decoder.Decode(&packet, [&](AVSubtitle& subtitle) { Encode(subtitle, packet.pts, packet.duration); });
    }

    void Finish() override {
        m_decoder.Decode(nullptr, [this](AVSubtitle& subtitle) { Encode(subtitle, AV_NOPTS_VALUE, 0); });
        // To hold no words is no fault of subtitles, unlike to hold none that can be read.
        if (m_events > 0 || m_decoder.LastError() >= 0) return;
        Fail("nothing of the subtitle stream of " + m_input.QuotedName() + " could be decoded", m_decoder.LastError());
    }

private:
    /// `time` and `duration` are the packet's, for what the event itself does not say.
    void Encode(AVSubtitle& subtitle, std::int64_t time, std::int64_t duration) {
        const auto microseconds = [&](std::int64_t ticks) {
            return av_rescale_q(ticks, m_stream.time_base, av_get_time_base_q());
        };
        const auto fromMilliseconds = [](std::uint32_t count) { return std::int64_t{count} * (AV_TIME_BASE / 1000); };
        if (subtitle.pts == AV_NOPTS_VALUE) {
            subtitle.pts = time == AV_NOPTS_VALUE ? m_begin + m_startTime : microseconds(time);
        }
        const std::int64_t base = subtitle.pts - m_startTime;
        const std::int64_t begin = base + fromMilliseconds(subtitle.start_display_time);
        // FFmpeg gives an event its packet's duration where it has none, and so makes nonsense of an unknown one.
        const bool isKnown = duration >= 0 && subtitle.end_display_time != UINT32_MAX;
        std::int64_t end = isKnown ? base + fromMilliseconds(subtitle.end_display_time) : begin;
        if (end <= begin) end = begin + endless;
        if (end <= 0) return;  // over before the output begins
        for (unsigned i = 0; i < subtitle.num_rects; ++i) Encode(subtitle, *subtitle.rects[i], begin, end);
    }

    void Encode(const AVSubtitle& event, AVSubtitleRect& text, std::int64_t begin, std::int64_t end) {
        if (text.type != SUBTITLE_ASS || text.ass == nullptr || IsEmpty(text.ass)) return;
        // Containers take no event that begins before the one before it.
        begin = std::max(begin, m_begin);
        end = std::max(end, begin);
        AVSubtitleRect* texts[] = {&text};
        AVSubtitle single{};
        single.format = event.format;
        single.pts = begin;
        single.end_display_time = static_cast<std::uint32_t>((end - begin) / (AV_TIME_BASE / 1000));
        single.num_rects = 1;
        single.rects = texts;
        const Owned<AVPacket> packet = m_encoder.Encode(single);
        if (packet->size == 0) return;
        packet->pts = packet->dts = begin;
        packet->duration = end - begin;
        packet->flags |= AV_PKT_FLAG_KEY;
        m_muxer.Write(*packet, m_outputIndex, av_get_time_base_q());
        m_begin = begin;
        m_end = std::max(m_end, end);
        ++m_events;
    }

    /// How long an event stays that does not say when it ends, and that none is known to follow.
    static constexpr std::int64_t endless = std::int64_t{5} * AV_TIME_BASE;

    const Input& m_input;
    const AVStream& m_stream;
    SubtitleDecoder m_decoder;
    SubtitleEncoder m_encoder;
    Muxer& m_muxer;
    int m_outputIndex;
    std::int64_t m_startTime;  // of the input, which becomes 0; this and all below in AV_TIME_BASE units
    std::int64_t m_begin = 0;  // of the last event
    std::int64_t m_end = 0;
    long long m_events = 0;
};

/// Brings packets into another form.
class PacketFilter {
public:
    PacketFilter(const std::string& name, const AVStream& stream) {
        const AVBitStreamFilter* const filter = av_bsf_get_by_name(name.c_str());
        if (filter == nullptr) throw MediaError("this FFmpeg has no bitstream filter " + Quoted(name));
        AVBSFContext* context = nullptr;
        Check(av_bsf_alloc(filter, &context), "cannot set up a bitstream filter");
        m_context.reset(context);
        Check(avcodec_parameters_copy(context->par_in, stream.codecpar), "cannot set up a bitstream filter");
        context->time_base_in = stream.time_base;
        Check(av_bsf_init(context), "cannot set up a bitstream filter");
    }

    /// What the stream is behind the filter.
    const AVCodecParameters& Parameters() const { return *m_context->par_out; }

    /// Takes the packet's content, which is given to `onPacket` again when it is ready.
    template <class OnPacket>
    void Filter(AVPacket& packet, const OnPacket& onPacket) {
        Check(av_bsf_send_packet(m_context.get(), &packet), "cannot bring a packet into another form");
        for (;;) {
            const int result = av_bsf_receive_packet(m_context.get(), &packet);
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
            Check(result, "cannot bring a packet into another form");
            onPacket(packet);
        }
    }

private:
    Owned<AVBSFContext> m_context;
};

/// A stream that goes over as it is.
class CopiedStream : public OutputStream {
public:
    CopiedStream(const Input& input, const AVStream& stream, Muxer& muxer)
        : m_input(input),
          m_stream(stream),
          m_muxer(muxer),
          m_filter(FilterFor(stream, muxer)),
          m_outputIndex(
              muxer.AddCopy(stream, m_filter ? m_filter->Parameters() : *stream.codecpar, input.FrameRate(stream))),
          m_startTime(av_rescale_q(input.StartTime(), av_get_time_base_q(), stream.time_base)),
          m_packet(Own(av_packet_alloc())) {}

    int SourceIndex() const override { return m_stream.index; }
    /// An attached picture is one packet.
    bool WantsMore() const override { return !(IsAttachedPicture(m_stream) && m_packets > 0); }
    double Seconds() const override { return static_cast<double>(m_end) * av_q2d(m_stream.time_base); }
    void Report(ExportResult& result) const override { result.copiedPackets += m_packets; }

    void Take(const AVPacket& packet) override {
        if (!WantsMore()) return;
        // What stands before the first key frame cannot be decoded without what was cut off.
        const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
        if (m_packets == 0 && !isKey && Type() == AVMEDIA_TYPE_VIDEO) return;
        Check(av_packet_ref(m_packet.get(), &packet), "cannot keep a packet");
        if (m_filter == nullptr) {
            Write(*m_packet);
        } else {
            m_filter->Filter(*m_packet, [this](AVPacket& filtered) { Write(filtered); });
        }
    }

    void Finish() override {
        const bool isSteady = Type() == AVMEDIA_TYPE_VIDEO || Type() == AVMEDIA_TYPE_AUDIO;
        if (m_packets > 0 || !isSteady) return;
        throw MediaError("the stream " + std::to_string(m_stream.index) + " of " + m_input.QuotedName() +
                         " holds nothing that can be copied");
    }

private:
    static std::unique_ptr<PacketFilter> FilterFor(const AVStream& stream, const Muxer& muxer) {
        const char* const name = muxer.PacketFilterFor(*stream.codecpar);
        return name != nullptr ? std::make_unique<PacketFilter>(name, stream) : nullptr;
    }

    void Write(AVPacket& packet) {
        SetTimes(packet);
        m_end = std::max(m_end, std::max(packet.pts, packet.dts) + packet.duration);
        m_nextTime = packet.dts + packet.duration;
        Rescale(packet);
        ++m_packets;
        m_muxer.Write(packet, m_outputIndex, m_muxer.TimeBase(m_outputIndex));
    }

    AVMediaType Type() const { return m_stream.codecpar->codec_type; }

    /// Brings the times to the line of the output, in the time base of the source, and makes up for missing ones.
    void SetTimes(AVPacket& packet) const {
        if (IsAttachedPicture(m_stream)) {
            packet.pts = packet.dts = 0;
            return;
        }
        if (packet.pts != AV_NOPTS_VALUE) packet.pts -= m_startTime;
        if (packet.dts != AV_NOPTS_VALUE) packet.dts -= m_startTime;
        if (packet.dts == AV_NOPTS_VALUE) {
            const bool isFirst = m_packets == 0 && packet.pts != AV_NOPTS_VALUE;
            packet.dts = isFirst ? packet.pts : m_nextTime;
        }
        if (packet.pts == AV_NOPTS_VALUE) {
            // Only to decode the pictures would tell: H.264 in AVI is such a stream.
            const bool isReordered = Type() == AVMEDIA_TYPE_VIDEO && m_stream.codecpar->video_delay > 0;
            if (isReordered && m_muxer.TellsTimes()) {
                throw MediaError("the stream " + std::to_string(m_stream.index) + " of " + m_input.QuotedName() +
                                 " does not say when its pictures are shown, and must be encoded anew");
            }
            packet.pts = packet.dts;
        }
        // Muxers would move all streams for an event that began before the film.
        if (Type() == AVMEDIA_TYPE_SUBTITLE) packet.pts = packet.dts = std::max<std::int64_t>(packet.pts, 0);
    }

    /// Brings the times to the time base of the output, and in order where they are not.
    void Rescale(AVPacket& packet) {
        const AVRational timeBase = m_muxer.TimeBase(m_outputIndex);
        const int samples =
            Type() == AVMEDIA_TYPE_AUDIO ? av_get_audio_frame_duration2(m_stream.codecpar, packet.size) : 0;
        if (samples > 0) {
            // A coarse clock of the source rounds each time by itself; the samples tell what it was.
            const AVRational sample = {1, m_stream.codecpar->sample_rate};
            packet.dts = av_rescale_delta(m_stream.time_base, packet.dts, sample, samples, &m_sampleTime, timeBase);
            packet.pts = packet.dts;
            packet.duration = av_rescale_q(packet.duration, m_stream.time_base, timeBase);
        } else {
            av_packet_rescale_ts(&packet, m_stream.time_base, timeBase);
        }
        if (m_packets > 0) packet.dts = std::max(packet.dts, m_lastTime + (m_muxer.WantsRisingTimes() ? 1 : 0));
        packet.pts = std::max(packet.pts, packet.dts);
        m_lastTime = packet.dts;
    }

    const Input& m_input;
    const AVStream& m_stream;
    Muxer& m_muxer;
    std::unique_ptr<PacketFilter> m_filter;  // null where the packets go over as they are
    int m_outputIndex;
    std::int64_t m_startTime;  // of the input, which becomes 0; this and the next two in the time base of the source
    std::int64_t m_nextTime = 0;
    std::int64_t m_end = 0;
    std::int64_t m_sampleTime = AV_NOPTS_VALUE;  // what av_rescale_delta remembers
    std::int64_t m_lastTime = 0;                 // of decoding, in the time base of the output
    long long m_packets = 0;
    Owned<AVPacket> m_packet;
};

/// The stream of a subtitle job, which must be text.
const AVStream& SelectText(Input& input, const SubtitleJob& job) {
    const AVStream& stream = input.Select(job.streamIndex, AVMEDIA_TYPE_SUBTITLE);
    if (IsText(stream.codecpar->codec_id)) return stream;
    throw MediaError("the subtitle stream " + std::to_string(stream.index) + " of " + input.QuotedName() +
                     " is no text but " + Quoted(avcodec_get_name(stream.codecpar->codec_id)));
}

}  // namespace

OutputStreams MakeStreams(Input& input, const ExportJob& job, const Pass& pass, Muxer& muxer) {
    // All are selected before the first is made: together they tell when the output begins.
    const AVStream* const video = job.video ? &input.Select(job.video->streamIndex, AVMEDIA_TYPE_VIDEO) : nullptr;
    const AVStream* const audio = job.audio ? &input.Select(job.audio->streamIndex, AVMEDIA_TYPE_AUDIO) : nullptr;
    const AVStream* const subtitle = job.subtitle ? &SelectText(input, *job.subtitle) : nullptr;
    std::vector<const AVStream*> copies;
    for (const int index : job.copies) copies.push_back(&input.Select(index));
    const bool globalHeader = job.globalHeader || muxer.WantsGlobalHeader();
    OutputStreams streams;
    if (video != nullptr) {
        Encoder encoder = OpenVideoEncoder(*job.video, *video->codecpar, globalHeader, pass);
        streams.push_back(std::make_unique<VideoStream>(input, *video, *job.video, std::move(encoder), muxer));
    }
    // The first of two passes hears the whole job, as the second does, for the same beginning; it makes the film alone.
    if (pass.IsRecording()) return streams;
    if (audio != nullptr) {
        Encoder encoder = OpenAudioEncoder(*job.audio, *audio->codecpar, globalHeader);
        streams.push_back(std::make_unique<AudioStream>(input, *audio, std::move(encoder), muxer));
    }
    if (subtitle != nullptr) {
        streams.push_back(std::make_unique<SubtitleStream>(input, *subtitle, *job.subtitle, globalHeader, muxer));
    }
    for (const AVStream* const copy : copies) streams.push_back(std::make_unique<CopiedStream>(input, *copy, muxer));
    return streams;
}

}  // namespace NorvexExport::Media
