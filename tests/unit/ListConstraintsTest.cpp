#include <gmock/gmock.h>

#include <limits>

#include "support/Corrections.h"
#include "support/Failures.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using testing::ElementsAre;
using F = SampleFormats;
using Names = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// What a consumer gets of a constraint, names included.
std::string Offer(const IPropertyConstraint& constraint) {
    const auto consumer = FakeConstraintConsumer::Create();
    constraint.FillValueList(consumer);
    return Dump(consumer->GetValue()) + CallsOf(constraint).back();
}

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
            const auto failure =
                CatchFrom<ConstraintIsNotApplicableForTypeException>([&] { row.second->Fixup(value); });
            EXPECT_EQ(TagOf<ConstraintException::TagConstraintClass>(failure), row.first);
            EXPECT_EQ(TagOf<ConstraintException::TagValueType>(failure), PT_STRING);
        }
        EXPECT_EQ(row.second->Description("x"), "");
    }
}

TEST(ListConstraints, OfferTheirValuesInOrder) {
    EXPECT_EQ(Offer(*ConstraintCodecs::Create({{"MPEG-4", "mpeg4"}, {"H.264", "h264"}}, "")),
              "/MPEG-4: string mpeg4\n/H.264: string h264\nend");
    EXPECT_EQ(Offer(*ConstraintSampleFormat::Create({F::FltP, F::S16})), "/fltp: string fltp\n/s16: string s16\nend");
    EXPECT_EQ(Offer(*ConstraintChannelLayout::Create(Pairs{{"Two", "stereo"}, {"One", "mono"}})),
              "/stereo: string stereo\n/mono: string mono\nend");
    EXPECT_EQ(Offer(*SizeConstraints::Create({{720, 480}, {720, 576}})),
              "/720 x 480/width: int 720\n/720 x 480/height: int 480\n"
              "/720 x 576/width: int 720\n/720 x 576/height: int 576\nend");
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
        const char *value, *fixed;  ///< null for a value that cannot be corrected
    } rows[] = {
        {codecs(""), "mpeg4", "mpeg4"},
        {codecs(""), "vp8", nullptr},
        {codecs(""), "H.264", nullptr},
        {codecs("h264"), "mpeg4", "mpeg4"},
        {codecs("h264"), "MPEG-4", "h264"},
        {codecs("unlisted"), "", "unlisted"},
        {ConstraintCodecs::Create({}, "h264"), "h264", "h264"},
        {ConstraintSampleFormat::Create({}), "s16", nullptr},
        {layouts({"mono", "stereo", "5.1"}), "quad", "stereo"},
        {layouts({"5.1", "stereo", "mono"}), "quad", "5.1"},
        {layouts({"stereo", "5.1"}), "mono", "stereo"},
        {layouts({"5.1", "stereo"}), "mono", "stereo"},
        {layouts({"mono", "stereo", "5.1"}), "no layout", "5.1"},
        {layouts({"mono", "no layout", "stereo"}), "5.1", "stereo"},
        {layouts({"mono", "no layout"}), "stereo", "no layout"},
        {layouts({"no layout", "mono"}), "no layout", "no layout"},
        {layouts({}), "no layout", nullptr},
        {SizeConstraints::Create({}), Proc::IResize::FRAME_SIZE_CUSTOM.c_str(), "custom"},
        {SizeConstraints::Create({{720, 480}}), "720 x 480", nullptr},
        {SizeConstraints::Create({{720, 480}}), Proc::IResize::FRAME_SIZE_ORIGINAL.c_str(), nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.value) + " in " + ListOf(*row.constraint));
        Property value("n", row.value);
        EXPECT_EQ(row.constraint->Fixup(value), row.fixed != nullptr);
        EXPECT_EQ(TreeDiff(Property("n", row.fixed != nullptr ? row.fixed : row.value), value), "");
    }
    EXPECT_FALSE(ConstraintCodecs::Create({}, "h264")->IsValid(Property("n", "h264")));
}

TEST(ConstraintSampleFormat, CorrectsToTheTwinOrElseToTheNearestWidthInTheOtherArrangement) {
    std::vector<F> formats;
    for (int number = 0; number <= static_cast<int>(F::S64P); ++number) formats.push_back(static_cast<F>(number));
    const auto nearest = [](const std::vector<F>& list, F format) {
        const SampleFmtRecord& wanted = SampleFmtRecord::Find(format);
        if (std::find(list.begin(), list.end(), wanted.twin) != list.end()) return wanted.twin;
        return FirstSmallest(
            list, [](F) { return true; },
            [&wanted](F other) {
                const SampleFmtRecord& record = SampleFmtRecord::Find(other);
                return std::abs(record.bits - wanted.bits) + (record.planar == wanted.planar ? 1 : 0);
            });
    };
    const auto name = [](F format) { return SampleFmtRecord::Find(format).name; };
    EXPECT_GT(SweepCorrections(formats, &ConstraintSampleFormat::Create, name, nearest), 15000);
}

TEST(ConstraintSampleFormat, FailsForUnknownFormats) {
    EXPECT_THROW(ConstraintSampleFormat::Create({F::S16, F::None}), FormatException);
    for (const auto& constraint : {ConstraintSampleFormat::Create({F::S16}), ConstraintSampleFormat::Create({})}) {
        Property value("n", "s17");
        EXPECT_EQ(TagOf<TagDetails>(CatchFrom<FormatException>([&] { constraint->IsValid(value); })), "s17");
        EXPECT_THROW(constraint->Fixup(value), FormatException);
        EXPECT_EQ(value.GetString(), "s17");
    }
}

TEST(ConstraintChannelLayout, CorrectsTowardsTheWantedCountWithoutPassingIt) {
    const auto count = [](const std::string& name) { return LayoutRecord::Find(name).channels; };
    // A walk that begins above the count ends at the smallest that is not below it, and the other way round.
    const auto nearest = [&count](const Names& list, const std::string& wanted) {
        const int target = count(wanted);
        const bool above = count(list.front()) >= target;
        return FirstSmallest(
            list, [&](const std::string& name) { return above ? count(name) >= target : count(name) <= target; },
            [&](const std::string& name) { return std::abs(count(name) - target); });
    };
    const auto make = [](const Names& names) { return ConstraintChannelLayout::Create(names); };
    const auto name = [](const std::string& layout) { return layout; };
    const Names pool = {"unknown", "mono", "stereo", "downmix", "3.0", "quad", "4.0", "5.1", "7.1"};
    EXPECT_GT(SweepCorrections(pool, make, name, nearest), 5000);
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
