#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

/// A format that says what a case needs.
class TestFormat final : public FormatHelper {
public:
    Property GetDefaults() const override { return Property(std::string("none")); }
    void GetValidationRules(RuleList& out) const override { out.insert(out.end(), rules.begin(), rules.end()); }

    using FormatHelper::SetAudioCodecs;
    using FormatHelper::SetVideoCodecs;

    RuleList rules;
};

TEST(FormatBase, RefusesListsThatCannotBe) {
    const auto set = [](const std::vector<std::string>& codecs, const std::string& defaultCodec) {
        return FailureOf<HelperException>([&] { DataHelperFormatBase::SetCodecConstraint(codecs, defaultCodec); });
    };
    EXPECT_EQ(set({}, ""), "List of available codecs is empty, stack");
    EXPECT_EQ(set({"a", "b"}, "A"), "Default codec A is not presented in list of avalible codecs, stack");
    EXPECT_EQ(set({"a", "b"}, ""), "Default codec  is not presented in list of avalible codecs, stack");
    EXPECT_THAT(CallsOf(*DataHelperFormatBase::SetCodecConstraint({"b", "a", "a"}, "a")),
                ElementsAre("add b=b", "add a=a", "add a=a", "end"));
}

TEST(FormatBase, KnowsOnlyTheKindsThatItHas) {
    TestFormat format;
    format.AddRef();
    const std::string notSet = " codecs constraint is not set, stack";
    EXPECT_EQ(FailureOf<HelperException>([&] { format.VideoCodecsConstraint(); }), "Video" + notSet);
    EXPECT_EQ(FailureOf<HelperException>([&] { format.DefaultAudioCodec(); }), "Audio" + notSet);
    EXPECT_EQ(FailureOf<HelperException>([&] { format.SubtitleTextCodecsConstraint(); }), "Subtitle" + notSet);
    EXPECT_EQ(FailureOf<HelperException>([&] { format.DefaultSubtitleTextCodec(); }), "Subtitle" + notSet);

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

template <class T>
SP<IPropertyConstraint> Values(std::initializer_list<T> values) {
    PairList<T> list;
    for (const T& value : values) list.emplace_back("", value);
    return ConstraintSet::Create(list);
}

/// A rule on streams of one codec.
std::pair<std::string, SP<IValidationRule>> When(const std::string& path, const std::string& codec,
                                                 const std::string& second, const SP<IPropertyConstraint>& constraint) {
    return {"/",
            PairValidationRule::Create(path, ConstraintCodecs::Create({{codec, codec}}, codec), second, constraint)};
}

/// A stream's values, behind its kind, of which correction reaches all but the last.
std::string Stream(const std::string& rate = "7/1", const std::string& cover = "false",
                   const std::string& profile = "p", const std::string& sampleRate = "7",
                   const std::string& layout = "5.1") {
    return "{codec_id: x, frame_rate: " + rate + ", cover: " + cover + ", encode_options: {profile: " + profile +
           "}, sample_rate: " + sampleRate + ", channel_layout: " + layout + ", bitrate: 7}";
}

/// What correction makes of a stream of that kind.
std::string Corrected(const RuleList& rules, const std::string& kind, const std::string& stream = Stream()) {
    TestFormat format;
    format.AddRef();
    format.rules = rules;
    Property corrected = Tree("format_codec_" + kind + stream);
    format.CorrectFormatCodec(corrected);
    return PropertyValueToString(corrected);
}

TEST(FormatCorrection, ReachesFiveValuesByTheirRulesAndNothingElse) {
    const struct {
        std::string kind, second;
        SP<IPropertyConstraint> constraint;
        std::string corrected;
    } rows[] = {
        {"video", "filter_rate/frame_rate", Values<Core::Ratio>({{8, 1}}), Stream("8/1")},
        {"video", "format/cover", Values<bool>({true}), Stream("7/1", "true")},
        {"video", "format/encode_options/profile", Values<std::string>({"q"}), Stream("7/1", "false", "q")},
        {"audio", "filter_resample/resample/sample_rate", Values<long long>({8}), Stream("7/1", "false", "p", "8")},
        {"audio", "filter_resample/resample/channel_layout",
         ConstraintChannelLayout::Create(std::vector<std::string>{"mono"}), Stream("7/1", "false", "p", "7", "mono")},
    };
    for (const auto& [kind, second, constraint, corrected] : rows) {
        SCOPED_TRACE(second);
        const std::string first = kind + "_codec/codec_id";
        const RuleList rules = {When(first, "x", second, constraint)};
        for (const std::string each : {"video", "audio", "subtitle"})
            EXPECT_EQ(Corrected(rules, each), each == kind ? corrected : Stream());
        // Another codec, another codec path, another second path: not this rule's business.
        EXPECT_EQ(Corrected({When(first, "y", second, constraint), When("x" + first, "x", second, constraint),
                             When(first, "x", second + "x", constraint)},
                            kind),
                  Stream());
        // A node with the codec alone has nothing to correct.
        EXPECT_EQ(Corrected(rules, kind, "{codec_id: x, encode_options: {}}"), "{codec_id: x, encode_options: {}}");
    }
}

TEST(FormatCorrection, TakesTheRulesInTurnAndPastItsOwnCorrectionASetOfOneBooleanAlone) {
    const std::string codec = "video_codec/codec_id", rate = "filter_rate/frame_rate", cover = "format/cover",
                      profile = "format/encode_options/profile";
    const std::pair<RuleList, std::string> rows[] = {
        {{When(codec, "x", rate, Values<Core::Ratio>({{10, 1}, {30, 1}})),
          When(codec, "x", rate, Values<Core::Ratio>({{15, 1}, {9, 1}}))},
         Stream("9/1")},
        {{{"/", nullptr}, When(codec, "x", cover, Values<bool>({true}))}, Stream("7/1", "true")},
        {{When(codec, "x", cover, Values<bool>({}))}, Stream()},
        {{When(codec, "x", cover, ConstraintSet::Create(PairList<bool>{{"a", true}, {"b", true}}))}, Stream()},
        {{When(codec, "x", cover, ConstraintMethod::Create([](const Property&) { return false; }, ""))}, Stream()},
        {{When(codec, "x", profile, ConstraintCodecs::Create({{"q", "q"}}, ""))}, Stream()},
        {{When(codec, "x", profile, SizeConstraints::Create({{8, 8}}))}, Stream()},
    };
    for (const auto& [rules, corrected] : rows) EXPECT_EQ(Corrected(rules, "video"), corrected);
    EXPECT_EQ(Corrected({When(codec, "x", rate, Values<Core::Ratio>({{8, 1}}))}, "video", Stream("soon")),
              Stream("soon"));
}

TEST(FormatCorrection, NeedsACodecIdAndValuesOfTheRightType) {
    TestFormat format;
    format.AddRef();
    Property empty(std::string("anything")), stream = Tree("format_codec_video" + Stream("7/1", "yes"));
    EXPECT_THAT(FailureOf<Core::PropertyException>([&] { format.CorrectFormatCodec(empty); }),
                testing::HasSubstr("details codec_id, "));
    format.rules = {When("video_codec/codec_id", "x", "filter_rate/frame_rate", Values<Core::Ratio>({{8, 1}})),
                    When("video_codec/codec_id", "x", "format/cover", Values<bool>({true}))};
    EXPECT_THROW(format.CorrectFormatCodec(stream), ConstraintIsNotApplicableForTypeException);
    EXPECT_EQ(PropertyValueToString(stream), Stream("8/1", "yes")) << "what was corrected before stays so";
}

}  // namespace
