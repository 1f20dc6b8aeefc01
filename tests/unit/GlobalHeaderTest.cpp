#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

TEST(GlobalHeader, IsWhatTheDefaultsSayAndNoneOfWhatIsNeitherPictureNorSound) {
    int headers = 0;
    for (const std::string kind : {"format", "video_codec", "audio_codec"}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            const Core::Property defaults = helper->GetDefaults();
            const bool says = defaults.ChildExists("global_header") && defaults["global_header"].GetBool();
            EXPECT_EQ(kind == "format" ? FormatHasGlobalHeader(id) : CodecHasGlobalHeader(id), says) << kind << id;
            headers += says ? 1 : 0;
        }
    }
    EXPECT_GT(headers, 30);
    for (const std::string& id : GetAllSubtitleCodecs()) EXPECT_FALSE(CodecHasGlobalHeader(id)) << id;
    for (const char* id : {"", "auto", "no such codec", "H264", "mp4"}) EXPECT_FALSE(CodecHasGlobalHeader(id)) << id;
}

TEST(GlobalHeader, ThrowsForWhatTheCatalogueDoesNotHold) {
    for (const std::string id : {"wmv3", "vc1", "eac3", "truehd"}) {
        EXPECT_THAT(FailureOf<HelperException>([&id] { CodecHasGlobalHeader(id); }),
                    testing::HasSubstr("_codec, no id " + id));
    }
    EXPECT_THAT(FailureOf<HelperException>([] { FormatHasGlobalHeader("h264"); }),
                testing::HasSubstr("kind format, no id h264"));
    EXPECT_EQ(FailureOf<HelperException>([] { FormatHasGlobalHeader(""); }),
              "Empty name while getting global header flag., stack");
}

}  // namespace
