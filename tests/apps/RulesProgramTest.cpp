// norvex-rules as a user runs it.

#include <gmock/gmock.h>

#include <regex>

#include "support/MadeClip.h"
#include "support/ProgramFixture.h"

namespace {

using nlohmann::json;
using namespace NorvexTest;

class RulesProgramTest : public ProgramFixture {
protected:
    RulesProgramTest() : ProgramFixture(NORVEX_RULES) {}

    std::string Say(const std::string& arguments) const {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments << '\n' << outcome.text;
        return outcome.text;
    }

    /// The sections of a preset, checked.
    Outcome Check(const std::string& sections, const std::string& options = "") const {
        Write("preset.json", "{\"norvex-preset\": 1,\n\"preset\": {\n" + sections + "\n}}");
        return Run("check preset.json " + options);
    }
};

std::size_t CountOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
    return count;
}

TEST_F(RulesProgramTest, TellsEverythingAndTheSameEachTime) {
    const std::string list = Say("list"), matrix = Say("matrix");
    EXPECT_THAT(list, AllOf(HasSubstr("Containers (76)\n"), HasSubstr("\nVideo codecs (46)\n"),
                            HasSubstr("\nAudio codecs (36)\n"), HasSubstr("\nSubtitle codecs (14)\n"),
                            HasSubstr("\nFilters (5)\n")));
    EXPECT_EQ(CountOf(list, "\n"), 76U + 46 + 36 + 14 + 5 + 5 + 4);
    EXPECT_EQ(CountOf(Say("list --classic"), "\n"), 64U + 36 + 26 + 14 + 5 + 5 + 4);
    const json book = json::parse(Say("json"));
    EXPECT_EQ(book["formats"].size() + book["videoCodecs"].size() + book["audioCodecs"].size(), 76U + 46 + 36);
    std::size_t defaults = 0, rows = 0;
    for (const json& format : book["formats"]) {
        EXPECT_THAT(list, HasSubstr("\n  " + format["id"].get<std::string>() + ' '));
        for (const char* const kind : {"video", "audio", "subtitles"}) {
            if (!format[kind].is_null()) ++defaults;
        }
        const std::string row = '\n' + format["id"].get<std::string>() + ' ';
        for (std::size_t at = 0; (at = matrix.find(row, at)) != std::string::npos; ++at, ++rows) {
            const std::string marks = matrix.substr(at + 15, matrix.find('\n', at + 1) - at - 15);
            EXPECT_EQ(CountOf(marks, "D") + CountOf(marks, "d"), 1U) << row;
        }
    }
    EXPECT_EQ(rows, defaults);
    for (const char* const arguments : {"json", "list", "matrix", "html"}) EXPECT_EQ(Say(arguments), Say(arguments));
    EXPECT_EQ(Say("json book.json"), "");
    EXPECT_EQ(json::parse(Read("book.json")), book);
}

TEST_F(RulesProgramTest, ShowsOneHelperAsItStands) {
    EXPECT_THAT(Say("show --rules video h264"),
                AllOf(HasSubstr("  requires   filter_resize, filter_rate\n"), HasSubstr("from 1 to "),
                      HasSubstr("  when video_codec/encode_options/preset is ultrafast:\n    "
                                "video_codec/encode_options/profile is baseline\n")));
    EXPECT_THAT(Say("show format m4a --rules"),
                AllOf(HasSubstr("  audio      aac, alac  (default aac)\n"), HasSubstr("streams/0/type")));
    EXPECT_THAT(Say("show --rules format ac3"), AllOf(Not(HasSubstr("  video ")), HasSubstr("\nRules\n  none\n")));
    EXPECT_THAT(Say("show --rules filter resize"), HasSubstr("\nRules\n  filter_resize/resize/width is even\n"));
}

TEST_F(RulesProgramTest, ShowsWhatHoldsInTheEnd) {
    const struct {
        const char* arguments;
        std::vector<const char*> lines;  ///< their words
    } cases[] = {
        {"show video h264",
         {"H.264 (AVC)", "id video h264", "passes one pass or two passes (two_pass)", "profile by encoder preset",
          "ultra fast Baseline"}},
        // Both the hand's list and the encoder's; what they rule out has no row either.
        {"show audio mp3",
         {"sample rate 11.025, 12, 16, 22.05, 24, 32, 44.1 or 48 kHz", "11.025 or 12 kHz 32 or 64 kbit/s",
          "bitrate 32 to 320 kbit/s (9 values)", "channels mono or stereo"}},
        {"show video hevc", {"bitrate mode constant, chosen by the system (cbr_auto), which is none of those below"}},
        {"show video dvvideo", {"frame size 720x480 or 720x576"}},
        {"show video prores", {"pictures 4:2:2 10 bit, 4:4:4 10 bit, with transparency"}},
        {"show Format .MKV", {"Matroska (.mkv)", "streams at most 2 video, 16 audio, 16 subtitles, 16 other types"}},
        {"show format dvd", {"disc size 1.46, 4.7 or 8.54 GB", "AC-3 or MP2 256 kbit/s"}},
        {"show format mp4", {"encoded here: VC-1"}},
        {"show filter resize", {"width 32 to 8192 pixels and even"}},
    };
    for (const auto& c : cases) {
        const std::string text = std::regex_replace(Say(c.arguments), std::regex(" +"), " ");
        for (const char* const line : c.lines) EXPECT_THAT(text, HasSubstr(std::string(line) + '\n')) << c.arguments;
    }
}

TEST_F(RulesProgramTest, PutsTheWholeBookIntoOnePage) {
    const std::string page = Say("html");
    EXPECT_EQ(CountOf(page, "<script"), CountOf(page, "</script>"));
    const std::size_t begin = page.find("{\"shared\":");
    ASSERT_NE(begin, std::string::npos);
    const std::string data = page.substr(begin, page.find("</script>", begin) - begin);
    EXPECT_THAT(data.substr(0, data.find('\n')), Not(HasSubstr("<")));
    EXPECT_TRUE(json::parse(data.substr(0, data.rfind('}') + 1)).contains("book"));
    EXPECT_LT(page.size(), 300000U);
}

TEST_F(RulesProgramTest, ChecksAndMendsPresets) {
    const std::string aac = R"("audio_codec":{"bitrate":96000,"bitrate_mode":"cbr_auto","codec_id":"aac"})";
    const struct {
        std::string sections, broken, mended;
        std::size_t open;
    } cases[] = {
        {"", "", "", 0},
        {aac, "", aac, 3},
        {R"("filter_resize": {"resize": {"width": 641, "height": 16}})",
         "Parameter filter_resize/resize/height is 16 but must be from 32 to 4320\n"
         "Parameter filter_resize/resize/width is 641 but must be even\n",
         R"("filter_resize":{"resize":{"height":32,"width":640}})", 0},
        {R"("audio_codec": {"codec_id": "aac", "bitrate": {"$bytes": "ff"}})",
         "Parameter audio_codec/bitrate is \xEF\xBF\xBD, which is no value.*\n",
         R"("audio_codec":{"bitrate":256000,"codec_id":"aac"})", 3},
        {R"("video_codec": {"codec_id": "mpeg4", "encode_options": {"tune": "film"}})",
         "Parameter video_codec/encode_options/tune has no place: mpeg4 has none such\n",
         R"("video_codec":{"bitrate":2000000,"bitrate_mode":"cbr","codec_id":"mpeg4",)"
         R"("encode_options":{"profile":"simple"},"global_header":true,"quality":12})",
         0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sections);
        const Outcome outcome = Check(c.sections, "--json");
        const json judgement = json::parse(outcome.text);
        std::string broken;
        for (const json& finding : judgement["broken"]) broken += finding["message"].get<std::string>() + '\n';
        EXPECT_THAT(broken, testing::MatchesRegex(c.broken));
        EXPECT_EQ(judgement["mended"]["preset"].dump(), '{' + c.mended + '}');
        EXPECT_EQ(judgement["open"].size(), c.open);
        EXPECT_TRUE(judgement["left"].empty());
        EXPECT_EQ(outcome.status, broken.empty() ? 0 : 1);
        EXPECT_THAT(Check(c.sections).text,
                    HasSubstr(broken.empty() ? "The preset keeps every rule.\n" : "Broken:\n  - "));
        Write("mended.json", judgement["mended"].dump());
        EXPECT_EQ(Run("check mended.json").status, 0);
    }
}

TEST_F(RulesProgramTest, MendsWhatTheHostSavedForAnotherContainer) {
    MakeClip(File("in.mkv"), {});
    const auto exported = [this](const std::string& arguments) {
        const Outcome outcome = RunOther(NORVEX_EXPORT, "in.mkv " + arguments + " --quiet");
        EXPECT_EQ(outcome.status, 0) << outcome.text;
    };
    exported("out.mp4 --dry-run --tune film --audio-bitrate 96000 --save-preset saved.json");
    EXPECT_EQ(Say("check saved.json"), "The preset keeps every rule.\n");
    std::string text = Read("saved.json");
    text.replace(text.find("mp4"), 3, "dvd");
    Write("changed.json", text);
    const json judgement = json::parse(Run("check changed.json --json").text);
    EXPECT_EQ(judgement["mended"]["preset"]["audio_codec"]["codec_id"], "mp2");
    Write("mended.json", judgement["mended"].dump());
    EXPECT_EQ(Say("check mended.json"), "The preset keeps every rule.\n");
    exported("out.vob --preset mended.json --save-preset again.json");
    const json again = json::parse(Read("again.json"))["preset"];
    EXPECT_EQ(again["video_codec"]["codec_id"], "mpeg2video");
    EXPECT_EQ(again["audio_codec"]["bitrate"], 256000);
}

TEST_F(RulesProgramTest, TellsWhatMayBecomeOfAFile) {
    ClipSettings clip;
    clip.muxer = "matroska";
    clip.titles = {{0.1, 0.5, "A line"}};
    clip.coverPicture = true;
    MakeClip(File("in.mkv"), clip);
    const std::string text = Say("fit in.mkv");
    EXPECT_THAT(text, AllOf(HasSubstr("rawvideo, 64x48, 25 fps\n"), HasSubstr("png, 32x32, a cover\n"),
                            HasSubstr("Hold the first picture:\n  png jpeg ")));
    const std::string one = Say("fit in.mkv -f MP4");
    EXPECT_THAT(one, AllOf(HasSubstr("mp4 holds at most: video 2, audio 16, subtitles 16, other 16\n"),
                           HasSubstr("mp4 does not carry rawvideo; encoded to h264.\n"),
                           HasSubstr("mp4 takes png as it is.\n")));
    EXPECT_THAT(Say("fit in.mkv -f mkv"),
                HasSubstr("FFmpeg carries subrip in matroska, but the rule book refuses it: "));

    const json all = json::parse(Say("fit in.mkv --json"));
    EXPECT_EQ(all["formats"].size(), 76U);
    const json only = json::parse(Say("fit in.mkv -f mp4 --json"));
    for (const json& format : all["formats"]) EXPECT_TRUE(format["id"] != "mp4" || format == only["formats"][0]);
    // The table's first row is the best container.
    const std::string best = all["formats"][0]["id"].get<std::string>();
    EXPECT_THAT(text.substr(text.find("\n\n") + 2), testing::ContainsRegex("^ .*\n" + best + " "));
}

TEST_F(RulesProgramTest, FindsListsAndShowsWhoCarriesWhat) {
    const std::string found = Say("find --video h265 --audio flac,flac --subtitles srt");
    EXPECT_THAT(found, testing::MatchesRegex("matroska +at most video 2, .*\nThis FFmpeg cannot write .*\n  qfx\n"));
    EXPECT_EQ(json::parse(Say("find --video h265 --audio flac,flac --subtitles srt --json"))[0]["id"], "matroska");
    EXPECT_EQ(Say("find --video flashsv"), "No container holds all of these.\n");
    EXPECT_THAT(
        Say("list audio 'pcm_f*le'"),
        testing::MatchesRegex("Audio codecs .2.\n  pcm_f32le +PCM 32 bit float +pcm_f32le\n  pcm_f64le +PCM 64.*"));
    const json listed = json::parse(Say("list opus --json"));
    EXPECT_EQ(listed.dump(), R"([{"id":"opus","kind":"format"},{"encoder":"libopus","id":"opus","kind":"audio"}])");
    EXPECT_THAT(Say("show video hevc --rules"), testing::ContainsRegex("\n  carried by heic .default., .*, mp4, "));
    EXPECT_EQ(Say("show subtitles vobsub"),
              "subtitles dvd_subtitle\n  encoder    dvdsub\n"
              "  carried by ipod (default), m4v (default), matroska, mp4 (default), qfx\n");
}

TEST_F(RulesProgramTest, TellsWhatChangedBetweenTwoBooks) {
    Say("json new.json");
    EXPECT_EQ(Say("diff new.json"), "The books say the same.\n");
    json book = json::parse(Read("new.json"));
    book["ffmpeg"] = "older";
    for (json& format : book["formats"]) {
        if (format["id"] == "mp4") format["video"]["codecs"].erase(0);
        if (format["id"] == "avi" || format["id"] == "mov") format["defaults"]["limits"]["audio"] = 3;
    }
    for (json& codec : book["audioCodecs"]) {
        if (codec["id"] == "opus") codec["encoder"] = "opus", codec["rules"].erase(0);
    }
    book["formats"].erase(book["formats"].size() - 1);
    book["audioCodecs"].push_back({{"id", "zz"}});
    Write("old.json", book.dump());
    const Outcome outcome = Run("diff old.json new.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.text,
                testing::MatchesRegex(
                    "library .*, FFmpeg older\n> library .*\n\nContainers\n  came: xwd\n  avi, mov\n"
                    "    default/limits/audio: 3 > 16\n  mp4\n    carries video: \\+ [a-z0-9]+\n"
                    "Audio codecs\n  went: zz\n  opus\n    encoder: opus > libopus\n    rule: .* came: .*\n"));
}

TEST_F(RulesProgramTest, ShowsAndWritesWhatMendingChanged) {
    Write("in.json", R"({"norvex-preset": 1, "preset": {"video_codec": {"codec_id": "h264", "quality": 70}}})");
    const Outcome outcome = Run("check --diff -o out.json < in.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.text,
                AllOf(HasSubstr("Broken:\n"), HasSubstr("\n-       \"quality\": 70\n+       \"quality\": 51\n")));
    EXPECT_EQ(Say("check - < out.json"), "The preset keeps every rule.\n");
}

TEST_F(RulesProgramTest, FailsInOnePlainLine) {
    Write("text.json", "no preset");
    Write("large.json", std::string(1000001, ' '));
    Write("name.json", "{\"norvex-preset\": 1,\n\"preset\": {\n\"format\": {\"container\": \"mp5\"}\n}}");
    const struct {
        const char* arguments;
        int status;
        const char* words;
    } cases[] = {
        {"check none.json", 1, "norvex-rules: there is no preset and no file 'none.json'\n"},
        {"check .", 1, "norvex-rules: cannot read '.'\n"},
        {"check text.json", 1, "norvex-rules: 'text.json', line 1: this is no JSON, at "},
        {"check large.json", 1, "norvex-rules: 'large.json', line 1: the document is larger than 1 MB, which no"},
        {"check name.json", 1, "norvex-rules: 'name.json', line 3: there is no container 'mp5'\n"},
        {"show video aac", 1, "norvex-rules: there is no video codec 'aac'; it is an audio codec\n"},
        {"show video VC1", 1, "norvex-rules: there are no rules for the video codec 'vc1'\n"},
        {"show format mp5", 1, "norvex-rules: there is no format 'mp5'; did you mean 'mp3', "},
        {"show codec aac", 1,
         "norvex-rules: there is no kind 'codec'; there are format, video, audio, subtitles and filter\n"},
        {"list codec aac", 1, "norvex-rules: there is no kind 'codec'; there are format, "},
        {"list zzz", 1, "norvex-rules: there is nothing of the name 'zzz'\n"},
        {"find", 1, "norvex-rules: say what to find, such as --video hevc --audio flac\n"},
        {"find --video h246", 1, "norvex-rules: there is no video codec 'h246'; did you mean "},
        {"fit none.mkv", 1, "norvex-rules: cannot open 'none.mkv': "},
        {"diff text.json", 1, "norvex-rules: 'text.json', line 1: this is no JSON"},
        {"diff name.json", 1, "norvex-rules: 'name.json' is no rule book\n"},
        {"check < text.json", 1, "norvex-rules: standard input, line 1: this is no JSON"},
        {"json no/where", 1, "norvex-rules: cannot write 'no/where': there is no folder 'no'\n"},
        {"show video", 2, "norvex-rules: ID is required\n"},
        {"", 2, "norvex-rules: give one of the commands fit, find, list, show, "},
        {"explain", 2, "norvex-rules: there is no command 'explain'; there are fit, find, list, "},
        {"shwo format mp4", 2, "norvex-rules: there is no command 'shwo'; did you mean 'show'?\n"},
        {"check my.json --jsom", 2, "norvex-rules: there is no option '--jsom'; did you mean '--json'?\n"},
    };
    for (const auto& [arguments, status, words] : cases) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, status);
        EXPECT_THAT(outcome.text, HasSubstr(words));
        EXPECT_TRUE(status != 1 || CountOf(outcome.text, "\n") == 1) << outcome.text;
    }
}

}  // namespace
