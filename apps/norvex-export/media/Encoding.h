/// Encoders: frames, or events of subtitles, become packets.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "Basics.h"
#include "Files.h"
#include "Light.h"

namespace NorvexExport::Media {

/// What the first pass leaves to the second. It must outlive the encoders that are given it.
struct PassRecord {
    TemporaryDirectory directory;
    std::string text;

    std::string StatisticsFile() const { return directory.File("passes.log"); }
};

/// Which pass an encoder makes.
struct Pass {
    int number = 1;
    int count = 1;
    PassRecord* record = nullptr;  ///< null where there is one pass only

    bool IsRecording() const { return record != nullptr && number == 1; }
    bool IsReplaying() const { return record != nullptr && number == 2; }
};

class Encoder {
public:
    Encoder(Owned<AVCodecContext> context, Pass pass)
        : m_context(std::move(context)), m_pass(pass), m_packet(Own(av_packet_alloc())) {}

    const AVCodecContext& Context() const { return *m_context; }

    /// Samples that every frame but the last must hold, 0 where any number will do.
    int FrameSize() const {
        const bool isFree = (m_context->codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE) != 0;
        return isFree ? 0 : m_context->frame_size;
    }

    /// Gives `onPacket` each packet that is ready; without a frame, all that are left.
    template <class OnPacket>
    void Encode(const AVFrame* frame, const OnPacket& onPacket) {
        CheckEncoding(avcodec_send_frame(m_context.get(), frame));
        for (;;) {
            const int result = avcodec_receive_packet(m_context.get(), m_packet.get());
            if (result >= 0 || result == AVERROR_EOF) RecordStatistics();
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
            CheckEncoding(result);
            onPacket(*m_packet);
            av_packet_unref(m_packet.get());
        }
    }

private:
    void CheckEncoding(int result) const {
        if (result < 0) Fail("the encoder " + Quoted(m_context->codec->name) + " failed", result);
    }

    void RecordStatistics() {
        if (m_pass.IsRecording() && m_context->stats_out != nullptr) m_pass.record->text += m_context->stats_out;
    }

    Owned<AVCodecContext> m_context;
    Pass m_pass;
    Owned<AVPacket> m_packet;
};

/// Whether the encoder is driven by the quality rather than by the bitrate.
bool HoldsQuality(RateControl rateControl, const AVCodec& codec);

Encoder OpenVideoEncoder(const VideoJob& job, const AVCodecParameters& source, const Light& light, bool globalHeader,
                         const Pass& pass);
Encoder OpenAudioEncoder(const AudioJob& job, const AVCodecParameters& source, bool globalHeader);

/// Finer than the clock of any other stream: the muxer of MP4 compares the end of an event with the time of the next
/// packet of any stream without minding their clocks, and would end an event too early for one that overlaps it.
inline constexpr AVRational subtitleClock = {1, 200000};

/// Makes text of text.
class SubtitleEncoder {
public:
    /// `header` is the decoder's.
    SubtitleEncoder(const std::string& codecId, std::string_view header, bool globalHeader);

    const AVCodecContext& Context() const { return *m_context; }

    /// One event as a packet without times, empty where it says nothing.
    Owned<AVPacket> Encode(const AVSubtitle& subtitle);

private:
    Owned<AVCodecContext> m_context;
    std::vector<std::uint8_t> m_buffer;
};

}  // namespace NorvexExport::Media
