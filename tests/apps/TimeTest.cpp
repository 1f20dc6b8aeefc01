// Time and sound through norvex-export: inputs whose time jumps or is damaged, parts of inputs, and layouts.

#include <gmock/gmock.h>

#include "support/ProgramFixture.h"

namespace {

using nlohmann::json;
using namespace NorvexTest;
using testing::DoubleNear;
using testing::Pointwise;

class TimeTest : public ProgramFixture {
protected:
    TimeTest() : ProgramFixture(NORVEX_EXPORT) {}

    json StreamsOf(const std::string& name) const { return Probed("-count_packets -show_streams", name)["streams"]; }

    /// The transport stream with one bit turned in the stamp of the packet in the middle of those of `pid`.
    std::string WithDamage(std::string stream, unsigned pid, std::size_t byte, unsigned bit) const {
        constexpr std::size_t length = 188;
        std::vector<std::size_t> headers;
        for (std::size_t at = 0; at + length <= stream.size(); at += length) {
            const auto read = [&](std::size_t i) { return static_cast<unsigned char>(stream[at + i]); };
            if (((read(1) & 0x1fU) << 8 | read(2)) != pid || (read(1) & 0x40U) == 0) continue;
            headers.push_back(at + 4 + ((read(3) & 0x20U) != 0 ? 1U + read(4) : 0U));
        }
        char& stamp = stream.at(headers.at(headers.size() / 2) + 9 + byte);
        stamp = static_cast<char>(static_cast<unsigned char>(stamp) ^ 1U << bit);
        return stream;
    }
};

TEST_F(TimeTest, GoesOnWhereTheInputJumpsAndStaysInStep) {
    const std::string source = "-f lavfi -i testsrc2=s=64x48:d=2 -f lavfi -i sine=r=48000:d=2 ";
    Make(source + "-c:v libx264 -bf 2 -g 12 -c:a mp2 half.ts");
    Make("-i half.ts -c copy -output_ts_offset 300 later.ts");
    Make(source + "-c:v mpeg2video -b:v 2M -c:a ac3 half.vob");
    Make("-itsoffset 0.018 " + source + "-c:v libx264 -c:a aac ordinary.mkv");
    const json ordinary = StreamsOf("ordinary.mkv");
    const double late = std::stod(ordinary[0].value("start_time", "")) - std::stod(ordinary[1].value("start_time", ""));
    const std::string half = Read("half.ts");
    Write("joined.ts", half + half);
    Write("jump.ts", half + Read("later.ts"));
    Write("joined.vob", Read("half.vob") + Read("half.vob"));
    Write("early.ts", WithDamage(half, 0x100, 0, 1));  // decoded 12 hours later
    Write("hours.ts", WithDamage(half, 0x101, 1, 7));
    Write("seconds.ts", WithDamage(half, 0x101, 2, 5));  // its packets of sound agree with each other
    const std::string jumps = "The input's time jumps once", damage = "damaged time stamp";
    const struct {
        std::string arguments;
        int frames;
        double seconds;  ///< of sound
        std::string told;
    } cases[] = {
        {"joined.ts o.mp4", 100, 4, jumps},
        {"joined.ts o.mp4 --copy", 100, 4, jumps},
        {"jump.ts o.mkv", 100, 4, jumps},
        {"jump.ts o.mp4 --start 1 --duration 2", 50, 2, "mp4, about 2.00 s"},
        {"joined.vob o.mp4 --two-pass --video-bitrate 200k", 100, 4, jumps},
        {"joined.vob o.mkv --copy", 100, 4, jumps},
        {"early.ts o.mp4", 50, 2, damage},
        {"hours.ts o.mp4", 50, 2, damage},
        {"hours.ts o.mp4 --copy", 50, 2, damage},
        {"seconds.ts o.mp4", 50, 2, damage},
        {"ordinary.mkv o.mp4", 50, 2, "Wrote"},
        {"ordinary.mkv o.mp4 --fps 2", 4, 2, "Wrote"},
        {"ordinary.mkv o.mp4 --start 0.5 --duration 1", 25, 1, "Wrote"},
        {"joined.ts o.mp4 --start 0:03", 25, 1, "Wrote"},
        {"ordinary.mkv o.mkv --copy --duration 0:01", 25, 1, "Wrote"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome outcome = Run(c.arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr(c.told));
        const json streams = StreamsOf(c.arguments.find("o.mkv") == std::string::npos ? "o.mp4" : "o.mkv");
        ASSERT_EQ(streams.size(), 2U);
        const auto number = [&](std::size_t stream, const char* key) {
            return std::stod(streams[stream].value(key, "-1"));
        };
        // Where packets do not say when they are decoded, a copy ends a picture or two late.
        EXPECT_NEAR(number(0, "nb_read_packets"), c.frames, c.arguments.find("--copy") == std::string::npos ? 1 : 2);
        const double packet = streams[1]["codec_name"] == "mp2"   ? 1152
                              : streams[1]["codec_name"] == "ac3" ? 1536
                                                                  : 1024;
        EXPECT_NEAR(number(1, "nb_read_packets") * packet / 48000, c.seconds, 0.1);
        // Later majors tell of a packet of AAC in Matroska that it lies before the beginning.
        const double before = packet == 1024 && c.arguments.find("o.mkv") != std::string::npos ? 0.022 : 0;
        EXPECT_NEAR(std::min(number(0, "start_time"), number(1, "start_time")), 0, before);
        // Beside what the picture is late, older majors have no mark for the packet that an encoder of AAC begins
        // early.
        if (c.arguments.find("ordinary.mkv o.mp4") != std::string::npos &&
            c.arguments.find("start") == std::string::npos) {
            EXPECT_NEAR(number(0, "start_time"), late, 0.002);
        }
    }
    EXPECT_THAT(Run("ordinary.mkv o.mp4 --start 9").text, HasSubstr("ends before what is wanted of it begins"));
    EXPECT_THAT(Run("ordinary.mkv o.mp4 --start 1:75").text, HasSubstr("'1:75' is no time such as 90, 1.5 or 1:30"));
}

TEST_F(TimeTest, FlashesAndBeepsOfJoinedPartsStayTogether) {
    Make(
        "-f lavfi -i \"color=black:s=64x48:r=25:d=2,drawbox=c=white:t=fill:enable='lt(mod(t,1),0.2)*gte(t,0.12)'\" "
        "-f lavfi -i \"aevalsrc='0.9*sin(2000*PI*t)*lt(mod(t,1),0.2)*gte(t,0.12)':s=48000:d=2\" "
        "-c:v libx264 -bf 2 -g 12 -c:a mp2 half.ts");
    Write("joined.ts", Read("half.ts") + Read("half.ts"));
    for (const char* const output : {"o.mp4", "o.mkv --copy", "o.ts", "o.mxf", "o.avi", "o.avi --video mpeg4"}) {
        EXPECT_EQ(Run(std::string("joined.ts ") + output).status, 0);
        const std::string name = std::string(output).substr(0, 5);
        const auto ends = [&](const char* filter, const std::string& word) {
            std::vector<double> times;
            const std::string text =
                RunOther("ffmpeg", "-hide_banner -nostdin -i " + name + filter + " -f null -").text;
            for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
                times.push_back(std::stod(text.substr(at + word.size())));
            }
            EXPECT_GE(times.size(), 4u) << text;
            times.resize(4);  // of the flashes and beeps, without the end of the film
            return times;
        };
        EXPECT_THAT(ends(" -vf blackdetect=d=0.1", "black_end:"),
                    Pointwise(DoubleNear(0.01), ends(" -af silencedetect=n=-20dB:d=0.1", "silence_end: ")))
            << output;
    }
}

TEST_F(TimeTest, SoundKeepsToLayoutsThatPlayersKnow) {
    Make(
        "-f lavfi -i \"aevalsrc=0.9*sin(2764*t):s=48000:d=1,pan=5.1(side)|FL=c0|FR=c0|FC=c0|LFE=c0|SL=c0|SR=c0\" "
        "s.flac");
    const struct {
        const char *arguments, *layout, *told;
    } cases[] = {
        {"o.m4a", "5.1", "is written as '5.1', the layout of AAC that players know, rather than as '5.1(side)'"},
        {"o.m4a --layout auto", "5.1", "is written as '5.1'"},
        {"o.m4a --layout '5.0(side)'", "5.0", "is written as '5.0'"},
        {"o.m4a --layout stereo", "stereo", "The 6 channels of stream 0 are mixed down to 'stereo'"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome outcome = Run(std::string("s.flac ") + c.arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.text;
        EXPECT_THAT(outcome.text, HasSubstr(c.told));
        EXPECT_EQ(StreamsOf("o.m4a")[0].value("channel_layout", ""), c.layout);
    }
    const Outcome peak = RunOther("ffmpeg", "-nostdin -i o.m4a -af volumedetect -f null -");
    EXPECT_THAT(peak.text, HasSubstr("max_volume: -")) << "a mix that is louder than full scale is clipped";
}

}  // namespace
