#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/FakeBuild.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;

using A = IFormatCodecAudio;
using V = IFormatCodecVideo;
using Lines = std::vector<std::string>;

const std::string layoutPath = "filter_resample/resample/channel_layout";

const std::map<std::string, FakeEncoder> fullBuild = {
    {"aac",
     {{}, {AV_SAMPLE_FMT_FLTP}, {48000, 44100}, {NativeLayout(AV_CH_LAYOUT_MONO), NativeLayout(AV_CH_LAYOUT_STEREO)}}},
    {"h264", {{{25, 1}, {30, 1}}, {}, {}, {}}},
};

TEST(CodecRules, AppendAndShareTheirFirstConstraintWithinACall) {
    const FakeBuild build(fullBuild);
    const TestCodec codec(MediaType::Audio, "aac");
    RuleList rules = CollectRules(codec);
    codec.GetValidationRules(rules);
    ASSERT_EQ(rules.size(), 6U);
    for (std::size_t i = 0; i < rules.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(rules[i].first, Property::SEPARATOR);
        EXPECT_EQ(rules[i].second->GetFirstConstraint(), rules[i / 3 * 3].second->GetFirstConstraint());
        EXPECT_EQ(rules[i].second->GetSecondPath(), rules[i % 3].second->GetSecondPath());
    }
    EXPECT_NE(rules[0].second->GetFirstConstraint(), rules[3].second->GetFirstConstraint());
}

TEST(CodecRules, FireForTheirOwnCodecOnly) {
    const FakeBuild build(fullBuild);
    const RuleList rules = CollectRules(TestCodec(MediaType::Audio, "aac"));
    const auto preset = [](const std::string& codecId, long long sampleRate) {
        return Node("preset", {Node("audio_codec", {Property("codec_id", codecId)}),
                               Node("filter_resample", {Node("resample", {Property("sample_rate", sampleRate)})})});
    };
    EXPECT_TRUE(rules[0].second->IsValid(preset("aac", 44100)));
    EXPECT_FALSE(rules[0].second->IsValid(preset("aac", 8000)));
    for (const auto& [key, rule] : rules) {
        EXPECT_TRUE(rule->IsValid(preset("mp3", 8000))) << rule->GetSecondPath();
    }
    // The tree lacks the sample format, which is only noticed where the rule has to look.
    EXPECT_DEATH(rules[1].second->IsValid(preset("aac", 44100)), "");
}

TEST(CodecRules, TheFrameRateConstraintReplacesWhatTheMapHolds) {
    const FakeBuild build(fullBuild);
    ConstraintMap constraints = {{V::TAG_FPS, nullptr}, {V::TAG_WIDTH, nullptr}};
    TestCodec(MediaType::Video, "h264").GetConstraints(constraints);
    ASSERT_TRUE(constraints.at(V::TAG_FPS));
    EXPECT_EQ(ListOf(*constraints.at(V::TAG_FPS)), "25, 30");
    EXPECT_FALSE(constraints.at(V::TAG_WIDTH));
}

TEST(CodecRules, TheSharedRangesAreWhatTheVocabularySays) {
    EXPECT_EQ(ListOf(*DataHelperCodecFFMPEG::s_defaultVideoBitrateConstraint),
              "100000.." + std::to_string(V::MAX_VIDEO_BITRATE));
    EXPECT_EQ(ListOf(*DataHelperCodecFFMPEG::s_defaultQualityConstraint), "1.." + std::to_string(V::MAX_QUALITY));
}

TEST(CodecRules, EveryDefaultIsLegalForItsOwnHelper) {
    int checked = 0;
    for (const std::string& kind : {IPreset::KEY_FILTER_AUDIO_CODEC, IPreset::KEY_FILTER_VIDEO_CODEC}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            const Property defaults = helper->GetDefaults();
            for (const auto& [path, constraint] : CollectConstraints(*helper)) {
                if (!defaults.ChildExists(path)) continue;
                ++checked;
                // H.265 alone starts in a mode that nobody can choose.
                const bool isAutomatic = id == V::CODEC_ID_H265 && path == V::TAG_BITRATE_MODE;
                EXPECT_EQ(constraint->IsValid(defaults[path]), !isAutomatic) << id << ' ' << path;
            }
        }
    }
    EXPECT_GE(checked, 9);
}

TEST(AacRules, TheEncodersLayoutsSilenceTheHandWrittenOnes) {
    const std::string isAac = "audio_codec/codec_id in aac -> ";
    const std::string bitrates =
        isAac +
        "audio_codec/bitrate in 32000, 64000, 96000, 128000, 160000, 192000, 224000, 256000, 320000, 448000, "
        "512000";
    const std::string handWritten = isAac + layoutPath + " in mono, stereo, 2.1, 5.0(side), 5.1(side), 7.1";
    const SP<IDataHelper> withoutEncoder = DataHelperAudioCodecAac::Create();
    EXPECT_EQ(RulesOf(*withoutEncoder), (Lines{bitrates, handWritten}));

    const FakeBuild build(fullBuild);
    const SP<IDataHelper> aac = DataHelperAudioCodecAac::Create();
    EXPECT_EQ(RulesOf(*aac), (Lines{isAac + "filter_resample/resample/sample_rate in 48000, 44100",
                                    isAac + "filter_resample/resample/sample_format in fltp",
                                    isAac + layoutPath + " in mono, stereo", bitrates}));

    // The list so far counts, whoever wrote it.
    RuleList rules = CollectRules(*withoutEncoder);
    withoutEncoder->GetValidationRules(rules);
    ASSERT_EQ(rules.size(), 3U);
    EXPECT_EQ(rules[0].second->GetFirstConstraint(), rules[1].second->GetFirstConstraint());
    EXPECT_EQ(rules[2].second->GetSecondPath(), "audio_codec/bitrate");
}

TEST(AacRules, TheLayoutsOfTheMapGiveWayToAnEntryThatIsThere) {
    const SP<IDataHelper> aac = DataHelperAudioCodecAac::Create();
    const SP<const IPropertyConstraint> own = ConstraintChannelLayout::Create({"mono"});
    ConstraintMap constraints = {{layoutPath, own}, {A::TAG_BITRATE, own}};
    aac->GetConstraints(constraints);
    EXPECT_EQ(constraints.at(layoutPath), own);
    EXPECT_NE(constraints.at(A::TAG_BITRATE), own);
    EXPECT_EQ(FixupOf(CollectConstraints(*aac).at(layoutPath), Property("", "7.1")), "ok");
    EXPECT_EQ(FixupOf(CollectConstraints(*aac).at(layoutPath), Property("", "quad")), "fixed to mono")
        << "a plain set, which does not count channels";
}

TEST(X264Rules, TieTheFastestPresetToTheSimplestProfile) {
    const SP<IDataHelper> x264 = DataHelperVideoCodecX264::Create();
    const RuleList rules = CollectRules(*x264);
    ASSERT_EQ(rules.size(), 1U);
    EXPECT_EQ(rules[0].first, Property::SEPARATOR);

    const auto listOf = [constraints = CollectConstraints(*x264)](const std::string& tag) {
        const SP<IConstraintConsumer> consumer = FakeConstraintConsumer::Create();
        constraints.at("encode_options/" + tag)->FillValueList(consumer);
        return consumer->GetValue();
    };
    const Property presets = listOf("preset");
    const Property profiles = listOf("profile");
    std::size_t broken = 0;
    for (const Property& preset : presets) {
        for (const Property& profile : profiles) {
            Property tree = Node("", {x264->GetDefaults()});
            Property& options = tree["video_codec/encode_options"];
            options["preset"].CopyDataFrom(preset);
            options["profile"].CopyDataFrom(profile);
            const bool legal = preset.GetString() != "ultrafast" || profile.GetString() == "baseline";
            EXPECT_EQ(rules[0].second->IsValid(tree), legal) << preset.GetString() << ' ' << profile.GetString();
            if (!legal) ++broken;
        }
    }
    EXPECT_EQ(presets.Count(), 10U);
    EXPECT_EQ(broken, profiles.Count() - 1);
}

TEST(X264Rules, KeepTheEncodersFrameRatesAndShareTheCommonRanges) {
    const FakeBuild build(fullBuild);
    const SP<IDataHelper> x264 = DataHelperVideoCodecX264::Create();
    EXPECT_EQ(RulesOf(*x264), (Lines{"video_codec/codec_id in h264 -> filter_rate/frame_rate in 25, 30",
                                     "video_codec/encode_options/preset in ultrafast -> "
                                     "video_codec/encode_options/profile in baseline"}));
    const ConstraintMap constraints = CollectConstraints(*x264);
    EXPECT_EQ(ListOf(*constraints.at(V::TAG_FPS)), "25, 30");
    EXPECT_EQ(constraints.at(V::TAG_BITRATE), DataHelperCodecFFMPEG::s_defaultVideoBitrateConstraint);
    EXPECT_EQ(constraints.at(V::TAG_QUALITY), DataHelperCodecFFMPEG::s_defaultQualityConstraint);
    EXPECT_EQ(ListOf(*constraints.at(V::TAG_BITRATE_MODE)), "cbr, vbr") << "without the automatic mode";
    EXPECT_FALSE(x264->GetDefaults().ChildExists(V::TAG_BITRATE));
}

}  // namespace
