#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using V = IFormatCodecVideo;

const std::map<std::string, FakeEncoder> fullBuild = {
    {"aac", {{}, {AV_SAMPLE_FMT_FLTP}, {48000, 44100}, {NativeLayout(AV_CH_LAYOUT_MONO)}}},
    {"h264", {{{25, 1}, {30, 1}}, {}, {}, {}}},
    {"mpeg2video", {{{25, 1}}, {}, {}, {}}},
};

TEST(CodecRules, AppendAndShareTheirFirstConstraintWithinACall) {
    const FakeBuild build(fullBuild);
    const TestCodec codec(MediaType::Audio, "aac");
    RuleList rules = CollectRules(codec);
    codec.GetValidationRules(rules);
    ASSERT_EQ(rules.size(), 6U);
    for (std::size_t i = 0; i < rules.size(); ++i) {
        EXPECT_EQ(rules[i].first, Property::SEPARATOR);
        EXPECT_EQ(rules[i].second->GetFirstConstraint(), rules[i / 3 * 3].second->GetFirstConstraint());
        EXPECT_EQ(rules[i].second->GetSecondPath(), rules[i % 3].second->GetSecondPath());
    }
    EXPECT_NE(rules[0].second->GetFirstConstraint(), rules[3].second->GetFirstConstraint());
}

TEST(CodecRules, ReplaceInTheCallersListsOnlyWhatIsTheirs) {
    const FakeBuild build(fullBuild);
    ConstraintMap constraints = {{V::TAG_FPS, nullptr}, {V::TAG_WIDTH, nullptr}};
    TestCodec(MediaType::Video, "h264").GetConstraints(constraints);
    ASSERT_TRUE(constraints.at(V::TAG_FPS));
    EXPECT_EQ(ListOf(*constraints.at(V::TAG_FPS)), "25, 30");
    EXPECT_FALSE(constraints.at(V::TAG_WIDTH));
    // MPEG-2 takes away its own rule about the frame rate, and none that it finds.
    RuleList rules = CollectRules(TestCodec(MediaType::Video, "h264"));
    DataHelperVideoCodecMpeg2::Create()->GetValidationRules(rules);
    std::string paths;
    for (const auto& [key, rule] : rules) paths += rule->GetSecondPath() + ' ';
    EXPECT_EQ(paths, "filter_rate/frame_rate filter_resize/resize/width filter_resize/resize/height ");
}

}  // namespace
