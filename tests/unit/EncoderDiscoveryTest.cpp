#include <boost/rational.hpp>
#include <locale>
#include <optional>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

const std::string g_rate = "audio_codec/codec_id in test -> filter_resample/resample/sample_rate in ";
const std::string g_format = "audio_codec/codec_id in test -> filter_resample/resample/sample_format in ";
const std::string g_layout = "audio_codec/codec_id in test -> filter_resample/resample/channel_layout in ";
const std::string g_fps = "video_codec/codec_id in test -> filter_rate/frame_rate in ";

std::vector<std::string> Rules(MediaType type, const FakeEncoder& encoder) {
    const FakeBuild build(std::map<std::string, FakeEncoder>{{"test", encoder}});
    return RulesOf(TestCodec(type));
}

TEST(EncoderDiscovery, ABuildWithoutTheEncoderLeavesTheHelperSilentAndUsable) {
    for (const MediaType type : {MediaType::None, MediaType::Video, MediaType::Audio}) {
        const TestCodec codec(type);
        EXPECT_THAT(RulesOf(codec), IsEmpty());
        EXPECT_THAT(ConstraintsOf(codec), IsEmpty());
        EXPECT_EQ(Dump(codec.GetDefaults()),
                  (type == MediaType::Audio ? "audio_codec" : "video_codec") + std::string("/codec_id: string test\n"));
    }
}

TEST(EncoderDiscovery, EachListThatAnEncoderDeclaresBecomesARuleInAFixedOrder) {
    const std::vector<AVSampleFormat> formats = {AV_SAMPLE_FMT_FLTP, AV_SAMPLE_FMT_S16};
    const std::vector<int> rates = {48000, 11025, 11024, 8000, 96000};
    const std::vector<AVChannelLayout> layouts = {NativeLayout(AV_CH_LAYOUT_5POINT1)};
    EXPECT_THAT(Rules(MediaType::Audio, {{}, formats, rates, layouts}),
                ElementsAre(g_rate + "48000, 11025, 96000", g_format + "fltp, s16", g_layout + "5.1(side)"));
    EXPECT_THAT(Rules(MediaType::Audio, {{}, formats, {}, layouts}),
                ElementsAre(g_format + "fltp, s16", g_layout + "5.1(side)"));
    EXPECT_THAT(Rules(MediaType::Audio, {{}, {}, {8000}, {}}), IsEmpty()) << "all rates too low";
    const FakeEncoder everything = {{{25, 1}}, formats, rates, layouts};
    EXPECT_THAT(Rules(MediaType::Video, everything), ElementsAre(g_fps + "25"));
    EXPECT_THAT(Rules(MediaType::None, everything), IsEmpty());
}

TEST(EncoderDiscovery, TakesTheLayoutsThatItCanName) {
    AVChannelLayout custom{};
    custom.order = AV_CHANNEL_ORDER_CUSTOM;
    custom.nb_channels = 2;
    AVChannelCustom channels[2] = {};
    channels[0].id = AV_CHAN_FRONT_LEFT;
    channels[1].id = AV_CHAN_FRONT_RIGHT;
    custom.u.map = channels;
    AVChannelLayout broken = NativeLayout(AV_CH_LAYOUT_STEREO);
    broken.nb_channels = 3;
    const std::vector<AVChannelLayout> layouts = {
        UnorderedLayout(2),
        broken,
        NativeLayout(AV_CH_LAYOUT_MONO | AV_CH_TOP_CENTER),
        custom,
        UnorderedLayout(4),
        UnorderedLayout(63),
        NativeLayout(AV_CH_LAYOUT_STEREO),
    };
    EXPECT_THAT(Rules(MediaType::Audio, {{}, {}, {}, layouts}), ElementsAre(g_layout + "stereo, 4.0, stereo"));
}

/// The decimal point of much of the world.
class CommaPunctuation final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(EncoderDiscovery, LabelsFrameRatesWithFiveDigitsInEveryLocaleAndKeepsThemExact) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaPunctuation));
    const FakeBuild build({{"test", {{{30000, 1001}, {24000, 1001}, {60, 2}, {25, 1}, {25, 1}}, {}, {}, {}}}});
    const TestCodec codec(MediaType::Video);
    std::locale::global(before);
    const std::string rates = "29.97=30000/1001, 23.976=24000/1001, 30, 25, 25";
    EXPECT_THAT(ConstraintsOf(codec), ElementsAre("frame_rate in " + rates));
    EXPECT_THAT(RulesOf(codec), ElementsAre(g_fps + rates));
}

TEST(EncoderDiscovery, AskingAgainReplacesWhatTheEncoderDeclared) {
    using Build = std::map<std::string, FakeEncoder>;
    std::optional<FakeBuild> build(Build{{"test", {{}, {AV_SAMPLE_FMT_S16}, {44100}, {}}}});
    TestCodec codec(MediaType::Audio);
    build.reset();
    codec.Load();
    EXPECT_THAT(RulesOf(codec), ElementsAre(g_rate + "44100", g_format + "s16")) << "no encoder, no news";
    build.emplace(Build{{"test", {{}, {}, {22050}, {}}}});
    codec.Load();
    EXPECT_THAT(RulesOf(codec), ElementsAre(g_rate + "22050"));
}

TEST(EncoderDiscovery, AFrameRateWithoutDenominatorEndsTheConstruction) {
    const FakeBuild build({{"test", {{{25, 0}}, {}, {}, {}}}});
    EXPECT_THROW(TestCodec{MediaType::Video}, boost::bad_rational);
}

}  // namespace
