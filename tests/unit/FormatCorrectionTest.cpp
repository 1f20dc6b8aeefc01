#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/TestFormat.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using Constraint = SP<IPropertyConstraint>;

const Constraint isTest = ConstraintSet::Create(BeginPairList<std::string>("test"));

template <class T>
Constraint SetOf(const PairList<T>& values) {
    return ConstraintSet::Create(values);
}

Constraint Rates(std::initializer_list<long long> rates) {
    PairList<long long> list;
    for (const long long rate : rates) list.push_back(Pair(rate));
    return ConstraintSet::Create(list);
}

void Add(TestFormat& format, const std::string& first, const std::string& second, const Constraint& constraint,
         const Constraint& condition = isTest) {
    format.rules.emplace_back("/", PairValidationRule::Create(first, condition, second, constraint));
}

Property AudioNode(const Property& value) {
    return Node("format_codec_audio", {Property("codec_id", "test"), value});
}

/// The five values that correction reaches, each with the two paths of a rule about it.
struct Reach {
    const char* node;
    Property value;  ///< as it stands in the node, illegal
    const char* first;
    const char* second;
    Constraint constraint;
    const char* corrected;
};
const Reach reaches[] = {
    {"format_codec_video", Property("frame_rate", Ratio(7, 1)), "video_codec/codec_id", "filter_rate/frame_rate",
     SetOf<Ratio>({{"", {5, 1}}, {"", {10, 1}}}), "/frame_rate: ratio 5/1\n"},
    {"format_codec_video", Property("cover", false), "video_codec/codec_id", "format/cover", SetOf<bool>({{"", true}}),
     "/cover: bool true\n"},
    {"format_codec_video", Node("encode_options", {Property("profile", "high")}), "video_codec/codec_id",
     "format/encode_options/profile", SetOf<std::string>({{"", "main"}}), "/encode_options/profile: string main\n"},
    {"format_codec_audio", Property("sample_rate", 30000), "audio_codec/codec_id",
     "filter_resample/resample/sample_rate", Rates({22050, 44100}), "/sample_rate: int 22050\n"},
    {"format_codec_audio", Property("channel_layout", "7.1"), "audio_codec/codec_id",
     "filter_resample/resample/channel_layout", ConstraintChannelLayout::Create({"mono", "stereo"}),
     "/channel_layout: string stereo\n"},
};

TEST(FormatCorrection, ReachesFiveValuesByTheirPathsAlone) {
    int corrected = 0;
    for (const Reach& value : reaches) {
        for (const Reach& first : reaches) {
            for (const Reach& second : reaches) {
                for (const std::string& nodeName : {"format_codec_video", "format_codec_audio", "subtitle", ""}) {
                    TestFormat format;
                    Add(format, first.first, second.second, second.constraint);
                    Property node = Node(nodeName, {Property("codec_id", "test"), value.value});
                    const Property before = node;
                    format.CorrectFormatCodec(node);
                    if (value.second == second.second && nodeName == value.node &&
                        std::string(value.first) == first.first) {
                        EXPECT_EQ(Dump(node), nodeName + "/codec_id: string test\n" + nodeName + value.corrected);
                        ++corrected;
                    } else {
                        EXPECT_EQ(TreeDiff(before, node), "") << first.first << " -> " << second.second;
                    }
                }
            }
        }
    }
    EXPECT_EQ(corrected, 3 * 3 + 2 * 2) << "each by a rule with any first path of its own kind";
}

TEST(FormatCorrection, TestsTheSecondOfTwoRulesOnWhatTheFirstLeft) {
    const Constraint tens = Rates({10, 20});
    const Constraint fifteen = Rates({15, 100});
    const struct {
        std::vector<Constraint> rules;
        const char* corrected;
    } cases[] = {
        {{tens, fifteen}, "19 20 15"},
        {{fifteen, tens}, "19 15 10"},
        {{ConstraintMethod::CreateAlwaysTrue(""), fifteen}, "19 19 15"},
        {{ConstraintMethod::Create([](const Property&) { return false; }, ""), fifteen}, "19 19 15"},
        {{}, "19"},
    };
    for (const auto& c : cases) {
        std::string steps = "19";
        for (std::size_t count = 1; count <= c.rules.size(); ++count) {
            TestFormat format;
            for (std::size_t i = 0; i < count; ++i) {
                Add(format, "audio_codec/codec_id", "filter_resample/resample/sample_rate", c.rules[i]);
            }
            Property node = AudioNode(Property("sample_rate", 19));
            format.CorrectFormatCodec(node);
            steps += ' ' + std::to_string(node["sample_rate"].GetInt64());
        }
        EXPECT_EQ(steps, c.corrected);
    }
}

TEST(FormatCorrection, LeavesACodecThatTheRuleIsNotAbout) {
    TestFormat format;
    format.SetAudioCodecs({"another"}, "another");
    Add(format, "audio_codec/codec_id", "filter_resample/resample/sample_rate", Rates({8000}),
        format.AudioCodecsConstraint());
    Property node = AudioNode(Property("sample_rate", 19));
    format.CorrectFormatCodec(node);
    EXPECT_EQ(TreeDiff(AudioNode(Property("sample_rate", 19)), node), "") << "a codec that is not listed is no error";
    node["codec_id"] = "another";
    format.CorrectFormatCodec(node);
    EXPECT_EQ(node["sample_rate"].GetInt64(), 8000);
}

TEST(FormatCorrection, TakesTheOnlyValueOfASetThatCorrectsNothing) {
    const struct {
        Constraint constraint;
        bool corrected;
    } cases[] = {
        {SetOf<bool>({{"", true}}), true},
        {SetOf<bool>({}), false},
        {ConstraintMethod::Create([](const Property&) { return false; }, ""), false},
    };
    for (const auto& c : cases) {
        TestFormat format;
        Add(format, "video_codec/codec_id", "format/cover", c.constraint);
        Property node = Node("format_codec_video", {Property("codec_id", "test"), Property("cover", false)});
        format.CorrectFormatCodec(node);
        EXPECT_EQ(node["cover"].GetBool(), c.corrected) << ListOf(*c.constraint);
    }
}

TEST(FormatCorrection, LooksForTheCodecBeforeTheKindOfTheNode) {
    for (const std::string& name : {"format_codec_video", "format_codec_audio", "subtitle"}) {
        Property node = Node(name, {Property("frame_rate", Ratio(7, 1))});
        const auto failure = CatchFrom<Core::PropertyException>([&node] { TestFormat().CorrectFormatCodec(node); });
        EXPECT_EQ(TagOf<TagDetails>(failure), "codec_id");
        EXPECT_EQ(TagOf<Core::PropertyException::TagPropertyName>(failure), name);
    }
}

TEST(FormatCorrection, AValueOfAWrongTypeFailsAndWhatCameBeforeStays) {
    TestFormat format;
    for (const Reach& reach : reaches) Add(format, reach.first, reach.second, reach.constraint);
    Property node = Node("format_codec_video",
                         {Property("cover", "yes"), Property("codec_id", "test"), Property("frame_rate", Ratio(7, 1)),
                          Node("encode_options", {Property("profile", "high")})});
    const auto failure = CatchFrom<ConstraintIsNotApplicableForTypeException>([&] { format.CorrectFormatCodec(node); });
    EXPECT_EQ(TagOf<ConstraintException::TagValueType>(failure), PT_BOOL);
    EXPECT_EQ(Dump(node),
              "format_codec_video/cover: string yes\n"
              "format_codec_video/codec_id: string test\n"
              "format_codec_video/frame_rate: ratio 5/1\n"
              "format_codec_video/encode_options/profile: string high\n");
    node["cover"] = false;
    node["encode_options"].RemoveAll();
    format.CorrectFormatCodec(node);
    EXPECT_TRUE(node["cover"].GetBool());
    EXPECT_EQ(node["encode_options"].Count(), 0U) << "options without a profile gain none";
}

}  // namespace
