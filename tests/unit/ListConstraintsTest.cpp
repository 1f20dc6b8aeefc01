#include <limits>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using F = SampleFormats;
using Names = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

TEST(ListConstraints, JudgeTextsOnlyAndHaveNoWords) {
    const std::pair<const char*, SP<IPropertyConstraint>> rows[] = {
        {"ConstraintCodecs", ConstraintCodecs::Create({{"H.264", "h264"}}, "h264")},
        {"ConstraintCodecs", ConstraintCodecs::Create({}, "")},
        {"ConstraintSampleFormat", ConstraintSampleFormat::Create({F::S16})},
        {"ConstraintSampleFormat", ConstraintSampleFormat::Create({})},
        {"ConstraintSet", ConstraintChannelLayout::Create(Names{"mono"})},
        {"ConstraintSet", ConstraintChannelLayout::Create(Names())},
    };
    for (const auto& row : rows) {
        for (Property value : {Property("n", 16), Property("n", true), Property("n"), Property()}) {
            SCOPED_TRACE(row.first + (' ' + Dump(value)));
            EXPECT_EQ(FailureOf<ConstraintIsNotApplicableForTypeException>([&] { row.second->Fixup(value); }),
                      std::string("constraint ") + row.first + " of string");
        }
        EXPECT_EQ(row.second->Description("x"), "");
    }
}

TEST(ListConstraints, OfferTheirValuesInOrder) {
    EXPECT_EQ(ListOf(*ConstraintCodecs::Create({{"MPEG-4", "mpeg4"}, {"H.264", "h264"}}, "")),
              "MPEG-4=mpeg4, H.264=h264");
    EXPECT_EQ(ListOf(*ConstraintSampleFormat::Create({F::FltP, F::S16})), "fltp, s16");
    EXPECT_EQ(ListOf(*ConstraintChannelLayout::Create(Pairs{{"Two", "stereo"}, {"One", "mono"}})), "stereo, mono");
    EXPECT_EQ(ListOf(*SizeConstraints::Create({{720, 480}, {720, 576}})),
              "720 x 480={width: 720, height: 480}, 720 x 576={width: 720, height: 576}");
    for (const auto& empty : {ConstraintCodecs::Create({}, "x"), ConstraintSampleFormat::Create({}),
                              ConstraintChannelLayout::Create(Names()), SizeConstraints::Create({})}) {
        EXPECT_THAT(CallsOf(*empty), ElementsAre("end"));
    }
}

TEST(ListConstraints, CorrectTexts) {
    const auto codecs = [](const char* fallback) {
        return ConstraintCodecs::Create({{"H.264", "h264"}, {"MPEG-4", "mpeg4"}}, fallback);
    };
    const auto layouts = [](const Names& names) { return ConstraintChannelLayout::Create(names); };
    const struct {
        SP<IPropertyConstraint> constraint;
        std::string value, fixed;
    } rows[] = {
        {codecs(""), "mpeg4", "ok"},
        {codecs(""), "vp8", "no"},
        {codecs(""), "H.264", "no"},
        {codecs("h264"), "mpeg4", "ok"},
        {codecs("h264"), "MPEG-4", "fixed to h264"},
        {codecs("unlisted"), "", "fixed to unlisted"},
        {ConstraintCodecs::Create({}, "h264"), "h264", "taken"},
        {ConstraintSampleFormat::Create({}), "s16", "no"},
        {layouts({"mono", "stereo", "5.1"}), "quad", "fixed to stereo"},
        {layouts({"5.1", "stereo", "mono"}), "quad", "fixed to 5.1"},
        {layouts({"stereo", "5.1"}), "mono", "fixed to stereo"},
        {layouts({"5.1", "stereo"}), "mono", "fixed to stereo"},
        {layouts({"mono", "stereo", "5.1"}), "no layout", "fixed to 5.1"},
        {layouts({"mono", "no layout", "stereo"}), "5.1", "fixed to stereo"},
        {layouts({"mono", "no layout"}), "stereo", "fixed to no layout"},
        {layouts({"no layout", "mono"}), "no layout", "ok"},
        {layouts({}), "no layout", "no"},
        {SizeConstraints::Create({}), Proc::IResize::FRAME_SIZE_CUSTOM, "ok"},
        {SizeConstraints::Create({{720, 480}}), "720 x 480", "no"},
        {SizeConstraints::Create({{720, 480}}), Proc::IResize::FRAME_SIZE_ORIGINAL, "no"},
    };
    for (const auto& [constraint, value, fixed] : rows) {
        EXPECT_EQ(FixupOf(constraint, Property("n", value)), fixed) << value << " in " << ListOf(*constraint);
    }
}

TEST(ConstraintSampleFormat, FailsForUnknownFormats) {
    EXPECT_THROW(ConstraintSampleFormat::Create({F::S16, F::None}), FormatException);
    for (const auto& constraint : {ConstraintSampleFormat::Create({F::S16}), ConstraintSampleFormat::Create({})}) {
        Property value("n", "s17");
        EXPECT_EQ(FailureOf<FormatException>([&] { constraint->IsValid(value); }),
                  "Unknown sample format, details s17");
        EXPECT_THROW(constraint->Fixup(value), FormatException);
        EXPECT_EQ(value.GetString(), "s17");
    }
}

TEST(PredicateConstraints, JudgeWithoutChangingAnythingWhateverTheType) {
    const auto even = ConstraintMethod::CreateEven("even");
    const auto named = ConstraintMethod::Create([](const Property& p) { return p.GetName() == "n"; }, "named");
    const std::pair<Property, bool> rows[] = {
        {Property("n", 4), true},    {Property("m", -2), true},
        {Property("n", 0), true},    {Property("n", -3), false},
        {Property("m", 5), false},   {Property("n", 4.0), false},
        {Property("n"), false},      {Property(), false},
        {Property("n", "4"), false}, {Property("n", std::numeric_limits<long long>::min()), true},
    };
    for (const auto& [given, isEven] : rows) {
        SCOPED_TRACE(Dump(given));
        const auto expect = [&value = given](const SP<IPropertyConstraint>& constraint, bool valid) {
            Property copy = value;
            EXPECT_EQ(constraint->IsValid(copy), valid);
            EXPECT_EQ(constraint->Fixup(copy), valid);
            EXPECT_EQ(TreeDiff(value, copy), "");
        };
        expect(even, isEven);
        expect(named, given.GetName() == "n");
        expect(ConstraintMethod::CreateAlwaysTrue(""), true);
        expect(ConstraintMethod::Create({}, ""), false);
        expect(SizeConstraints::Create({{4, 4}}), false);
    }
    EXPECT_EQ(even->Description("x"), "even");
    EXPECT_THAT(CallsOf(*even), ElementsAre());
}

}  // namespace
