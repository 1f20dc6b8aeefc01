#include <stdexcept>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

using A = IFormatCodecAudio;
using V = IFormatCodecVideo;
using Constraint = SP<IPropertyConstraint>;
using Names = std::vector<std::string>;

const std::string audioCodecs = "streams_any_audio/audio_codec/codec_id";
const std::string sampleRate = "filter_resample/resample/sample_rate";
const std::string layoutPath = "filter_resample/resample/channel_layout";
const std::string frameRate = "filter_rate/frame_rate";

const Constraint modes = ConstraintSet::Create(PairList<std::string>{{"constant", "cbr"}, {"variable", "vbr"}});

SP<TestCodec> MakeCodec() {
    return SP<TestCodec>(new TestCodec(MediaType::Audio));
}

SP<const IDataHelper> Widen(const SP<TestCodec>& codec) {
    return DataHelperProxyAuto::Create(IPreset::KEY_FILTER_AUDIO_CODEC, codec);
}

TEST(ProxyAuto, PutsTheAutomaticValueInFrontOfWhatAConstraintLists) {
    const std::tuple<std::string, Constraint, Names> cases[] = {
        {"bitrate_mode", modes, {"add cbr_auto=cbr_auto", "add constant=cbr", "add variable=vbr", "end"}},
        {"bitrate_mode", ConstraintRange::Create(1LL, 9LL, 2LL), {"add cbr_auto=cbr_auto", "end"}},
        {"bitrate_mode", ConstraintMethod::CreateAlwaysTrue(""), {"add cbr_auto=cbr_auto", "end"}},
        {"bitrate_mode", ConstraintSet::Create(PairList<bool>{}), {"add cbr_auto=cbr_auto", "end"}},
        {audioCodecs,
         ConstraintCodecs::Create({{"AAC", "aac"}, {"MP3", "mp3"}}, "aac"),
         {"add auto=auto", "add AAC=aac", "add MP3=mp3", "end"}},
        {audioCodecs, ConstraintChannelLayout::Create(Names{"mono"}), {"add auto=auto", "add mono=mono", "end"}},
        {audioCodecs, ConstraintSampleFormat::Create({SampleFormats::S16}), {"add auto=auto", "add s16=s16", "end"}},
    };
    for (const auto& [key, constraint, calls] : cases) {
        SCOPED_TRACE(key + " in " + ListOf(*constraint));
        const SP<TestCodec> codec = MakeCodec();
        codec->constraints[key] = constraint;
        const SP<const IPropertyConstraint> widened = CollectConstraints(*Widen(codec)).at(key);
        EXPECT_EQ(CallsOf(*widened), calls);
        EXPECT_TRUE(widened->IsValid(Property("", key == audioCodecs ? A::CODEC_ID_AUTO : "cbr_auto")));
        EXPECT_FALSE(widened->IsValid(Property("", "neither")));
    }
}

TEST(ProxyAuto, LeavesOtherConstraintsAsTheyAreAndAddsNone) {
    const SP<TestCodec> codec = MakeCodec();
    for (const std::string& key : {V::TAG_QUALITY, "x/" + V::TAG_BITRATE_MODE, sampleRate}) {
        codec->constraints[key] = modes;
    }
    ConstraintMap constraints = {{V::TAG_QUALITY, nullptr}, {"of the caller", modes}};
    Widen(codec)->GetConstraints(constraints);
    EXPECT_EQ(constraints.size(), 4U);
    for (const auto& [key, constraint] : constraints) EXPECT_EQ(constraint, modes) << key;
}

TEST(ProxyAuto, LetsAutomaticValuesPassTheSecondConstraintOfARule) {
    const Constraint throwing = ConstraintMethod::Create([](const Property&) -> bool { throw std::bad_alloc(); }, "");
    struct Case {
        std::string path;
        Constraint second;
        std::vector<std::string> calls;  ///< none where the constraint comes through as it is
    };
    const Case cases[] = {
        {sampleRate,
         ConstraintSet::Create(PairList<long long>{{"low", 8000}, {"high", 48000}}),
         {"add Auto=-1", "add low=8000", "add high=48000", "end"}},
        {sampleRate, ConstraintRange::Create(8000LL, 96000LL, 0LL), {"add Auto=-1", "end"}},
        {sampleRate, ConstraintRange::Create(-1LL, 96000LL, 0LL), {}},
        {sampleRate, modes, {"add Auto=-1", "add constant=cbr", "add variable=vbr", "end"}},  // throws on a number
        {sampleRate, throwing, {"add Auto=-1", "end"}},
        {sampleRate, ConstraintMethod::CreateAlwaysTrue(""), {}},
        {layoutPath, ConstraintChannelLayout::Create(Names{"mono"}), {"add Auto=unknown", "add mono=mono", "end"}},
        {layoutPath, ConstraintChannelLayout::Create(Names{"mono", "unknown"}), {}},
        {layoutPath,
         ConstraintSampleFormat::Create({SampleFormats::Flt}),
         {"add Auto=unknown", "add flt=flt", "end"}},  // throws on the name
        {layoutPath, ConstraintCodecs::Create({}, "aac"), {"add Auto=unknown", "end"}},
        {frameRate,
         ConstraintSet::Create(PairList<Core::Ratio>{{"29.97", {30000, 1001}}}),
         {"add Auto=0/1", "add 29.97=30000/1001", "end"}},
        {frameRate, SizeConstraints::Create({}), {"add Auto=0/1", "end"}},
        {"filter_rate/frame_rate_", modes, {}},
        {"audio_codec/sample_rate", modes, {}},
    };
    const SP<TestCodec> codec = MakeCodec();
    for (const Case& c : cases) {
        codec->rules.emplace_back("key of " + c.path, PairValidationRule::Create("first", modes, c.path, c.second));
    }
    RuleList rules = {{"of the caller", nullptr}};
    Widen(codec)->GetValidationRules(rules);
    ASSERT_EQ(rules.size(), 1 + std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& [path, second, calls] = cases[i];
        const auto& [key, rule] = rules[i + 1];
        SCOPED_TRACE(path + " in " + ListOf(*second));
        EXPECT_EQ(key, "key of " + path);
        EXPECT_NE(rule, codec->rules[i].second);
        EXPECT_EQ(rule->GetFirstPath(), "first");
        EXPECT_EQ(rule->GetFirstConstraint(), modes);
        EXPECT_EQ(rule->GetSecondPath(), path);
        if (calls.empty()) {
            EXPECT_EQ(rule->GetSecondConstraint(), second);
        } else {
            EXPECT_EQ(CallsOf(*rule->GetSecondConstraint()), calls);
        }
    }
    EXPECT_NE(rules[1].second, CollectRules(*Widen(codec))[0].second) << "rules are made anew";
}

TEST(ProxyAuto, SurvivesWhatIsNotThere) {
    const SP<TestCodec> codec = MakeCodec();
    codec->rules = {{"none", nullptr}, {"half", PairValidationRule::Create("", nullptr, frameRate, nullptr)}};
    codec->constraints["bitrate_mode"] = nullptr;
    const RuleList rules = CollectRules(*Widen(codec));
    EXPECT_EQ(rules.size(), 2U);
    EXPECT_FALSE(rules[0].second || rules[1].second->GetSecondConstraint());
    EXPECT_EQ(CollectConstraints(*Widen(codec)), codec->constraints);
    const auto nothing = Widen(nullptr);
    Property stream("s", 5);
    nothing->ApplyPresetSettings(stream, stream);
    nothing->CorrectFormatCodec(stream);
    EXPECT_TRUE(nothing->GetDefaults().IsEmpty() && CollectRules(*nothing).empty());
}

TEST(ProxyAuto, PassesEverythingElseToTheHelper) {
    const SP<IDataHelper> aac = DataHelperAudioCodecAac::Create();
    const SP<const IDataHelper> proxy = DataHelperProxyAuto::Create(IPreset::KEY_FILTER_AUDIO_CODEC, aac);
    EXPECT_EQ(TreeDiff(aac->GetDefaults(), proxy->GetDefaults()), "");
    ObjectList objects;
    proxy->GetRequiredObjects(objects);
    EXPECT_EQ(objects, (ObjectList{{Proc::IFilterResample::CLASS_ID, ""}}));
    Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    proxy->ApplyPresetSettings(aac->GetDefaults(), stream);
    EXPECT_EQ(stream["bitrate"].GetInt64(), 256000);
    // Correction knows nothing of automatic values.
    stream = Tree("s{codec_id: mp3, sample_rate: -1, sample_format: s16, channel_layout: unknown}");
    DataHelperProxyAuto::Create(IPreset::KEY_FILTER_AUDIO_CODEC, DataHelperAudioCodecMp3::Create())
        ->CorrectFormatCodec(stream);
    EXPECT_EQ(stream[A::TAG_SAMPLE_RATE].GetInt64(), 8000);
}

}  // namespace
