#include "Media.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <random>
#include <string_view>
#include <system_error>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace NorvexExport {

namespace fs = std::filesystem;

namespace {

using Options = std::vector<std::pair<std::string, std::string>>;

// ---------------------------------------------------------------------------------------------- failures

/// A name for a message, on one line whatever characters it holds.
std::string Quoted(std::string text) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
    std::replace_if(text.begin(), text.end(), isControl, '?');
    return "'" + text + "'";
}

std::string ReasonOf(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

[[noreturn]] void Fail(const std::string& what, int error) {
    throw MediaError(what + ": " + ReasonOf(error));
}

[[noreturn]] void Fail(const std::string& what, const std::error_code& error) {
    throw MediaError(what + ": " + error.message());
}

int Check(int result, const char* what) {
    if (result < 0) Fail(what, result);
    return result;
}

/// The options that something was given, for the message that it failed with them; empty without options.
std::string WithOptions(const Options& options) {
    std::string text;
    for (const auto& [name, value] : options) text += (text.empty() ? " with " : ", ") + name + "=" + value;
    return text;
}

// --------------------------------------------------------------------------------------------- ownership

struct Release {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    void operator()(AVBufferSrcParameters* source) const {
        av_channel_layout_uninit(&source->ch_layout);
        av_free(source);
    }
};

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

struct CloseOutput {
    void operator()(AVFormatContext* context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

template <class T>
using Owned = std::unique_ptr<T, Release>;

/// Takes over what an allocating function of FFmpeg returned.
template <class T>
Owned<T> Own(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return Owned<T>(object);
}

// ---------------------------------------------------------------------------------- numbers and channels

AVRational ToRational(const Fraction& fraction) {
    return {fraction.numerator, fraction.denominator};
}

Fraction ToFraction(AVRational rational) {
    return {rational.num, rational.den};
}

bool IsPositive(AVRational rational) {
    return rational.num > 0 && rational.den > 0;
}

/// Shape of one pixel; FFmpeg says 0 for the unknown one.
AVRational KnownAspect(AVRational aspect) {
    return IsPositive(aspect) ? aspect : AVRational{1, 1};
}

/// A channel layout as a value.
class ChannelLayout {
public:
    /// The given one, or the default one of its count where it only says a count.
    explicit ChannelLayout(const AVChannelLayout& layout) {
        if (layout.order == AV_CHANNEL_ORDER_UNSPEC) {
            av_channel_layout_default(&m_layout, layout.nb_channels);
        } else {
            Check(av_channel_layout_copy(&m_layout, &layout), "cannot copy a channel layout");
        }
    }
    explicit ChannelLayout(const std::string& name) {
        const int result = av_channel_layout_from_string(&m_layout, name.c_str());
        if (result < 0) Fail("there is no channel layout " + Quoted(name), result);
    }
    ChannelLayout(const ChannelLayout&) = delete;
    ChannelLayout& operator=(const ChannelLayout&) = delete;
    ~ChannelLayout() { av_channel_layout_uninit(&m_layout); }

    const AVChannelLayout& Get() const { return m_layout; }
    std::string Name() const {
        std::array<char, 256> text{};
        Check(av_channel_layout_describe(&m_layout, text.data(), text.size()), "cannot name a channel layout");
        return text.data();
    }

private:
    AVChannelLayout m_layout{};
};

// ------------------------------------------------------------------------------------------------- files

/// The name under which FFmpeg opens exactly this file: without it a colon would make the name a protocol.
std::string FileUrl(const std::string& path) {
    return "file:" + path;
}

std::string RandomName() {
    constexpr std::string_view digits = "0123456789abcdefghijklmnopqrstuv";
    std::random_device device;
    std::string name = "norvex-export-";
    for (int i = 0; i < 16; ++i) name += digits[device() % digits.size()];
    return name;
}

/// A file that gets its real name only when it is complete, and is gone otherwise.
class PendingFile {
public:
    explicit PendingFile(const std::string& target) : m_name(Quoted(target)), m_target(Resolve(target)) {
        RequireReplaceable();
        // A name of its own, not one made of the target's: that one may be as long as a name can be.
        const fs::path extension = m_target.extension();
        for (;;) {
            m_path = m_target.parent_path() / ("." + RandomName() + extension.string());
            if (std::FILE* const file = std::fopen(m_path.string().c_str(), "wbx")) {
                std::fclose(file);
                return;
            }
            if (errno != EEXIST) Fail("cannot write " + m_name, AVERROR(errno));
        }
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile() {
        std::error_code ignored;
        if (!m_committed) fs::remove(m_path, ignored);
    }

    std::string Path() const { return m_path.string(); }
    const std::string& QuotedName() const { return m_name; }
    std::uintmax_t Size() const {
        std::error_code error;
        const std::uintmax_t size = fs::file_size(m_path, error);
        if (error) Fail("cannot read the size of " + m_name, error);
        return size;
    }
    void Commit() {
        std::error_code error;
        fs::rename(m_path, m_target, error);
        if (error) Fail("cannot write " + m_name, error);
        m_committed = true;
    }

private:
    /// Where a link leads to, so that the link stays and its target is replaced.
    static fs::path Resolve(const fs::path& target) {
        std::error_code error;
        fs::path resolved = fs::canonical(target, error);
        return error ? target : resolved;
    }

    /// Renaming over a device or a pipe would put a file in its place.
    void RequireReplaceable() const {
        std::error_code error;
        const fs::file_status status = fs::status(m_target, error);
        if (status.type() == fs::file_type::directory) Fail("cannot write " + m_name, AVERROR(EISDIR));
        if (fs::exists(status) && status.type() != fs::file_type::regular) {
            throw MediaError("cannot write " + m_name + ": it is not a regular file");
        }
    }

    std::string m_name;
    fs::path m_target;
    fs::path m_path;
    bool m_committed = false;
};

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::error_code error;
        const fs::path parent = fs::temp_directory_path(error);
        if (error) Fail("there is no directory for temporary files", error);
        m_path = parent / RandomName();
        fs::create_directory(m_path, error);
        if (error) Fail("cannot make the directory " + Quoted(m_path.string()), error);
        fs::permissions(m_path, fs::perms::owner_all, error);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    std::string File(const std::string& name) const { return (m_path / name).string(); }

private:
    fs::path m_path;
};

// ------------------------------------------------------------------------------------------------- input

/// Any text file opens as a terminal recording or a text picture, which is never what the user means.
bool IsTextArt(AVCodecID codec) {
    return codec == AV_CODEC_ID_ANSI || codec == AV_CODEC_ID_BINTEXT || codec == AV_CODEC_ID_XBIN ||
           codec == AV_CODEC_ID_IDF;
}

bool IsAttachedPicture(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
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

/// Streams of a millisecond clock may give the clock itself for their rate.
bool IsFrameRate(AVRational rate) {
    return IsPositive(rate) && av_q2d(rate) < 1000;
}

/// Whether the stream has a place on the time line that the others follow. A cover has none; subtitles tell their
/// times on the line of the pictures and the sound, and may begin long after it.
bool IsTimed(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO) && !IsAttachedPicture(stream);
}

/// Whether the codec's subtitles are text, as against pictures.
bool IsText(AVCodecID codec) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(codec);
    return descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

/// The demuxer of one file.
class Input {
public:
    explicit Input(const std::string& path) : m_name(Quoted(path)), m_context(Open(path)) {
        const int result = avformat_find_stream_info(m_context.get(), nullptr);
        if (result < 0) Fail("cannot read " + m_name, result);
    }

    const std::string& QuotedName() const { return m_name; }
    const char* Container() const { return m_context->iformat->name; }

    /// Seconds, 0 where unknown.
    double Duration() const {
        if (m_context->duration > 0) return static_cast<double>(m_context->duration) / AV_TIME_BASE;
        double longest = 0;
        for (unsigned i = 0; i < m_context->nb_streams; ++i) {
            const AVStream& stream = *m_context->streams[i];
            if (stream.duration == AV_NOPTS_VALUE) continue;
            longest = std::max(longest, static_cast<double>(stream.duration) * av_q2d(stream.time_base));
        }
        return longest;
    }

    /// The stream a player would take, or null. `related` is a stream whose programme it should belong to, or -1.
    const AVStream* BestStream(AVMediaType type, int related) const {
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

    /// The stream of that number, which must be of that type; all streams not asked for are skipped from then on.
    const AVStream& Select(int index, AVMediaType type) {
        if (!Exists(index) || m_context->streams[index]->codecpar->codec_type != type) {
            throw MediaError(m_name + " has no " + av_get_media_type_string(type) + " stream " + std::to_string(index));
        }
        return Select(index);
    }

    /// The same of any type.
    const AVStream& Select(int index) {
        if (!Exists(index)) throw MediaError(m_name + " has no stream " + std::to_string(index));
        if (m_selected.empty()) {
            for (unsigned i = 0; i < m_context->nb_streams; ++i) m_context->streams[i]->discard = AVDISCARD_ALL;
        }
        m_selected.push_back(index);
        m_context->streams[index]->discard = AVDISCARD_DEFAULT;
        return *m_context->streams[index];
    }

    /// When the first of the selected streams begins, in AV_TIME_BASE units. Where none of them has a time line of
    /// its own, when the first of all streams that have one begins.
    std::int64_t StartTime() const {
        std::int64_t selected = AV_NOPTS_VALUE;
        std::int64_t any = AV_NOPTS_VALUE;
        for (int index = 0; index < static_cast<int>(m_context->nb_streams); ++index) {
            const AVStream& stream = *m_context->streams[index];
            if (!IsTimed(stream) || stream.start_time == AV_NOPTS_VALUE) continue;
            const std::int64_t start = av_rescale_q(stream.start_time, stream.time_base, av_get_time_base_q());
            const auto take = [&](std::int64_t& earliest) {
                earliest = earliest == AV_NOPTS_VALUE ? start : std::min(earliest, start);
            };
            take(any);
            if (std::find(m_selected.begin(), m_selected.end(), index) != m_selected.end()) take(selected);
        }
        const std::int64_t earliest = selected == AV_NOPTS_VALUE ? any : selected;
        return earliest == AV_NOPTS_VALUE ? 0 : earliest;
    }

    AVRational FrameRate(const AVStream& stream) const {
        const AVRational guess = av_guess_frame_rate(m_context.get(), Mutable(stream), nullptr);
        if (IsFrameRate(guess)) return guess;
        return IsFrameRate(stream.avg_frame_rate) ? stream.avg_frame_rate : AVRational{25, 1};
    }

    /// `frame` may be null.
    AVRational SampleAspect(const AVStream& stream, AVFrame* frame) const {
        return KnownAspect(av_guess_sample_aspect_ratio(m_context.get(), Mutable(stream), frame));
    }

    /// False at the end of the file.
    bool Read(AVPacket& packet) {
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
        if (result == AVERROR_EOF && m_context->pb != nullptr && m_context->pb->error < 0)
            result = m_context->pb->error;
        if (result != AVERROR_EOF) Fail("cannot read " + m_name, result);
        return false;
    }

private:
    using Context = std::unique_ptr<AVFormatContext, CloseInput>;

    static Context Open(const std::string& path) {
        AVFormatContext* context = nullptr;  // avformat_open_input frees it where it fails
        const int result = avformat_open_input(&context, FileUrl(path).c_str(), nullptr, nullptr);
        if (result < 0) Fail("cannot open " + Quoted(path), result);
        return Context(context);
    }

    bool Exists(int index) const { return index >= 0 && static_cast<unsigned>(index) < m_context->nb_streams; }

    AVStream* Mutable(const AVStream& stream) const { return m_context->streams[stream.index]; }

    std::string m_name;
    Context m_context;
    std::vector<int> m_selected;
};

VideoSource DescribeVideo(const Input& input, const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const char* const format = av_get_pix_fmt_name(static_cast<AVPixelFormat>(parameters.format));
    VideoSource source;
    source.streamIndex = stream.index;
    source.codecId = avcodec_get_name(parameters.codec_id);
    source.width = parameters.width;
    source.height = parameters.height;
    source.sampleAspect = ToFraction(input.SampleAspect(stream, nullptr));
    source.frameRate = ToFraction(input.FrameRate(stream));
    source.pixelFormat = format != nullptr ? format : "";
    source.codecTag = parameters.codec_tag;
    source.codecDataSize = static_cast<std::size_t>(parameters.extradata_size);
    source.isAttachedPicture = IsAttachedPicture(stream);
    return source;
}

AudioSource DescribeAudio(const AVStream& stream) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const char* const format = av_get_sample_fmt_name(static_cast<AVSampleFormat>(parameters.format));
    AudioSource source;
    source.streamIndex = stream.index;
    source.codecId = avcodec_get_name(parameters.codec_id);
    source.sampleRate = parameters.sample_rate;
    source.channels = parameters.ch_layout.nb_channels;
    source.layout = ChannelLayout(parameters.ch_layout).Name();
    source.sampleFormat = format != nullptr ? format : "";
    source.codecTag = parameters.codec_tag;
    source.codecDataSize = static_cast<std::size_t>(parameters.extradata_size);
    return source;
}

SubtitleSource DescribeSubtitle(const AVStream& stream) {
    SubtitleSource source;
    source.streamIndex = stream.index;
    source.codecId = avcodec_get_name(stream.codecpar->codec_id);
    source.isText = IsText(stream.codecpar->codec_id);
    return source;
}

// ---------------------------------------------------------------------------------------------- decoding

Owned<AVCodecContext> OpenDecoder(const AVStream& stream) {
    const std::string name = Quoted(avcodec_get_name(stream.codecpar->codec_id));
    const AVCodec* const codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr) throw MediaError("this FFmpeg has no decoder for " + name);
    Owned<AVCodecContext> context = Own(avcodec_alloc_context3(codec));
    Check(avcodec_parameters_to_context(context.get(), stream.codecpar), "cannot set up a decoder");
    context->pkt_timebase = stream.time_base;
    context->thread_count = 0;
    const int result = avcodec_open2(context.get(), codec, nullptr);
    if (result < 0) Fail("cannot open the decoder for " + name, result);
    return context;
}

class Decoder {
public:
    explicit Decoder(const AVStream& stream) : m_context(OpenDecoder(stream)), m_frame(Own(av_frame_alloc())) {}

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
    void Tolerate(int error) {
        if (error == AVERROR(ENOMEM)) throw std::bad_alloc();
        m_lastError = error;
    }

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
    explicit SubtitleDecoder(const AVStream& stream)
        : m_context(OpenDecoder(stream)), m_packet(Own(av_packet_alloc())) {}

    /// What the styles of the text are, as encoders take it over.
    std::string_view Header() const {
        if (m_context->subtitle_header == nullptr) return {};
        return {reinterpret_cast<const char*>(m_context->subtitle_header),
                static_cast<std::size_t>(m_context->subtitle_header_size)};
    }

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

// --------------------------------------------------------------------------------------------- filtering

struct FilterStep {
    const char* filter;
    Options options;
};

/// What `frame` is, as the source of a filter graph takes it.
Owned<AVBufferSrcParameters> DescribeFrame(const AVFrame& frame, AVRational sampleAspect, AVRational timeBase) {
    Owned<AVBufferSrcParameters> source = Own(av_buffersrc_parameters_alloc());
    source->format = frame.format;
    source->time_base = timeBase;
    source->width = frame.width;
    source->height = frame.height;
    source->sample_aspect_ratio = sampleAspect;
    source->sample_rate = frame.sample_rate;
#if LIBAVFILTER_VERSION_INT >= AV_VERSION_INT(9, 16, 100)
    source->color_space = frame.colorspace;
    source->color_range = frame.color_range;
#endif
    Check(av_channel_layout_copy(&source->ch_layout, &frame.ch_layout), "cannot copy a channel layout");
    return source;
}

bool IsSame(const AVBufferSrcParameters& left, const AVBufferSrcParameters& right) {
#if LIBAVFILTER_VERSION_INT >= AV_VERSION_INT(9, 16, 100)
    if (left.color_space != right.color_space || left.color_range != right.color_range) return false;
#endif
    return left.format == right.format && left.width == right.width && left.height == right.height &&
           av_cmp_q(left.sample_aspect_ratio, right.sample_aspect_ratio) == 0 &&
           left.sample_rate == right.sample_rate && av_channel_layout_compare(&left.ch_layout, &right.ch_layout) == 0;
}

/// A chain of filters from one source to one sink.
class FilterGraph {
public:
    FilterGraph(AVMediaType type, AVBufferSrcParameters& source, const std::vector<FilterStep>& steps)
        : m_graph(Own(avfilter_graph_alloc())) {
        const bool isVideo = type == AVMEDIA_TYPE_VIDEO;
        m_source = Allocate(isVideo ? "buffer" : "abuffer");
        Check(av_buffersrc_parameters_set(m_source, &source), "cannot set up the source of the filters");
        Append(m_source, {});
        for (const FilterStep& step : steps) Append(Allocate(step.filter), step.options);
        m_sink = Allocate(isVideo ? "buffersink" : "abuffersink");
        Append(m_sink, {});
        Check(avfilter_graph_config(m_graph.get(), nullptr), "cannot set up the filters");
    }

    /// Makes every frame that comes out hold that many samples, apart from the last; 0 lets them be.
    void SetFrameSize(int samples) { av_buffersink_set_frame_size(m_sink, static_cast<unsigned>(samples)); }

    /// Takes the frame's content, and leaves it empty.
    void Push(AVFrame& frame) { Check(av_buffersrc_add_frame(m_source, &frame), "cannot filter"); }

    /// Says that nothing follows and that the last frame lasts until `end`, in the time base of the source.
    void Close(std::int64_t end) { Check(av_buffersrc_close(m_source, end, 0), "cannot filter"); }

    /// False where nothing is ready.
    bool Pull(AVFrame& frame) {
        const int result = av_buffersink_get_frame(m_sink, &frame);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return false;
        Check(result, "cannot filter");
        return true;
    }

    AVRational TimeBase() const { return av_buffersink_get_time_base(m_sink); }

private:
    AVFilterContext* Allocate(const char* name) {
        const AVFilter* const filter = avfilter_get_by_name(name);
        if (filter == nullptr) throw MediaError("this FFmpeg has no filter " + Quoted(name));
        AVFilterContext* const context = avfilter_graph_alloc_filter(m_graph.get(), filter, nullptr);
        if (context == nullptr) throw std::bad_alloc();
        return context;
    }

    void Append(AVFilterContext* filter, const Options& options) {
        const std::string name = Quoted(filter->filter->name);
        for (const auto& [key, value] : options) {
            const int result = av_opt_set(filter, key.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
            if (result < 0) Fail("the filter " + name + " does not take " + key + "=" + value, result);
        }
        const int result = avfilter_init_str(filter, nullptr);
        if (result < 0) Fail("cannot set up the filter " + name + WithOptions(options), result);
        if (m_last != nullptr) Check(avfilter_link(m_last, 0, filter, 0), "cannot connect the filters");
        m_last = filter;
    }

    Owned<AVFilterGraph> m_graph;
    AVFilterContext* m_source = nullptr;  // the graph owns its filters
    AVFilterContext* m_sink = nullptr;
    AVFilterContext* m_last = nullptr;
};

/// Whether the job makes one picture of its stream rather than a film.
bool IsSingle(const VideoJob& job) {
    return job.isCover || job.isStill;
}

bool HasFlag(AVPixelFormat format, unsigned flag) {
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor != nullptr && (descriptor->flags & flag) != 0;
}

bool IsYuv(AVPixelFormat format) {
    const AVPixFmtDescriptor* const descriptor = av_pix_fmt_desc_get(format);
    return descriptor != nullptr && (descriptor->flags & AV_PIX_FMT_FLAG_RGB) == 0 && descriptor->nb_components >= 3;
}

/// Pixel formats that say full range by themselves: yuvj420p and its kin.
bool IsFullRangeYuv(AVPixelFormat format) {
    const char* const name = av_get_pix_fmt_name(format);
    return name != nullptr && std::string_view(name).substr(0, 4) == "yuvj";
}

/// Codecs whose pictures are of full range; players expect the limited one of all others.
bool IsFullRangeCodec(AVCodecID codec) {
    return codec == AV_CODEC_ID_MJPEG;
}

/// The matrix for the scaler where it must make the encoder's YUV from colours that have none, else null.
const char* ConversionMatrix(AVPixelFormat source, const AVCodecContext& encoder) {
    if (!HasFlag(source, AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL) || !IsYuv(encoder.pix_fmt)) return nullptr;
    return encoder.colorspace == AVCOL_SPC_BT709 ? "bt709" : "smpte170m";
}

struct Size {
    int width = 0;
    int height = 0;
};

/// One side of a scaled picture, even so that every chroma subsampling divides it.
int EvenSide(std::int64_t length, std::int64_t numerator, std::int64_t denominator, AVRounding rounding) {
    const std::int64_t half = av_rescale_rnd(length, numerator, denominator * 2, rounding);
    return static_cast<int>(std::clamp<std::int64_t>(half, 1, INT_MAX / 2) * 2);
}

/// The size that the source's picture is scaled to before it is padded or cropped to the size of the job.
Size ScaledSize(const VideoJob& job, const AVBufferSrcParameters& source) {
    if (job.fit == Fit::Stretch) return {job.width, job.height};
    const bool covers = job.fit == Fit::Crop;
    const AVRational sourceAspect = KnownAspect(source.sample_aspect_ratio);
    const AVRational targetAspect = KnownAspect(ToRational(job.sampleAspect));
    // The source's shape in pixels of the target.
    const AVRational shape = av_mul_q({source.width, source.height}, av_div_q(sourceAspect, targetAspect));
    const AVRational frame = {job.width, job.height};
    const bool keepsWidth = (av_cmp_q(shape, frame) > 0) != covers;
    const AVRounding rounding = covers ? AV_ROUND_UP : AV_ROUND_NEAR_INF;
    Size size = {job.width, job.height};
    int& free = keepsWidth ? size.height : size.width;
    const int whole = free;
    free = keepsWidth ? EvenSide(job.width, shape.den, shape.num, rounding)
                      : EvenSide(job.height, shape.num, shape.den, rounding);
    free = covers ? std::max(free, whole) : std::min(free, whole);
    return size;
}

/// Where a picture stands in a frame; even, so that luma and chroma stay together.
std::string CentredOffset(int outer, int inner) {
    return std::to_string((outer - inner) / 4 * 2);
}

/// `isFirst` tells the graph at the beginning from one after a change of the source.
std::vector<FilterStep> VideoSteps(const VideoJob& job, const AVBufferSrcParameters& source,
                                   const AVCodecContext& encoder, bool isFirst) {
    const Size size = ScaledSize(job, source);
    const char* const matrix = ConversionMatrix(static_cast<AVPixelFormat>(source.format), encoder);
    const auto number = [](int value) { return std::to_string(value); };
    const auto ratio = [](AVRational value) { return std::to_string(value.num) + "/" + std::to_string(value.den); };

    FilterStep rate{"fps", {{"fps", ratio(encoder.framerate)}}};
    // The first picture also covers the time before it, so that the streams of the output begin together.
    if (isFirst) rate.options.emplace_back("start_time", "0");

    FilterStep scale{"scale", {{"w", number(size.width)}, {"h", number(size.height)}}};
    scale.options.emplace_back("flags", job.scaler.empty() ? "bicubic" : job.scaler);
    if (encoder.color_range == AVCOL_RANGE_JPEG) scale.options.emplace_back("out_range", "pc");
    if (encoder.color_range == AVCOL_RANGE_MPEG) scale.options.emplace_back("out_range", "tv");
    if (matrix != nullptr) scale.options.emplace_back("out_color_matrix", matrix);

    std::vector<FilterStep> steps;
    if (!IsSingle(job)) steps.push_back(rate);
    steps.push_back(scale);
    if (size.width < job.width || size.height < job.height) {
        steps.push_back({"pad",
                         {{"w", number(job.width)},
                          {"h", number(job.height)},
                          {"x", CentredOffset(job.width, size.width)},
                          {"y", CentredOffset(job.height, size.height)}}});
    } else if (size.width > job.width || size.height > job.height) {
        steps.push_back({"crop",
                         {{"w", number(job.width)},
                          {"h", number(job.height)},
                          {"x", CentredOffset(size.width, job.width)},
                          {"y", CentredOffset(size.height, job.height)}}});
    }
    steps.push_back({"setsar", {{"max", number(INT_MAX)}, {"sar", ratio(encoder.sample_aspect_ratio)}}});
    steps.push_back({"format", {{"pix_fmts", av_get_pix_fmt_name(encoder.pix_fmt)}}});
    return steps;
}

/// `firstSample` is the sample of the output at which the graph begins.
std::vector<FilterStep> AudioSteps(const AVBufferSrcParameters& source, const AVCodecContext& encoder,
                                   std::int64_t firstSample) {
    const std::string rate = std::to_string(encoder.sample_rate);
    // The resampler counts the samples of its source.
    const std::int64_t begin = av_rescale(firstSample, source.sample_rate, encoder.sample_rate);
    // "async" fills gaps and trims overlaps by the timestamps and does not stretch.
    return {{"aresample", {{"sample_rate", rate}, {"async", "1"}, {"first_pts", std::to_string(begin)}}},
            {"aformat",
             {{"sample_fmts", av_get_sample_fmt_name(encoder.sample_fmt)},
              {"sample_rates", rate},
              {"channel_layouts", ChannelLayout(encoder.ch_layout).Name()}}}};
}

// ---------------------------------------------------------------------------------------- encoders' facts

// What an encoder declares that it takes; an empty list says nothing. Read here only, for FFmpeg moved it from
// fields to a function.
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100)

template <class T>
std::vector<T> Declared(const AVCodec& codec, AVCodecConfig config) {
    const void* values = nullptr;
    int count = 0;
    if (avcodec_get_supported_config(nullptr, &codec, config, 0, &values, &count) < 0 || values == nullptr) return {};
    const T* const first = static_cast<const T*>(values);
    return {first, first + count};
}

std::vector<AVPixelFormat> DeclaredPixelFormats(const AVCodec& codec) {
    return Declared<AVPixelFormat>(codec, AV_CODEC_CONFIG_PIX_FORMAT);
}
std::vector<AVSampleFormat> DeclaredSampleFormats(const AVCodec& codec) {
    return Declared<AVSampleFormat>(codec, AV_CODEC_CONFIG_SAMPLE_FORMAT);
}
std::vector<int> DeclaredSampleRates(const AVCodec& codec) {
    return Declared<int>(codec, AV_CODEC_CONFIG_SAMPLE_RATE);
}
/// The layouts stay the encoder's.
std::vector<AVChannelLayout> DeclaredLayouts(const AVCodec& codec) {
    return Declared<AVChannelLayout>(codec, AV_CODEC_CONFIG_CHANNEL_LAYOUT);
}

#else

template <class T, class IsEnd>
std::vector<T> Declared(const T* first, const IsEnd& isEnd) {
    std::vector<T> list;
    if (first == nullptr) return list;
    for (; !isEnd(*first); ++first) list.push_back(*first);
    return list;
}

std::vector<AVPixelFormat> DeclaredPixelFormats(const AVCodec& codec) {
    return Declared(codec.pix_fmts, [](AVPixelFormat format) { return format == AV_PIX_FMT_NONE; });
}
std::vector<AVSampleFormat> DeclaredSampleFormats(const AVCodec& codec) {
    return Declared(codec.sample_fmts, [](AVSampleFormat format) { return format == AV_SAMPLE_FMT_NONE; });
}
std::vector<int> DeclaredSampleRates(const AVCodec& codec) {
    return Declared(codec.supported_samplerates, [](int rate) { return rate == 0; });
}
/// The layouts stay the encoder's.
std::vector<AVChannelLayout> DeclaredLayouts(const AVCodec& codec) {
    return Declared(codec.ch_layouts, [](const AVChannelLayout& layout) { return layout.nb_channels == 0; });
}

#endif

template <class T>
bool Takes(const std::vector<T>& declared, const T& value) {
    return declared.empty() || std::find(declared.begin(), declared.end(), value) != declared.end();
}

const AVCodec& FindEncoder(const std::string& codecId, AVMediaType type) {
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get_by_name(codecId.c_str());
    if (descriptor == nullptr || descriptor->type != type) {
        throw MediaError("there is no " + std::string(av_get_media_type_string(type)) + " codec " + Quoted(codecId));
    }
    const AVCodec* const codec = avcodec_find_encoder(descriptor->id);
    if (codec == nullptr) throw MediaError("this FFmpeg has no encoder for " + Quoted(codecId));
    return *codec;
}

bool HasOwnOption(const AVCodec& codec, const char* name) {
    const AVClass* options = codec.priv_class;
    return options != nullptr && av_opt_find(&options, name, nullptr, 0, AV_OPT_SEARCH_FAKE_OBJ) != nullptr;
}

bool IsX26x(const AVCodec& codec) {
    const std::string_view name = codec.name;
    return name == "libx264" || name == "libx265";
}

/// How an encoder can be told to hold a quality.
enum class QualityControl { None, RateFactor, Quantiser };

QualityControl QualityControlOf(const AVCodec& codec) {
    if (HasOwnOption(codec, "crf")) return QualityControl::RateFactor;
    switch (codec.id) {  // FFmpeg does not tell which encoders heed AV_CODEC_FLAG_QSCALE
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
        case AV_CODEC_ID_MSMPEG4V2:
        case AV_CODEC_ID_MSMPEG4V3:
        case AV_CODEC_ID_WMV1:
        case AV_CODEC_ID_WMV2:
        case AV_CODEC_ID_FLV1:
        case AV_CODEC_ID_H263:
        case AV_CODEC_ID_H263P:
        case AV_CODEC_ID_MJPEG:
            return QualityControl::Quantiser;
        case AV_CODEC_ID_MP3:
            return std::string_view(codec.name) == "libmp3lame" ? QualityControl::Quantiser : QualityControl::None;
        default:
            return QualityControl::None;
    }
}

/// How an encoder carries what its first pass found to its second.
enum class PassLog {
    None,      ///< it cannot make two passes
    Text,      ///< by way of AVCodecContext
    File,      ///< in a file that its option "stats" names
    X265File,  ///< in a file that x265's own parameters name
};

PassLog PassLogOf(const AVCodec& codec) {
    constexpr std::array<std::string_view, 13> viaText = {
        "mpeg1video", "mpeg2video", "mpeg4",  "msmpeg4v2",  "msmpeg4",    "wmv1",      "wmv2",
        "flv",        "h263",       "libvpx", "libvpx-vp9", "libaom-av1", "libtheora",
    };
    if (std::find(viaText.begin(), viaText.end(), codec.name) != viaText.end()) return PassLog::Text;
    if (HasOwnOption(codec, "x265-params")) return PassLog::X265File;
    return HasOwnOption(codec, "stats") ? PassLog::File : PassLog::None;
}

// ---------------------------------------------------------------------------------------------- encoding

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

void SetOption(AVCodecContext& encoder, const std::string& name, const std::string& value) {
    const int result = av_opt_set(&encoder, name.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN);
    const std::string codec = Quoted(encoder.codec->name);
    if (result == AVERROR_OPTION_NOT_FOUND) {
        throw MediaError("the encoder " + codec + " has no option " + Quoted(name));
    }
    if (result < 0) Fail("the encoder " + codec + " does not take " + Quoted(value) + " for " + Quoted(name), result);
}

/// A value inside a list of FFmpeg's form "name=value:name=value".
std::string Escaped(const std::string& value) {
    std::string escaped;
    for (const char c : value) {
        if (c == '\\' || c == '\'' || c == ':' || c == '=') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// x265 prints by itself and knows nothing of FFmpeg's log level.
std::string X265LogLevel() {
    const int level = av_log_get_level();
    if (level < AV_LOG_ERROR) return "none";
    if (level < AV_LOG_WARNING) return "error";
    if (level < AV_LOG_INFO) return "warning";
    return "info";
}

/// The job's options for x265, with our own before them.
Options WithX265Parameters(const Options& options, const Pass& pass) {
    std::string parameters = "log-level=" + X265LogLevel();
    if (pass.record != nullptr) {
        parameters += ":pass=" + std::to_string(pass.number) + ":stats=" + Escaped(pass.record->StatisticsFile());
    }
    Options result;
    for (const auto& option : options) {
        if (option.first == "x265-params") {
            parameters += ":" + option.second;
        } else {
            result.push_back(option);
        }
    }
    result.emplace_back("x265-params", parameters);
    return result;
}

void SetPass(AVCodecContext& encoder, const Pass& pass) {
    if (pass.record == nullptr) return;
    const PassLog log = PassLogOf(*encoder.codec);
    if (log == PassLog::X265File) return;  // told by its parameters alone
    encoder.flags |= pass.IsRecording() ? AV_CODEC_FLAG_PASS1 : AV_CODEC_FLAG_PASS2;
    if (log == PassLog::File) SetOption(encoder, "stats", pass.record->StatisticsFile());
    if (log != PassLog::Text || !pass.IsReplaying()) return;
    if (pass.record->text.empty()) {
        throw MediaError("the encoder " + Quoted(encoder.codec->name) + " recorded nothing in its first pass");
    }
    encoder.stats_in = pass.record->text.data();  // stays the caller's
}

/// Whether the encoder is driven by the quality rather than by the bitrate.
bool HoldsQuality(RateControl rateControl, const AVCodec& codec) {
    return rateControl == RateControl::Quality && QualityControlOf(codec) != QualityControl::None;
}

void SetRateControl(AVCodecContext& encoder, RateControl rateControl, long long bitrate, int quality) {
    const AVCodec& codec = *encoder.codec;
    if (!HoldsQuality(rateControl, codec)) {
        if (bitrate > 0) encoder.bit_rate = bitrate;
        return;
    }
    if (QualityControlOf(codec) == QualityControl::RateFactor) {
        encoder.bit_rate = 0;  // a bitrate would be a bound, and some encoders have one by default
        SetOption(encoder, "crf", std::to_string(quality));
        return;
    }
    const int worst = codec.id == AV_CODEC_ID_MP3 ? 9 : 31;
    encoder.flags |= AV_CODEC_FLAG_QSCALE;
    encoder.global_quality = std::min(quality, worst) * FF_QP2LAMBDA;
}

/// Bounds the peaks as well where the encoder has a buffer model that does it: on average alone these two would
/// swing widely about the bitrate.
void BoundPeaks(AVCodecContext& encoder, const VideoJob& job) {
    if (job.rateControl != RateControl::Bitrate || job.bitrate <= 0 || !IsX26x(*encoder.codec)) return;
    encoder.rc_max_rate = job.bitrate;
    encoder.rc_buffer_size = static_cast<int>(std::min<long long>(job.bitrate, INT_MAX));
}

/// The pixel format that the profile in the options goes with, or AV_PIX_FMT_NONE.
AVPixelFormat ProfilePixelFormat(AVCodecID codec, const Options& options) {
    struct Row {
        AVCodecID codec;
        std::string_view profile;
        AVPixelFormat format;
    };
    constexpr std::array<Row, 8> table = {{
        {AV_CODEC_ID_H264, "baseline", AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_H264, "main", AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_H264, "high", AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_H264, "high10", AV_PIX_FMT_YUV420P10},
        {AV_CODEC_ID_H264, "high422", AV_PIX_FMT_YUV422P},
        {AV_CODEC_ID_H264, "high444", AV_PIX_FMT_YUV444P},
        {AV_CODEC_ID_HEVC, "main", AV_PIX_FMT_YUV420P},
        {AV_CODEC_ID_HEVC, "main10", AV_PIX_FMT_YUV420P10},
    }};
    for (const auto& [name, value] : options) {
        if (name != "profile") continue;
        for (const Row& row : table) {
            if (row.codec == codec && row.profile == value) return row.format;
        }
    }
    return AV_PIX_FMT_NONE;
}

/// The encoder's formats that suit the range of its codec: the yuvj ones for full range, the others otherwise. Those
/// with a palette are left out where there is any other: the scaler makes no palettes.
std::vector<AVPixelFormat> SuitablePixelFormats(const AVCodec& codec) {
    std::vector<AVPixelFormat> formats = DeclaredPixelFormats(codec);
    const auto firstOfPalette = std::stable_partition(
        formats.begin(), formats.end(), [](AVPixelFormat format) { return !HasFlag(format, AV_PIX_FMT_FLAG_PAL); });
    if (firstOfPalette != formats.begin()) formats.erase(firstOfPalette, formats.end());
    const bool wantsFullRange = IsFullRangeCodec(codec.id);
    const auto middle = std::stable_partition(
        formats.begin(), formats.end(), [&](AVPixelFormat format) { return IsFullRangeYuv(format) == wantsFullRange; });
    if (middle != formats.begin()) formats.erase(middle, formats.end());
    return formats;
}

AVPixelFormat ChoosePixelFormat(const AVCodec& codec, const VideoJob& job, AVPixelFormat source) {
    std::vector<AVPixelFormat> formats = SuitablePixelFormats(codec);
    const AVPixelFormat named = av_get_pix_fmt(job.pixelFormat.c_str());
    const AVPixelFormat wanted = named != AV_PIX_FMT_NONE ? named : ProfilePixelFormat(codec.id, job.options);
    if (wanted != AV_PIX_FMT_NONE) {
        if (Takes(formats, wanted)) return wanted;
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the pixel format " +
                         Quoted(av_get_pix_fmt_name(wanted)));
    }
    if (formats.empty()) return source != AV_PIX_FMT_NONE ? source : AV_PIX_FMT_YUV420P;
    if (source == AV_PIX_FMT_NONE) return formats.front();
    formats.push_back(AV_PIX_FMT_NONE);
    const int hasAlpha = HasFlag(source, AV_PIX_FMT_FLAG_ALPHA) ? 1 : 0;
    return avcodec_find_best_pix_fmt_of_list(formats.data(), source, hasAlpha, nullptr);
}

AVSampleFormat ChooseSampleFormat(const AVCodec& codec, const std::string& name, AVSampleFormat source) {
    const std::vector<AVSampleFormat> formats = DeclaredSampleFormats(codec);
    if (!name.empty()) {
        const AVSampleFormat format = av_get_sample_fmt(name.c_str());
        if (format == AV_SAMPLE_FMT_NONE) throw MediaError("there is no sample format " + Quoted(name));
        if (Takes(formats, format)) return format;
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the sample format " + Quoted(name));
    }
    const bool isPlanar = av_sample_fmt_is_planar(source) != 0;
    const AVSampleFormat twin = isPlanar ? av_get_packed_sample_fmt(source) : av_get_planar_sample_fmt(source);
    for (const AVSampleFormat format : {source, twin}) {
        if (format != AV_SAMPLE_FMT_NONE && Takes(formats, format)) return format;
    }
    return formats.empty() ? AV_SAMPLE_FMT_S16 : formats.front();
}

void RequireSound(const AVCodec& codec, int sampleRate, const ChannelLayout& layout) {
    if (!Takes(DeclaredSampleRates(codec), sampleRate)) {
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the sample rate " +
                         std::to_string(sampleRate) + " Hz");
    }
    const std::vector<AVChannelLayout> layouts = DeclaredLayouts(codec);
    const bool takesLayout = std::any_of(layouts.begin(), layouts.end(), [&](const AVChannelLayout& declared) {
        return av_channel_layout_compare(&declared, &layout.Get()) == 0;
    });
    if (!layouts.empty() && !takesLayout) {
        throw MediaError("the encoder " + Quoted(codec.name) + " does not take the channel layout " +
                         Quoted(layout.Name()));
    }
}

void OpenEncoder(AVCodecContext& encoder, const Options& options) {
    for (const auto& [name, value] : options) SetOption(encoder, name, value);
    const std::string codec = Quoted(encoder.codec->name);  // a failure takes the codec from the context
    const int result = avcodec_open2(&encoder, encoder.codec, nullptr);
    // Encoders judge the values of many options only here, and FFmpeg does not tell which one was wrong.
    if (result < 0) Fail("cannot open the encoder " + codec + WithOptions(options), result);
}

Owned<AVCodecContext> NewEncoder(const AVCodec& codec, bool globalHeader) {
    Owned<AVCodecContext> encoder = Own(avcodec_alloc_context3(&codec));
    if (globalHeader) encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    // Such encoders open for those only who say that they know.
    const bool isExperimental = (codec.capabilities & AV_CODEC_CAP_EXPERIMENTAL) != 0;
    if (isExperimental) encoder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    return encoder;
}

/// What the source says of its colours is kept where the pixel format lets it.
void SetColours(AVCodecContext& encoder, const AVCodecParameters& source) {
    encoder.color_primaries = source.color_primaries;
    encoder.color_trc = source.color_trc;
    if (!IsYuv(encoder.pix_fmt)) return;
    encoder.color_range = IsFullRangeCodec(encoder.codec->id) ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    encoder.chroma_sample_location = source.chroma_location;
    encoder.colorspace = source.color_space;
    if (HasFlag(static_cast<AVPixelFormat>(source.format), AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) {
        // A player that is told nothing guesses by the height.
        encoder.colorspace = encoder.height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    } else if (encoder.colorspace == AVCOL_SPC_RGB) {
        encoder.colorspace = AVCOL_SPC_UNSPECIFIED;
    }
}

Encoder OpenVideoEncoder(const VideoJob& job, const AVCodecParameters& source, bool globalHeader, const Pass& pass) {
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_VIDEO);
    Owned<AVCodecContext> encoder = NewEncoder(codec, globalHeader);
    encoder->width = job.width;
    encoder->height = job.height;
    encoder->pix_fmt = ChoosePixelFormat(codec, job, static_cast<AVPixelFormat>(source.format));
    encoder->sample_aspect_ratio = KnownAspect(ToRational(job.sampleAspect));
    const AVRational rate = ToRational(job.frameRate);
    encoder->framerate = IsPositive(rate) ? rate : AVRational{25, 1};  // a single picture may go without
    encoder->time_base = av_inv_q(encoder->framerate);
    SetColours(*encoder, source);
    encoder->thread_count = job.threads;
    if (job.maxBFrames) encoder->max_b_frames = *job.maxBFrames;
    if (job.keyFrameInterval) encoder->gop_size = *job.keyFrameInterval;
    SetRateControl(*encoder, job.rateControl, job.bitrate, job.quality);
    BoundPeaks(*encoder, job);
    SetPass(*encoder, pass);
    const bool isX265 = PassLogOf(codec) == PassLog::X265File;
    OpenEncoder(*encoder, isX265 ? WithX265Parameters(job.options, pass) : job.options);
    return Encoder(std::move(encoder), pass);
}

Encoder OpenAudioEncoder(const AudioJob& job, const AVCodecParameters& source, bool globalHeader) {
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_AUDIO);
    const ChannelLayout layout(job.layout);
    RequireSound(codec, job.sampleRate, layout);
    Owned<AVCodecContext> encoder = NewEncoder(codec, globalHeader);
    encoder->sample_rate = job.sampleRate;
    encoder->time_base = {1, job.sampleRate};
    encoder->sample_fmt = ChooseSampleFormat(codec, job.sampleFormat, static_cast<AVSampleFormat>(source.format));
    Check(av_channel_layout_copy(&encoder->ch_layout, &layout.Get()), "cannot copy a channel layout");
    SetRateControl(*encoder, job.rateControl, job.bitrate, job.quality);
    OpenEncoder(*encoder, job.options);
    return Encoder(std::move(encoder), Pass());
}

/// Finer than the clock of any other stream: the muxer of MP4 compares the end of an event with the time of the next
/// packet of any stream without minding their clocks, and would end an event too early for one that overlaps it.
constexpr AVRational subtitleClock = {1, 200000};

/// Makes text of text.
class SubtitleEncoder {
public:
    /// `header` is the decoder's.
    SubtitleEncoder(const std::string& codecId, std::string_view header, bool globalHeader) {
        const AVCodec& codec = FindEncoder(codecId, AVMEDIA_TYPE_SUBTITLE);
        if (!IsText(codec.id)) throw MediaError("no text can become subtitles of " + Quoted(codecId));
        m_context = NewEncoder(codec, globalHeader);
        m_context->time_base = subtitleClock;
        if (!header.empty()) {
            void* const copy = av_mallocz(header.size() + 1);
            if (copy == nullptr) throw std::bad_alloc();
            std::copy(header.begin(), header.end(), static_cast<char*>(copy));
            m_context->subtitle_header = static_cast<std::uint8_t*>(copy);
            m_context->subtitle_header_size = static_cast<int>(header.size());
        }
        OpenEncoder(*m_context, {});
    }

    const AVCodecContext& Context() const { return *m_context; }

    /// One event as a packet without times, empty where it says nothing.
    Owned<AVPacket> Encode(const AVSubtitle& subtitle) {
        Owned<AVPacket> packet = Own(av_packet_alloc());
        constexpr int most = 1 << 20;
        m_buffer.resize(most);
        const int size = avcodec_encode_subtitle(m_context.get(), m_buffer.data(), most, &subtitle);
        if (size < 0) Fail("the encoder " + Quoted(m_context->codec->name) + " failed", size);
        Check(av_new_packet(packet.get(), size), "cannot make a packet");
        std::copy_n(m_buffer.begin(), size, packet->data);
        return packet;
    }

private:
    Owned<AVCodecContext> m_context;
    std::vector<std::uint8_t> m_buffer;
};

// ------------------------------------------------------------------------------------------------ muxing

class Muxer {
public:
    /// Writes the container to `file`.
    Muxer(const std::string& container, const Options& options, const PendingFile& file)
        : Muxer(container, file.QuotedName(), FileUrl(file.Path())) {
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
        CheckWriting(avio_open(&m_context->pb, m_context->url, AVIO_FLAG_WRITE));
    }

    /// Takes what it is given and keeps none of it.
    static Muxer Discarding() { return Muxer("null", "nothing", ""); }

    bool WantsGlobalHeader() const { return (m_context->oformat->flags & AVFMT_GLOBALHEADER) != 0; }

    /// The number of a new stream. All streams are added before Begin().
    int AddStream(const AVCodecContext& encoder) {
        AVStream* const stream = avformat_new_stream(m_context.get(), nullptr);
        if (stream == nullptr) throw std::bad_alloc();
        Check(avcodec_parameters_from_context(stream->codecpar, &encoder), "cannot describe a stream");
        stream->time_base = encoder.time_base;
        stream->avg_frame_rate = encoder.framerate;
        stream->sample_aspect_ratio = encoder.sample_aspect_ratio;
        return stream->index;
    }

    /// The filter that brings the packets of a stream into the form that this container wants, null where none is
    /// needed or where the muxer sees to it itself.
    const char* PacketFilterFor(const AVCodecParameters& source) const {
        const bool isPrefixed = source.extradata_size > 0 && source.extradata[0] == 1;  // rather than with start codes
        return IsAvi() && source.codec_id == AV_CODEC_ID_H264 && isPrefixed ? "h264_mp4toannexb" : nullptr;
    }

    /// The same for a stream that goes over, of those parameters and with that rate of frames.
    int AddCopy(const AVStream& source, const AVCodecParameters& sourceParameters, AVRational frameRate) {
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
        CopySideData(source, *stream);
        Check(av_dict_copy(&stream->metadata, source.metadata, 0), "cannot describe a stream");
        stream->disposition = source.disposition;
        stream->sample_aspect_ratio = source.sample_aspect_ratio;
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

    /// Says that the stream is the cover picture of the others.
    void MarkCover(int stream) {
        m_context->streams[stream]->disposition |= AV_DISPOSITION_ATTACHED_PIC;
        // By this remark the muxers of sound files tell a front cover from pictures of no known kind.
        Check(av_dict_set(&m_context->streams[stream]->metadata, "comment", "Cover (front)", 0),
              "cannot describe a stream");
    }

    void Begin() {
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

    /// Whether the container tells when pictures are shown, rather than only in which order they are decoded.
    bool TellsTimes() const { return (m_context->oformat->flags & AVFMT_NOTIMESTAMPS) == 0 && !IsAvi(); }

    /// Whether the packets of one stream must be of rising times rather than of times that do not fall.
    bool WantsRisingTimes() const { return (m_context->oformat->flags & AVFMT_TS_NONSTRICT) == 0; }

    /// The clock of a stream, known after Begin().
    AVRational TimeBase(int stream) const { return m_context->streams[stream]->time_base; }

    /// Takes the packet's content, and leaves it empty.
    void Write(AVPacket& packet, int stream, AVRational timeBase) {
        if (m_isOnePicture && m_packets > 0) FailAsOnePicture();
        ++m_packets;
        packet.stream_index = stream;
        packet.pos = -1;
        av_packet_rescale_ts(&packet, timeBase, m_context->streams[stream]->time_base);
        CheckWriting(av_interleaved_write_frame(m_context.get(), &packet));
    }

    /// Completes the file. Only then is it known that all of it was written.
    void Finish() {
        CheckWriting(av_write_trailer(m_context.get()));
        if (m_context->pb == nullptr) return;
        avio_flush(m_context->pb);
        CheckWriting(m_context->pb->error);
        CheckWriting(avio_closep(&m_context->pb));
    }

private:
    Muxer(const std::string& container, const std::string& quotedName, const std::string& url)
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

    /// Such as how the picture is to be turned. Newer versions keep it in the parameters.
    static void CopySideData(const AVStream& source, AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT < AV_VERSION_INT(60, 15, 100)
        for (int i = 0; i < source.nb_side_data; ++i) {
            const AVPacketSideData& data = source.side_data[i];
            std::uint8_t* const copy = av_stream_new_side_data(&stream, data.type, data.size);
            if (copy == nullptr) throw std::bad_alloc();
            std::copy_n(data.data, data.size, copy);
        }
#else
        (void)source;
        (void)stream;
#endif
    }

    bool IsAvi() const {
        return std::string_view(m_context->oformat->name) == "avi";
    }

    void CheckWriting(int result) const {
        if (result < 0) Fail("cannot write " + m_name, result);
    }

    void RequireOnePicture() const {
        if (m_context->nb_streams != 1) FailAsOnePicture();
        // By the name of its file, the planes of a raw picture may go to files of their own.
        if (m_context->streams[0]->codecpar->codec_id != AV_CODEC_ID_RAWVIDEO) return;
        throw MediaError("the container " + Quoted(m_context->oformat->name) + " does not hold 'rawvideo'");
    }

    /// The next picture would take the place of the one before it.
    [[noreturn]] void FailAsOnePicture() const {
        throw MediaError("the container " + Quoted(m_context->oformat->name) + " holds one picture alone");
    }

    std::string m_name;
    bool m_isOnePicture;
    long long m_packets = 0;
    std::unique_ptr<AVFormatContext, CloseOutput> m_context;
};

// ---------------------------------------------------------------------------------------------- progress

class ProgressMeter {
public:
    using Callback = std::function<void(const Progress&)>;

    /// `duration` is that of one pass in seconds, 0 where unknown.
    ProgressMeter(const Callback& callback, double duration, int passes)
        : m_callback(callback), m_duration(duration), m_passes(passes) {}

    void BeginPass(int pass) {
        if (pass > 1) m_before = m_duration > 0 ? m_duration * (pass - 1) : m_before + m_inPass;
        m_inPass = 0;
        m_pass = pass;
    }

    /// `seconds` of the pass are done.
    void Update(double seconds) {
        m_inPass = std::max(m_inPass, seconds);
        if (m_duration > 0) m_inPass = std::min(m_inPass, m_duration);
        constexpr std::chrono::milliseconds interval(100);
        const auto now = std::chrono::steady_clock::now();
        if (m_reported && now - *m_reported < interval) return;
        m_reported = now;
        Report(m_before + m_inPass);
    }

    /// All passes are done, whatever the input claimed that they would last.
    void Finish() { Report(m_duration > 0 ? m_duration * m_passes : m_before + m_inPass); }

private:
    void Report(double seconds) const {
        if (m_callback) m_callback({seconds, m_duration * m_passes, m_pass, m_passes});
    }

    const Callback& m_callback;
    double m_duration;
    int m_passes;
    int m_pass = 1;
    double m_before = 0;  // seconds of the passes before this one
    double m_inPass = 0;
    std::optional<std::chrono::steady_clock::time_point> m_reported;
};

// --------------------------------------------------------------------------------------- output's streams

/// One stream of the output: takes the packets of one stream of the input, and gives the muxer its own.
class OutputStream {
public:
    virtual ~OutputStream() = default;

    virtual int SourceIndex() const = 0;
    virtual void Take(const AVPacket& packet) = 0;
    /// False where further packets of the input would change nothing.
    virtual bool WantsMore() const = 0;
    /// Gives the muxer all that is left. Throws MediaError where the input held nothing.
    virtual void Finish() = 0;
    /// How far the stream has come on the time line of the output.
    virtual double Seconds() const = 0;
    virtual void Report(ExportResult& result) const = 0;
};

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
    bool IsSingle() const override { return NorvexExport::IsSingle(m_job); }

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
    static constexpr std::int64_t endless = 5 * AV_TIME_BASE;

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

// ---------------------------------------------------------------------------------------------- exporting

void RequireComplete(const ExportJob& job) {
    if (!job.video && !job.audio && !job.subtitle && job.copies.empty())
        throw MediaError("there is no stream to export");
    if (job.video) {
        const VideoJob& video = *job.video;
        if (video.width <= 0 || video.height <= 0) throw MediaError("the size of the picture must be above 0");
        if (!IsSingle(video) && !IsPositive(ToRational(video.frameRate)))
            throw MediaError("the frame rate must be above 0");
    }
    if (job.audio && job.audio->sampleRate <= 0) throw MediaError("the sample rate must be above 0");
}

void RequireOtherFile(const std::string& inputPath, const std::string& outputPath) {
    std::error_code ignored;
    if (fs::equivalent(inputPath, outputPath, ignored)) {
        throw MediaError("cannot write " + Quoted(outputPath) + ": it is the input");
    }
}

/// A second pass needs an encoder that can make it, and a bitrate to share out.
bool MakesTwoPasses(const VideoJob& job) {
    if (!job.twoPass || job.bitrate <= 0 || IsSingle(job)) return false;
    const AVCodec& codec = FindEncoder(job.codecId, AVMEDIA_TYPE_VIDEO);
    return PassLogOf(codec) != PassLog::None && !HoldsQuality(job.rateControl, codec);
}

using OutputStreams = std::vector<std::unique_ptr<OutputStream>>;

/// The stream of a subtitle job, which must be text.
const AVStream& SelectText(Input& input, const SubtitleJob& job) {
    const AVStream& stream = input.Select(job.streamIndex, AVMEDIA_TYPE_SUBTITLE);
    if (IsText(stream.codecpar->codec_id)) return stream;
    throw MediaError("the subtitle stream " + std::to_string(stream.index) + " of " + input.QuotedName() +
                     " is no text but " + Quoted(avcodec_get_name(stream.codecpar->codec_id)));
}

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

bool WantMore(const OutputStreams& streams) {
    return std::any_of(streams.begin(), streams.end(), [](const auto& stream) { return stream->WantsMore(); });
}

/// How far the output has come, in seconds.
double FarthestSecond(const OutputStreams& streams) {
    double farthest = 0;
    for (const auto& stream : streams) farthest = std::max(farthest, stream->Seconds());
    return farthest;
}

/// Carries all packets of the input through the streams. All fields but `bytes` of what it returns are set.
ExportResult RunPass(Input& input, const ExportJob& job, const Pass& pass, Muxer& muxer, ProgressMeter& progress) {
    const OutputStreams streams = MakeStreams(input, job, pass, muxer);
    progress.BeginPass(pass.number);
    muxer.Begin();
    const Owned<AVPacket> packet = Own(av_packet_alloc());
    while (WantMore(streams) && input.Read(*packet)) {
        for (const auto& stream : streams) {
            if (stream->SourceIndex() == packet->stream_index) stream->Take(*packet);
        }
        progress.Update(FarthestSecond(streams));
    }
    for (const auto& stream : streams) {
        stream->Finish();
        progress.Update(FarthestSecond(streams));
    }
    muxer.Finish();

    ExportResult result;
    for (const auto& stream : streams) stream->Report(result);
    result.duration = FarthestSecond(streams);
    return result;
}

void RunFirstPass(const ExportJob& job, const Pass& pass, ProgressMeter& progress) {
    Input input(job.inputPath);
    Muxer muxer = Muxer::Discarding();
    RunPass(input, job, pass, muxer, progress);
}

}  // namespace

InputInfo Probe(const std::string& path) {
    const Input input(path);
    const AVStream* const video = input.BestStream(AVMEDIA_TYPE_VIDEO, -1);
    const AVStream* const audio = input.BestStream(AVMEDIA_TYPE_AUDIO, video != nullptr ? video->index : -1);
    const AVStream* const timed = video != nullptr ? video : audio;
    const AVStream* const subtitle = input.BestStream(AVMEDIA_TYPE_SUBTITLE, timed != nullptr ? timed->index : -1);
    if (timed == nullptr && subtitle == nullptr) {
        throw MediaError("cannot open " + input.QuotedName() + ": it holds neither pictures nor sound nor subtitles");
    }
    InputInfo info;
    info.path = path;
    info.container = input.Container();
    info.duration = input.Duration();
    if (video != nullptr) info.video = DescribeVideo(input, *video);
    if (audio != nullptr) info.audio = DescribeAudio(*audio);
    if (subtitle != nullptr) info.subtitle = DescribeSubtitle(*subtitle);
    return info;
}

ExportResult RunExport(const ExportJob& job, const std::function<void(const Progress&)>& onProgress) {
    RequireComplete(job);
    Input input(job.inputPath);
    RequireOtherFile(job.inputPath, job.outputPath);
    PendingFile file(job.outputPath);

    const int passes = job.video && MakesTwoPasses(*job.video) ? 2 : 1;
    // A picture alone is done long before the input ends.
    const bool isPicture = job.video && IsSingle(*job.video) && !job.audio && !job.subtitle && job.copies.empty();
    ProgressMeter progress(onProgress, isPicture ? 0 : input.Duration(), passes);
    std::optional<PassRecord> record;
    if (passes == 2) {
        RunFirstPass(job, Pass{1, passes, &record.emplace()}, progress);
    }
    const Pass pass = {passes, passes, record ? &*record : nullptr};
    ExportResult result;
    {
        Muxer muxer(job.muxer, job.muxerOptions, file);
        result = RunPass(input, job, pass, muxer, progress);
    }
    result.bytes = file.Size();
    progress.Finish();
    file.Commit();
    return result;
}

}  // namespace NorvexExport
