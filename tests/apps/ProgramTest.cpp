// norvex-export as a user runs it.

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "Media.h"
#include "support/MadeClip.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct Outcome {
    int status;
    std::string text;  ///< standard output and standard error
};

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = fs::path(testing::TempDir()) / (std::string("norvex-program-") + test->name());
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    ~ProgramTest() override { fs::remove_all(m_folder); }

    std::string File(const std::string& name) const { return (m_folder / name).string(); }

    std::string Clip() const { return NorvexTest::MakeClip(File("in.mkv"), {}); }

    Outcome Run(const std::string& arguments) const {
        const std::string command = "cd '" + m_folder.string() + "' && '" NORVEX_EXPORT "' " + arguments + " 2>&1";
        std::FILE* const pipe = popen(command.c_str(), "r");
        Outcome outcome{};
        std::array<char, 4096> part{};
        for (std::size_t size; (size = std::fread(part.data(), 1, part.size(), pipe)) > 0;) {
            outcome.text.append(part.data(), size);
        }
        outcome.status = WEXITSTATUS(pclose(pipe));
        return outcome;
    }

    std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
    }

private:
    fs::path m_folder;
};

TEST_F(ProgramTest, ExportsWhatWasAskedFor) {
    Clip();
    const Outcome outcome = Run("in.mkv out.mp4 --size 160x120 --fps 25 --audio-bitrate 100000 --encoder-preset ultrafast");
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

TEST_F(ProgramTest, DryRunWritesNothing) {
    Clip();
    const Outcome outcome = Run("in.mkv out.mp4 --dry-run --json");
    ASSERT_EQ(outcome.status, 0) << outcome.text;
    EXPECT_EQ(nlohmann::json::parse(outcome.text)["streams"].size(), 2U);
    EXPECT_EQ(FileCount(), 1U);
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
