// norvex-export as a user runs it.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>

#include "Media.h"
#include "support/MadeClip.h"
#include "support/ProgramFixture.h"

namespace {

using testing::StartsWith;
using namespace NorvexTest;

class ProgramTest : public ProgramFixture {
protected:
    ProgramTest() : ProgramFixture(NORVEX_EXPORT) {}

    std::string Clip() const { return MakeClip(File("in.mkv"), {}); }
};

TEST_F(ProgramTest, ExportsWhatWasAskedFor) {
    Clip();
    const Outcome outcome =
        Run("in.mkv out.mp4 --size 160x120 --fps 25 --audio-bitrate 100000 --encoder-preset ultrafast");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    EXPECT_THAT(outcome.text,
                HasSubstr("\nMP4, H.264 Baseline 160x120 at 25 fps, quality 14; AAC stereo 48 kHz 96 kbit/s\n"));
    EXPECT_THAT(outcome.text, HasSubstr("  bitrate 96 kbit/s instead of 100 kbit/s, which AAC does not take\n"));
    EXPECT_THAT(outcome.text, HasSubstr("Wrote out.mp4"));
    const auto info = NorvexExport::Probe(File("out.mp4"));
    EXPECT_EQ(info.video.at(0).codecId, "h264");
    EXPECT_EQ(info.video.at(0).width, 160);
    EXPECT_EQ(info.video.at(0).frameRate.numerator, 25);
    EXPECT_EQ(info.audio.at(0).codecId, "aac");
    EXPECT_EQ(FileCount(), 2U) << "something was left beside the output";
}

TEST_F(ProgramTest, DryRunWritesNothing) {
    Clip();
    const Outcome outcome = Run("in.mkv out.mp4 --dry-run --json --audio-bitrate 100000");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    const auto plan = nlohmann::json::parse(outcome.text);
    EXPECT_EQ(plan["streams"][1]["changes"][1]["to"], 96000);
    EXPECT_EQ(plan["streams"][0]["settled"]["encode_options"]["use_hw_context"], true);
    EXPECT_FALSE(plan.contains("result"));
    EXPECT_THAT(Run("in.mkv out.mp4 --dry-run").text, HasSubstr("Nothing was encoded"));
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(ProgramTest, EveryExampleOfItsHelpRuns) {
    MakeClip(File("film.mov"), {});
    std::istringstream help(Run("--help").text);
    int examples = 0;
    for (std::string line; std::getline(help, line);) {
        const std::string start = "  norvex-export ";
        if (line.compare(0, start.size(), start) != 0) continue;
        ++examples;
        const Outcome outcome = Run(line.substr(start.size()));
        EXPECT_EQ(outcome.status, 0) << line << outcome.text;
    }
    EXPECT_GE(examples, 9);
}

TEST_F(ProgramTest, ASignalEndsItAndLeavesNothing) {
    ClipSettings clip;
    clip.frames = 200;
    MakeClip(File("in.nut"), clip);
    const std::string slow = "in.nut out.mp4 --quiet --size 4k --encoder-preset veryslow";
    const struct {
        const char* signal;
        std::string arguments;
        int status;
    } cases[] = {
        {"INT", slow + " --two-pass", 130},
        {"TERM", slow, 143},
        {"HUP", slow, 129},
    };
    for (const auto& [signal, arguments, status] : cases) {
        SCOPED_TRACE(signal);
        // Whoever runs the tests may have signals ignored.
        const Outcome outcome = Run(arguments, std::string("TMPDIR=. timeout --preserve-status -s ") + signal +
                                                   " 1 env --default-signal=INT,TERM,HUP");
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.text, std::string("norvex-export: stopped by SIG") + signal + '\n');
        EXPECT_EQ(FileCount(), 1U);
    }
}

TEST_F(ProgramTest, StartsFromAPresetThatItSavedAndExplainsItself) {
    Clip();
    EXPECT_THAT(Run("in.mkv out.avi --audio mp3 --size 160x120 --save-preset my.json --dry-run").text,
                HasSubstr("Saved the preset to my.json.\n"));
    EXPECT_THAT(Run("in.mkv out.avi --preset my.json --dry-run --explain").text,
                HasSubstr("filter_resize/resize/width"));
    EXPECT_THAT(Run("in.mkv out.mp4 --audio-bitrate 100000 --dry-run --verbose").text, HasSubstr("100000   96000"));
}

TEST_F(ProgramTest, PresetsHaveNamesOfWhichTheUsersOwnComeFirst) {
    Clip();
    std::filesystem::create_directories(File("own/norvex/presets"));
    Write("own/norvex/presets/gif.json", R"({"norvex-preset": 2, "about": {"description": "Mine."},
        "preset": {"format": {"container": "gif"}, "filter_rate": {"frame_rate": 10}}})");
    Write("own/norvex/presets/broken.json", "{");
    const std::string own = "XDG_CONFIG_HOME=\"$PWD/own\"";
    EXPECT_THAT(Run("--list-presets", own).text, AllOf(HasSubstr("\n  gif            Mine.\n"),
                                                       HasSubstr("damaged: line 1"), HasSubstr("\nweb\n  web-1080p")));
    EXPECT_THAT(Run("in.mkv out.gif --preset gif --dry-run", own).text, HasSubstr(" at 10 fps"));
    EXPECT_THAT(Run("in.mkv out.gif --preset gif --dry-run").text, HasSubstr(" at 12 fps"));
    EXPECT_THAT(Run("in.mkv out.webp --preset gif --dry-run").text,
                HasSubstr("The preset makes the output GIF (.gif)"));
    EXPECT_THAT(Run("in.mkv out.gif --preset ./gif").text, HasSubstr("cannot read './gif'"));
}

TEST_F(ProgramTest, AFailureIsOnePlainLineAndLeavesTheOldOutput) {
    Clip();
    Write("garbage.mkv", "this is no film");
    Write("out.mp4", "old");
    std::filesystem::create_hard_link(File("in.mkv"), File("hard"));
    std::filesystem::create_symlink("new.avi", File("link"));  // which is not there yet
    std::filesystem::create_symlink(".", File("here"));
    Write("my.json", R"({"norvex-preset": 1, "preset": {}})");
    const std::string clip = Read("in.mkv");
    const std::tuple<std::string, int, const char*> cases[] = {
        {"missing.mkv out.mp4", 1, "missing.mkv"},
        {"garbage.mkv out.mp4", 1, "garbage.mkv"},
        {". out.mp4", 1, "'.'"},
        {"in.mkv out.mp4 --no-video --no-audio", 1, "has no stream"},
        {"in.mkv out.webm --audio opus --classic", 1, "does not carry the codec 'opus'"},
        {"in.mkv out.opus --classic", 1, "there is no format 'opus'"},
        {"in.mkv out.mp4 --preset none.json", 1, "there is no preset and no file 'none.json'\n"},
        {"in.mkv out.mp4 --preset .", 1, "cannot read '.'\n"},
        {"in.mkv out.mp4 --preset web-1080", 1, "and no file 'web-1080'; did you mean 'web-1080p'?\n"},
        {"in.mkv out.mp4 --size 161x120", 1, "--size: '161' is not legal here"},
        {"in.mkv nowhere/out.mp4", 1, "cannot write 'nowhere/out.mp4': there is no folder 'nowhere'"},
        {"in.mkv here --format mp4", 1, "cannot write 'here': Is a directory"},
        {"in.mkv /dev/null --format mp4", 1, "cannot write '/dev/null': it is not a regular file"},
        {"in.mkv here/in.mkv --dry-run", 1, "cannot write 'here/in.mkv': it is the input"},
        {"in.mkv out.mp4 --save-preset hard", 1, "cannot write 'hard': it is the input"},
        {"in.mkv new.avi --save-preset link", 1, "cannot write 'link': it is the output"},
        {"in.mkv new.avi --save-preset here/new.avi", 1, "cannot write 'here/new.avi': it is the output"},
        {"in.mkv out.mp4 --preset my.json --save-preset here/my.json", 1, "it is the preset that is read"},
        {"in.mkv my.json --preset my.json --format mp4", 1, "it is the preset that is read"},
        {"in.mkv out.mp4 --save-preset /dev/null", 1, "cannot write '/dev/null': it is not a regular file"},
        {"in.mkv out.avi --video wmv2 --quality 40", 1, "--quality: '40' is not legal here; allowed: from 1 to 31"},
        {"in.mkv", 2, "OUTPUT is required"},
        {"in.mkv out.mp4 more", 2, "there is no use for 'more'"},
        {"in.mkv out.mp4 --qualty=20", 2, "there is no option '--qualty'; did you mean '--quality'?"},
        {"in.mkv out.mp4 --size big", 2, "'big' is no size"},
        {"in.mkv out.mp4 --fps 0", 2, "'0' is no frame rate"},
        {"in.mkv out.mp4 --threads 3000000000", 2, "is not a whole number from 0 to 2147483647"},
        {"in.mkv out.mp4 --quality 52", 2, "--quality: '52' is not a whole number from 1 to 51"},
        {"in.mkv out.mp4 --quality 20 --video-bitrate 100000", 2, "excludes"},
    };
    for (const auto& [arguments, status, words] : cases) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = Run(arguments + (status == 1 ? " --quiet" : ""));
        EXPECT_EQ(outcome.status, status) << outcome.text;
        EXPECT_THAT(outcome.text, AllOf(StartsWith("norvex-export: "), HasSubstr(words)));
        EXPECT_TRUE(status == 2 || std::count(outcome.text.begin(), outcome.text.end(), '\n') == 1) << outcome.text;
        EXPECT_EQ(Read("out.mp4"), "old");
        EXPECT_EQ(FileCount(), 7U);
    }
    EXPECT_EQ(Read("in.mkv"), clip);
}

}  // namespace
