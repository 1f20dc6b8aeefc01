#include "Plan.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "Report.h"
#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace {

using namespace NorvexExport;
using namespace Norvex::Conf;
using Norvex::Core::Ratio;
using testing::HasSubstr;
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
    VideoSource& video = input.video.emplace_back();
    video.isMain = video.isDecodable = true;
    video.streamIndex = 0, video.codecId = "mpeg4", video.width = 640, video.height = 480;
    video.sampleAspect = {1, 1}, video.frameRate = {30000, 1001};
    AudioSource& audio = input.audio.emplace_back();
    audio.isMain = audio.isDecodable = true;
    audio.streamIndex = 1, audio.codecId = "pcm_s16le", audio.sampleRate = 48000, audio.channels = 2;
    audio.layout = "stereo", audio.sampleFormat = "s16";
    return input;
}

SubtitleSource Subtitles(const char* codecId, bool isText) {
    SubtitleSource source;
    source.streamIndex = 2;
    source.codecId = codecId;
    source.isMain = source.isDecodable = true;
    source.isText = isText;
    return source;
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

Choice Codec(const char* kind, const std::string& id) {
    return Chosen(std::string(kind) + "_codec/codec_id", id, std::string("--") + kind);
}

class PlanTest : public testing::Test {
protected:
    static void SetUpTestSuite() { TakeCensus(); }
};

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
    EXPECT_EQ(plan.job.audio.at(0).bitrate, 96000);
}

TEST_F(PlanTest, WhatWasNotAskedGivesWayToWhatWas) {
    Request request = ToMp4();
    request.choices = {Chosen(g_preset, V::TAG_X264_PRESET_ULTRAFAST, "--preset")};
    const Plan plan = MakePlan(request, Film());
    EXPECT_EQ(plan.streams.at(0).settled["encode_options/profile"].GetString(), V::TAG_X264_PROFILE_BASELINE);
    EXPECT_EQ(plan.streams.at(0).givenWay.at(0).before->GetString(), V::TAG_X264_PROFILE_MAIN);
}

/// Changes a request by words: "--OPTION PATH=VALUE" chooses, the others are those of the first lines.
void Change(Request& request, InputInfo& input, const std::string& words) {
    std::istringstream text(words);
    std::string option;
    for (std::string word; text >> word;) {
        const std::string value = word.substr(word.find('=') + 1);
        const bool isNumber = value.find_first_not_of("0123456789") == std::string::npos;
        const std::string path = word.substr(0, word.find('='));
        if (word == "no-video")
            input.video.clear();
        else if (word == "no-audio")
            request.noAudio = true;
        else if (word == "odd")
            input.video.at(0).width = 853, input.video.at(0).sampleAspect = {4, 3};
        else if (word == "bitmaps")
            input.subtitles = {Subtitles("dvd_subtitle", false)};
        else if (path == "output")
            request.output = value;
        else if (path == "size")
            request.choices = Sized(std::stoi(value), std::stoi(value.substr(value.find('x') + 1)));
        else if (path == word)
            option = word;
        else if (isNumber)
            request.choices.push_back(Chosen(path, std::stoi(value), option));
        else
            request.choices.push_back(Chosen(path, value, option));
    }
}

/// What a plan comes to.
std::string JobText(const ExportJob& job) {
    std::ostringstream text;
    text << job.muxer << (job.globalHeader ? " with headers" : "");
    for (const VideoJob& v : job.video) {
        text << "; " << v.codecId << ' ' << v.width << 'x' << v.height << ' ' << v.sampleAspect.numerator << ':'
             << v.sampleAspect.denominator << ' ' << v.frameRate.numerator << '/' << v.frameRate.denominator
             << (v.rateControl == RateControl::Quality ? " quality " + std::to_string(v.quality)
                                                       : ' ' + std::to_string(v.bitrate))
             << (v.twoPass ? " in two passes" : "") << (v.isCover ? " cover" : "")
             << (v.fit == Fit::Letterbox ? " between bars"
                 : v.fit == Fit::Crop    ? " cropped"
                                         : "");
    }
    for (const AudioJob& a : job.audio)
        text << "; " << a.codecId << ' ' << a.sampleRate << ' ' << a.layout << ' ' << a.bitrate;
    return text.str();
}

TEST_F(PlanTest, SettlesWhatWasAskedAndWhatWasNot) {
    const std::string mp4 = "mp4 with headers; h264 ", film = " 1:1 30000/1001 quality 14", aac = "; aac 48000 stereo ";
    const std::string bits = std::to_string(GetDefaultVideoBitrate("h264", 640, 480, 30000 / 1001.0, 14));
    const std::string mode = "size=640x360 --resize-mode " + g_resize + "mode=";
    const std::pair<std::string, std::string> cases[] = {
        {"", mp4 + "640x480" + film + aac + "256000"},
        {"odd", mp4 + "852x480 4:3 30000/1001 quality 14" + aac + "256000"},
        {"--two-pass video_codec/passes=two_pass",
         mp4 + "640x480 1:1 30000/1001 " + bits + " in two passes" + aac + "256000"},
        {"--audio-bitrate audio_codec/bitrate_mode=cbr_auto", mp4 + "640x480" + film + aac + "256000"},
        {mode + "letterbox", mp4 + "640x360" + film + " between bars" + aac + "256000"},
        {mode + "crop", mp4 + "640x360" + film + " cropped" + aac + "256000"},
        {mode + "stretch", mp4 + "640x360" + film + aac + "256000"},
        {mode + "smart_fit", mp4 + "480x360" + film + aac + "256000"},
        {mode + "up_to", mp4 + "480x360" + film + aac + "256000"},
        {mode + "auto", mp4 + "640x360" + film + " between bars" + aac + "256000"},
        {"output=a.avi --video video_codec/codec_id=dvvideo",
         "avi; dvvideo 720x480 1:1 30000/1001 2000000 between bars; mp3 48000 stereo 256000"},
        {"output=a.mp3 --video video_codec/codec_id=png",
         "mp3; png 640x480 1:1 30000/1001 2000000 cover; mp3 48000 stereo 256000"},
    };
    for (const auto& [changes, job] : cases) {
        Request request = ToMp4();
        InputInfo input = Film();
        Change(request, input, changes);
        EXPECT_EQ(JobText(MakePlan(request, input).job), job) << changes;
    }
}

TEST_F(PlanTest, RefusesWithPlainWords) {
    const std::string resample = "filter_resample/resample/";
    const std::pair<std::string, const char*> cases[] = {
        {"--format format/container=mp5", "there is no format 'mp5'; did you mean "},
        {"output=film", "no extension"},
        {"--video video_codec/codec_id=h999", "unknown codec 'h999'"},
        {"--video video_codec/codec_id=aac", "does not carry the codec 'aac'"},
        {"--audio audio_codec/codec_id=wmav2", "does not carry the codec 'wmav2'; it carries "},
        {"no-video --video video_codec/codec_id=h264", "no picture in the input"},
        {"no-video no-audio", "has no stream"},
        {"size=641x480", "'641' is not legal here"},
        {"size=16x480", "--size: '16'"},
        {"output=a.avi size=640x480 --video video_codec/codec_id=dvvideo",
         "--size: '640x480' is not legal here; allowed: one of 720x"},
        {"--audio audio_codec/codec_id=auto --sample-rate " + resample + "sample_rate=44100",
         "--sample-rate: '44100' is not legal here; allowed: "},
        {"output=a.srt bitmaps", "the subtitles of the input (dvd_subtitle) are pictures"},
        {"output=a.srt", "there are no subtitles in the input"},
        {"--resize-mode " + g_resize + "mode=melt",
         "--resize-mode: 'melt' is not legal here; allowed: one of smart_fit"},
        {"--preset " + g_preset + "=quickest", "--preset: 'quickest' is not legal here; allowed: one of ultrafast"},
        {"--preset " + g_preset + "=ultrafast --profile " + g_profile + "=high",
         "--profile: 'high' is not legal here; allowed: baseline"},
        // The encoder has no 2.1, and PCM has no 3.0.
        {"output=a.m2ts --audio audio_codec/codec_id=pcm_bluray --layout " + resample + "channel_layout=2.1",
         "--layout: '2.1' becomes '3.0', which is not legal here; allowed: "},
        {"--layout " + resample + "channel_layout=9.9", "--layout: unknown name '9.9'"},
        {"--sample-format filter_resample/sample_format=s17", "--sample-format: unknown name"},
    };
    for (const auto& [changes, words] : cases) {
        SCOPED_TRACE(changes);
        Request request = ToMp4();
        InputInfo input = Film();
        Change(request, input, changes);
        try {
            MakePlan(request, input);
            ADD_FAILURE() << "nothing was refused";
        } catch (const RequestError& error) {
            EXPECT_THAT(error.what(), HasSubstr(words));
            EXPECT_THAT(error.what(), testing::Not(HasSubstr("\n")));
        }
    }
}

/// What becomes of each stream, as "KIND: CODEC" or "KIND: copied", and the notes.
std::string Told(const Plan& plan) {
    const char* const kinds[] = {"video", "audio", "subtitles", "cover", "attachment", "data"};
    std::string text;
    for (const StreamPlan& stream : plan.streams) {
        text += std::string(kinds[static_cast<int>(stream.kind)]) + ": " +
                (stream.isCopied ? "copied" : stream.settled[C::TAG_CODEC_ID].GetString()) + '\n';
    }
    for (const std::string& note : plan.notes) text += note + '\n';
    return text;
}

Plan PlanOf(const std::string& format, std::vector<Choice> choices, InputInfo input, bool copy = false) {
    Request request = ToMp4();
    request.copy = copy;
    request.choices = std::move(choices);
    request.choices.push_back(Chosen("format/container", format, "--format"));
    return MakePlan(request, input);
}

TEST_F(PlanTest, TellsWhatIsCopiedLeftOutOrBroughtToAForm) {
    InputInfo film = Film(), stored = Film(), cover = Film(), titled = Film(), half = Film();
    film.video.at(0).frameRate = {25, 1};
    film.audio.at(0).codecId = cover.audio.at(0).codecId = "wmav2";  // which no major of FFmpeg puts into MP4
    stored.video.at(0).codecId = "h264", stored.video.at(0).codecDataSize = 40,
    stored.video.at(0).pixelFormat = "yuv420p";
    stored.audio.at(0).codecId = "aac", stored.audio.at(0).codecDataSize = 5;
    cover.video.at(0).isAttachedPicture = true;
    half.video.at(0).width = 352, half.video.at(0).height = 288;
    titled.subtitles = {Subtitles("subrip", true)};
    const std::vector<Choice> sized = Sized(320, 240), rate = {Chosen(g_audioBitrate, 64000, "--audio-bitrate")};
    const struct {
        Plan plan;
        std::string told;
    } cases[] = {
        {PlanOf("matroska", {}, stored, true), "video: copied\naudio: copied\n"},
        {PlanOf("matroska", {}, stored),
         "video: h264\naudio: aac\nStreams 0 and 1 could go over unchanged: give --copy.\n"},
        {PlanOf("mpegts", {}, stored),
         "video: mpeg2video\naudio: mp2\nStream 1 could go over unchanged: give --copy.\nStream 0 could go over "
         "unchanged with --copy=all: FFmpeg carries it in 'mpegts', though the rule book refuses.\n"},
        {PlanOf("mp4", sized, stored, true),
         "video: h264\naudio: copied\nSomething was asked of the picture of stream 0; it is encoded.\n"},
        {PlanOf("mp4", rate, stored, true),
         "video: copied\naudio: aac\nSomething was asked of the sound of stream 1; it is encoded.\n"},
        {PlanOf("mp4", {}, film, true),
         "video: copied\naudio: aac\nThe sound of stream 1 is encoded: mp4 does not carry wmav2.\n"},
        {PlanOf("mp3", {}, cover), "cover: mjpeg\naudio: mp3\n"},
        {PlanOf("flac", {Codec("video", "png")}, film), "cover: png\naudio: flac\n"},
        {PlanOf("m4a", {}, cover, true),
         "cover: mjpeg\naudio: aac\nThe sound of stream 1 is encoded: m4a does not carry wmav2.\n"},
        {PlanOf("mp3", {}, film),
         "audio: mp3\n'mp3' holds sound, and takes a picture for its cover where --video is given; stream 0 is left "
         "out.\n"},
        {PlanOf("png", {}, film), "video: png\n'png' holds no sound; stream 1 is left out.\n"},
        {PlanOf("srt", {}, titled),
         "subtitles: srt\n'srt' holds no pictures; stream 0 is left out.\n'srt' holds no sound; stream 1 is left "
         "out.\nStream 2 could go over unchanged: give --copy.\n"},
        {PlanOf("matroska", {Codec("subtitle", "ass")}, titled),
         "video: h264\naudio: aac\nsubtitles: ass\nStreams 0 and 1 could go over unchanged: give --copy.\n"},
        {PlanOf("matroska", {}, titled),
         "video: h264\naudio: aac\nsubtitles: subrip\nStreams 0, 1 and 2 could go over unchanged: give --copy.\n"},
        {PlanOf("avi", {Codec("video", "dvvideo")}, film),
         "video: dvvideo\naudio: mp3\n'dvvideo' has its own frame sizes; the picture is brought to 720x576.\n"
         "Stream 1 could go over unchanged: give --copy.\n"},
        {PlanOf("avi", {Codec("video", "dvvideo")}, Film()),
         "video: dvvideo\naudio: mp3\n'dvvideo' has its own frame sizes; the picture is brought to 720x480.\n"
         "Stream 1 could go over unchanged: give --copy.\n"},
        {PlanOf("3gp", {}, half),
         "video: h263\naudio: aac\n'h263' has its own frame sizes; the picture is brought to 352x288.\n"
         "Stream 0 could go over unchanged: give --copy.\n"},
    };
    for (const auto& [plan, told] : cases) EXPECT_EQ(Told(plan), told) << plan.formatId;
}

/// That what a plan settled gives the same plan, whatever the order of its values.
void ExpectAgain(const Plan& plan, const InputInfo& input) {
    const auto settled = [](const Plan& made) {
        return nlohmann::json::parse(WriteJson(Norvex::Document::PlainFormOf(made.settled)));
    };
    Request request = ToMp4();
    ChooseFromPreset(request, Norvex::Document::WritePreset(plan.settled));
    const Plan again = MakePlan(request, input);
    EXPECT_EQ(JobText(again.job), JobText(plan.job));
    EXPECT_EQ(settled(again), settled(plan));
}

TEST_F(PlanTest, ASavedPresetGivesTheSamePlan) {
    const struct {
        const char* format;
        std::vector<Choice> choices;
    } cases[] = {
        {"mp4", {}},
        {"mp4", Sized(320, 240)},
        {"avi", {Codec("video", "mjpeg"), Codec("audio", "ac3")}},
        {"avi", {Codec("video", "dvvideo")}},
        {"3gp", {}},
        {"ogg", {}},
        {"webm", {Codec("video", "vp8"), Codec("audio", "vorbis")}},
        {"png", {}},
        {"mov", {Codec("video", "prores"), Codec("audio", "pcm_s24le")}},
        {"flac", {Codec("video", "png")}},
        {"mp4", {Chosen("audio_codec/bitrate_mode", "cbr_auto", "--audio-bitrate"), Codec("video", "hevc")}},
    };
    for (const auto& [format, choices] : cases) {
        SCOPED_TRACE(format);
        ExpectAgain(PlanOf(format, choices, Film()), Film());
    }
}

TEST_F(PlanTest, NeverLeavesTheEncoderTheMarkOfTheSourcesRate) {
    const std::string path = "filter_rate/frame_rate";
    const struct {
        const char* format;
        Fraction source;
        std::optional<Ratio> asked;
        Ratio rate;
        const char* saved;
    } cases[] = {
        {"gif", {2, 1}, {}, {2, 1}, "0/1"},           {"gif", {2, 1}, Ratio(0, 1), {2, 1}, "0/1"},
        {"gif", {2, 1}, Ratio(2, 1), {2, 1}, "0/1"},  {"gif", {2, 1}, Ratio(3, 1), {8, 1}, "8/1"},
        {"gif", {60, 1}, Ratio(3, 1), {8, 1}, "8/1"}, {"gif", {60, 1}, Ratio(0, 1), {30, 1}, "30/1"},
        {"mp4", {1, 3}, {}, {1, 3}, "0/1"},           {"mp4", {1, 3}, Ratio(0, 1), {1, 3}, "0/1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.format + std::to_string(c.source.numerator));
        InputInfo input = Film();
        input.video.at(0).frameRate = c.source;
        std::vector<Choice> choices;
        if (c.asked) choices = {Chosen(path, *c.asked, "--fps")};
        const Plan plan = PlanOf(c.format, choices, input);
        EXPECT_EQ(Ratio(plan.job.video.at(0).frameRate.numerator, plan.job.video.at(0).frameRate.denominator), c.rate);
        EXPECT_EQ(PropertyValueToString(plan.settled[path]), c.saved);
        // What is told is what is done, and the saved preset does it again.
        const StreamPlan& stream = plan.streams[0];
        EXPECT_EQ(stream.settled[V::TAG_FPS].GetRatio(), c.rate);
        Ratio told = stream.asked[V::TAG_FPS].GetRatio();
        for (const CorrectedValue& change : stream.changes) {
            if (change.path == V::TAG_FPS) told = change.after->GetRatio();
        }
        EXPECT_EQ(told, c.rate);
        ExpectAgain(plan, input);
    }
}

TEST_F(PlanTest, ReadsPresetsAndSaysWhatIsWrongWithThem) {
    const auto choose = [](const std::string& sections, std::vector<Choice> choices) {
        Request request = ToMp4();
        request.presetFile = "my.json";
        request.choices = std::move(choices);
        ChooseFromPreset(request, "{\"norvex-preset\": 1, \"preset\": {\n" + sections + "\n}}");
        return MakePlan(request, Film());
    };
    // What was set for one codec means nothing to another, and what was chosen counts more than what was set.
    const std::string mp3 = "\"audio_codec\": {\"codec_id\": \"mp3\", \"bitrate\": 64000}";
    EXPECT_EQ(choose(mp3, {}).job.audio.at(0).bitrate, 64000);
    EXPECT_EQ(choose(mp3, {Chosen(g_audioBitrate, 96000, "--audio-bitrate")}).job.audio.at(0).bitrate, 96000);
    EXPECT_EQ(Told(choose(mp3, {Codec("audio", "aac")})),
              "video: h264\naudio: aac\nStream 0 could go over unchanged: give --copy.\n");
    EXPECT_EQ(choose(mp3, {Codec("audio", "aac")}).job.audio.at(0).bitrate, 256000);
    const std::pair<std::string, const char*> refused[] = {
        {"\"audio_codec\": {", "'my.json', line 3: this is no JSON"},
        {"\"audio_codec\": {\"codec_id\": \"mp4\"}", "'my.json', line 2: there is no codec 'mp4'"},
        {"\"filter_volume\": {}", "line 2: this program has no use for 'filter_volume'"},
        {"\"filter_rate\": {\"frame_rate\": true}",
         "preset, line 2: 'true' is no value of the type of 'filter_rate/frame_rate'"},
        {"\"filter_resample\": {\"resample\": {\"sample_rate\": \"x\"}}",
         "preset, line 2: 'x' is no value of the type of "},
        {"\"filter_resample\": {\"sample_format\": 5}", "preset, line 2: '5' is no value of the type of "},
        {"\"video_codec\": {\"codec_id\": \"h264\", \"passes\": 5}", "preset, line 2: '5' is no value of the type of "},
        {"\"filter_resize\": {\"resize\": {\"mode\": 5}}",
         "preset, line 2: '5' is not legal here; allowed: one of smart_fit"},
    };
    for (const auto& [sections, words] : refused) {
        try {
            choose(sections, {});
            ADD_FAILURE() << sections << " was not refused";
        } catch (const RequestError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(words));
        }
    }
}

}  // namespace
