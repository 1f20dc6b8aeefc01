#include "norvex/document/PresetDocument.h"
#include "norvex/document/TreeForm.h"
#include "support/TestHelpers.h"

#include <sstream>

namespace {

using namespace Norvex::Document;
using namespace NorvexTest;
using Norvex::Core::Property;

void ExpectRoundTrip(const Property& tree) {
    const std::string text = WritePreset(tree);
    EXPECT_EQ(TreeDiff(tree, ParsePreset(text).preset), "") << text;
}

// Any tree is the business of the fuzz target; here are the texts and names that have a meaning in a document.
TEST(PresetDocument, LosesNothingThatLooksLikeItsOwnWords) {
    Property none("none", 5);
    none.CopyDataFrom(Property());
    for (const std::string name : {"a", "", "$text", "$", "a/b", "\xff", "1/2", "codec_id"}) {
        for (const std::string text : {"", "25", "1/2", "2/4", "-1/2", "1/0", "1/-2", "/", "$text", "nan", "true",
                                       "\xff\xfe", "1/\xff", "ü", "\"\\\n\x01", "</script>"}) {
            ExpectRoundTrip(Node("preset", {Property(name, text), none, Node(name, {Property("a", text)})}));
        }
    }
}

TEST(PresetDocument, TakesTheDefaultsOfEveryHelper) {
    int count = 0;
    for (const char* const kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            SCOPED_TRACE(id);
            const Property preset = Node("preset", {helper->GetDefaults()});
            ExpectRoundTrip(preset);
            EXPECT_NO_THROW(ReadPreset(WritePreset(preset)));
            ++count;
        }
    }
    EXPECT_EQ(count, 126);
}

TEST(PresetDocument, SaysInWhichLineItFails) {
    const auto document = [](const std::string& preset) {
        return "{\"norvex-preset\": 1,\n\"preset\": " + preset + "}";
    };
    const auto section = [&](const std::string& body) { return document("{\n\"video_codec\": {\n" + body + "\n}\n}"); };
    const auto h264 = [&](const std::string& body) { return section("\"codec_id\": \"h264\",\n" + body); };
    const auto stream = [&](const std::string& body) {
        return document("{\n\"format\": {\"container\": \"mp4\", \"streams\": {\n\"0\": " + body + "}}}");
    };
    std::string deep = "5";
    for (int i = 0; i < 101; ++i) deep = "{\"a\":\n" + deep + "}";
    const std::pair<std::string, std::string> cases[] = {
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
        {"{\n\"norvex-preset\": 3\n}", "line 2: the preset is of another version; this program knows versions up to 2"},
        {"{\n\"norvex-preset\": 0\n}", "line 2: the preset is of another version"},
        {"{\n\"norvex-preset\": \"1\"\n}", "line 2: the preset is of another version"},
        {"{\"norvex-preset\": 1,\n\"about\": {}, \"preset\": {}}", "line 2: there is no member 'about'"},
        {"{\"norvex-preset\": 2,\n\"about\": {\"names\": \"\"}, \"preset\": {}}", "line 2: there is no member 'names'"},
        {"{\"norvex-preset\": 2,\n\"about\": {\"name\": 5}, \"preset\": {}}", "line 2: "},
        {"{\n\"norvex-preset\": 1\n}", "line 1: there is no 'preset'"},
        {document("{}, \"preset\": {}"), "line 2: 'preset' stands there twice"},
        {h264("\"fps\": {\"$text\": \"1\",\n\"$text\": \"2\"}"), "line 6: 'video_codec/fps/$text' stands there twice"},
        {std::string(g_largestPreset + 1, ' '), "line 1: the document is larger than 1 MB, which no preset is"},
        {h264("\"\\u001b[31m\\u2028\\n\\u202e" + std::string(200, 'x') + "\": 1"),
         "line 5: there is no parameter 'video_codec/[31m " + std::string(83, 'x') + "…'"},
        {h264("\"bitrate\": " + std::string(500, '9')),
         "line 5: the number " + std::string(100, '9') + "… is too large"},
        {document("{},\n\"more\": {}"), "line 3: there is no member 'more'"},
        {document("5"), "line 2: the preset holds no sections"},
        {document("[]"), "line 2: '' is neither a value nor a section"},
        {document(deep), "line 101: the document is too deep"},
        {h264("\"bitrate\": null\n"), "line 5: 'video_codec/bitrate' is neither a value nor a section"},
        {h264("\"bitrate\": 5,\n\"bitrate\": 5\n"), "line 6: 'video_codec/bitrate' stands there twice"},
        {h264("\"$text\": \"1/2\""), "line 5: '$text' stands beside other members"},
        {h264("\"fps\": {\"$text\": 5}"), "line 5: '$text' does not hold what it should"},
        {h264("\"fps\": {\"$double\": \"infinite\"}"), "line 5: '$double' does not hold what it should"},
        {h264("\"fps\": {\"$double\": 5}"), "line 5: '$double' does not hold what it should"},
        {h264("\"fps\": {\"$none\": false}"), "line 5: '$none' does not hold what it should"},
        {h264("\"fps\": {\"$none\": \"nan\"}"), "line 5: '$none' does not hold what it should"},
        {h264("\"fps\": {\"$bytes\": 5}"), "line 5: '$bytes' does not hold what it should"},
        {h264("\"fps\": {\"$more\": 5}"), "line 5: '$more' does not hold what it should"},
        {h264("\"fps\": {\"$bytes\": \"abc\"}"), "line 5: 'abc' is no hexadecimal text"},
        {h264("\"fps\": {\"$bytes\":\n\"AB\"}"), "line 6: 'AB' is no hexadecimal text"},
        {h264("\"fps\": {\"$children\": 5}"), "line 5: '$children' does not hold what it should"},
        {h264("\"fps\": {\"$children\": [\n5]}"), "line 6: this is no named value"},
        {h264("\"fps\": {\"$children\": [[5,\n5]]}"), "line 5: this is no name"},
        {document("{\n\"filters\": {}}"), "line 3: there is no section 'filters'"},
        {document("{\n\"filter_resize\": 5\n}"), "line 3: 'filter_resize' must be a section"},
        {document("{\n\"filter_resize\": {\n\"resize\": 5\n}}"), "line 4: 'filter_resize/resize' must be a section"},
        {document("{\n\"subtitle_codec\": {\n\"codec_id\": \"x\"\n}}"), "line 4: there is no codec 'x'"},
        {document("{\n\"subtitle_codec\": {\"codec_id\": \"ass\",\n\"x\": 5\n}}"),
         "line 4: there is no parameter 'subtitle_codec/x'"},
        {document("{\n\"format\": {\n\"container\":\n\"mp5\"}}"), "line 5: there is no container 'mp5'"},
        {document("{\n\"format\": {}}"), "line 3: 'format' does not say which container it is about"},
        {section("\"codec_id\": 5"), "line 3: 'video_codec' does not say which codec it is about"},
        {section("\"codec_id\": \"aac\""), "line 4: there is no codec 'aac'"},
        {h264("\"bitrat\": 5"), "line 5: there is no parameter 'video_codec/bitrat'"},
        {h264("\"encode_options\": {\n\"speed\": 5}"),
         "line 6: there is no parameter 'video_codec/encode_options/speed'"},
        {h264("\"quality\": {\n\"x\": 5}"), "line 5: 'video_codec/quality' must be a value"},
        {h264("\"encode_options/preset\": \"fast\""),
         "line 5: there is no parameter 'video_codec/encode_options/preset'"},
        {document("{\n\"filter_resample\": {\"resample\": {\n\"sample_format\": \"s16\"}}}"),
         "line 4: there is no parameter 'filter_resample/resample/sample_format'; it is "
         "'filter_resample/sample_format'"},
        {stream("5"), "line 4: 'format/streams/0' must be a section"},
        {stream("{\"type\": 5}"), "line 4: 'format/streams/0' has no type"},
        {stream("{\"type\":\n\"film\"}"), "line 5: there is no type of stream 'film'"},
        {stream("{\"type\": \"audio\",\n\"video_codec\": {}}"),
         "line 5: there is no parameter 'format/streams/0/video_codec'"},
        {stream("{\"type\": \"audio\", \"audio_codec\": {\"codec_id\":\n\"x\"}}"), "line 5: there is no codec 'x'"},
        {stream("{\"type\": \"video\",\n\"video_codec\": 5}"),
         "line 5: 'format/streams/0/video_codec' must be a section"},
        {stream("{\"type\": \"video\", \"filter_resize\": {\n\"x\": 5}}"),
         "line 5: there is no parameter 'format/streams/0/filter_resize/x'"},
        {stream("{\"type\": \"audio\", \"audio_codec\": {\"codec_id\": \"aac\",\n\"x\": 5}}"),
         "line 5: there is no parameter 'format/streams/0/audio_codec/x'"},
    };
    for (const auto& [text, words] : cases) {
        SCOPED_TRACE(text);
        try {
            ReadPreset(text);
            ADD_FAILURE() << "nothing failed";
        } catch (const DocumentException& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(words));
            EXPECT_EQ(
                words.find("line " + std::to_string(*boost::get_error_info<DocumentException::TagLine>(error)) + ':'),
                0U);
        }
    }
}

TEST(PresetDocument, IsAsDeepAsItsReadersBear) {
    const auto deep = [](int levels) {
        Value value = 1LL;
        while (levels-- > 0) value = Value{{"a", value}};
        return value;
    };
    const Property deepest = TreeOf("t", deep(100)), deeper = Node("t", {deepest});
    EXPECT_EQ(Dump(TreeOf("t", FormOf(deepest))), Dump(TreeOf("t", PlainFormOf(deepest))));
    EXPECT_THROW(TreeOf("t", deep(101)), DocumentException);
    EXPECT_THROW(FormOf(deeper), DocumentException);
    EXPECT_THROW(PlainFormOf(deeper), DocumentException);
    // Children that share a name take three levels; what is written can be read.
    Property twins = Node("t", {});
    for (int i = 0; i < 33; ++i) {
        twins = Node("t", {Property("t", i), twins});
        EXPECT_EQ(Dump(TreeOf("t", FormOf(twins))), Dump(twins));
    }
    EXPECT_THROW(FormOf(Node("t", {Property("t", 0), twins})), DocumentException);
}

TEST(PresetDocument, SaysWhatItIsToPeopleAndTakesOlderForms) {
    const Property tree = Node("preset", {Node("a", {Property("b", 5)})});
    const PresetAbout about = {"Web", "For \"everyone\".", "web"};
    const std::string written = WritePreset(tree, about);
    EXPECT_LT(written.find("\"name\""), written.find("\"description\""));
    EXPECT_LT(written.find("\"description\""), written.find("\"purpose\""));
    const PresetDocument read = ParsePreset(written);
    EXPECT_TRUE(read.about == about);
    EXPECT_EQ(read.LineOf("a/b"), 10);
    const PresetDocument older = ParsePreset(R"({"norvex-preset": 1, "preset": {"a": {"b": 5}}})");
    EXPECT_TRUE(older.about == PresetAbout());
    EXPECT_EQ(WritePreset(older.preset), WritePreset(read.preset));
}

TEST(PresetDocument, KnowsTheLinesOfValuesAndOfWhatIsWithinThem) {
    const PresetDocument read = ParsePreset("{\"norvex-preset\": 1, \"preset\":\n{\"a\": {\n\"b\": 5}}}");
    for (const auto& [path, line] : {std::pair("a", 2), {"a/b", 3}, {"a/c", 2}, {"a/b/c/d", 3}, {"b", 2}, {"", 2}})
        EXPECT_EQ(read.LineOf(path), line) << path;
    EXPECT_EQ(PresetDocument().LineOf("a"), 0);
}

TEST(PresetDocument, TakesValuesAsTheToolsPrintThem) {
    const struct {
        const char* section;
        const char* written;
        const char* read;
    } cases[] = {
        {"filter_rate", R"("frame_rate": 25)", "frame_rate: ratio 25/1"},
        {"filter_rate", R"("frame_rate": "25")", "frame_rate: ratio 25/1"},
        {"filter_rate", R"("frame_rate": "12.5")", "frame_rate: ratio 25/2"},
        {"filter_rate", R"("frame_rate": 0.1)", "frame_rate: ratio 1/10"},
        {"filter_rate", R"("frame_rate": 29.97)", "frame_rate: ratio 30000/1001"},
        {"filter_rate", R"("frame_rate": "23.976")", "frame_rate: ratio 24000/1001"},
        {"filter_rate", R"("frame_rate": "23.98")", "frame_rate: ratio 24000/1001"},
        {"filter_rate", R"("frame_rate": "Auto")", "frame_rate: ratio 0/1"},
        {"filter_rate", R"("frame_rate": "soon")", "frame_rate: string soon"},
        {"filter_rate", R"("frame_rate": "1000000.5")", "frame_rate: string 1000000.5"},
        {"filter_resample", R"("resample": {"sample_rate": "Auto"})", "resample/sample_rate: int -1"},
        {"filter_resample", R"("resample": {"sample_rate": "44100"})", "resample/sample_rate: int 44100"},
        {"filter_resample", R"("resample": {"sample_rate": 44100.0})", "resample/sample_rate: int 44100"},
        {"filter_resample", R"("resample": {"channel_layout": "Auto"})", "resample/channel_layout: string unknown"},
        {"filter_resize", R"("resize": {"scale": 1})", "resize/scale: double 1"},
        {"filter_resize", R"("resize": {"width": 640.0, "height": "480"})",
         "resize/width: int 640\nresize/height: int 480"},
        {"filter_resize", R"("resize": {"width": 640.5, "height": 9223372036854775808.0})",
         "resize/width: double 640.5\nresize/height: double 9223372036854775808"},
        {"filter_resize", R"("resize": {"frame_size_mode": "720 x 480"})",
         "resize/frame_size_mode: string custom\nresize/width: int 720\nresize/height: int 480"},
        {"filter_resize", R"("resize": {"frame_size_mode": "0 x 480"})", "resize/frame_size_mode: string 0 x 480"},
        {"filter_resize", R"("resize": {"frame_size_mode": "720 x 0"})", "resize/frame_size_mode: string 720 x 0"},
        {"video_codec", R"("codec_id": "mpeg1video", "frame_rate": "Auto", "cover": "true", "max_b_frames": "2")",
         "codec_id: string mpeg1video\nframe_rate: ratio 0/1\ncover: bool true\nmax_b_frames: int 2"},
        {"audio_codec", R"("codec_id": "aac", "bitrate": "96000", "bitrate_mode": "auto")",
         "codec_id: string aac\nbitrate: int 96000\nbitrate_mode: string cbr_auto"},
        {"format", R"("container": "dvd", "disk_size": "double layer")",
         "container: string dvd\ndisk_size: int 8543666176"},
        {"format",
         R"("container": "matroska", "streams": {"0": {"type": "audio", "audio_codec": {"codec_id": "tta"}}})",
         "container: string matroska\nstreams/0/type: string audio\nstreams/0/audio_codec/codec_id: string tta"},
    };
    for (const auto& [section, written, read] : cases) {
        const std::string text =
            std::string(R"({"norvex-preset": 1, "preset": {")") + section + "\": {" + written + "}}}";
        std::string expected;
        std::istringstream lines(read);
        for (std::string line; std::getline(lines, line);)
            expected += "preset/" + std::string(section) + '/' + line + '\n';
        EXPECT_EQ(Dump(ReadPreset(text).preset), expected) << text;
    }
}

TEST(PresetDocument, KnowsTheParametersOfASectionAlone) {
    for (const auto& [kind, id] : {std::pair("format", "mp4"), {"audio_codec", "aac"}}) {
        for (const auto& [path, parameter] : ParametersOf(kind, id)) {
            EXPECT_TRUE(path.rfind("streams_", 0) != 0 && path.rfind("filter_", 0) != 0) << path;
        }
    }
    EXPECT_EQ(ParametersOf("audio_codec", "aac").at("codec_id").automatic, Property("", "auto"));
    EXPECT_FALSE(ParametersOf("video_codec", "h264").at("codec_id").automatic);
    EXPECT_EQ(ParametersOf("filter_rate", "filter_rate").at("frame_rate").automatic, Property("", Core::Ratio(0)));
}

/// The value at a path that may have to be made.
Property& Make(Property& root, const std::string& path) {
    Property* node = &root;
    std::istringstream tags(path);
    for (std::string tag; std::getline(tags, tag, '/');) node = &node->SetChild(tag);
    return *node;
}

TEST(PresetDocument, TakesWhatAMessageListsWordForWord) {
    FormatValidator::Instance().FillEncoders(Norvex::Proc::FFmpegCodecFactory::Create());
    int count = 0;
    const auto take = [&count](PresetDocument document, const std::string& path,
                               const IPropertyConstraint& constraint) {
        for (const Property& allowed : WhatIsAllowed(constraint).values) {
            Make(document.preset, DocumentPathOf(path)) =
                allowed.GetType() == Norvex::PT_BOOL ? Norvex::Core::PropertyValueToString(allowed) : allowed.GetName();
            PresetDocument read = document;
            ASSERT_NO_THROW(InterpretPreset(read)) << path << ' ' << allowed.GetName();
            EXPECT_TRUE(constraint.IsValid(AssembleDocument(read.preset)[path])) << path << ' ' << allowed.GetName();
            ++count;
        }
    };
    std::vector<std::pair<std::string, std::string>> names = {
        {"filter_resample", ""}, {"filter_volume", ""}, {"filter_rate", ""}, {"filter_resize", ""}};
    for (const char* const kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& row : GetAvailableDataHelpers(kind)) names.emplace_back(kind, row.first);
    }
    for (const auto& [kind, id] : names) {
        SCOPED_TRACE(kind + ' ' + id);
        const auto helper = CreateDataHelperAuto(kind, id);
        const PresetDocument defaults{Node("preset", {helper->GetDefaults()}), {}};
        for (const auto& [key, constraint] : CollectConstraints(*helper)) {
            if (key.rfind("streams", 0) == 0) continue;
            take(defaults, key.rfind("filter_", 0) == 0 ? key : kind + '/' + key, *constraint);
        }
        for (const auto& [key, rule] : CollectRules(*helper)) {
            PresetDocument document = defaults;
            if (const auto condition = rule->GetFirstConstraint()) {
                const auto values = WhatIsAllowed(*condition).values;
                if (!values.empty()) Make(document.preset, rule->GetFirstPath()).CopyDataFrom(values.front());
            }
            take(document, rule->GetSecondPath(), *rule->GetSecondConstraint());
        }
    }
    EXPECT_GT(count, 500);
}

}  // namespace
