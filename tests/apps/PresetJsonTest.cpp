#include "common/PresetJson.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "norvex/Norvex.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace NorvexApps;
using namespace NorvexTest;
using Norvex::Core::Property;
using Norvex::Core::Ratio;

void ExpectRoundTrip(const Property& tree) {
    const std::string text = WritePreset(tree);
    EXPECT_EQ(TreeDiff(tree, ReadPreset(text).preset), "") << text;
}

Property None(const std::string& name) {
    Property node(name);
    node.CopyDataFrom(Property());
    return node;
}

std::vector<Property> OddLeaves(const std::string& name) {
    using Doubles = std::numeric_limits<double>;
    using Integers = std::numeric_limits<long long>;
    std::vector<Property> leaves = {Property(name), None(name), Property(name, true), Property(name, false)};
    for (const double number :
         {2.0, -0.0, 0.1, 1e300, 5e-324, Doubles::max(), Doubles::infinity(), -Doubles::infinity(), std::nan("")}) {
        leaves.emplace_back(name, number);
    }
    for (const long long number : {0LL, -1LL, Integers::max(), Integers::min()}) leaves.emplace_back(name, number);
    for (const Ratio& ratio : {Ratio(30000, 1001), Ratio(25), Ratio(0), Ratio(-1, 2), Ratio(Integers::max(), 2),
                               Ratio(-Integers::max(), Integers::max() - 1)}) {
        leaves.emplace_back(name, ratio);
    }
    for (const char* const text : {"", "25", "1/2", "2/4", "-1/2", "1/0", "1/-2", "/", "$text", "nan", "true",
                                   "\xff\xfe", "1/\xff", "ü", "\"\\\n\x01", "</script>"}) {
        leaves.emplace_back(name, text);
    }
    leaves.emplace_back(name, std::string("a\0b", 3));
    return leaves;
}

TEST(PresetJson, LosesNothing) {
    std::mt19937 random(7);
    const std::string names[] = {"a", "b", "", "$text", "$", "a/b", "\xff", "1/2", "codec_id", "a"};
    for (const std::string& name : names) {
        for (const Property& leaf : OddLeaves(name)) {
            ExpectRoundTrip(Node("preset", {leaf}));
            ExpectRoundTrip(Node("preset", {leaf, Property("a", 1), Node(name, {leaf})}));
        }
    }
    const std::function<Property(int)> make = [&](int depth) {
        Property node(names[random() % std::size(names)]);
        for (auto count = random() % 5; count > 0; --count) {
            const auto leaves = OddLeaves(names[random() % std::size(names)]);
            node.AddNamed(depth < 4 && random() % 3 == 0 ? make(depth + 1) : leaves[random() % leaves.size()]);
        }
        return node;
    };
    for (int i = 0; i < 200; ++i) ExpectRoundTrip(Node("preset", {make(0), make(0)}));
}

TEST(PresetJson, TakesTheDefaultsOfEveryHelper) {
    int count = 0;
    for (const char* const kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            SCOPED_TRACE(id);
            const Property preset = Node("preset", {helper->GetDefaults()});
            ExpectRoundTrip(preset);
            EXPECT_NO_THROW(RequireKnownNames(ReadPreset(WritePreset(preset))));
            ++count;
        }
    }
    EXPECT_EQ(count, 126);
}

TEST(PresetJson, SaysInWhichLineItFails) {
    const auto document = [](const std::string& preset) {
        return "{\"norvex-preset\": 1,\n\"preset\": " + preset + "}";
    };
    const auto section = [&](const std::string& body) { return document("{\n\"video_codec\": {\n" + body + "\n}\n}"); };
    const auto h264 = [&](const std::string& body) { return section("\"codec_id\": \"h264\",\n" + body); };
    std::string deep = "5";
    for (int i = 0; i < 101; ++i) deep = "{\"a\":\n" + deep + "}";
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1: this is no JSON, at the end of the text"},
        {"{\n\"norvex-preset\": 1\n,\n]", "line 4: this is no JSON, at "},
        {h264("\"bitrate\": 05"), "line 5: this is no JSON, at '5'"},
        {h264("\"bitrate\" 5"), "line 5: this is no JSON, at '5'"},
        {h264("\"bitrate\": 5\n,,"), "line 6: this is no JSON, at "},
        {document("{}") + "\n\n}", "line 4: this is no JSON, at "},
        {h264("\"bitrate\": 9223372036854775808"), "line 5: the number 9223372036854775808 is too large"},
        {h264("\"bitrate\": -9223372036854775809"), "line 5: the number -9223372036854775809 is too large"},
        {h264("\"bitrate\": 99999999999999999999"), "line 5: the number 99999999999999999999 is too large"},
        {h264("\"bitrate\": 1e999"), "line 5: the number 1e999 is too large"},
        {"5", "line 1: this is no preset: it has no 'norvex-preset'"},
        {"{\n\"preset\": {}\n}", "line 1: this is no preset: it has no 'norvex-preset'"},
        {"{\n\"norvex-preset\": 2\n}", "line 2: the preset is of another version; this program knows version 1"},
        {"{\n\"norvex-preset\": \"1\"\n}", "line 2: the preset is of another version; this program knows version 1"},
        {"{\n\"norvex-preset\": 1\n}", "line 1: there must be one 'preset'"},
        {document("{}, \"preset\": {}"), "line 1: there must be one 'preset'"},
        {document("{},\n\"more\": {}"), "line 3: there is no member 'more'"},
        {document("5"), "line 2: the preset holds no sections"},
        {document("[]"), "line 2: '' is neither a value nor a section"},
        {document(deep), "line 101: the document is too deep"},
        {h264("\"bitrate\": null\n"), "line 5: 'video_codec/bitrate' is neither a value nor a section"},
        {h264("\"bitrate\": 5,\n\"bitrate\": 5\n"), "line 6: 'video_codec/bitrate' stands there twice"},
        {h264("\"$text\": \"1/2\""), "line 5: '$text' stands beside other members"},
        {h264("\"fps\": {\"$text\": 5}"), "line 5: '$text' does not hold what it should"},
        {h264("\"fps\": {\"$double\": \"infinite\"}"), "line 5: '$double' does not hold what it should"},
        {h264("\"fps\": {\"$none\": false}"), "line 5: '$none' does not hold what it should"},
        {h264("\"fps\": {\"$more\": 5}"), "line 5: '$more' does not hold what it should"},
        {h264("\"fps\": {\"$bytes\": \"abc\"}"), "line 5: 'abc' is no hexadecimal text"},
        {h264("\"fps\": {\"$bytes\":\n\"AB\"}"), "line 6: 'AB' is no hexadecimal text"},
        {h264("\"fps\": {\"$children\": [\n5]}"), "line 6: this is no named value"},
        {h264("\"fps\": {\"$children\": [[5,\n5]]}"), "line 5: this is no name"},
        {document("{\n\"filters\": {}}"), "line 3: there is no section 'filters'"},
        {document("{\n\"filter_resize\": 5\n}"), "line 3: 'filter_resize' must be a section"},
        {document("{\n\"filter_resize\": {\n\"resize\": 5\n}}"), "line 4: 'filter_resize/resize' must be a section"},
        {document("{\n\"subtitle_codec\": {\n\"codec_id\": \"x\"\n}}"), "line 4: there is no codec 'x'"},
        {document("{\n\"subtitle_codec\": {\n\"x\": 5\n}}"), "line 4: there is no parameter 'subtitle_codec/x'"},
        {document("{\n\"format\": {\n\"container\":\n\"mp5\"}}"), "line 5: there is no container 'mp5'"},
        {document("{\n\"format\": {}}"), "line 3: 'format' does not say which container it is about"},
        {section("\"codec_id\": 5"), "line 3: 'video_codec' does not say which codec it is about"},
        {section("\"codec_id\": \"aac\""), "line 4: there is no codec 'aac'"},
        {h264("\"bitrat\": 5"), "line 5: there is no parameter 'video_codec/bitrat'"},
        {h264("\"encode_options\": {\n\"speed\": 5}"),
         "line 6: there is no parameter 'video_codec/encode_options/speed'"},
        {h264("\"quality\": {\n\"x\": 5}"), "line 5: 'video_codec/quality' must be a value"},
    };
    for (const auto& [text, words] : cases) {
        SCOPED_TRACE(text);
        try {
            RequireKnownNames(ReadPreset(text));
            ADD_FAILURE() << "nothing failed";
        } catch (const PresetError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(words));
        }
    }
}

}  // namespace
