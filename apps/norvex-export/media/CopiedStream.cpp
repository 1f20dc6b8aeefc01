#include "CopiedStream.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" {
#include <libavcodec/bsf.h>
#include <libavutil/mathematics.h>
}

namespace NorvexExport::Media {

namespace {

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
          m_isAttached(IsAttachedPicture(stream) && muxer.AttachesCovers()),
          m_filter(FilterFor(stream, muxer)),
          m_outputIndex(m_isAttached ? muxer.AddAttachedCover(stream)
                                     : muxer.AddCopy(stream, m_filter ? m_filter->Parameters() : *stream.codecpar,
                                                     input.FrameRate(stream))),
          m_packet(Own(av_packet_alloc())) {
        // Packets of AVI and ASF tell in which order to decode them and nothing else.
        const std::string_view container = input.Container();
        if ((container == "avi" || container == "asf") && LacksTimes()) FailWithoutTimes();
    }

    int SourceIndex() const override { return m_stream.index; }
    /// An attached picture is one packet, and what is attached to the file as a whole none.
    bool WantsMore() const override {
        return !m_isAttached && Type() != AVMEDIA_TYPE_ATTACHMENT && !(IsAttachedPicture(m_stream) && m_packets > 0) &&
               !m_isOver;
    }
    double Seconds() const override { return static_cast<double>(m_end) / AV_TIME_BASE; }
    void Report(ExportResult& result) const override { result.copiedPackets += m_packets; }

    void Take(const AVPacket& packet) override {
        if (!WantsMore()) return;
        // What stands before the first key frame cannot be decoded without what was cut off.
        const bool isKey = (packet.flags & AV_PKT_FLAG_KEY) != 0;
        if (m_packets == 0 && !isKey && Type() == AVMEDIA_TYPE_VIDEO) return;
        if (m_input.IsPart() && !IsInside(packet)) return;
        Check(av_packet_ref(m_packet.get(), &packet), "cannot keep a packet");
        if (m_filter == nullptr) {
            Write(*m_packet);
        } else {
            m_filter->Filter(*m_packet, [this](AVPacket& filtered) { Write(filtered); });
        }
    }

    void Finish() override {
        const bool isSteady = Type() == AVMEDIA_TYPE_VIDEO || Type() == AVMEDIA_TYPE_AUDIO;
        if (m_packets > 0 || !isSteady || m_isAttached || m_input.IsPart()) return;
        throw StreamError(m_stream, "the stream " + std::to_string(m_stream.index) + " of " + m_input.QuotedName() +
                                        " holds nothing that can be copied");
    }

private:
    static std::unique_ptr<PacketFilter> FilterFor(const AVStream& stream, const Muxer& muxer) {
        const char* const name = muxer.PacketFilterFor(*stream.codecpar);
        return name != nullptr ? std::make_unique<PacketFilter>(name, stream) : nullptr;
    }

    void Write(AVPacket& packet) {
        if (IsAttachedPicture(m_stream)) {
            packet.pts = packet.dts = 0;
            av_packet_rescale_ts(&packet, m_stream.time_base, m_muxer.TimeBase(m_outputIndex));
            ++m_packets;
            m_muxer.Write(packet, m_outputIndex, m_muxer.TimeBase(m_outputIndex));
            return;
        }
        SetTimes(packet);
        m_end = std::max(m_end, m_input.FilmTime(std::max(packet.pts, packet.dts) + packet.duration, m_stream));
        m_nextTime = packet.dts + packet.duration;
        Rescale(packet);
        ++m_packets;
        m_muxer.Write(packet, m_outputIndex, m_muxer.TimeBase(m_outputIndex));
    }

    /// Whether only to decode the pictures would tell when they are shown, where packets do not: H.264 in AVI is such.
    bool LacksTimes() const {
        return Type() == AVMEDIA_TYPE_VIDEO && m_stream.codecpar->video_delay > 0 && m_muxer.TellsTimes();
    }

    [[noreturn]] void FailWithoutTimes() const {
        throw MediaError("the stream " + std::to_string(m_stream.index) + " of " + m_input.QuotedName() +
                         " does not say when its pictures are shown, and must be encoded anew");
    }

    AVMediaType Type() const { return m_stream.codecpar->codec_type; }

    /// Whether the packet belongs to the part of the input that is wanted.
    bool IsInside(const AVPacket& packet) {
        const std::int64_t ticks = packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
        if (ticks == AV_NOPTS_VALUE || IsAttachedPicture(m_stream)) return true;
        // Pictures are shown later than they are decoded, the first of them by as much as any other at least.
        const bool isWhole = packet.dts != AV_NOPTS_VALUE && packet.pts != AV_NOPTS_VALUE;
        if (m_packets == 0) m_delay = isWhole ? packet.pts - packet.dts : 0;
        if (m_input.FilmTime(ticks + m_delay, m_stream) >= m_input.FilmEnd()) {
            m_isOver = Type() != AVMEDIA_TYPE_SUBTITLE;
            return false;
        }
        const std::int64_t shown = packet.pts != AV_NOPTS_VALUE ? packet.pts : ticks;
        // Pictures before the first key are of no use without what was cut off; of sound, the half counts.
        const std::int64_t half = Type() == AVMEDIA_TYPE_AUDIO ? packet.duration / 2 : 0;
        if (Type() == AVMEDIA_TYPE_SUBTITLE) return m_input.FilmTime(shown + packet.duration, m_stream) > 0;
        return m_input.FilmTime(shown + half, m_stream) >= 0;
    }

    /// Makes up for missing times.
    void SetTimes(AVPacket& packet) const {
        const std::int64_t start = av_rescale_q(m_input.FilmStart(), av_get_time_base_q(), m_stream.time_base);
        if (packet.dts == AV_NOPTS_VALUE) {
            const bool isFirst = m_packets == 0 && packet.pts != AV_NOPTS_VALUE;
            packet.dts = isFirst ? packet.pts : m_packets == 0 ? start : m_nextTime;
        }
        if (packet.pts == AV_NOPTS_VALUE) {
            if (LacksTimes()) FailWithoutTimes();
            packet.pts = packet.dts;
        }
        // Muxers would move all streams for an event that began before the film.
        if (Type() != AVMEDIA_TYPE_SUBTITLE) return;
        packet.pts = packet.dts = std::max(packet.pts, start);
        if (packet.duration >= UINT32_MAX)
            packet.duration = 0;  // FFmpeg's mark of an event that does not end by itself
    }

    /// Brings the times to the line and the time base of the output, and in order where they are not.
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
        const std::int64_t start = av_rescale_q(m_input.FilmStart(), av_get_time_base_q(), timeBase);
        packet.pts -= start;
        packet.dts -= start;
        if (m_packets > 0) packet.dts = std::max(packet.dts, m_lastTime + (m_muxer.WantsRisingTimes() ? 1 : 0));
        packet.pts = std::max(packet.pts, packet.dts);
        // MP4 would lose the last packet of a source that tells no durations.
        if (packet.duration <= 0 && m_packets > 0 && Type() == AVMEDIA_TYPE_AUDIO) {
            packet.duration = packet.dts - m_lastTime;
        }
        m_lastTime = packet.dts;
    }

    const Input& m_input;
    const AVStream& m_stream;
    Muxer& m_muxer;
    bool m_isAttached;                       // becomes a file inside the file
    std::unique_ptr<PacketFilter> m_filter;  // null where the packets go over as they are
    int m_outputIndex;
    std::int64_t m_nextTime = 0;                 // in the time base of the source
    std::int64_t m_end = 0;                      // in the film, in AV_TIME_BASE units
    std::int64_t m_sampleTime = AV_NOPTS_VALUE;  // what av_rescale_delta remembers
    std::int64_t m_lastTime = 0;                 // of decoding, in the time base of the output
    long long m_packets = 0;
    bool m_isOver = false;
    std::int64_t m_delay = 0;  // of the first packet, in the time base of the source
    Owned<AVPacket> m_packet;
};

}  // namespace

std::unique_ptr<OutputStream> MakeCopiedStream(const Input& input, const AVStream& stream, Muxer& muxer) {
    return std::make_unique<CopiedStream>(input, stream, muxer);
}

}  // namespace NorvexExport::Media
