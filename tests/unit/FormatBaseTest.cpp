#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/TestFormat.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Constraint = SP<IPropertyConstraint>;
using Codecs = std::vector<std::string>;

/// What the base says of one kind of stream.
struct Kind {
    const char* name;
    void (TestFormat::*set)(const Codecs&, const std::string&);
    Constraint (DataHelperFormatBase::*constraint)() const;
    std::string (DataHelperFormatBase::*defaultCodec)() const;
    const char* failure;
    const char* pattern;
};
const Kind kinds[] = {
    {"video", &TestFormat::SetVideoCodecs, &TestFormat::VideoCodecsConstraint, &TestFormat::DefaultVideoCodec,
     "Video codecs constraint is not set", "streams_any_video/video_codec/codec_id"},
    {"audio", &TestFormat::SetAudioCodecs, &TestFormat::AudioCodecsConstraint, &TestFormat::DefaultAudioCodec,
     "Audio codecs constraint is not set", "streams_any_audio/audio_codec/codec_id"},
    {"subtitle", &TestFormat::SetSubtitleTextCodecs, &TestFormat::SubtitleTextCodecsConstraint,
     &TestFormat::DefaultSubtitleTextCodec, "Subtitle codecs constraint is not set",
     "streams_any_subtitles_text/subtitle_codec/codec_id"},
};

/// The description of the failure, which must have a call stack.
template <class Operation>
std::optional<std::string> FailureOf(Operation&& operation) {
    const auto failure = CatchFrom<HelperException>(operation);
    EXPECT_TRUE(TagOf<TagCallStack>(failure));
    return TagOf<TagDescription>(failure);
}

TEST(FormatBase, RefusesAListWithoutItsDefault) {
    const struct {
        Codecs codecs;
        const char* defaultCodec;
        const char* description;
    } cases[] = {
        {{}, "", "List of available codecs is empty"},
        {{}, "a", "List of available codecs is empty"},
        {{"a"}, "", "Default codec  is not presented in list of avalible codecs"},
        {{"aa", "b"}, "a", "Default codec a is not presented in list of avalible codecs"},
        {{"a"}, "A", "Default codec A is not presented in list of avalible codecs"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FailureOf([&c] { DataHelperFormatBase::SetCodecConstraint(c.codecs, c.defaultCodec); }),
                  c.description);
    }
    EXPECT_EQ(CallsOf(*DataHelperFormatBase::SetCodecConstraint({"b", "a", "a"}, "a")),
              (std::vector<std::string>{"add b=b", "add a=a", "add a=a", "end"}));
}

TEST(FormatBase, KeepsAListOfEachKindApart) {
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        TestFormat format;
        (format.*kind.set)({"b", "a"}, "a");
        for (const Kind& other : kinds) {
            if (&other == &kind) continue;
            EXPECT_EQ(FailureOf([&] { (format.*other.constraint)(); }), other.failure);
            EXPECT_EQ(FailureOf([&] { (format.*other.defaultCodec)(); }), other.failure);
        }
        const Constraint first = (format.*kind.constraint)();
        EXPECT_EQ(ListOf(*first), "b, a");
        EXPECT_EQ((format.*kind.defaultCodec)(), "a") << "wherever it stands in the list";

        ConstraintMap constraints = {{kind.pattern, nullptr}};
        format.GetConstraints(constraints);
        EXPECT_EQ(constraints, (ConstraintMap{{kind.pattern, first}})) << "the helper's own object, and no other kind";
        constraints.clear();

        EXPECT_THROW((format.*kind.set)({"c"}, "a"), HelperException);
        EXPECT_EQ((format.*kind.constraint)(), first) << "a list that is refused changes nothing";
        (format.*kind.set)({"c"}, "c");
        EXPECT_EQ((format.*kind.defaultCodec)(), "c");
        EXPECT_EQ(first->GetRefCount(), 1U) << "the format has let go of its former list";
    }
}

TEST(FormatBase, BuildsTheDefaultTreeInTheOrderOfItsStreams) {
    TestFormat format;
    format.SetVideoCodecs({"v"}, "v");
    format.SetAudioCodecs({"a"}, "a");
    format.SetSubtitleTextCodecs({"s"}, "s");
    EXPECT_EQ(Dump(format.GetDefaults()),
              "format/container: string test\n"
              "format/psp_mode: bool true\n"
              "format/limits/video: int 1\n"
              "format/limits/audio: int 2\n"
              "format/limits/subtitle: int 3\n"
              "format/limits/other: int 4\n"
              "format/streams/0/type: string subtitles_text\n"
              "format/streams/0/subtitle_codec/codec_id: string s\n"
              "format/streams/1/type: string video\n"
              "format/streams/1/video_codec/codec_id: string v\n"
              "format/streams/1/cover: bool true\n"
              "format/streams/2/type: string audio\n"
              "format/streams/2/audio_codec/codec_id: string a\n"
              "format/streams/3/type: string video\n"
              "format/streams/3/video_codec/codec_id: string v\n");
}

TEST(FormatBase, NeedsNoObjectsAndAppliesNoPreset) {
    for (const auto& [id, format] : GetAvailableDataHelpers(IPreset::KEY_FORMAT)) {
        ObjectList objects;
        format->GetRequiredObjects(objects);
        EXPECT_TRUE(objects.empty()) << id;
        Property stream = Node("stream", {Property("x", 1)});
        format->ApplyPresetSettings(format->GetDefaults(), stream);
        EXPECT_EQ(Dump(stream), "stream/x: int 1\n") << id;
    }
}

TEST(FormatBase, EveryDefaultStreamHasALegalCodec) {
    int checked = 0;
    for (const auto& [id, format] : GetAvailableDataHelpers(IPreset::KEY_FORMAT)) {
        const ConstraintMap constraints = CollectConstraints(*format);
        std::size_t position = 0;
        for (const Property& stream : format->GetDefaults()[IPreset::KEY_STREAMS]) {
            SCOPED_TRACE(id + ' ' + stream.GetName());
            EXPECT_EQ(stream.GetName(), std::to_string(position++));
            const Property& section = stream[1];
            const std::string pattern =
                "streams_any_" + stream[IPreset::KEY_TYPE_ID].GetString() + '/' + section.GetName() + "/codec_id";
            ASSERT_TRUE(constraints.count(pattern)) << pattern;
            EXPECT_EQ(FixupOf(constraints.at(pattern), section[IFormatCodec::TAG_CODEC_ID]), "ok");
            ++checked;
        }
    }
    EXPECT_GE(checked, 19);
}

}  // namespace
