#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/Failures.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using NorvexTest::CatchFrom;
using NorvexTest::TagOf;

using A = IFormatCodecAudio;
using V = IFormatCodecVideo;

const std::string kinds[] = {"format", "audio_codec", "video_codec"};
const std::pair<std::string, std::string> aliases[] = {{"format_codec_audio", "audio_codec"},
                                                       {"format_codec_video", "video_codec"}};

TEST(Lookup, FindsEveryRowOfEveryTableUnderItsOwnId) {
    for (const std::string& kind : kinds) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            SCOPED_TRACE(kind + ' ' + id);
            EXPECT_EQ(CreateDataHelper(kind, id), helper);
            const Core::Property defaults = helper->GetDefaults();
            EXPECT_EQ(defaults.GetName(), kind);
            EXPECT_EQ(defaults[kind == IPreset::KEY_FORMAT ? IFormatFile::TAG_CONTAINER : V::TAG_CODEC_ID].GetString(),
                      id);
        }
    }
}

TEST(Lookup, TakesTheTagOfAStreamsCodecSectionForAKind) {
    for (const auto& [alias, kind] : aliases) {
        for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
            EXPECT_EQ(CreateDataHelper(alias, id), helper) << alias << ' ' << id;
        }
    }
}

TEST(Lookup, FindsFiltersByKindAlone) {
    for (const std::string& classId :
         {Proc::IFilterResample::CLASS_ID, Proc::IFilterAudioVolume::CLASS_ID, Proc::IFilterAudioFormatter::CLASS_ID,
          Proc::IFilterFrameRate::CLASS_ID, Proc::IFilterResize::CLASS_ID}) {
        const SP<const IDataHelper> filter = CreateDataHelper(classId, "");
        EXPECT_EQ(filter->GetDefaults().GetName(), classId);
        EXPECT_EQ(CreateDataHelper(classId, "no such id"), filter) << classId;
    }
}

TEST(Lookup, RefusesAKindThatItDoesNotKnow) {
    for (const std::string& kind : {std::string(), std::string("format_"), std::string("forma"), std::string("Format"),
                                    std::string("audio_codec/codec_id"), Proc::IResample::CLASS_ID}) {
        SCOPED_TRACE(kind);
        for (auto* const create : {+[](const std::string& k) { CreateDataHelper(k, "mp4"); },
                                   +[](const std::string& k) { CreateDataHelperAuto(k, "mp4"); }}) {
            const auto failure = CatchFrom<HelperException>([&] { create(kind); });
            EXPECT_EQ(TagOf<HelperException::TagClassIsNotFound>(failure), kind);
            EXPECT_FALSE(TagOf<HelperException::TagClassIsFound>(failure));
            EXPECT_TRUE(TagOf<TagCallStack>(failure));
        }
    }
}

TEST(Lookup, RefusesAnIdThatTheKindDoesNotHoldByTheKindMeant) {
    struct Case {
        std::string asked, meant, id;
    };
    const Case cases[] = {
        {IPreset::KEY_FORMAT, "format", ""},
        {IPreset::KEY_FORMAT, "format", "MP4"},
        {IPreset::KEY_FORMAT, "format", V::CODEC_ID_H264},
        {A::TAG_FORMAT_CODEC_AUDIO, "audio_codec", V::CODEC_ID_H264},
        {A::TAG_FORMAT_CODEC_AUDIO, "audio_codec", A::CODEC_ID_EAC3},
        {IPreset::KEY_FILTER_VIDEO_CODEC, "video_codec", V::CODEC_ID_AUTO},
        {V::TAG_FORMAT_CODEC_VIDEO, "video_codec", V::CODEC_ID_WMV3},
    };
    for (const auto& [asked, meant, id] : cases) {
        SCOPED_TRACE(asked + ' ' + id);
        const auto failure = CatchFrom<HelperException>([&asked = asked, &id = id] { CreateDataHelper(asked, id); });
        EXPECT_EQ(TagOf<HelperException::TagClassIsFound>(failure), meant);
        EXPECT_EQ(TagOf<HelperException::TagTypeIsNotFound>(failure), id);
        EXPECT_FALSE(TagOf<HelperException::TagClassIsNotFound>(failure));
        EXPECT_TRUE(TagOf<TagCallStack>(failure));
    }
}

TEST(Lookup, ListsOnlyTheKindsThatHaveIds) {
    for (const std::string& kind :
         {A::TAG_FORMAT_CODEC_AUDIO, V::TAG_FORMAT_CODEC_VIDEO, Proc::IFilterResize::CLASS_ID, std::string()}) {
        const auto failure = CatchFrom<HelperException>([&kind] { GetAvailableDataHelpers(kind); });
        EXPECT_EQ(TagOf<HelperException::TagClassIsNotFound>(failure), kind);
        EXPECT_FALSE(TagOf<TagCallStack>(failure)) << kind;
    }
}

TEST(Lookup, MakesAProxyAnewAroundTheSharedHelper) {
    const SP<const IDataHelper> shared = CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, A::CODEC_ID_AAC);
    const auto count = shared->GetRefCount();
    const SP<const IDataHelper> one = CreateDataHelperAuto(A::TAG_FORMAT_CODEC_AUDIO, A::CODEC_ID_AAC);
    const SP<const IDataHelper> two = CreateDataHelperAuto(A::TAG_FORMAT_CODEC_AUDIO, A::CODEC_ID_AAC);
    EXPECT_NE(one, two);
    EXPECT_EQ(shared->GetRefCount(), count + 2);
}

}  // namespace
