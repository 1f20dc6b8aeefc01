/// Decoders: packets become frames, or events of subtitles.
#pragma once

#include <new>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "Basics.h"

namespace NorvexExport::Media {

class Decoder {
public:
    explicit Decoder(const AVStream& stream);

    /// Gives `onFrame` each frame that is ready; without a packet, all that are left. Damaged packets are passed
    /// over: what they cost the picture or the sound is less than what failing would.
    template <class OnFrame>
    void Decode(const AVPacket* packet, const OnFrame& onFrame) {
        const int sent = avcodec_send_packet(m_context.get(), packet);
        if (sent < 0) Tolerate(sent);
        // A decoder that is being emptied may repeat its error for ever.
        constexpr int patience = 64;
        for (int failures = 0; failures < patience;) {
            const int result = avcodec_receive_frame(m_context.get(), m_frame.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
            if (result < 0) {
                Tolerate(result);
                ++failures;
                continue;
            }
            failures = 0;
            ++m_frames;
            onFrame(*m_frame);
            av_frame_unref(m_frame.get());
        }
    }

    bool HasDecoded() const { return m_frames > 0; }
    /// The last of the errors passed over, 0 where there was none.
    int LastError() const { return m_lastError; }

private:
    void Tolerate(int error);

    Owned<AVCodecContext> m_context;
    Owned<AVFrame> m_frame;
    long long m_frames = 0;
    int m_lastError = 0;
};

/// One event of subtitles.
struct Subtitle {
    Subtitle() = default;
    Subtitle(const Subtitle&) = delete;
    Subtitle& operator=(const Subtitle&) = delete;
    ~Subtitle() { avsubtitle_free(&value); }

    AVSubtitle value{};
};

class SubtitleDecoder {
public:
    explicit SubtitleDecoder(const AVStream& stream);

    /// What the styles of the text are, as encoders take it over.
    std::string_view Header() const;

    /// Gives `onSubtitle` the packet's event; without a packet, all that are left. Damaged packets are passed over.
    template <class OnSubtitle>
    void Decode(const AVPacket* packet, const OnSubtitle& onSubtitle) {
        const bool isDelayed = (m_context->codec->capabilities & AV_CODEC_CAP_DELAY) != 0;
        if (packet == nullptr && !isDelayed) return;
        bool goesOn = true;
        while (goesOn) {
            av_packet_unref(m_packet.get());
            if (packet != nullptr) Check(av_packet_ref(m_packet.get(), packet), "cannot keep a packet");
            Subtitle subtitle;
            int isThere = 0;
            const int result = avcodec_decode_subtitle2(m_context.get(), &subtitle.value, &isThere, m_packet.get());
            if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
            if (result < 0) m_lastError = result;
            goesOn = packet == nullptr && result >= 0 && isThere != 0;
            if (result >= 0 && isThere != 0) onSubtitle(subtitle.value);
        }
    }

    /// The last of the errors passed over, 0 where there was none.
    int LastError() const { return m_lastError; }

private:
    Owned<AVCodecContext> m_context;
    Owned<AVPacket> m_packet;
    int m_lastError = 0;
};

}  // namespace NorvexExport::Media
