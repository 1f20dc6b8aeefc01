// The second set of helpers, beside the classic one.

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

/// Stands in every process of this program, also for the tests that are not about the second set.
class WithModernHelpers final : public testing::Environment {
    void SetUp() override {
        RegisterModernHelpers();
        FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    }
};
const auto* const g_environment = testing::AddGlobalTestEnvironment(new WithModernHelpers);

std::vector<std::string> CodecsOf(const std::string& format, const std::string& kind) {
    const std::string type = kind.substr(0, kind.find('_'));
    std::vector<std::string> codecs;
    const auto constraints = CollectConstraints(*CreateDataHelper("format", format));
    for (const Property& codec :
         WhatIsAllowed(*constraints.at("streams_any_" + type + '/' + kind + "/codec_id")).values) {
        codecs.push_back(codec.GetString());
    }
    return codecs;
}

bool Carries(const std::string& format, const std::string& kind, const std::string& codec) {
    return testing::Value(CodecsOf(format, kind), testing::Contains(codec));
}

TEST(Modern, StandsBesideTheClassicBook) {
    EXPECT_EQ(GetAvailableDataHelpers("format").size(), 64U + 12);
    EXPECT_EQ(GetAvailableDataHelpers("video_codec").size(), 36U + 10);
    EXPECT_EQ(GetAvailableDataHelpers("audio_codec").size(), 26U + 10);
    EXPECT_EQ(GetAllVideoCodecs().size(), 38U);
    EXPECT_EQ(GetAllAudioCodecs().size(), 27U);
    EXPECT_EQ(CodecsOf("qfx", "audio_codec"), GetAllAudioCodecs());
    EXPECT_EQ(CodecsOf("qfx", "video_codec"), GetAllVideoCodecs());
    RegisterModernHelpers();  // a second time, and late: they are all there
    EXPECT_TRUE(CodecHasGlobalHeader("opus"));
    EXPECT_FALSE(CodecHasGlobalHeader("eac3"));
}

TEST(Modern, EveryDefaultIsLegalForItsOwnHelper) {
    std::vector<NamedHelper> helpers;
    for (const char* const kind : {"filter_resample", "filter_volume", "filter_rate", "filter_resize"})
        helpers.push_back(FindHelper(kind, ""));
    for (const char* const kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            // These start with a mode that nobody can choose.
            if (id != "hevc" && id != "auto") helpers.push_back({kind, id, helper});
        }
    }
    for (const NamedHelper& named : helpers) {
        for (const Finding& finding : CheckPreset(AssemblePreset({named.helper->GetDefaults()}), {named}))
            EXPECT_EQ(finding.problem, Finding::Problem::Missing) << named.id << ": " << finding.message;
    }
}

TEST(Modern, ContainersCarryWhatTheirTableSays) {
    const struct {
        const char *format, *kind, *codec;
        bool carried;
    } cases[] = {
        {"webm", "audio_codec", "opus", true},      {"mp4", "audio_codec", "opus", true},
        {"matroska", "video_codec", "ffv1", true},  {"ogg", "audio_codec", "flac", true},
        {"mpegts", "audio_codec", "eac3", true},    {"mxf", "video_codec", "dnxhd", true},
        {"mov", "video_codec", "cfhd", true},       {"mov", "audio_codec", "opus", false},
        {"mov", "audio_codec", "flac", false},      {"flv", "audio_codec", "pcm_alaw", false},
        {"aiff", "audio_codec", "pcm_f32be", true}, {"aiff", "audio_codec", "pcm_f32le", false},
        {"aiff", "audio_codec", "aac", false},      {"wav", "audio_codec", "pcm_f32le", true},
        {"caf", "audio_codec", "aac", false},       {"matroska", "audio_codec", "truehd", false},
        {"mpeg2ts", "audio_codec", "truehd", true}, {"m4a", "audio_codec", "opus", false},
    };
    for (const auto& c : cases) EXPECT_EQ(Carries(c.format, c.kind, c.codec), c.carried) << c.format << ' ' << c.codec;

    // What a classic rule says of all codecs of its container holds for those that came.
    Property sound = Tree("format_codec_audio{codec_id: pcm_s24le, sample_rate: 44100}");
    CreateDataHelper("format", "mxf")->CorrectFormatCodec(sound);
    EXPECT_EQ(sound["sample_rate"].GetInt64(), 48000);
}

TEST(Modern, OpusTakesABitrateInEachOfItsModes) {
    const auto opus = CreateDataHelper("audio_codec", "opus");
    const auto apply = [&opus](const std::string& values) {
        Property stream = Tree("s{sample_rate: 48000, sample_format: flt, channel_layout: stereo, bitrate: 64000}");
        opus->ApplyPresetSettings(Tree("audio_codec{codec_id: opus, " + values + "}"), stream);
        return stream["bitrate_mode"].GetString() + ' ' + Core::PropertyValueToString(stream["bitrate"]);
    };
    for (const std::string mode : {"vbr", "cvbr", "cbr"}) {
        EXPECT_EQ(apply("bitrate_mode: " + mode + ", bitrate: 128000"), mode + " 128000");
        EXPECT_EQ(apply("bitrate_mode: " + mode), mode + " 64000");
    }
    EXPECT_EQ(apply("bitrate_mode: cbr_auto, bitrate: 128000"), "cbr 64000");
    EXPECT_THROW(apply("bitrate_mode: abr"), HelperException);
}

Property Picture(const std::string& codec, int width, int height, const Core::Ratio& rate, std::optional<int> bitrate,
                 const std::string& profile = {}) {
    Property stream = Node("format_codec_video", {Property("codec_id", codec), Property("width", width),
                                                  Property("height", height), Property("frame_rate", rate)});
    if (bitrate) stream.SetChildT("bitrate", *bitrate);
    if (!profile.empty()) stream.SetChild("encode_options").SetChildT("profile", profile);
    return stream;
}

TEST(Modern, BitratesFollowFromThePicture) {
    const Core::Ratio film(24000, 1001), pal(25, 1), ntsc(30000, 1001), fast(50, 1);
    const struct {
        Property stream;
        long long bitrate;
    } cases[] = {
        // DNxHR: the bytes that FFmpeg's encoder writes for a frame.
        {Picture("dnxhd", 1920, 1080, pal, {}), 917504LL * 8 * 25},
        {Picture("dnxhd", 1920, 1080, pal, 5, "dnxhr_lb"), 188416LL * 8 * 25},
        {Picture("dnxhd", 854, 480, fast, {}, "dnxhr_sq"), 118784LL * 8 * 50},
        {Picture("dnxhd", 256, 120, pal, {}, "dnxhr_sq"), 8192LL * 8 * 25},
        {Picture("dnxhd", 4096, 2160, pal, {}, "dnxhr_444"), 7770112LL * 8 * 25},
        // DNxHD: the nearest of the table.
        {Picture("dnxhd", 1920, 1080, pal, {}, "dnxhd"), 185000000},
        {Picture("dnxhd", 1920, 1080, pal, 100000000, "dnxhd"), 120000000},
        {Picture("dnxhd", 1920, 1080, film, 1, "dnxhd"), 36000000},
        {Picture("dnxhd", 1280, 720, ntsc, 100000000, "dnxhd"), 110000000},
        {Picture("dnxhd", 1280, 720, fast, 145000000, "dnxhd_x"), 180000000},
        {Picture("dnxhd", 1920, 1080, ntsc, 220000000, "dnxhd_x"), 185000000},
        {Picture("dirac", 1920, 1080, pal, {}), 1920LL * 1080 * 25 * 4},
        {Picture("dirac", 1920, 1080, pal, 1000000), 110160000},
        {Picture("dirac", 3840, 2160, fast, 1000000000), 800000000},
        {Picture("ffv1", 1000, 1000, pal, 1), 150000000},
    };
    for (const auto& [stream, bitrate] : cases) {
        const auto helper = CreateDataHelper("video_codec", stream["codec_id"].GetString());
        Property mended = stream;
        helper->CorrectFormatCodec(mended);
        EXPECT_EQ(mended["bitrate"].GetInt64(), bitrate) << Dump(stream);
        // A preset leads to the same.
        Property preset = helper->GetDefaults();
        for (const char* const child : {"bitrate", "encode_options"}) {
            if (stream.ChildExists(child)) preset.SetChild(child, stream[child]);
        }
        Property applied = stream;
        applied.RemoveChild("bitrate");
        helper->ApplyPresetSettings(preset, applied);
        EXPECT_EQ(applied["bitrate"].GetInt64(), bitrate) << Dump(stream);
        EXPECT_EQ(applied["bitrate_mode"], helper->GetDefaults()["bitrate_mode"]);
    }
}

TEST(Modern, SizesOfCineFormComeInSteps) {
    const auto findings = [](int width, int height) {
        const Property size =
            Node("filter_resize", {Node("resize", {Property("width", width), Property("height", height)})});
        const Property preset = AssemblePreset({CreateDataHelper("video_codec", "cfhd")->GetDefaults(), size});
        return CheckPreset(preset, {FindHelper("video_codec", "cfhd")}).size();
    };
    EXPECT_EQ(findings(1920, 1080), 0U);
    EXPECT_EQ(findings(848, 480), 0U);
    EXPECT_EQ(findings(854, 480), 1U);
    EXPECT_EQ(findings(1920, 1084), 1U);
    EXPECT_EQ(findings(1936, 1080), 1U);
}

}  // namespace
