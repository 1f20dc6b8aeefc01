#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

// Nothing here fills the encoder census, so every format stands by its hand-written lists.

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using F = IFormatFile;

TEST(Mp4Family, OffersItsHandWrittenListsWithoutACensus) {
    const std::string mp4Audio = "streams_any_audio/audio_codec/codec_id in ";
    const std::string mp4Video = "streams_any_video/video_codec/codec_id in ";
    const std::string subtitles = "streams_any_subtitles_text/subtitle_codec/codec_id in dvd_subtitle, mov_text";
    const struct {
        const char* name;
        SP<IDataHelper> helper;
        std::vector<std::string> constraints;
    } cases[] = {
        {"mp4",
         DataHelperFormatMp4::Create(F::FORMAT_MP4, false, false),
         {mp4Audio + "aac, ac3, mp3", subtitles, mp4Video + "h264, mpeg4, hevc, av1, vp9, vc1"}},
        {"m4v",
         DataHelperFormatMp4::Create(F::FORMAT_M4V, false, true),
         {mp4Audio + "aac", subtitles, mp4Video + "h264, mpeg4"}},
        {"ipod",
         DataHelperFormatMp4::Create(F::FORMAT_IPOD, true, false),
         {mp4Audio + "aac, ac3", subtitles, mp4Video + "h264, mpeg4"}},
        {"both modes",
         DataHelperFormatMp4::Create(F::FORMAT_MP4, true, true),
         {mp4Audio + "aac", subtitles, mp4Video + "h264, mpeg4"}},
        {"m4a", DataHelperFormatM4a::Create(F::FORMAT_M4A), {mp4Audio + "aac, alac", mp4Video + "mjpeg, png, bmp"}},
        {"f4a", DataHelperFormatF4a::Create(), {mp4Audio + "mp3, aac"}},
        {"3gp", DataHelperFormat3gp::Create(F::FORMAT_3GP), {mp4Audio + "aac", mp4Video + "h263, h264, mpeg4"}},
    };
    for (const auto& c : cases) EXPECT_EQ(ConstraintsOf(*c.helper), c.constraints) << c.name;
}

TEST(Mp4Family, TheCataloguesF4aIsAnM4a) {
    const auto defaultsOf = [](const std::string& id) {
        return CreateDataHelper(IPreset::KEY_FORMAT, id)->GetDefaults();
    };
    EXPECT_EQ(TreeDiff(defaultsOf("m4a"), defaultsOf("f4a")),
              "format/container: expected string m4a, got string f4a\n");
    EXPECT_TRUE(defaultsOf("f4a")["streams/1/cover"].GetBool());
    EXPECT_EQ(ConstraintsOf(*CreateDataHelper(IPreset::KEY_FORMAT, "f4a")),
              ConstraintsOf(*CreateDataHelper(IPreset::KEY_FORMAT, "m4a")));
    EXPECT_FALSE(DataHelperFormatF4a::Create()->GetDefaults().ChildExists("streams/1"));
}

TEST(Mp4Family, TheVariantsOfMp4DifferInNothingButTheirId) {
    const auto helperOf = [](const std::string& id) { return CreateDataHelper(IPreset::KEY_FORMAT, id); };
    for (const std::string& id : {F::FORMAT_M4V, F::FORMAT_IPOD}) {
        EXPECT_EQ(TreeDiff(helperOf(F::FORMAT_MP4)->GetDefaults(), helperOf(id)->GetDefaults()),
                  "format/container: expected string mp4, got string " + id + '\n');
        EXPECT_EQ(RulesOf(*helperOf(id)), RulesOf(*helperOf(F::FORMAT_MP4)));
    }
}

TEST(Mp4Family, CorrectsByItsRules) {
    const SP<IDataHelper> f4a = DataHelperFormatF4a::Create();
    const struct {
        std::string format;
        Property node;
        const char* corrected;
    } cases[] = {
        {"mp4", Node("format_codec_audio", {Property("codec_id", "mp3"), Property("sample_rate", 12000)}), "16000"},
        {"mp4", Node("format_codec_audio", {Property("codec_id", "mp3"), Property("sample_rate", 46050)}), "44100"},
        {"m4v", Node("format_codec_audio", {Property("codec_id", "mp3"), Property("sample_rate", 8000)}), "16000"},
        {"mp4", Node("format_codec_audio", {Property("codec_id", "aac"), Property("sample_rate", 12000)}), "12000"},
        {"mp4", Node("format_codec_video", {Property("codec_id", "mjpeg"), Property("cover", false)}), "false"},
        {"m4a", Node("format_codec_video", {Property("codec_id", "mjpeg"), Property("cover", false)}), "true"},
        {"m4a", Node("format_codec_video", {Property("codec_id", "h264"), Property("cover", false)}), "false"},
        {"3gp", Node("format_codec_video", {Property("codec_id", "h263"), Property("frame_rate", Ratio(7, 1))}), "7/1"},
        {"", Node("format_codec_audio", {Property("codec_id", "aac"), Property("sample_rate", 48000)}), "44100"},
        {"", Node("format_codec_audio", {Property("codec_id", "mp3"), Property("sample_rate", 16537)}), "11025"},
        {"", Node("format_codec_audio", {Property("codec_id", "ac3"), Property("sample_rate", 48000)}), "48000"},
    };
    for (const auto& c : cases) {
        Property node = c.node;
        const SP<const IDataHelper> format = c.format.empty() ? f4a : CreateDataHelper(IPreset::KEY_FORMAT, c.format);
        format->CorrectFormatCodec(node);
        EXPECT_EQ(Core::PropertyValueToString(node[1]), c.corrected) << c.format << ' ' << Dump(c.node);
        EXPECT_EQ(node[0], c.node[0]);
    }
    EXPECT_EQ(CollectRules(*f4a)[0].second->GetFirstConstraint(),
              CollectConstraints(*f4a).at("streams_any_audio/audio_codec/codec_id"))
        << "the format's own list is shared";
}

}  // namespace
