extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <set>
#include <typeinfo>

// What a muxer's default codecs are, and which tags it maps, differs from build to build: that is asked of the build.
// What the library adds to it is written out here.

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using Ids = std::set<std::string>;

constexpr long long noTable = 0x7a7a7a7a;  // "zzzz", a tag that no table has
constexpr long long beyond = 1LL << 32;

long long Tag(const char* text) {
    return MKTAG(text[0], text[1], text[2], text[3]);
}

struct Stream {
    long long tag = 0;
    bool lossless = true;
    const char* layout = "stereo";
    int pixelFormat = 0;
    int dataSize = 1;  ///< -1 for no data at all
    bool isMain = true;
};

Property Settings(const std::string& codec, const Stream& stream) {
    return Node("stream",
                {Property("codec_id", codec), Property("fourcc", stream.tag), Property("lossless", stream.lossless),
                 Property("main_stream", stream.isMain), Property("channel_layout", stream.layout)});
}

SP<const IFormatFile> File(const std::string& container) {
    return FormatFile::Create(Node("format", {Property("container", container)}));
}

bool Supports(const std::string& container, const Property& settings, AVMediaType type, const Stream& stream = {}) {
    SP<const ICodecData> data;
    if (stream.dataSize >= 0) data = CodecData::Create(std::vector<std::uint8_t>(static_cast<size_t>(stream.dataSize)));
    SP<const IFormatCodec> codec;
    if (type == AVMEDIA_TYPE_VIDEO) codec = FormatCodecVideo::Create(settings, stream.pixelFormat, data);
    if (type == AVMEDIA_TYPE_AUDIO) codec = FormatCodecAudio::Create(settings, data);
    if (!codec) codec = FormatCodecSubtitle::Create(settings);
    return CodecIsSupported(File(container), codec);
}

bool Supports(const std::string& container, const std::string& codec, const Stream& stream = {}) {
    return Supports(container, Settings(codec, stream), avcodec_get_type(CodecIDFromTextID(codec)), stream);
}

/// Of all codecs that FFmpeg describes, those that `take` takes.
template <class Take>
Ids Which(const Take& take) {
    Ids ids;
    for (const auto& [number, id] : GetFFCodecsMap()) {
        if (take(number, id)) ids.insert(id);
    }
    return ids;
}

Ids OfType(AVMediaType type) {
    return Which([type](AVCodecID number, const std::string&) { return avcodec_get_type(number) == type; });
}

Ids Accepted(const std::string& container, const Stream& stream = {}) {
    return Which([&](AVCodecID, const std::string& id) { return Supports(container, id, stream); });
}

const AVOutputFormat* Muxer(const std::string& name) {
    return av_guess_format(name.c_str(), nullptr, nullptr);
}

Ids Defaults(const AVOutputFormat* muxer) {
    return Which([&](AVCodecID number, const std::string&) {
        return number == muxer->video_codec || number == muxer->audio_codec || number == muxer->subtitle_codec;
    });
}

Ids operator+(Ids left, const Ids& right) {
    left.insert(right.begin(), right.end());
    return left;
}

Ids operator-(Ids left, const Ids& right) {
    for (const std::string& id : right) left.erase(id);
    return left;
}

// clang-format off
TEST(CodecIsSupported, MuxersWithoutATagTableTakeTheirListAndTheirDefaults) {
    const std::pair<std::vector<std::string>, Ids> rows[] = {
        {{"mpegts", "mpeg2ts", "rtp_mpegts"},
            {"mpeg1video", "mpeg2video", "mpeg4", "cavs", "dirac", "pcm_bluray", "mp2", "mp3", "ac3", "aac", "aac_latm"}},
        {{"mpeg", "mpeg1video", "yuv4mpegpipe", "wtv"}, {"mpeg1video", "mpeg2video", "mp2", "mp3"}},
        {{"vob", "mpeg2video", "dvd"},                  {"mpeg1video", "mpeg2video", "mp2", "ac3"}},
        {{"webm", "webm_chunk", "webm_dash_manifest"},  {"vp8", "vp9", "vorbis", "opus", "webvtt"}},
        {{"swf"},                                       {"mjpeg", "flv1", "vp6f", "mp3"}},
        {{"mxf", "mxf_d10", "mxf_opatom"},              {"dvvideo"}},
        {{"flac"}, {"flac"}}, {{"adts"}, {"aac"}}, {{"ac3"}, {"ac3"}}, {{"mp3"}, {"mp3"}},
        {{"ogg", "ogv"},                                {"theora", "vp8", "vp9", "vorbis", "flac"}},
        {{"eac3", "mp2", "oga", "opus", "spx", "vcd", "svcd", "latm", "h264", "image2", "srt", "gif", "dv"}, {}},
    };
    int checked = 0;
    for (const auto& [containers, list] : rows) {
        for (const std::string& container : containers) {
            const bool isAlias = container.rfind("mpeg2", 0) == 0 || container == "mpeg1video";
            const AVOutputFormat* const muxer = Muxer(isAlias ? containers[0] : container);
            if (muxer == nullptr || muxer->codec_tag != nullptr) continue;
            const Ids expected = list + Defaults(muxer);
            EXPECT_EQ(Accepted(container), expected) << container;
            EXPECT_EQ(Accepted(container, {noTable, false}), expected) << container;
            const Ids withoutData = (list.count("aac_latm") != 0 ? list - Ids{"aac"} : list) + Defaults(muxer);
            EXPECT_EQ(Accepted(container, {0, true, "stereo", 0, -1}), withoutData) << container;
            EXPECT_EQ(Accepted(container, {0, true, "stereo", 0, 0}), withoutData) << container;
            ++checked;
        }
    }
    EXPECT_GT(checked, 20);
}

TEST(CodecIsSupported, MuxersWithATagTableTakeWhatItHoldsOfUnchangedStreamsAndTheirOwnAdditions) {
    const Ids avi = {"mp3", "aac"};
    const Ids flv = {"h263", "flv1", "h264", "aac", "flashsv", "vp6", "vp6f", "vp6a", "flashsv2"};
    const struct { const char* container; const char* muxer; Ids added; } rows[] = {
        {"avi", "avi", avi}, {"avif", "avif", avi}, {"flv", "flv", flv}, {"mp4", "mp4", {"mp3", "ac3", "dts"}},
        {"mov", "mov", {"pcm_s16le", "pcm_s16be", "pcm_s8", "pcm_u8", "pcm_s32le", "pcm_s32be", "pcm_s24le",
                        "pcm_s24be", "pcm_f32be", "pcm_f32le", "pcm_f64be", "pcm_f64le", "adpcm_ima_wav", "adpcm_ms",
                        "adpcm_4xm", "amr_nb", "mp3", "alac", "qdm2", "wmapro"}},
        {"matroska", "matroska", {}}, {"ipod", "ipod", {}}, {"m4a", "ipod", {}}, {"m4v", "ipod", {}},
        {"asf", "asf", {}}, {"wmv", "asf", {}}, {"wma", "asf", {}}, {"3gp", "3gp", {}}, {"f4v", "f4v", {}},
        {"wav", "wav", {}}, {"nut", "nut", {}}, {"wtv", "wtv", {}},
    };
    int checked = 0;
    for (const auto& [container, name, added] : rows) {
        const AVOutputFormat* const muxer = Muxer(name);
        if (muxer == nullptr || muxer->codec_tag == nullptr) continue;
        const Ids always = added + Defaults(muxer);
        EXPECT_EQ(Accepted(container, {0, false}), always) << container;
        EXPECT_EQ(Accepted(container, {noTable, false}), always) << container;
        Ids table = Which([muxer](AVCodecID number, const std::string&) {
            unsigned tag = 0;
            return av_codec_get_tag2(muxer->codec_tag, number, &tag) != 0;
        });
        if (added == avi) table = table - Ids{"ac3", "vorbis"} + Ids{"h264"};
        if (added == flv) table = {};
        EXPECT_EQ(Accepted(container), table + always) << container;
        ++checked;
    }
    EXPECT_GT(checked, 12);
}

TEST(CodecIsSupported, JudgesTheTagThatAnUnchangedStreamCarries) {
    const struct { const char* container; const char* codec; std::vector<long long> accepted, refused; } rows[] = {
        {"matroska", "mpeg4", {Tag("FMP4"), Tag("xvid"), Tag("XVID") + beyond}, {Tag("XVID"), noTable}},
        {"asf",      "mpeg4", {Tag("FMP4"), Tag("XVID")}, {Tag("AC-3"), noTable}},
        {"matroska", "h263",  {}, {Tag("FMP4")}},  // MPEG-4's
        {"matroska", "mp2",   {Tag("AC-3")}, {Tag("ac-3"), Tag("AC-3") + beyond, 0x82, 0x86}},
        {"matroska", "no such codec", {Tag("AC-3")}, {0, 0x82, noTable}},
        {"mpegts",   "no such codec", {}, {0, noTable}},
        {"asf",      "mp2",   {}, {Tag("AC-3")}},
        {"matroska", "dts",   {0x82, 0x86}, {0x80, 0x83, 0x8a, 0x82 + beyond, noTable}},
        {"asf",      "dts",   {}, {0x82, 0x86}},
        {"matroska", "aac",   {noTable}, {}},
        {"matroska", "alac",  {noTable, Tag("mp4v")}, {}},
        {"matroska", "flac",  {}, {noTable, Tag("mp4v")}},
        {"asf",      "aac",   {}, {noTable}},
        {"asf",      "alac",  {}, {noTable}},
        {"mp4",      "flac",  {Tag("mp4v")}, {Tag("MP4V"), Tag("mp4a"), Tag("mp4v") + beyond}},
        {"mov",      "flac",  {}, {Tag("mp4v")}},
        {"ipod",     "flac",  {}, {Tag("mp4v")}},
        {"flv",      "mpeg4", {9}, {0, 8, 9 + beyond, Tag("FMP4")}},
        {"no such muxer", "h264", {}, {0, Tag("H264")}},
        {"",         "h264",  {}, {0}},
    };
    for (const auto& row : rows) {
        const AVOutputFormat* const muxer = Muxer(row.container);
        if (muxer != nullptr && Defaults(muxer).count(row.codec) != 0) continue;
        SCOPED_TRACE(std::string(row.container) + ' ' + row.codec);
        for (const long long tag : row.refused) EXPECT_FALSE(Supports(row.container, row.codec, {tag})) << tag;
        for (const long long tag : row.accepted) {
            EXPECT_TRUE(Supports(row.container, row.codec, {tag})) << tag;
            EXPECT_EQ(Supports(row.container, row.codec, {tag, false}), tag == 9) << "encoded anew, " << tag;
        }
    }
    for (const char* container : {"matroska", "avi", "asf", "mov"}) {
        EXPECT_EQ(Supports(container, "mpeg2video", {Tag("HDMV")}),
                  av_codec_get_id(Muxer(container)->codec_tag, MKTAG('H', 'D', 'M', 'V')) == AV_CODEC_ID_MPEG2VIDEO)
            << container;
    }
}
// clang-format on

TEST(CodecIsSupported, AviLooksAtChannelsAndAtThePixelsOfUnchangedH264) {
    const Ids stereo = Accepted("avi");
    ASSERT_EQ(stereo.count("pcm_s16le"), 1U);
    for (const char* layout : {"2.1", "3.0", "5.1", "22.2"}) {
        EXPECT_EQ(Accepted("avi", {0, true, layout}),
                  stereo - (OfType(AVMEDIA_TYPE_AUDIO) - Ids{"mp3", "aac"} - Defaults(Muxer("avi"))))
            << layout;
        EXPECT_EQ(Accepted("asf", {0, true, layout}), Accepted("asf")) << "only AVI asks";
    }
    for (const char* layout : {"mono", "downmix", "unknown"}) {
        EXPECT_EQ(Accepted("avi", {0, true, layout}), stereo) << layout;
    }
    for (const bool lossless : {false, true}) {
        for (const char* id : {"mp3", "aac"}) EXPECT_TRUE(Supports("avi", id, {noTable, lossless, "5.1"})) << id;
    }
    std::set<int> pixelFormats;
    for (int format = -1; format <= 40; ++format) {
        const bool supported = Supports("avi", "h264", {0, true, "", format});
        if (supported) pixelFormats.insert(format);
        EXPECT_EQ(Supports("avi", "h264", {noTable, true, "", format}), supported) << "the tag does not count";
        EXPECT_FALSE(Supports("avi", "h264", {0, false, "", format}));
        EXPECT_TRUE(Supports("asf", "h264", {0, true, "", format})) << "only AVI asks";
        EXPECT_TRUE(Supports("avi", "mpeg2video", {0, true, "", format})) << "only of H.264";
    }
    EXPECT_EQ(pixelFormats, (std::set<int>{0, 1, 4, 5, 6, 7, 12, 23, 24, 31}));
}

TEST(CodecIsSupported, AnUnchangedPictureThatIsNotTheMainStreamGoesNowhere) {
    const Ids pictures = OfType(AVMEDIA_TYPE_VIDEO);
    for (const char* container : {"mpegts", "webm", "ogg", "matroska", "avi", "mov", "flv"}) {
        EXPECT_EQ(Accepted(container, {0, true, "stereo", 0, 1, false}), Accepted(container) - pictures) << container;
        EXPECT_EQ(Accepted(container, {0, false, "stereo", 0, 1, false}), Accepted(container, {0, false})) << container;
    }
}

TEST(CodecIsSupported, WhatIsMissingIsRefusedAndWhatIsWrongIsAnErrorOfTheTree) {
    const auto outcome = [](const std::string& container, AVMediaType type, const Property& settings) -> std::string {
        try {
            return Supports(container, settings, type) ? "yes" : "no";
        } catch (const Core::PropertyException&) {
            return "error";
        }
    };
    // Without the child, for a picture and for sound. Of the wrong type it is an error.
    const struct {
        const char* child;
        std::string video, audio;
    } rows[] = {
        {"codec_id", "no", "no"}, {"fourcc", "no", "no"}, {"lossless", "yes", "yes"}, {"main_stream", "error", "yes"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.child);
        Property video = Settings(GetFFCodecsMap().at(Muxer("matroska")->video_codec), {});
        Property audio = Settings(GetFFCodecsMap().at(Muxer("matroska")->audio_codec), {});
        video.SetChild(row.child, Property(row.child, Core::Ratio(1, 3)));
        EXPECT_EQ(outcome("matroska", AVMEDIA_TYPE_VIDEO, video), "error");
        for (const std::string& name : {std::string("no such muxer"), std::string("matroska\0x", 10)}) {
            EXPECT_EQ(outcome(name, AVMEDIA_TYPE_VIDEO, video), "no");
        }
        video.RemoveChild("fourcc");
        EXPECT_EQ(outcome("matroska", AVMEDIA_TYPE_VIDEO, video), "no") << "nothing is read before all is there";
        video = Settings(GetFFCodecsMap().at(Muxer("matroska")->video_codec), {});
        video.RemoveChild(row.child);
        if (row.video == "yes") video.SetChildT("main_stream", false);  // which counts beside a mark only
        audio.RemoveChild(row.child);
        EXPECT_EQ(outcome("matroska", AVMEDIA_TYPE_VIDEO, video), row.video);
        EXPECT_EQ(outcome("matroska", AVMEDIA_TYPE_AUDIO, audio), row.audio);
    }
    const auto video = FormatCodecVideo::Create(Settings("h264", {}), 0, nullptr);
    EXPECT_THROW(CodecIsSupported(FormatFile::Create(Property("format")), video), Core::PropertyException);
    EXPECT_THROW(CodecIsSupported(FormatFile::Create(Node("format", {Property("container", 7)})), video),
                 Core::PropertyException);
    EXPECT_THROW(Supports("avi", "ac3", {0, true, "no such layout"}), FormatException);
    EXPECT_TRUE(Supports("matroska", "ac3", {0, true, "no such layout"})) << "only AVI asks";
}

/// An audio stream by what it says of itself, and not by its class.
class OddStream final : public RefCounted<IFormatCodec> {
public:
    explicit OddStream(Property settings) : m_settings(std::move(settings)) {}

    const Property& GetProperty() const override { return m_settings; }
    MediaType GetMediaType() const override { return MediaType::Audio; }
    SP<const ICodecData> GetCodecData() const override {
        ++asked;
        return nullptr;
    }
    mutable int asked = 0;

private:
    const Property m_settings;
};

TEST(CodecIsSupported, AsksAStreamForItsDataInTransportStreamsAndForItsClassInAvi) {
    const SP<const OddStream> stream(new OddStream(Settings("ac3", {})));
    EXPECT_TRUE(CodecIsSupported(File("mpegts"), stream));
    EXPECT_EQ(stream->asked, 1) << "also for what is not AAC";
    for (const char* container : {"mpeg", "vob", "ac3", "matroska"}) CodecIsSupported(File(container), stream);
    EXPECT_EQ(stream->asked, 1);
    EXPECT_THROW(CodecIsSupported(File("avi"), stream), std::bad_cast);
}

}  // namespace
