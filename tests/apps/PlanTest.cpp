#include "Plan.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "Report.h"
#include "norvex/Norvex.h"

namespace {

using namespace NorvexExport;
using namespace Norvex::Conf;
using testing::HasSubstr;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

const std::string g_profile = "video_codec/encode_options/profile";
const std::string g_preset = "video_codec/encode_options/preset";
const std::string g_audioBitrate = "audio_codec/bitrate";
const std::string g_resize = "filter_resize/resize/";

InputInfo Film() {
    InputInfo input;
    input.path = "film.mov";
    input.container = "mov";
    input.duration = 5;
    input.video = VideoSource{};
    input.video->streamIndex = 0;
    input.video->codecId = "mpeg4";
    input.video->width = 640;
    input.video->height = 480;
    input.video->sampleAspect = {1, 1};
    input.video->frameRate = {30000, 1001};
    input.audio = AudioSource{};
    input.audio->streamIndex = 1;
    input.audio->codecId = "pcm_s16le";
    input.audio->sampleRate = 48000;
    input.audio->channels = 2;
    input.audio->layout = "stereo";
    input.audio->sampleFormat = "s16";
    return input;
}

Request ToMp4() {
    Request request;
    request.input = "film.mov";
    request.output = "film.mp4";
    return request;
}

template <class T>
Choice Chosen(const std::string& path, const T& value, const std::string& option) {
    return {path, Norvex::Core::Property(path, value), option};
}

std::vector<Choice> Sized(int width, int height) {
    return {Chosen(g_resize + "frame_size_mode", "custom", "--size"), Chosen(g_resize + "width", width, "--size"),
            Chosen(g_resize + "height", height, "--size")};
}

class PlanTest : public testing::Test {
protected:
    static void SetUpTestSuite() { TakeCensus(); }
};

TEST_F(PlanTest, KeepsTheSourcesSizeAndRatesWhereNothingIsAsked) {
    const Plan plan = MakePlan(ToMp4(), Film());
    ASSERT_TRUE(plan.job.video && plan.job.audio);
    EXPECT_EQ(plan.job.muxer, "mp4");
    EXPECT_TRUE(plan.job.globalHeader);
    EXPECT_EQ(plan.job.video->codecId, V::CODEC_ID_H264);
    EXPECT_EQ(plan.job.video->width, 640);
    EXPECT_EQ(plan.job.video->height, 480);
    EXPECT_EQ(plan.job.video->frameRate.numerator, 30000);
    EXPECT_EQ(plan.job.video->frameRate.denominator, 1001);
    EXPECT_EQ(plan.job.video->rateControl, RateControl::Quality);
    EXPECT_EQ(plan.job.video->quality, 14);
    EXPECT_EQ(plan.job.audio->codecId, A::CODEC_ID_AAC);
    EXPECT_EQ(plan.job.audio->sampleRate, 48000);
    EXPECT_EQ(plan.job.audio->layout, "stereo");
}

TEST_F(PlanTest, TellsWhatWasBrokenAndWhoMendedIt) {
    Request request = ToMp4();
    request.choices = {Chosen(g_audioBitrate, 100000, "--audio-bitrate")};
    const Plan plan = MakePlan(request, Film());
    const StreamPlan& audio = plan.streams.at(1);
    EXPECT_EQ(audio.asked[C::TAG_BITRATE].GetInt64(), 100000);
    EXPECT_EQ(audio.settled[C::TAG_BITRATE].GetInt64(), 96000);
    const CorrectedValue& change = audio.changes.at(1);
    EXPECT_EQ(change.path + ' ' + change.helperKind + ' ' + change.helperId, "bitrate audio_codec aac");
    EXPECT_EQ(change.before->GetInt64(), 100000);
    EXPECT_EQ(change.after->GetInt64(), 96000);
    EXPECT_THAT(change.broken->message, HasSubstr("audio_codec/bitrate is 100000 but must be one of 32000, "));
    EXPECT_EQ(plan.job.audio->bitrate, 96000);
}

TEST_F(PlanTest, WhatWasNotAskedGivesWayToWhatWas) {
    Request request = ToMp4();
    request.choices = {Chosen(g_preset, V::TAG_X264_PRESET_ULTRAFAST, "--preset")};
    const Plan plan = MakePlan(request, Film());
    EXPECT_EQ(plan.streams.at(0).settled["encode_options/profile"].GetString(), V::TAG_X264_PROFILE_BASELINE);
    EXPECT_EQ(plan.streams.at(0).givenWay.at(0).before->GetString(), V::TAG_X264_PROFILE_MAIN);
}

TEST_F(PlanTest, MakesAnOddSourceEven) {
    InputInfo input = Film();
    input.video->width = 853;
    input.video->sampleAspect = {4, 3};
    const Plan plan = MakePlan(ToMp4(), input);
    EXPECT_EQ(plan.job.video->width, 852);
    EXPECT_EQ(plan.job.video->height, 480);
    EXPECT_EQ(plan.job.video->sampleAspect.numerator, 4);
}

TEST_F(PlanTest, TwoPassesAimAtTheBitrateOfTheQuality) {
    Request request = ToMp4();
    request.choices = {Chosen("video_codec/passes", V::TAG_TWO_PASS_MODE, "--two-pass")};
    const Plan plan = MakePlan(request, Film());
    EXPECT_TRUE(plan.job.video->twoPass);
    EXPECT_EQ(plan.job.video->rateControl, RateControl::Bitrate);
    EXPECT_EQ(plan.job.video->bitrate, GetDefaultVideoBitrate("h264", 640, 480, 30000 / 1001.0, 14));
}

TEST_F(PlanTest, BringsAPictureOfAnotherShapeToTheSize) {
    struct Case {
        const char* mode;
        int width;
        int height;
        Fit fit;
    };
    const Case cases[] = {
        {"letterbox", 640, 360, Fit::Letterbox}, {"crop", 640, 360, Fit::Crop},     {"stretch", 640, 360, Fit::Stretch},
        {"smart_fit", 480, 360, Fit::Stretch},   {"up_to", 480, 360, Fit::Stretch}, {"auto", 640, 360, Fit::Letterbox},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        Request request = ToMp4();
        request.choices = Sized(640, 360);
        request.choices.push_back(Chosen(g_resize + "mode", std::string(c.mode), "--resize-mode"));
        const Plan plan = MakePlan(request, Film());
        EXPECT_EQ(plan.job.video->width, c.width);
        EXPECT_EQ(plan.job.video->height, c.height);
        EXPECT_EQ(plan.job.video->fit, c.fit);
    }
}

struct Refusal {
    const char* name;
    void (*change)(Request&, InputInfo&);
    const char* words;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << refusal.name;
}

class PlanRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(PlanRefuses, WithPlainWords) {
    TakeCensus();
    Request request = ToMp4();
    InputInfo input = Film();
    GetParam().change(request, input);
    try {
        MakePlan(request, input);
        FAIL() << "nothing was refused";
    } catch (const RequestError& error) {
        EXPECT_THAT(error.what(), HasSubstr(GetParam().words));
        EXPECT_THAT(error.what(), testing::Not(HasSubstr("\n")));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Requests, PlanRefuses,
    testing::Values(
        Refusal{"UnknownFormat",
                [](Request& r, InputInfo&) { r.choices = {Chosen("format/container", "mp5", "--format")}; },
                "unknown format 'mp5'; the formats are 3g2"},
        Refusal{"NoExtension", [](Request& r, InputInfo&) { r.output = "film"; }, "no extension"},
        Refusal{"UnknownCodec",
                [](Request& r, InputInfo&) { r.choices = {Chosen("video_codec/codec_id", "h999", "--video")}; },
                "unknown codec 'h999'"},
        Refusal{"CodecOfAnotherKind",
                [](Request& r, InputInfo&) { r.choices = {Chosen("video_codec/codec_id", "aac", "--video")}; },
                "does not carry the codec 'aac'"},
        Refusal{"CodecTheFormatRefuses",
                [](Request& r, InputInfo&) { r.choices = {Chosen("audio_codec/codec_id", "pcm_s16le", "--audio")}; },
                "does not carry the codec 'pcm_s16le'; it carries "},
        Refusal{"NoPicture",
                [](Request& r, InputInfo& i) {
                    i.video.reset(), r.choices = {Chosen("video_codec/codec_id", "h264", "--video")};
                },
                "no picture in the input"},
        Refusal{"NothingLeft", [](Request& r, InputInfo& i) { i.video.reset(), r.noAudio = true; }, "has no stream"},
        Refusal{"OddSize", [](Request& r, InputInfo&) { r.choices = Sized(641, 480); }, "'641' is not legal here"},
        Refusal{"SizeOutOfRange", [](Request& r, InputInfo&) { r.choices = Sized(16, 480); }, "--size: '16'"},
        Refusal{"UnknownResizeMode",
                [](Request& r, InputInfo&) { r.choices = {Chosen(g_resize + "mode", "melt", "--resize-mode")}; },
                "--resize-mode: 'melt' is not legal here; allowed: one of smart_fit"},
        Refusal{"UnknownPreset", [](Request& r, InputInfo&) { r.choices = {Chosen(g_preset, "quickest", "--preset")}; },
                "--preset: 'quickest' is not legal here; allowed: one of ultrafast"},
        Refusal{"ChoicesThatContradict",
                [](Request& r, InputInfo&) {
                    r.choices = {Chosen(g_preset, "ultrafast", "--preset"), Chosen(g_profile, "high", "--profile")};
                },
                "--profile: 'high' is not legal here; allowed: baseline"},
        Refusal{"UnknownLayout",
                [](Request& r, InputInfo&) {
                    r.choices = {Chosen("filter_resample/resample/channel_layout", "9.9", "--layout")};
                },
                "--layout: unknown name '9.9'"},
        Refusal{"UnknownSampleFormat",
                [](Request& r, InputInfo&) {
                    r.choices = {Chosen("filter_resample/sample_format", "s17", "--sample-format")};
                },
                "--sample-format: unknown name"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(PlanTest, IsPrintedForProgramsWithItsTypes) {
    Request request = ToMp4();
    request.choices = {Chosen(g_audioBitrate, 100000, "--audio-bitrate")};
    const auto json = nlohmann::json::parse(PlanJson(MakePlan(request, Film()), nullptr));
    EXPECT_EQ(json["format"], "mp4");
    const auto& video = json["streams"][0]["settled"];
    EXPECT_EQ(video[V::TAG_FPS], "30000/1001");
    EXPECT_EQ(video[V::TAG_WIDTH], 640);
    EXPECT_EQ(video[C::TAG_CODEC_OPTIONS_ENCODE][V::TAG_USE_HW_CONTEXT], true);
    EXPECT_EQ(json["streams"][1]["changes"][1]["to"], 96000);
    EXPECT_FALSE(json.contains("result"));
}

}  // namespace
