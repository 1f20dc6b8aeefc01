// Trees that are wider and deeper than any preset, and numbers at the ends of their types.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexTest::Dump;

constexpr int deepest = 100000;  // levels; walked by recursion they would take more than the usual 8 MiB of stack

/// A node within a node, and so on, and a leaf in the innermost.
Property Deep(const std::string& name, int levels, int leaf = 1) {
    Property root(name);
    Property* node = &root;
    for (int i = 1; i < levels; ++i) node = &node->SetChild("n");
    node->SetChildT("leaf", leaf);
    return root;
}

TEST(Extremes, DeepTreesAreCopiedComparedWrittenAndDestroyed) {
    const Property tree = Deep("root", deepest);
    Property copy = tree;
    EXPECT_TRUE(copy == tree);
    EXPECT_FALSE(Deep("root", deepest, 2) == tree);
    EXPECT_FALSE(Deep("root", deepest - 1) == tree);
    const std::string text = PropertyValueToString(copy);
    EXPECT_EQ(text.substr(0, 8), "{n: {n: ");
    EXPECT_EQ(std::count(text.begin(), text.end(), '}'), deepest);

    std::string path = "n";
    for (int i = 2; i < deepest; ++i) path += "/n";
    EXPECT_EQ(copy[path + "/leaf"].GetInt64(), 1);
    copy["n"].CopyDataFrom(tree);
    copy = copy["n"];
    copy.SetChild("again", tree);
    copy.RemoveChild("again");
    copy.CopyDataFrom(tree);
    EXPECT_TRUE(copy == tree);
    copy["n"] = 1;
    EXPECT_EQ(PropertyValueToString(copy), "{n: 1}");
    copy.AddNamed(tree);
    copy.RemoveAll();
    EXPECT_EQ(copy.Count(), 0U);
}

TEST(Extremes, WideTreesKeepTheirOrder) {
    Property tree("");
    for (int i = 0; i < 1000; ++i) tree.CreateChildT(i % 2 == 0 ? "" : std::to_string(i), i);
    const Property copy = tree;
    EXPECT_TRUE(copy == tree);
    for (std::size_t i = 0; i < 1000; ++i) ASSERT_EQ(copy[i].GetInt64(), static_cast<long long>(i));
    EXPECT_EQ(copy["999"].GetInt64(), 999);
    EXPECT_FALSE(copy.ChildExists("")) << "an empty step leads nowhere";
    EXPECT_EQ(copy.FindChild(""), copy.begin());
    for (int i = 0; i < 500; ++i) tree.RemoveChild("");
    EXPECT_EQ(tree.Count(), 500U);
    EXPECT_EQ(tree[std::size_t{0}].GetName(), "1");
}

TEST(Extremes, PresetsAndStreamsMayBeDeepAndWideToo) {
    for (const char* const name : {"format_codec_video", "video_codec", "filter_resize", "somebody's"}) {
        Property section = Deep(name, 1000);
        for (int i = 0; i < 1000; ++i) section.CreateChildT("", i);
        section.SetChildT("codec_id", "h264");
        const Property preset = AssemblePreset({section, section});
        const std::vector<NamedHelper> helpers = {FindHelper("format", "mp4"), FindHelper("video_codec", "h264")};
        EXPECT_NO_THROW(CheckPreset(preset, helpers));
        section.SetChildT("nan", std::nan(""));
        const CorrectionReport report = CorrectWithReport(section, helpers);
        EXPECT_EQ(report.failure, nullptr);
        for (const CorrectedValue& change : report.changes) EXPECT_TRUE(change.path != "" && change.path != "nan");
        EXPECT_EQ(section.FindChild("n")->Count(), 1U);
    }
    Property deep = Deep("format_codec_video", deepest);
    deep.SetChildT("codec_id", "h264");
    // A helper that changes nothing, since each change is looked at in copies of its own.
    EXPECT_TRUE(CorrectWithReport(deep, {FindHelper("format", "mp4")}).changes.empty());
}

TEST(Extremes, NumbersAtTheEndsOfTheirTypesAreCorrectedToo) {
    constexpr long long most = std::numeric_limits<long long>::max();
    constexpr long long least = std::numeric_limits<long long>::min();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto fixed = [](const auto& constraint, const auto& value) {
        Property node("", value);
        return constraint->Fixup(node) ? PropertyValueToString(node) : "no";
    };
    const auto integers = ConstraintRange::Create(1LL, 51LL, 0LL);
    const auto doubles = ConstraintRange::Create(0.5, 1.5, 0.0);
    for (const auto& [value, integer, number] : {std::tuple(infinity, "51", "1.5"), std::tuple(-infinity, "1", "0.5"),
                                                 std::tuple(std::nan(""), "51", "1.5")}) {
        EXPECT_EQ(fixed(integers, value), integer);
        EXPECT_EQ(fixed(doubles, value), number);
    }
    EXPECT_EQ(fixed(integers, most), "51");
    EXPECT_EQ(fixed(integers, least), "1");
    const auto whole = ConstraintRange::Create(least, most, 0LL);
    EXPECT_EQ(fixed(whole, least), std::to_string(least));

    const auto ends = ConstraintSet::Create(PairList<long long>{{"", least}, {"", most}});
    EXPECT_EQ(fixed(ends, -2), std::to_string(least));
    EXPECT_EQ(fixed(ends, 4096), std::to_string(most));
    const auto set = ConstraintSet::Create(PairList<double>{{"", -1.0}, {"", 2.0}});
    EXPECT_EQ(fixed(set, std::nan("")), "-1");
    const auto rates = ConstraintSet::Create(PairList<Core::Ratio>{{"", {25, 1}}, {"", {60, 1}}});
    EXPECT_EQ(fixed(rates, Core::Ratio(most, 1LL << 40)), "60/1");
    EXPECT_EQ(fixed(rates, Core::Ratio(-most, most - 1)), "25/1");

    const auto alacBitrate = [](long long sampleRate) {
        Property stream("format_codec_audio");
        stream.SetChildT("sample_rate", sampleRate);
        stream.SetChildT("sample_format", "s16p");
        stream.SetChildT("channel_layout", "mono");
        CreateDataHelper("audio_codec", "alac")->CorrectFormatCodec(stream);
        return stream["bitrate"].GetInt64();
    };
    EXPECT_EQ(alacBitrate(least), alacBitrate(8000));
    EXPECT_EQ(alacBitrate(most), alacBitrate(96000));
}

}  // namespace
