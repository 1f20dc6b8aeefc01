// norvex-export as a user runs it.

#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "Media.h"
#include "support/MadeClip.h"
#include "support/ProgramFixture.h"

namespace {

using testing::HasSubstr;
using Outcome = NorvexTest::Outcome;

class ProgramTest : public NorvexTest::ProgramFixture {
protected:
    ProgramTest() : ProgramFixture(NORVEX_EXPORT) {}

    std::string Clip() const { return NorvexTest::MakeClip(File("in.mkv"), {}); }
};

TEST_F(ProgramTest, ExportsWhatWasAskedFor) {
    Clip();
    const Outcome outcome =
        Run("in.mkv out.mp4 --size 160x120 --fps 25 --audio-bitrate 100000 --encoder-preset ultrafast");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    EXPECT_THAT(outcome.text, HasSubstr("100000   96000"));
    EXPECT_THAT(outcome.text, HasSubstr("Wrote out.mp4"));
    const auto info = NorvexExport::Probe(File("out.mp4"));
    EXPECT_EQ(info.video->codecId, "h264");
    EXPECT_EQ(info.video->width, 160);
    EXPECT_EQ(info.video->frameRate.numerator, 25);
    EXPECT_EQ(info.audio->codecId, "aac");
    EXPECT_EQ(FileCount(), 2U) << "something was left beside the output";
}

TEST_F(ProgramTest, KnowsTheCodecsOfToday) {
    Clip();
    const struct {
        const char *output, *options, *video, *audio;
    } cases[] = {
        {"out.webm", "--audio opus", "vp8 yuv420p", "opus"},
        {"out.opus", "", "", "opus"},
        {"out.mkv", "--video ffv1 --audio flac", "ffv1 yuv420p", "flac"},
        {"out.jxl", "", "jpegxl rgb24", ""},
        {"out.webp", "--quality 40", "webp yuv420p", ""},
        {"out.mov", "--video dnxhd --profile dnxhd", "dnxhd yuv422p", "aac"},
        {"out.mxf", "--video dnxhd --profile dnxhr_hqx", "dnxhd yuv422p10le", "pcm_s16le"},
        {"out.mov", "--video cfhd --quality 1 --audio pcm_f32le", "cfhd yuv422p10le", "pcm_f32le"},
        {"out.exr", "--codec-format float", "exr gbrpf32le", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.output + std::string(" ") + c.options);
        const Outcome outcome = Run(std::string("in.mkv ") + c.output + " --quiet " + c.options);
        EXPECT_EQ(outcome.text, "");
        const auto info = NorvexExport::Probe(File(c.output));
        EXPECT_EQ(info.video ? info.video->codecId + ' ' + info.video->pixelFormat : "", c.video);
        EXPECT_EQ(info.audio ? info.audio->codecId : "", c.audio);
    }
    EXPECT_THAT(Run("in.mkv out.webm --audio opus --classic --quiet").text,
                HasSubstr("does not carry the codec 'opus'"));
    EXPECT_THAT(Run("in.mkv out.opus --classic --quiet").text, HasSubstr("unknown format 'opus'"));
}

TEST_F(ProgramTest, DryRunWritesNothing) {
    Clip();
    const Outcome outcome = Run("in.mkv out.mp4 --dry-run --json");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    EXPECT_EQ(nlohmann::json::parse(outcome.text)["streams"].size(), 2U);
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(ProgramTest, StartsFromAPresetThatItSavedAndExplainsItself) {
    Clip();
    ASSERT_EQ(Run("in.mkv out.avi --audio mp3 --size 160x120 --save-preset my.json --dry-run --quiet").status, 0);
    ASSERT_EQ(Run("in.mkv out.avi --preset my.json --save-preset again.json --dry-run --quiet").status, 0);
    EXPECT_EQ(Read("again.json"), Read("my.json"));
    const Outcome outcome = Run("in.mkv out.avi --preset my.json --dry-run --explain");
    EXPECT_THAT(outcome.text, HasSubstr("filter_resize/resize/width"));
    EXPECT_EQ(Run("in.mkv out.mkv --preset none.json").text, "norvex-export: cannot read 'none.json'\n");
    EXPECT_EQ(Run("in.mkv out.mkv --preset .").text, "norvex-export: cannot read '.'\n");
}

TEST_F(ProgramTest, AFailureIsOnePlainLineAndLeavesTheOldOutput) {
    Clip();
    std::ofstream(File("garbage.mkv")) << "this is no film";
    std::ofstream(File("out.mp4")) << "old";
    struct Case {
        const char* arguments;
        int status;
        const char* words;
    };
    const Case cases[] = {
        {"missing.mkv out.mp4", 1, "missing.mkv"},
        {"garbage.mkv out.mp4", 1, "garbage.mkv"},
        {". out.mp4", 1, "'.'"},
        {"in.mkv out.mp4 --no-video --no-audio", 1, "has no stream"},
        {"in.mkv out.mp4 --size 161x120", 1, "--size: '161' is not legal here"},
        {"in.mkv nowhere/out.mp4", 1, "nowhere"},
        {"in.mkv", 2, "OUTPUT is required"},
        {"in.mkv out.mp4 --size big", 2, "'big' is no size"},
        {"in.mkv out.mp4 --fps 0", 2, "'0' is no frame rate"},
        {"in.mkv out.mp4 --quality 20 --video-bitrate 100000", 2, "excludes"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome outcome = Run(std::string(c.arguments) + (c.status == 1 ? " --quiet" : ""));
        EXPECT_EQ(outcome.status, c.status) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr(c.words));
        if (c.status == 1) {
            EXPECT_EQ(std::count(outcome.text.begin(), outcome.text.end(), '\n'), 1) << outcome.text;
        }
        std::string kept;
        std::ifstream(File("out.mp4")) >> kept;
        EXPECT_EQ(kept, "old");
        EXPECT_EQ(FileCount(), 3U);
    }
}

}  // namespace
