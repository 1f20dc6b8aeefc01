#include "support/MadeClip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace NorvexTest {

namespace {

struct Release {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFormatContext* context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

template <class T>
using Owned = std::unique_ptr<T, Release>;

int Check(int result, const char* what) {
    if (result < 0) throw std::runtime_error(std::string("cannot make the clip: ") + what);
    return result;
}

template <class T>
Owned<T> Own(T* object, const char* what) {
    if (object == nullptr) throw std::runtime_error(std::string("cannot make the clip: ") + what);
    return Owned<T>(object);
}

/// The clip's clock, fine enough for all rates that the tests use.
constexpr AVRational clock = {1, 240000};

std::int64_t Ticks(double seconds) {
    return std::llround(seconds * clock.den / clock.num);
}

bool IsMarked(const ClipSettings& clip, double time) {
    constexpr double slack = 1e-6;
    return time > clip.markTime - slack && time < clip.markTime + ClipSettings::MARK_LENGTH - slack;
}

/// A value of the first component, or of all components of an RGB format, of 255.
int Brightness(const ClipSettings& clip, double time, int x, std::mt19937& noise) {
    if (IsMarked(clip, time)) return 255;
    const int ramp = (ClipSettings::RAMP_RIGHT - ClipSettings::RAMP_LEFT) * x / std::max(1, clip.width - 1);
    return ClipSettings::RAMP_LEFT + ramp + static_cast<int>(noise() % 17) - 8;
}

/// One picture in any pixel format, as a frame.
Owned<AVFrame> DrawPicture(const ClipSettings& clip, AVPixelFormat format, double time, std::mt19937& noise) {
    Owned<AVFrame> frame = Own(av_frame_alloc(), "a frame");
    frame->format = format;
    frame->width = clip.width;
    frame->height = clip.height;
    Check(av_frame_get_buffer(frame.get(), 0), "a picture");
    for (const AVBufferRef* const buffer : frame->buf) {
        if (buffer != nullptr) std::memset(buffer->data, 0, buffer->size);  // lines are written by "or"
    }
    for (std::uint32_t i = 0; format == AV_PIX_FMT_PAL8 && i < 256; ++i) {
        reinterpret_cast<std::uint32_t*>(frame->data[1])[i] = 0xff000000 | i * 0x010101;
    }

    const AVPixFmtDescriptor& descriptor = *av_pix_fmt_desc_get(format);
    const bool isRgb = (descriptor.flags & AV_PIX_FMT_FLAG_RGB) != 0;
    for (int component = 0; component < descriptor.nb_components; ++component) {
        const bool isChroma = !isRgb && (component == 1 || component == 2);
        const int depth = descriptor.comp[component].depth;
        const int width = isChroma ? AV_CEIL_RSHIFT(clip.width, descriptor.log2_chroma_w) : clip.width;
        const int height = isChroma ? AV_CEIL_RSHIFT(clip.height, descriptor.log2_chroma_h) : clip.height;
        std::vector<std::uint16_t> line(static_cast<std::size_t>(width));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int plain = isChroma ? 128 : Brightness(clip, time, x, noise);
                const int value = clip.isRed ? (component == 0 ? 255 : 0) : plain;
                line[static_cast<std::size_t>(x)] = static_cast<std::uint16_t>(value << (depth - 8));
            }
            av_write_image_line(line.data(), frame->data, frame->linesize, &descriptor, 0, y, component, width);
        }
    }
    return frame;
}

/// The bytes of raw video.
std::vector<std::uint8_t> PictureBytes(const ClipSettings& clip, AVPixelFormat format, double time,
                                       std::mt19937& noise) {
    const Owned<AVFrame> frame = DrawPicture(clip, format, time, noise);
    const int size = Check(av_image_get_buffer_size(format, clip.width, clip.height, 1), "a picture");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    Check(av_image_copy_to_buffer(bytes.data(), size, frame->data, frame->linesize, format, clip.width, clip.height, 1),
          "a picture");
    return bytes;
}

/// The bytes of PCM of 16 bits from the first sample to before the last one.
std::vector<std::uint8_t> SoundBytes(const ClipSettings& clip, int channels, long long first, long long last,
                                     std::mt19937& noise) {
    std::vector<std::uint8_t> bytes;
    for (long long sample = first; sample < last; ++sample) {
        const double time = static_cast<double>(sample) / clip.sampleRate;
        const double tone = std::sin(time * 2 * 3.14159265358979 * 1000);
        const double wave = tone + static_cast<double>(noise() % 1000) / 1000 - 0.5;
        const double level = IsMarked(clip, time + clip.audioDelay) ? 0.5 : 0.01;
        const auto value = static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(wave * level * 32767)));
        for (int channel = 0; channel < channels; ++channel) {
            bytes.push_back(static_cast<std::uint8_t>(value & 0xff));
            bytes.push_back(static_cast<std::uint8_t>(value >> 8));
        }
    }
    return bytes;
}

std::vector<std::uint8_t> CoverBytes() {
    ClipSettings clip;
    clip.width = clip.height = 32;
    std::mt19937 noise(1);
    const Owned<AVFrame> frame = DrawPicture(clip, AV_PIX_FMT_RGB24, 0, noise);
    const AVCodec* const codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    const Owned<AVCodecContext> encoder = Own(avcodec_alloc_context3(codec), "a PNG encoder");
    encoder->width = clip.width;
    encoder->height = clip.height;
    encoder->pix_fmt = AV_PIX_FMT_RGB24;
    encoder->time_base = {1, 25};
    Check(avcodec_open2(encoder.get(), codec, nullptr), "a PNG encoder");
    const Owned<AVPacket> packet = Own(av_packet_alloc(), "a packet");
    Check(avcodec_send_frame(encoder.get(), frame.get()), "a cover picture");
    Check(avcodec_send_frame(encoder.get(), nullptr), "a cover picture");
    Check(avcodec_receive_packet(encoder.get(), packet.get()), "a cover picture");
    return {packet->data, packet->data + packet->size};
}

class Writer {
public:
    Writer(const std::string& path, const std::string& muxer) {
        AVFormatContext* context = nullptr;
        Check(avformat_alloc_output_context2(&context, nullptr, muxer.c_str(), nullptr), "the container");
        m_context.reset(context);
        Check(avio_open(&m_context->pb, ("file:" + path).c_str(), AVIO_FLAG_WRITE), "the file");
    }

    AVStream& AddStream(AVMediaType type, AVCodecID codec) {
        AVStream* const stream = avformat_new_stream(m_context.get(), nullptr);
        if (stream == nullptr) throw std::runtime_error("cannot make the clip: a stream");
        stream->time_base = clock;
        stream->codecpar->codec_type = type;
        stream->codecpar->codec_id = codec;
        return *stream;
    }

    void Begin() { Check(avformat_write_header(m_context.get(), nullptr), "its header"); }

    void Write(const AVStream& stream, const std::vector<std::uint8_t>& bytes, double time, double duration) {
        const Owned<AVPacket> packet = Own(av_packet_alloc(), "a packet");
        Check(av_new_packet(packet.get(), static_cast<int>(bytes.size())), "a packet");
        std::memcpy(packet->data, bytes.data(), bytes.size());
        packet->stream_index = stream.index;
        packet->pts = packet->dts = Ticks(time);
        packet->duration = Ticks(duration);
        packet->flags |= AV_PKT_FLAG_KEY;
        av_packet_rescale_ts(packet.get(), clock, stream.time_base);
        Check(av_interleaved_write_frame(m_context.get(), packet.get()), "a packet");
    }

    void Finish() { Check(av_write_trailer(m_context.get()), "its end"); }

private:
    Owned<AVFormatContext> m_context;
};

AVStream& AddVideo(Writer& writer, const ClipSettings& clip) {
    AVStream& stream = writer.AddStream(AVMEDIA_TYPE_VIDEO, AV_CODEC_ID_RAWVIDEO);
    const AVPixelFormat format = av_get_pix_fmt(clip.pixelFormat.c_str());
    if (format == AV_PIX_FMT_NONE) throw std::runtime_error("cannot make the clip: its pixel format");
    stream.codecpar->format = format;
    stream.codecpar->codec_tag = avcodec_pix_fmt_to_codec_tag(format);
    if (clip.isFullRange) stream.codecpar->color_range = AVCOL_RANGE_JPEG;
    stream.codecpar->width = clip.width;
    stream.codecpar->height = clip.height;
    stream.codecpar->sample_aspect_ratio = stream.sample_aspect_ratio = {clip.aspectX, clip.aspectY};
    if (clip.frameTimes.empty()) stream.avg_frame_rate = {clip.frameRate, 1};
    return stream;
}

AVStream& AddSound(Writer& writer, const ClipSettings& clip) {
    AVStream& stream = writer.AddStream(AVMEDIA_TYPE_AUDIO, AV_CODEC_ID_PCM_S16LE);
    Check(av_channel_layout_from_string(&stream.codecpar->ch_layout, clip.layout.c_str()), "its layout");
    stream.codecpar->format = AV_SAMPLE_FMT_S16;
    stream.codecpar->sample_rate = clip.sampleRate;
    stream.codecpar->bits_per_coded_sample = 16;
    stream.codecpar->block_align = 2 * stream.codecpar->ch_layout.nb_channels;
    return stream;
}

void AddCover(Writer& writer) {
    const std::vector<std::uint8_t> bytes = CoverBytes();
    AVStream& stream = writer.AddStream(AVMEDIA_TYPE_ATTACHMENT, AV_CODEC_ID_PNG);
    stream.codecpar->extradata = static_cast<std::uint8_t*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (stream.codecpar->extradata == nullptr) throw std::runtime_error("cannot make the clip: a cover picture");
    std::memcpy(stream.codecpar->extradata, bytes.data(), bytes.size());
    stream.codecpar->extradata_size = static_cast<int>(bytes.size());
    Check(av_dict_set(&stream.metadata, "filename", "cover.png", 0), "a cover picture");
    Check(av_dict_set(&stream.metadata, "mimetype", "image/png", 0), "a cover picture");
}

void WritePictures(Writer& writer, const AVStream& stream, const ClipSettings& clip) {
    const AVPixelFormat format = av_get_pix_fmt(clip.pixelFormat.c_str());
    std::mt19937 noise(1);
    for (int i = 0; i < clip.frames; ++i) {
        const double steady = static_cast<double>(i) / clip.frameRate;
        const double shown = clip.frameTimes.empty() ? steady : clip.frameTimes.at(static_cast<std::size_t>(i));
        const double time = clip.videoDelay + shown;
        writer.Write(stream, PictureBytes(clip, format, time, noise), clip.startTime + time, 1.0 / clip.frameRate);
    }
}

void WriteSound(Writer& writer, const AVStream& stream, const ClipSettings& clip) {
    const int channels = stream.codecpar->ch_layout.nb_channels;
    const long long samples = std::llround(clip.soundSeconds * clip.sampleRate);
    const int step = clip.sampleRate / 50;
    std::mt19937 noise(2);
    for (long long first = 0; first < samples; first += step) {
        const double time = clip.audioDelay + static_cast<double>(first) / clip.sampleRate;
        if (time >= clip.gapBegin && time < clip.gapEnd) continue;
        const long long last = std::min<long long>(first + step, samples);
        writer.Write(stream, SoundBytes(clip, channels, first, last, noise), clip.startTime + time,
                     static_cast<double>(last - first) / clip.sampleRate);
    }
}

AVStream& AddTitles(Writer& writer, const ClipSettings& clip) {
    const AVCodecDescriptor* const codec = avcodec_descriptor_get_by_name(clip.titleCodec.c_str());
    if (codec == nullptr) throw std::runtime_error("cannot make the clip: its subtitles");
    return writer.AddStream(AVMEDIA_TYPE_SUBTITLE, codec->id);
}

void WriteTitles(Writer& writer, const AVStream& stream, const ClipSettings& clip) {
    for (const ClipSettings::Title& title : clip.titles) {
        const std::vector<std::uint8_t> bytes(title.text.begin(), title.text.end());
        writer.Write(stream, bytes, clip.startTime + title.begin, title.end - title.begin);
    }
}

}  // namespace

std::string MakeClip(const std::string& path, const ClipSettings& clip) {
    Writer writer(path, clip.muxer);
    ClipSettings second = clip;
    second.width /= 2;
    second.height /= 2;
    AVStream* const secondVideo = clip.hasSecondVideo ? &AddVideo(writer, second) : nullptr;
    AVStream* const video = clip.frames > 0 ? &AddVideo(writer, clip) : nullptr;
    AVStream* const audio = clip.soundSeconds > 0 ? &AddSound(writer, clip) : nullptr;
    AVStream* const titles = !clip.titles.empty() ? &AddTitles(writer, clip) : nullptr;
    if (clip.coverPicture) AddCover(writer);
    if (clip.hasSecondVideo && video != nullptr) video->disposition |= AV_DISPOSITION_DEFAULT;
    writer.Begin();
    if (secondVideo != nullptr) WritePictures(writer, *secondVideo, second);
    if (video != nullptr) WritePictures(writer, *video, clip);
    if (audio != nullptr) WriteSound(writer, *audio, clip);
    if (titles != nullptr) WriteTitles(writer, *titles, clip);
    writer.Finish();
    return path;
}

}  // namespace NorvexTest
