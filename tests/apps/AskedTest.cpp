// What people type, up to the choices that the rule book is asked about.

#include "Asked.h"

#include <gmock/gmock.h>

#include <sstream>

#include "Plan.h"
#include "Report.h"
#include "common/OtherNames.h"
#include "common/Quantities.h"
#include "norvex/Norvex.h"

namespace {

using namespace NorvexExport;
using namespace NorvexApps;
using testing::HasSubstr;

template <class T>
std::string TextOf(const std::optional<T>& parsed) {
    if (!parsed) return "-";
    if constexpr (std::is_same_v<T, Size>) {
        return std::to_string(parsed->width) + 'x' + std::to_string(parsed->height);
    } else {
        return Norvex::Core::PropertyValueToString(Norvex::Core::Property(std::string(), *parsed));
    }
}

TEST(QuantitiesTest, AreReadAsPeopleTypeThem) {
    const auto integer = [](const std::string& text) { return TextOf(ParseInteger(text)); };
    const auto bitrate = [](const std::string& text) { return TextOf(ParseBitrate(text)); };
    const auto frequency = [](const std::string& text) { return TextOf(ParseFrequency(text)); };
    const auto size = [](const std::string& text) { return TextOf(ParseSize(text)); };
    const auto rate = [](const std::string& text) { return TextOf(ParseFrameRate(text)); };
    const struct {
        std::function<std::string(const std::string&)> parse;
        const char* rows;  ///< "TYPED=READ|" ...
    } tables[] = {
        {integer, "12=12|-1=-1|=-|1.5=-|12 =-|9223372036854775808=-"},
        {bitrate,
         "128000=128000|128k=128000|5M=5000000|1.5m=1500000|0.128G=128000000|128 kbit/s=128000|1Mbps=1000000|128kB=-|"
         "1.0005k=-|0.5=-|k=-|-5k=-|1.2.3M=-|9999999999G=-|9223372036854775807=9223372036854775807"},
        {frequency, "44.1k=44100|48 kHz=48000|48000Hz=48000|44.1=-|48kbps=-"},
        {size,
         "1280x720=1280x720|1280X720=1280x720|720p=1280x720|1080P=1920x1080|4K=3840x2160|pal=720x576|NTSC=720x480|"
         "720=-|0x720=-|1x2x3=-|-1280x720=-|99999999999x3=-"},
        {rate,
         "25=25/1|25.0=25/1|12.5=25/2|30000/1001=30000/1001|23.97=24000/1001|23.976=24000/1001|23.98=24000/1001|"
         "29.97=30000/1001|29.970030=30000/1001|59.94=60000/1001|119.88=120000/1001|23.95=479/20|ntsc=30000/1001|"
         "PAL=25/1|film=24/1|0=-|-25=-|1/0=-|25fps=-|nan=-"},
    };
    for (const auto& [parse, rows] : tables) {
        std::istringstream lines(rows);
        for (std::string row; std::getline(lines, row, '|');) {
            const std::size_t at = row.find('=');
            EXPECT_EQ(parse(row.substr(0, at)), row.substr(at + 1)) << row;
        }
    }
}

class NamesTest : public testing::Test {
protected:
    static void SetUpTestSuite() { TakeCensus(); }
};

TEST_F(NamesTest, LeadToIdsAndIdsToThemselves) {
    for (const Named kind : {Named::Format, Named::VideoCodec, Named::AudioCodec, Named::SubtitleCodec, Named::Filter,
                             Named::Layout, Named::SampleFormat}) {
        for (const std::string& id : IdsOf(kind)) EXPECT_EQ(FindId(kind, id), id);
    }
    const struct {
        Named kind;
        const char* name;
        const char* id;  // or what is said of a name that there is not
    } cases[] = {
        {Named::VideoCodec, "H264", "h264"},
        {Named::VideoCodec, "H.265", "hevc"},
        {Named::VideoCodec, "x264", "h264"},
        {Named::VideoCodec, "avc", "h264"},
        {Named::VideoCodec, "libvpx-vp9", "vp9"},  // FFmpeg's name, not in our table
        {Named::VideoCodec, "VC1", "vc1"},         // which has no rules
        {Named::AudioCodec, "libmp3lame", "mp3"},
        {Named::AudioCodec, "PCM", "pcm_s16le"},
        {Named::SubtitleCodec, "WebVTT", "webvtt"},
        {Named::Format, ".MKV", "matroska"},
        {Named::Format, "qt", "mov"},
        {Named::Filter, "resize", "filter_resize"},
        {Named::Layout, "5.1(Side)", "5.1(side)"},
        {Named::Layout, "2", "stereo"},
        {Named::VideoCodec, "h246", "there is no video codec 'h246'; did you mean 'h264'?"},
        {Named::VideoCodec, "h26", "there is no video codec 'h26'; did you mean 'h263', 'h264' or 'h265' (hevc)?"},
        {Named::VideoCodec, "aac", "there is no video codec 'aac'; it is an audio codec"},
        {Named::Format, "mp5", "there is no format 'mp5'; did you mean 'mp3', 'mp4' or 'mpg' (mpeg)?"},
        {Named::Format, "xyzzy", "there is no format 'xyzzy'; norvex-rules list shows them"},
        {Named::Format, "", "there is no format ''; norvex-rules list shows them"},
        {Named::Layout, "51", "there is no channel layout '51'; did you mean '5.1'?"},
    };
    for (const auto& [kind, name, id] : cases) {
        const auto found = FindId(kind, name);
        EXPECT_EQ(found ? *found : WhyUnknown(kind, name), id);
    }
}

/// The choices that a command line and a preset come to, as "PATH=VALUE ", or why they are refused.
std::string ChoicesOf(const std::vector<const char*>& options, const std::string& preset = {}) {
    std::vector<const char*> arguments = {"norvex-export", "in", "out.mp4"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Request request = ParseCommandLine(static_cast<int>(arguments.size()), arguments.data()).request;
    std::string text;
    try {
        UseIds(request);
        if (!preset.empty()) ChooseFromPreset(request, "{\"norvex-preset\": 1, \"preset\": {" + preset + "}}");
        TakeBackOpen(request);
        RequireRanges(request);
    } catch (const RequestError& error) {
        return error.what();
    }
    for (const Choice& choice : request.choices) {
        text += choice.path + '=' + Norvex::Core::PropertyValueToString(choice.value) + ' ';
    }
    return text;
}

TEST_F(NamesTest, BecomeChoices) {
    const std::string h264 = R"("video_codec": {"codec_id": "h264", "bitrate_mode": "vbr", "quality": 20})";
    const std::string resize = "filter_resize/resize/";
    const struct {
        std::vector<const char*> options;
        std::string preset;
        std::string choices;
    } cases[] = {
        {{"--video", "X265", "--profile", "Main10"},
         "",
         "video_codec/codec_id=hevc video_codec/encode_options/profile=main10 "},
        {{"--video-bitrate", "5M"}, "", "video_codec/bitrate_mode=cbr video_codec/bitrate=5000000 "},
        {{"--audio-bitrate", "Auto"}, "", "audio_codec/bitrate_mode=cbr_auto "},
        {{"--layout", "auto", "--sample-rate", "auto", "--audio", "auto"},
         "",
         "audio_codec/codec_id=auto filter_resample/resample/sample_rate=-1 "},
        {{"--size", "720p"}, "", resize + "frame_size_mode=custom " + resize + "width=1280 " + resize + "height=720 "},
        {{"--fps", "25", "--fps", "film"}, "", "filter_rate/frame_rate=24/1 "},
        // What is left open takes back what a preset says, for a codec with all that belongs to it.
        {{"--video", "auto"}, "", ""},
        {{}, h264, "video_codec/codec_id=h264 video_codec/bitrate_mode=vbr video_codec/quality=20 "},
        {{"--quality", "auto"}, h264, "video_codec/codec_id=h264 "},
        {{"--video", "auto", "--quality", "30"}, h264, "video_codec/bitrate_mode=vbr video_codec/quality=30 "},
        {{"--format", "auto"}, "\"format\": {\"container\": \"mov\"}", ""},
        {{}, R"("filter_resample": {"resample": {"sample_rate": -1}})", "filter_resample/resample/sample_rate=-1 "},
        {{},
         R"("video_codec": {"codec_id": "h264", "key_frame_interval": 3000000000})",
         "preset, line 1: '3000000000' is not a whole number from 0 to 2147483647"},
        {{},
         R"("video_codec": {"codec_id": "h264", "quality": -1})",
         "preset, line 1: '-1' is not a whole number from 1 to 51"},
        {{"--layout", "9.9"},
         "",
         "--layout: there is no channel layout '9.9'; norvex-rules show audio CODEC shows those of a codec"},
    };
    for (const auto& [options, preset, choices] : cases) {
        EXPECT_EQ(ChoicesOf(options, preset), choices);
    }
    Request request;
    request.choices = {{"video_codec/codec_id", Norvex::Core::Property("", "prores_ks"), "--video"}};
    UseIds(request);
    EXPECT_THAT(request.notes, testing::ElementsAre(HasSubstr("'prores_ks' is taken for the codec 'prores'")));
}

TEST(ProgressTest, FitsTheTerminal) {
    const Progress half = {50, 100, 1, 2, 1500, 4'000'000};
    EXPECT_EQ(ProgressText(half, 25, 79),
              "[============>           ]  50 %  pass 1 of 2  2.00x  60 fps  0:25 left  4.0 MB");
    EXPECT_EQ(ProgressText(half, 25, 40), " 50 %  pass 1 of 2  2.00x  60 fps");
    EXPECT_EQ(ProgressText({7500, 0, 1, 1, 0, 2'500'000'000}, 500, 79), "2:05:00  15x  2.50 GB");
    for (std::size_t columns = 20; columns < 120; ++columns) {
        EXPECT_LE(ProgressText(half, 25, columns).size(), columns);
    }
}

}  // namespace
