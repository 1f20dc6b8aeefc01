// Trees that are wider and deeper than any preset.

#include <cmath>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

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
    EXPECT_FALSE(Deep("root", deepest, 2) == tree || Deep("root", deepest - 1) == tree);
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

TEST(Extremes, PresetsAndStreamsMayBeDeepAndWideToo) {
    const std::vector<NamedHelper> helpers = {FindHelper("format", "mp4"), FindHelper("video_codec", "h264")};
    for (const char* const name : {"format_codec_video", "video_codec", "filter_resize", "somebody's"}) {
        Property section = Deep(name, 1000);
        for (int i = 0; i < 1000; ++i) section.CreateChildT("", i);
        section.SetChildT("codec_id", "h264");
        EXPECT_NO_THROW(CheckPreset(AssemblePreset({section, section}), helpers));
        section.SetChildT("nan", std::nan(""));
        const CorrectionReport report = CorrectWithReport(section, helpers);
        EXPECT_EQ(report.failure, nullptr);
        for (const CorrectedValue& change : report.changes) EXPECT_TRUE(change.path != "" && change.path != "nan");
        for (int i = 0; i < 1000; ++i) section.RemoveChild("");
        EXPECT_EQ(section.FindChild("n")->Count(), 1U);
        EXPECT_EQ(section.FindChild(""), section.end());
    }
    Property deep = Deep("format_codec_video", deepest);
    deep.SetChildT("codec_id", "h264");
    // A helper that changes nothing, since each change is looked at in copies of its own.
    EXPECT_TRUE(CorrectWithReport(deep, {helpers.front()}).changes.empty());
}

}  // namespace
