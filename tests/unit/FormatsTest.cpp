#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::ElementsAre;
using A = IFormatCodecAudio;
using F = IFormatFile;
using V = IFormatCodecVideo;

/// A format that says what a case needs.
class TestFormat final : public FormatHelper {
public:
    Property GetDefaults() const override { return Property(std::string("none")); }
    void GetValidationRules(RuleList& out) const override { out.insert(out.end(), rules.begin(), rules.end()); }

    using FormatHelper::SetAudioCodecs;
    using FormatHelper::SetVideoCodecs;

    RuleList rules;
};

template <class Operation>
auto DescriptionOf(const Operation& operation) {
    const auto failure = CatchFrom<HelperException>(operation);
    EXPECT_TRUE(TagOf<TagCallStack>(failure));
    return TagOf<TagDescription>(failure);
}

TEST(FormatBase, RefusesListsThatCannotBe) {
    const auto set = [](const std::vector<std::string>& codecs, const std::string& defaultCodec) {
        return DescriptionOf([&] { DataHelperFormatBase::SetCodecConstraint(codecs, defaultCodec); });
    };
    EXPECT_EQ(set({}, ""), "List of available codecs is empty");
    EXPECT_EQ(set({"a", "b"}, "A"), "Default codec A is not presented in list of avalible codecs");
    EXPECT_EQ(set({"a", "b"}, ""), "Default codec  is not presented in list of avalible codecs");
    EXPECT_THAT(CallsOf(*DataHelperFormatBase::SetCodecConstraint({"b", "a", "a"}, "a")),
                ElementsAre("add b=b", "add a=a", "add a=a", "end"));
}

TEST(FormatBase, KnowsOnlyTheKindsThatItHas) {
    TestFormat format;
    format.AddRef();
    EXPECT_EQ(DescriptionOf([&] { format.VideoCodecsConstraint(); }), "Video codecs constraint is not set");
    EXPECT_EQ(DescriptionOf([&] { format.DefaultAudioCodec(); }), "Audio codecs constraint is not set");
    EXPECT_EQ(DescriptionOf([&] { format.SubtitleTextCodecsConstraint(); }), "Subtitle codecs constraint is not set");
    EXPECT_EQ(DescriptionOf([&] { format.DefaultSubtitleTextCodec(); }), "Subtitle codecs constraint is not set");

    format.SetAudioCodecs({"a", "b"}, "b");
    const auto former = format.AudioCodecsConstraint();
    EXPECT_EQ(CollectConstraints(format).size(), 1U);
    EXPECT_EQ(CollectConstraints(format).at("streams_any_audio/audio_codec/codec_id"), former)
        << "the helper's own object";
    EXPECT_THROW(format.SetAudioCodecs({}, "b"), HelperException);
    EXPECT_EQ(format.AudioCodecsConstraint(), former) << "a failure leaves the list in place";
    format.SetAudioCodecs({"c"}, "c");
    EXPECT_EQ(format.DefaultAudioCodec(), "c");
    EXPECT_EQ(former->GetRefCount(), 1U) << "released";
}

const std::string g_fpsPath = "filter_rate/frame_rate";

SP<IPropertyConstraint> Codecs(const std::string& id) {
    return ConstraintCodecs::Create({{id, id}}, id);
}
template <class T>
SP<IPropertyConstraint> Values(std::initializer_list<T> values) {
    PairList<T> list;
    for (const T& value : values) list.emplace_back("", value);
    return ConstraintSet::Create(list);
}

/// A stream's node with every value that correction reaches, and one that it does not.
Property StreamNode(const std::string& name) {
    return Tree(name +
                "{codec_id: x, frame_rate: 7/1, cover: false, encode_options: {profile: p}, sample_rate: 7, "
                "channel_layout: 5.1, bitrate: 7}");
}

TEST(FormatCorrection, ReachesFiveValuesByTheirRulesAndNothingElse) {
    const struct {
        std::string kind, second;
        SP<IPropertyConstraint> constraint;
        const char* path;  ///< of what changes
        Property corrected;
    } rows[] = {
        {"video", g_fpsPath, Values<Core::Ratio>({{8, 1}}), "frame_rate", Property("", Core::Ratio(8, 1))},
        {"video", "format/cover", Values<bool>({true}), "cover", Property("", true)},
        {"video", "format/encode_options/profile", Values<std::string>({"q"}), "encode_options/profile",
         Property("", "q")},
        {"audio", "filter_resample/resample/sample_rate", Values<long long>({8}), "sample_rate", Property("", 8)},
        {"audio", "filter_resample/resample/channel_layout",
         ConstraintChannelLayout::Create(std::vector<std::string>{"mono"}), "channel_layout", Property("", "mono")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.second);
        const std::string node = "format_codec_" + row.kind, first = row.kind + "_codec/codec_id";
        TestFormat format;
        format.AddRef();
        format.rules = {{"/", PairValidationRule::Create(first, Codecs("x"), row.second, row.constraint)}};
        for (const char* const each : {"format_codec_video", "format_codec_audio", "format_codec_subtitle"}) {
            Property stream = StreamNode(each);
            format.CorrectFormatCodec(stream);
            Property expected = StreamNode(each);
            if (each == node) expected[row.path].CopyDataFrom(row.corrected);
            EXPECT_EQ(TreeDiff(expected, stream), "");
        }
        // Another codec, another codec path, another second path: not this rule's business.
        for (const auto& other : {PairValidationRule::Create(first, Codecs("y"), row.second, row.constraint),
                                  PairValidationRule::Create("x" + first, Codecs("x"), row.second, row.constraint),
                                  PairValidationRule::Create(first, Codecs("x"), row.second + "x", row.constraint)}) {
            format.rules = {{"/", other}};
            Property stream = StreamNode(node);
            format.CorrectFormatCodec(stream);
            EXPECT_EQ(TreeDiff(StreamNode(node), stream), "");
        }
        // A node with the codec alone has nothing to correct.
        Property bare = Tree(node + "{codec_id: x, encode_options: {}}");
        format.CorrectFormatCodec(bare);
        EXPECT_EQ(bare.Count(), 2U);
    }
}

TEST(FormatCorrection, TheLaterRuleIsTestedOnWhatTheEarlierLeft) {
    TestFormat format;
    format.AddRef();
    const auto rule = [](const SP<IPropertyConstraint>& second) {
        return std::make_pair(std::string("/"),
                              PairValidationRule::Create("video_codec/codec_id", Codecs("x"), g_fpsPath, second));
    };
    format.rules = {rule(Values<Core::Ratio>({{10, 1}, {30, 1}})), rule(Values<Core::Ratio>({{15, 1}, {9, 1}}))};
    Property stream = StreamNode("format_codec_video");
    format.CorrectFormatCodec(stream);
    EXPECT_EQ(stream[V::TAG_FPS].GetRatio(), Core::Ratio(9, 1));
}

TEST(FormatCorrection, OnlyASetOfOneBooleanIsTakenPastItsOwnCorrection) {
    const Property no("", false);
    const struct {
        const char* path;
        SP<IPropertyConstraint> constraint;
        Property value, corrected;
    } rows[] = {
        {"format/cover", Values<bool>({true}), no, Property("", true)},
        {"format/cover", Values<bool>({}), no, no},
        {"format/cover", ConstraintSet::Create(PairList<bool>{{"a", true}, {"b", true}}), no, no},
        {"format/cover", ConstraintMethod::Create([](const Property&) { return false; }, ""), no, no},
        {"filter_rate/frame_rate", Values<Core::Ratio>({{8, 1}}), Property("", "7/1"), Property("", "7/1")},
        {"format/encode_options/profile", ConstraintCodecs::Create({{"q", "q"}}, ""), Property("", "p"),
         Property("", "p")},
        {"format/encode_options/profile", SizeConstraints::Create({{8, 8}}), Property("", "p"), Property("", "p")},
    };
    for (const auto& row : rows) {
        TestFormat format;
        format.AddRef();
        format.rules = {
            {"/", nullptr},
            {"/", PairValidationRule::Create("video_codec/codec_id", Codecs("x"), row.path, row.constraint)}};
        const std::string tag = StreamPathOf(row.path);
        Property stream = StreamNode("format_codec_video");
        stream[tag].CopyDataFrom(row.value);
        format.CorrectFormatCodec(stream);
        EXPECT_EQ(stream[tag], row.corrected) << row.path;
    }
}

TEST(FormatCorrection, NeedsACodecIdAndValuesOfTheRightType) {
    TestFormat format;
    format.AddRef();
    Property empty(std::string("anything"));
    EXPECT_EQ(TagOf<TagDetails>(CatchFrom<Core::PropertyException>([&] { format.CorrectFormatCodec(empty); })),
              V::TAG_CODEC_ID);

    format.rules = {
        {"/",
         PairValidationRule::Create("video_codec/codec_id", Codecs("x"), g_fpsPath, Values<Core::Ratio>({{8, 1}}))},
        {"/", PairValidationRule::Create("video_codec/codec_id", Codecs("x"), "format/cover", Values<bool>({true}))}};
    Property stream = StreamNode("format_codec_video");
    stream[V::TAG_COVER_FLAG] = "yes";
    EXPECT_THROW(format.CorrectFormatCodec(stream), ConstraintIsNotApplicableForTypeException);
    EXPECT_EQ(stream[V::TAG_FPS].GetRatio(), Core::Ratio(8, 1)) << "what was corrected before stays so";
}

}  // namespace
