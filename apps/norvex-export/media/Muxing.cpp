#include "Muxing.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <string_view>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/opt.h>
}

#include "Encoding.h"

namespace NorvexExport::Media {

namespace {

bool IsPicture(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && stream.avg_frame_rate.num > 0;
}

/// How much later than they are decoded pictures are shown that stand in another order; in AV_TIME_BASE units.
std::int64_t ReorderingDelay(const AVStream& pictures) {
    return av_rescale_q(pictures.codecpar->video_delay, av_inv_q(pictures.avg_frame_rate), av_get_time_base_q());
}

/// The silence that an encoder begins with, in AV_TIME_BASE units.
std::int64_t Padding(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    return av_rescale(parameters.initial_padding, AV_TIME_BASE, std::max(parameters.sample_rate, 1));
}

}  // namespace

Muxer::Muxer(const std::string& container, const Options& options, const PendingFile& file)
    : Muxer(container, file.QuotedName(), FileUrl(file.Path())) {
    Open(options);
}

Muxer Muxer::OnTrial(const std::string& container, const Options& options) {
    Muxer muxer(container, "its header", FileUrl("/dev/null"));
    muxer.Open(options);
    return muxer;
}

void Muxer::Open(const Options& options) {
    const char* const container = m_context->oformat->name;
    for (const auto& [name, value] : options) {
        const int result = av_opt_set(m_context.get(), name.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
        if (result < 0) Fail("the container " + Quoted(container) + " does not take " + name + "=" + value, result);
    }
    if (m_isOnePicture) {
        // It opens the file by itself, and must not take the name for that of a series.
        Check(av_opt_set_int(m_context->priv_data, "update", 1, 0), "cannot set up the container");
        return;
    }
    if ((m_context->oformat->flags & AVFMT_NOFILE) != 0) {
        throw MediaError("the container " + Quoted(container) + " is not written to a file");
    }
    // The file is new and empty. One that was cut to nothing is brought to the disk when it is closed, as some file
    // systems have it.
    AVDictionary* asItIs = nullptr;
    Check(av_dict_set(&asItIs, "truncate", "0", 0), "cannot set up the container");
    const int result = avio_open2(&m_context->pb, m_context->url, AVIO_FLAG_WRITE, nullptr, &asItIs);
    av_dict_free(&asItIs);
    CheckWriting(result);
}

int Muxer::AddStream(const AVCodecContext& encoder, const AVStream& source) {
    AVStream* const stream = avformat_new_stream(m_context.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    Check(avcodec_parameters_from_context(stream->codecpar, &encoder), "cannot describe a stream");
    CopySideData(encoder, *stream);
    stream->time_base = encoder.time_base;
    stream->avg_frame_rate = encoder.framerate;
    stream->sample_aspect_ratio = encoder.sample_aspect_ratio;
    CopyStreamTags(source, *stream, *m_context->oformat);
    stream->disposition &= ~AV_DISPOSITION_ATTACHED_PIC;
    return stream->index;
}

std::int64_t Muxer::SoundDelay(int stream) const {
    if (!IsAvi()) return 0;
    std::int64_t shown = 0;
    for (unsigned i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& other = *m_context->streams[i];
        if (IsPicture(other)) shown = std::max(shown, Wait(other) + ReorderingDelay(other));
    }
    return std::max<std::int64_t>(shown - Padding(*m_context->streams[stream]), 0);
}

std::int64_t Muxer::Wait(const AVStream& stream) const {
    if (!IsAvi()) return 0;
    if (!IsPicture(stream)) return Padding(stream);
    std::int64_t longest = 0;
    for (unsigned i = 0; i < m_context->nb_streams; ++i) longest = std::max(longest, Padding(*m_context->streams[i]));
    const std::int64_t wait = std::max<std::int64_t>(longest - ReorderingDelay(stream), 0);
    const AVRational unit = av_get_time_base_q(), picture = av_inv_q(stream.avg_frame_rate);
    return av_rescale_q(av_rescale_q_rnd(wait, unit, picture, AV_ROUND_UP), picture, unit);
}

int Muxer::AddAttachedCover(const AVStream& source) {
    AVStream* const stream = avformat_new_stream(m_context.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    const AVPacket& picture = source.attached_pic;
    AVCodecParameters& parameters = *stream->codecpar;
    parameters.codec_type = AVMEDIA_TYPE_ATTACHMENT;
    parameters.codec_id = source.codecpar->codec_id;
    parameters.extradata =
        static_cast<std::uint8_t*>(av_mallocz(static_cast<std::size_t>(picture.size) + AV_INPUT_BUFFER_PADDING_SIZE));
    if (parameters.extradata == nullptr) throw std::bad_alloc();
    std::copy_n(picture.data, picture.size, parameters.extradata);
    parameters.extradata_size = picture.size;
    CopyStreamTags(source, *stream, *m_context->oformat);
    // Readers know the cover by this name and this type.
    const bool isJpeg = parameters.codec_id == AV_CODEC_ID_MJPEG;
    const std::string codec = isJpeg ? "jpeg" : avcodec_get_name(parameters.codec_id);
    const std::string name = "cover." + (isJpeg ? "jpg" : codec);
    Check(av_dict_set(&stream->metadata, "mimetype", ("image/" + codec).c_str(), 0), "cannot describe a stream");
    Check(av_dict_set(&stream->metadata, "filename", name.c_str(), AV_DICT_DONT_OVERWRITE), "cannot describe a stream");
    return stream->index;
}

int Muxer::AddCopy(const AVStream& source, const AVCodecParameters& sourceParameters, AVRational frameRate) {
    AVStream* const stream = avformat_new_stream(m_context.get(), nullptr);
    if (stream == nullptr) throw std::bad_alloc();
    AVCodecParameters& parameters = *stream->codecpar;
    Check(avcodec_parameters_copy(&parameters, &sourceParameters), "cannot describe a stream");
    // Containers call codecs by names of their own, some by more than one: 'hvc1' and 'hev1' differ.
    const AVCodecTag* const* const tags = m_context->oformat->codec_tag;
    const bool holdsTag = tags != nullptr && av_codec_get_id(tags, parameters.codec_tag) == parameters.codec_id;
    // One name may also tell the form of the packets.
    const bool isReformed = PacketFilterFor(*source.codecpar) != nullptr;
    if (!holdsTag || isReformed) parameters.codec_tag = 0;
    // What one container says of the size of these packets is wrong in another.
    const bool isOfBlocks = parameters.codec_id != AV_CODEC_ID_MP3 && parameters.codec_id != AV_CODEC_ID_AC3;
    if (!isOfBlocks) parameters.block_align = 0;
    if (IsAvi()) parameters.initial_padding = 0;  // its times count it already
    CopySideData(source, *stream);
    CopyStreamTags(source, *stream, *m_context->oformat);
    // Muxers refuse a stream of which the container and the codec say different shapes, as DV's and H.263's may.
    if (source.sample_aspect_ratio.num != 0) parameters.sample_aspect_ratio = source.sample_aspect_ratio;
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    stream->avg_frame_rate = source.avg_frame_rate;
    stream->r_frame_rate = source.r_frame_rate;
    stream->time_base = source.time_base;
    if (parameters.codec_type == AVMEDIA_TYPE_SUBTITLE) stream->time_base = subtitleClock;
    // A container of a steady rate takes the clock for it.
    const bool isSteady = (m_context->oformat->flags & AVFMT_VARIABLE_FPS) == 0;
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO && isSteady) {
        stream->avg_frame_rate = frameRate;
        stream->time_base = av_inv_q(frameRate);
    }
    return stream->index;
}

void Muxer::MarkCover(int stream) {
    m_context->streams[stream]->disposition |= AV_DISPOSITION_ATTACHED_PIC;
    // By this remark the muxers of sound files tell a front cover from pictures of no known kind.
    Check(av_dict_set(&m_context->streams[stream]->metadata, "comment", "Cover (front)", 0),
          "cannot describe a stream");
}

void Muxer::Begin() {
    if (m_isOnePicture) RequireOnePicture();
    const int result = avformat_write_header(m_context.get(), nullptr);
    if (result >= 0) return;
    for (unsigned i = 0; i < m_context->nb_streams; ++i) {
        const AVCodecID codec = m_context->streams[i]->codecpar->codec_id;
        if (avformat_query_codec(m_context->oformat, codec, FF_COMPLIANCE_NORMAL) != 0) continue;
        throw MediaError("the container " + Quoted(m_context->oformat->name) + " does not hold " +
                         Quoted(avcodec_get_name(codec)));
    }
    CheckWriting(result);
}

bool Muxer::PlacesStreams(const std::string& container) {
    // FFmpeg's flag of a variable rate does not tell: versions differ about MP4.
    constexpr std::array<std::string_view, 9> without = {"avi",        "dv",  "gxf", "mxf", "mxf_d10",
                                                         "mxf_opatom", "ogg", "ogv", "swf"};
    return std::find(without.begin(), without.end(), container) == without.end();
}

void Muxer::Write(AVPacket& packet, int stream, AVRational timeBase, std::int64_t begin) {
    if (m_isOnePicture && m_packets > 0) FailAsOnePicture();
    ++m_packets;
    packet.stream_index = stream;
    packet.pos = -1;
    const AVRational clock = m_context->streams[stream]->time_base;
    av_packet_rescale_ts(&packet, timeBase, clock);
    const std::int64_t later = av_rescale_q(begin + Wait(*m_context->streams[stream]), av_get_time_base_q(), clock);
    if (packet.pts != AV_NOPTS_VALUE) packet.pts += later;
    if (packet.dts != AV_NOPTS_VALUE) packet.dts += later;
    CheckWriting(av_interleaved_write_frame(m_context.get(), &packet));
}

void Muxer::Finish() {
    CheckWriting(av_write_trailer(m_context.get()));
    if (m_context->pb == nullptr) return;
    avio_flush(m_context->pb);
    CheckWriting(m_context->pb->error);
    CheckWriting(avio_closep(&m_context->pb));
}

Muxer::Muxer(const std::string& container, const std::string& quotedName, const std::string& url)
    : m_name(quotedName), m_isOnePicture(container == "image2") {
    const AVOutputFormat* const format = av_guess_format(container.c_str(), nullptr, nullptr);
    if (format == nullptr) throw MediaError("this FFmpeg has no muxer " + Quoted(container));
    AVFormatContext* context = nullptr;
    Check(avformat_alloc_output_context2(&context, format, nullptr, url.c_str()), "cannot set up the container");
    m_context.reset(context);
    // What a decoder of an MPEG stream has between a packet's arrival and its turn; without it there is none.
    m_context->max_delay = 7 * AV_TIME_BASE / 10;
    // What may go in is settled before; the muxer says that it carries even what it then calls experimental.
    m_context->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
}

void Muxer::CopySideData(const AVStream& source, AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
    for (int i = 0; i < source.nb_side_data; ++i) CopySideData(source.side_data[i], stream);
#else
    (void)source;
    (void)stream;
#endif
}

void Muxer::CopySideData(const AVCodecContext& encoder, AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
    for (int i = 0; i < encoder.nb_coded_side_data; ++i) {
        const AVPacketSideData& data = encoder.coded_side_data[i];
        const bool isOfLight =
            data.type == AV_PKT_DATA_MASTERING_DISPLAY_METADATA || data.type == AV_PKT_DATA_CONTENT_LIGHT_LEVEL;
        if (isOfLight) CopySideData(data, stream);
    }
#else
    (void)encoder;
    (void)stream;
#endif
}

void Muxer::CopySideData(const AVPacketSideData& data, AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
    std::uint8_t* const copy = av_stream_new_side_data(&stream, data.type, data.size);
    if (copy == nullptr) throw std::bad_alloc();
    std::copy_n(data.data, data.size, copy);
#else
    (void)data;
    (void)stream;
#endif
}

void Muxer::RequireOnePicture() const {
    if (m_context->nb_streams != 1) FailAsOnePicture();
    // By the name of its file, the planes of a raw picture may go to files of their own.
    if (m_context->streams[0]->codecpar->codec_id != AV_CODEC_ID_RAWVIDEO) return;
    throw MediaError("the container " + Quoted(m_context->oformat->name) + " does not hold 'rawvideo'");
}

}  // namespace NorvexExport::Media
