extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <map>
#include <stdexcept>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using Answer = StreamFit::Answer;
using Streams = std::vector<SP<const IFormatCodec>>;

SP<const IFormatCodec> Picture(const std::string& codec, const char* tag = nullptr, bool isCover = false,
                               int pixelFormat = AV_PIX_FMT_YUV420P) {
    Property settings = Tree("stream{codec_id: " + codec +
                             ", width: 641, height: 480, frame_rate: 25/1, lossless: false, main_stream: false}");
    settings.SetChildT("fourcc", tag ? MKTAG(tag[0], tag[1], tag[2], tag[3]) : 0);
    settings.SetChildT("cover", isCover);
    return FormatCodecVideo::Create(settings, pixelFormat, nullptr);
}

SP<const IFormatCodec> Sound(const std::string& codec, int rate = 48000, const char* layout = "stereo",
                             SP<const ICodecData> data = nullptr) {
    return FormatCodecAudio::Create(Tree("stream{codec_id: " + codec + ", sample_rate: " + std::to_string(rate) +
                                         ", channel_layout: " + layout + "}"),
                                    data);
}

SP<const IFormatCodec> Text(const std::string& codec) {
    return FormatCodecSubtitle::Create(Node("stream", {Property("codec_id", codec)}));
}

class Fit : public testing::Test {
protected:
    static void SetUpTestSuite() { FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create()); }
};

std::string Told(const StreamFit& fit) {
    std::string text = NameOf(fit.answer);
    if (fit.isEncoded) text += " to " + fit.encodedTo;
    for (const auto& [path, before, after] : fit.changes) {
        text += ", " + path + " " + Core::PropertyValueToString(before) + ">" + Core::PropertyValueToString(after);
    }
    return text;
}

// clang-format off
TEST_F(Fit, AnswersEachStreamWithAReason) {
    const struct { const char* format; SP<const IFormatCodec> stream; const char* told; const char* reason; } rows[] = {
        {"mp4",      Picture("h264", "avc1"), "as_it_is", "mp4 takes h264 as it is"},
        {"matroska", Picture("vp9"),          "as_it_is", ""},
        {"matroska", Picture("hevc", "hvc1"), "refused to hevc, width 641>640", "does not have its tag hvc1"},
        {"mpegts",   Picture("h264"),         "refused to h264, width 641>640", "the list of what mpegts takes unchanged"},
        {"avi",      Picture("h264", "H264", false, AV_PIX_FMT_YUV420P10), "refused to h264, width 641>640", "pixel format"},
        {"avi",      Sound("ac3", 48000, "5.1"), "refused to ac3", "no more than two channels"},
        {"avi",      Sound("vorbis", 48000, "5.1(side)"), "refused to vorbis", "no AC-3 and no Vorbis"},
        {"avi",      Sound("pcm_s16le", 48000, "5.1"), "refused to pcm_s16le", "no more than two channels"},
        {"matroska", Text("subrip"),          "refused to subrip", "has none for it"},
        {"m4b",      Sound("aac"),            "refused to aac", "FFmpeg has no muxer of the name m4b"},
        {"mpegts",   Sound("aac"),            "refused to aac", "only with its codec data"},
        {"mpegts",   Sound("aac", 48000, "stereo", CodecData::Create({1, 2})), "as_it_is", ""},
        {"mp3",      Sound("flac", 96000, "5.1"), "encoded to mp3, sample_rate 96000>48000, channel_layout 5.1>stereo",
                                              "mp3 does not carry flac"},
        {"mov",      Picture("vp9"),          "encoded to h264, width 641>640", "says that mov carries vp9, and does not write"},
        {"swf",      Sound("mp3"),            "encoded to mp3, sample_rate 48000>44100", "at 44100, 22050, 11025 Hz alone"},
        {"swf",      Sound("mp3", 44100),     "as_it_is", ""},
        {"swf",      Sound("mp3", 0),         "as_it_is", ""},
        {"mpeg2ts",  Picture("mpeg4"),        "encoded to h264, width 641>640", "players cannot tell what it is"},
        {"vcd",      Picture("h264"),         "encoded to mpeg2video, width 641>640", "vcd does not carry h264"},
        {"webm",     Picture("theora"),       "encoded to vp8, width 641>640", ""},
        {"3gp",      Picture("vp9"),          "encoded to h263, width 641>704, height 480>576", ""},
        {"mp3",      Picture("h264"),         "left_out", "mp3 holds pictures as covers alone"},
        {"mp3",      Picture("mjpeg", nullptr, true), "as_it_is", ""},
        {"mp3",      Picture("webp", nullptr, true),  "encoded to mjpeg, width 641>640", ""},
        {"m4a",      Picture("gif", nullptr, true),   "encoded to mjpeg, width 641>640", ""},
        {"matroska", Picture("mjpeg", nullptr, true), "as_it_is", ""},
        {"avi",      Picture("mjpeg", nullptr, true), "left_out", "avi keeps no cover of mjpeg"},
        {"wav",      Picture("h264"),         "left_out", "wav holds no pictures"},
        {"wav",      Picture("mjpeg", nullptr, true), "left_out", "wav keeps no cover of mjpeg"},
        {"png",      Sound("aac"),            "left_out", "png holds no sound"},
        {"png",      Picture("h264"),         "encoded to png, width 641>640", "png holds one picture"},
        {"wav",      Text("subrip"),          "left_out", "wav holds no subtitles"},
        {"mp4",      Text("subrip"),          "encoded to mov_text", ""},
        {"mp4",      Text("hdmv_pgs_subtitle"), "left_out", "that are pictures are not encoded"},
        {"matroska", Text("ttf"),             "as_it_is", ""},
        {"mp4",      Text("ttf"),             "left_out", "mp4 keeps no attachments or data of ttf"},
        {"heic",     Picture("hevc"),         "left_out", "this FFmpeg does not write heic"},
        {"mp4",      Picture("no codec"),     "left_out", "nothing is known of the stream"},
        // What FFmpeg writes and nobody reads is no answer, whatever the book says.
        {"wav",      Sound("aac"),            "encoded to pcm_s16le", "cannot be told apart"},
        {"avi",      Sound("flac"),           "encoded to mp3", "does not write it"},
        {"mp4",      Sound("mp2"),            "encoded to aac", "take for MP3"},
        {"mov",      Sound("adpcm_4xm"),      "encoded to aac", "the rule book lets adpcm_4xm into mov"},
    };
    for (const auto& [format, stream, told, reason] : rows) {
        const StreamFit fit = FitInto(format, {stream}).streams.at(0);
        EXPECT_EQ(Told(fit), told) << format << ": " << fit.reason;
        EXPECT_EQ(fit.codecId, stream->GetProperty()["codec_id"].GetString());
        EXPECT_THAT(fit.reason, HasSubstr(reason)) << format;
    }
}
// clang-format on

TEST_F(Fit, HoldsForEveryCodecInEveryContainer) {
    int counts[4] = {};
    for (const auto& [number, id] : GetFFCodecsMap()) {
        const AVMediaType type = avcodec_get_type(number);
        const auto stream = type == AVMEDIA_TYPE_VIDEO   ? Picture(id)
                            : type == AVMEDIA_TYPE_AUDIO ? Sound(id)
                                                         : Text(id);
        for (const FormatFit& format : FitIntoAll({stream})) {
            const StreamFit& fit = format.streams.at(0);
            const std::string what = format.formatId + " " + id + ": " + Told(fit) + ", " + fit.reason;
            ++counts[static_cast<int>(fit.answer)];
            EXPECT_FALSE(fit.reason.empty()) << what;
            EXPECT_EQ(fit.reason.find('%'), std::string::npos) << what;
            EXPECT_EQ(fit.isEncoded, !fit.encodedTo.empty()) << what;
            EXPECT_TRUE(fit.answer != Answer::Encoded || fit.isEncoded) << what;
            const bool isFont = id == "ttf" || id == "otf";  // of which the book knows nothing
            const bool isMarked = fit.answer == Answer::AsItIs && !isFont;
            if (!isMarked && fit.answer != Answer::Refused) continue;
            Property settings = stream->GetProperty();
            for (const char* flag : {"lossless", "main_stream"}) settings.SetChildT(flag, true);
            settings.SetChildT("fourcc", 0);
            SP<const IFormatCodec> marked = FormatCodecSubtitle::Create(settings);
            if (type == AVMEDIA_TYPE_VIDEO) marked = FormatCodecVideo::Create(settings, 0, nullptr);
            if (type == AVMEDIA_TYPE_AUDIO) marked = FormatCodecAudio::Create(settings, nullptr);
            const auto file = FormatFile::Create(Node("format", {Property("container", format.formatId)}));
            EXPECT_EQ(CodecIsSupported(file, marked), isMarked) << what;
            const AVOutputFormat* const muxer = av_guess_format(MuxerOf(format.formatId).c_str(), nullptr, nullptr);
            EXPECT_NE(avformat_query_codec(muxer, number, FF_COMPLIANCE_NORMAL), 0) << what;
        }
    }
    for (const int count : counts) EXPECT_GT(count, 50);
}

TEST_F(Fit, KeepsToTheLimitsAndPutsTheBestFirst) {
    Streams streams = {Picture("h264", "avc1"), Sound("pcm_bluray"), Sound("aac"), Sound("aac"), Text("mov_text")};
    const FormatFit flv = FitInto("flv", streams);
    EXPECT_EQ(flv.limits.audio, 1);
    EXPECT_EQ(Told(flv.streams[1]), "encoded to aac, sample_rate 48000>44100");
    EXPECT_THAT(flv.streams[2].reason, HasSubstr("flv holds no more than 1 of them"));

    const std::vector<FormatFit> fits = FitIntoAll(streams);
    EXPECT_EQ(fits.size(), GetAvailableDataHelpers(IPreset::KEY_FORMAT).size());
    EXPECT_EQ(fits[0].formatId, "mp4");
    for (const auto& [id, limits, isEncodable] : ContainersFor({})) {
        const Property stated = CreateDataHelper("format", id)->GetDefaults()["limits"];
        const std::pair<const char*, int> read[] = {
            {"video", limits.video}, {"audio", limits.audio}, {"subtitle", limits.subtitle}, {"other", limits.other}};
        for (const auto& [kind, limit] : read) EXPECT_EQ(stated[kind].GetInt64(), limit) << id << ' ' << kind;
    }
    const auto rank = [](const FormatFit& fit) {
        return std::tuple(fit.CountLost(), fit.CountEncoded(), fit.CountChanges());
    };
    EXPECT_TRUE(std::is_sorted(fits.begin(), fits.end(),
                               [&](const auto& one, const auto& two) { return rank(one) < rank(two); }));
    // One picture of a film is no film; where nothing tells containers apart, the best known come first.
    const auto png = std::find_if(fits.begin(), fits.end(), [](const FormatFit& f) { return f.formatId == "png"; });
    EXPECT_EQ(png->CountLost(), 5);
    std::string equals;
    for (const FormatFit& fit : FitIntoAll({})) equals += fit.formatId + ' ';
    EXPECT_THAT(equals, testing::StartsWith("mp4 matroska webm mov m4a mp3 flac wav png jpeg srt "));
}

/// A host's class that is not that of its media type, or that throws.
class Strange final : public RefCounted<IFormatCodec> {
public:
    explicit Strange(bool throws)
        : m_settings(Tree("stream{codec_id: h264, fourcc: x, width: wide, cover: 1/2}")), m_throws(throws) {}
    const Property& GetProperty() const override {
        if (m_throws) throw std::runtime_error("no settings");
        return m_settings;
    }
    MediaType GetMediaType() const override { return MediaType::Video; }
    SP<const ICodecData> GetCodecData() const override { throw 1; }

private:
    const Property m_settings;
    const bool m_throws;
};

TEST_F(Fit, NeverThrowsForWhatAStreamHolds) {
    const Streams streams = {
        nullptr,
        SP<const IFormatCodec>(new Strange(true)),
        SP<const IFormatCodec>(new Strange(false)),
        FormatCodecVideo::Create(Property(), -1, nullptr),
        FormatCodecAudio::Create(Node("", {Property("codec_id", 5), Property("fourcc", true)}), nullptr),
        Sound("aac", -5, "no layout"),
        Sound("vorbis", 0, "")};
    for (const FormatFit& fit : FitIntoAll(streams)) {
        ASSERT_EQ(fit.streams.size(), streams.size());
        for (const std::size_t unknown : std::vector<std::size_t>{0, 1, 3, 4})
            EXPECT_EQ(Told(fit.streams[unknown]), "left_out") << fit.formatId;
    }
    // Its codec can be read, and that is enough to encode it.
    EXPECT_EQ(Told(FitInto("mp4", {streams[2]}).streams[0]), "refused to h264");
    EXPECT_THROW(FitInto("betamax", streams), HelperException);
}

TEST_F(Fit, FindsTheContainersThatHoldAllOfSomeCodecs) {
    const auto ids = [](const WantedCodecs& wanted, bool isEncodable) {
        std::vector<std::string> found;
        const auto holding = ContainersFor(wanted);
        const auto goes = [](const HoldingFormat& format) { return format.isEncodable; };
        EXPECT_TRUE(std::is_partitioned(holding.begin(), holding.end(), goes));
        for (const HoldingFormat& format : holding) {
            if (format.isEncodable == isEncodable) found.push_back(format.formatId);
        }
        return found;
    };
    EXPECT_THAT(ids({{"hevc"}, {"flac"}, {"subrip"}}, true), testing::ElementsAre("matroska"));
    EXPECT_THAT(ids({{"hevc", "hevc"}, {"aac"}, {}}, true),
                testing::AllOf(testing::Contains("mp4"), testing::Not(testing::Contains("mov"))));
    EXPECT_THAT(ids({{}, {"aac", "aac"}, {}}, true),
                testing::AllOf(testing::Contains("mp4"), testing::Not(testing::Contains("flv"))));
    for (const auto& [name, other] : std::map<std::string, std::string>{{"srt", "subrip"}, {"ssa", "ass"}}) {
        EXPECT_THAT(ids({{}, {}, {name}}, true), testing::Contains("matroska")) << name;
        EXPECT_EQ(ids({{}, {}, {name}}, true), ids({{}, {}, {other}}, true)) << name;
    }
    EXPECT_THAT(ids({{"h264"}, {"aac"}, {}}, false), testing::ElementsAre("qfx"));
    EXPECT_TRUE(ContainersFor({{"no codec"}, {}, {}}).empty());
}

}  // namespace
