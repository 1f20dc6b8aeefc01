#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

TEST(Lookup, FindsEveryRowOfEveryTableUnderItsOwnIdAndAlias) {
    for (const auto& [kind, alias] : {std::pair("format", "format"), std::pair("audio_codec", "format_codec_audio"),
                                      std::pair("video_codec", "format_codec_video")}) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            EXPECT_TRUE(CreateDataHelper(kind, id) == helper && CreateDataHelper(alias, id) == helper) << kind << id;
            EXPECT_EQ(helper->GetDefaults().GetName(), kind);
            EXPECT_EQ(helper->GetDefaults()[std::size_t{0}].GetString(), id);
        }
    }
    for (const char* const kind :
         {"filter_resample", "filter_volume", "filter_formatter", "filter_rate", "filter_resize"}) {
        const SP<const IDataHelper> filter = CreateDataHelper(kind, "");
        EXPECT_EQ(filter->GetDefaults().GetName(), kind);
        EXPECT_EQ(CreateDataHelper(kind, "no such id"), filter) << "a filter goes by its kind alone";
    }
}

TEST(Lookup, RefusesKindsAndIdsThatItDoesNotHold) {
    const struct {
        std::string asked, meant, id;  ///< `meant` is empty where there is no such kind
    } cases[] = {
        {"", "", "mp4"},
        {"forma", "", "mp4"},
        {"Format", "", "mp4"},
        {"audio_codec/codec_id", "", "aac"},
        {"resample", "", ""},
        {"format", "format", ""},
        {"format", "format", "MP4"},
        {"format", "format", "h264"},
        {"format_codec_audio", "audio_codec", "h264"},
        {"audio_codec", "audio_codec", "eac3"},
        {"video_codec", "video_codec", "auto"},
        {"video_codec", "video_codec", "vc1"},
        {"format_codec_video", "video_codec", "wmv3"},
    };
    for (const auto& [asked, meant, id] : cases) {
        SCOPED_TRACE(asked + ' ' + id);
        for (const bool automatic : {false, true}) {
            EXPECT_EQ(FailureOf<HelperException>([automatic, &kind = asked, &id = id] {
                          automatic ? CreateDataHelperAuto(kind, id) : CreateDataHelper(kind, id);
                      }),
                      (meant.empty() ? "no kind " + asked : "kind " + meant + ", no id " + id) + ", stack");
        }
    }
    for (const std::string kind : {"format_codec_audio", "filter_resize", ""}) {
        EXPECT_EQ(FailureOf([&kind] { GetAvailableDataHelpers(kind); }), "no kind " + kind) << "only kinds with ids";
    }
}

TEST(Lookup, MakesAProxyAnewAroundTheSharedHelper) {
    const SP<const IDataHelper> shared = CreateDataHelper("audio_codec", "aac");
    const auto count = shared->GetRefCount();
    const SP<const IDataHelper> one = CreateDataHelperAuto("format_codec_audio", "aac");
    const SP<const IDataHelper> two = CreateDataHelperAuto("format_codec_audio", "aac");
    EXPECT_NE(one, two);
    EXPECT_EQ(shared->GetRefCount(), count + 2);
}

}  // namespace
