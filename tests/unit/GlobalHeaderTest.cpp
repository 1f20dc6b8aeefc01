#include <gtest/gtest.h>

#include <set>

#include "norvex/Norvex.h"
#include "support/Failures.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using NorvexTest::CatchFrom;
using NorvexTest::TagOf;
using Ids = std::set<std::string>;

Ids WithGlobalHeader(const std::string& kind, bool (*query)(const std::string&)) {
    Ids ids;
    for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
        if (query(id)) ids.insert(id);
    }
    return ids;
}

TEST(GlobalHeader, IsWhatTheDefaultsOfEachHelperSay) {
    EXPECT_EQ(WithGlobalHeader("format", FormatHasGlobalHeader),
              (Ids{"3g2", "3gp", "asf", "ass",      "avif", "f4a", "flv", "heic", "heif", "ipod", "m4a",
                   "m4b", "m4r", "m4v", "matroska", "mka",  "mov", "mp4", "ssa",  "webm", "wma",  "wmv"}));
    EXPECT_EQ(WithGlobalHeader("video_codec", CodecHasGlobalHeader),
              (Ids{"av1", "h264", "hap", "hevc", "mpeg1video", "mpeg2video", "mpeg4", "theora", "utvideo", "wmv2"}));
    EXPECT_EQ(WithGlobalHeader("audio_codec", CodecHasGlobalHeader), (Ids{"aac", "alac", "flac", "vorbis", "wmav2"}));
    for (const auto& [id, helper] : GetAvailableDataHelpers("format")) {
        EXPECT_TRUE(helper->GetDefaults().ChildExists("global_header")) << id << " leaves it open";
    }
    EXPECT_TRUE(DataHelperVideoCodecWmv3::Create()->GetDefaults()["global_header"].GetBool());
}

TEST(GlobalHeader, ACodecThatIsNeitherPictureNorSoundHasNone) {
    for (const std::string& id : GetAllSubtitleCodecs()) EXPECT_FALSE(CodecHasGlobalHeader(id)) << id;
    for (const char* id : {"", "auto", "no such codec", "H264", "mp4"}) EXPECT_FALSE(CodecHasGlobalHeader(id)) << id;
}

TEST(GlobalHeader, ThrowsForWhatTheCatalogueDoesNotHold) {
    for (const std::string id : {"wmv3", "vc1", "eac3", "truehd"}) {
        const auto failure = CatchFrom<HelperException>([&id] { CodecHasGlobalHeader(id); });
        EXPECT_EQ(TagOf<HelperException::TagTypeIsNotFound>(failure), id);
    }
    for (const std::string id : {"no such format", "h264", "auto"}) {
        const auto failure = CatchFrom<HelperException>([&id] { FormatHasGlobalHeader(id); });
        EXPECT_EQ(TagOf<HelperException::TagTypeIsNotFound>(failure), id);
    }
    const auto failure = CatchFrom<HelperException>([] { FormatHasGlobalHeader(""); });
    EXPECT_EQ(TagOf<TagDescription>(failure), "Empty name while getting global header flag.");
    EXPECT_TRUE(TagOf<TagCallStack>(failure));
    ASSERT_TRUE(failure);
    EXPECT_NE(boost::get_error_info<boost::throw_line>(*failure), nullptr);
}

}  // namespace
