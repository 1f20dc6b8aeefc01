#include "SubtitleStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

extern "C" {
#include <libavutil/mathematics.h>
}

#include "Decoding.h"
#include "Encoding.h"

namespace NorvexExport::Media {

namespace {

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
          m_outputIndex(muxer.AddStream(m_encoder.Context(), stream)) {}

    int SourceIndex() const override { return m_stream.index; }
    bool WantsMore() const override { return true; }
    double Seconds() const override { return static_cast<double>(m_end) / AV_TIME_BASE; }
    void Report(ExportResult& result) const override { result.subtitles += m_events; }

    void Take(const AVPacket& packet) override {
        m_decoder.Decode(&packet, [&](AVSubtitle& subtitle) { Encode(subtitle, packet.pts, packet.duration); });
    }

    void Finish() override {
        m_decoder.Decode(nullptr, [this](AVSubtitle& subtitle) { Encode(subtitle, AV_NOPTS_VALUE, 0); });
        // To hold no words is no fault of subtitles, unlike to hold none that can be read.
        if (m_events > 0 || m_decoder.LastError() >= 0) return;
        throw StreamError(m_stream, "nothing of the subtitle stream of " + m_input.QuotedName() + " could be decoded",
                          m_decoder.LastError());
    }

private:
    /// `time` and `duration` are the packet's, for what the event itself does not say.
    void Encode(AVSubtitle& subtitle, std::int64_t time, std::int64_t duration) {
        const auto microseconds = [&](std::int64_t ticks) {
            return av_rescale_q(ticks, m_stream.time_base, av_get_time_base_q());
        };
        const auto fromMilliseconds = [](std::uint32_t count) { return std::int64_t{count} * (AV_TIME_BASE / 1000); };
        if (subtitle.pts == AV_NOPTS_VALUE) {
            subtitle.pts = time == AV_NOPTS_VALUE ? m_begin + m_input.FilmStart() : microseconds(time);
        }
        const std::int64_t base = subtitle.pts - m_input.FilmStart();
        const std::int64_t begin = base + fromMilliseconds(subtitle.start_display_time);
        // FFmpeg gives an event its packet's duration where it has none, and so makes nonsense of an unknown one.
        const bool isKnown = duration >= 0 && subtitle.end_display_time != UINT32_MAX;
        std::int64_t end = isKnown ? base + fromMilliseconds(subtitle.end_display_time) : begin;
        if (end <= begin) end = begin + endless;
        if (end <= 0 || begin >= m_input.FilmEnd()) return;  // over before the output begins, or behind its end
        end = std::min(end, m_input.FilmEnd());
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
    std::int64_t m_begin = 0;  // of the last event, in AV_TIME_BASE units as the next
    std::int64_t m_end = 0;
    long long m_events = 0;
};

}  // namespace

std::unique_ptr<OutputStream> MakeSubtitleStream(const Input& input, const AVStream& stream, const SubtitleJob& job,
                                                 bool globalHeader, Muxer& muxer) {
    return std::make_unique<SubtitleStream>(input, stream, job, globalHeader, muxer);
}

}  // namespace NorvexExport::Media
