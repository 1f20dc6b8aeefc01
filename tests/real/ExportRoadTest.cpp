// The road of a host from the front door to streams that an encoder takes.

#include <gtest/gtest.h>

#include "norvex/Norvex.h"
#include "support/TestHelpers.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

SP<const IDataHelper> FilterOf(const std::string& classId) {
    return CreateDataHelper(classId, std::string());
}

/// How many rules the tree breaks. It holds every path with a value of the right type, so they may be evaluated.
int CountBroken(const Property& root, std::initializer_list<SP<const IDataHelper>> helpers) {
    int broken = 0;
    for (const auto& helper : helpers) {
        for (const auto& [key, rule] : CollectRules(*helper)) {
            const bool kept = rule->GetFirstConstraint()
                                  ? rule->IsValid(root)
                                  : rule->GetSecondConstraint()->IsValid(root[rule->GetSecondPath()]);
            broken += kept ? 0 : 1;
        }
    }
    return broken;
}

TEST(ExportRoad, LeadsFromTheFrontDoorToLegalStreams) {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());

    // The container says what it carries, and names its default streams.
    const auto mp4 = CreateDataHelper(P::KEY_FORMAT, IFormatFile::FORMAT_MP4);
    const Property format = mp4->GetDefaults();
    const std::string videoId = format["streams/0/video_codec/codec_id"].GetString();
    const std::string audioId = format["streams/1/audio_codec/codec_id"].GetString();
    ASSERT_EQ(videoId, V::CODEC_ID_H264);
    ASSERT_EQ(audioId, A::CODEC_ID_AAC);
    const auto carried = CollectConstraints(*mp4).at("streams_any_audio/audio_codec/codec_id");
    EXPECT_TRUE(carried->IsValid(Property("", audioId)));

    // Picture: the resizer and the frame rate filter come first, since the bitrate of a quality depends on them.
    const auto h264 = CreateDataHelper(V::TAG_FORMAT_CODEC_VIDEO, videoId);
    ObjectList objects;
    h264->GetRequiredObjects(objects);
    ASSERT_EQ(objects.size(), 2U);
    Property picture = Node(V::TAG_FORMAT_CODEC_VIDEO,
                            {Property(V::TAG_WIDTH, 1920), Property(V::TAG_HEIGHT, 1080), Property(V::TAG_ASPECTX, 1),
                             Property(V::TAG_ASPECTY, 1), Property(V::TAG_FPS, Core::Ratio(60000, 1001))});
    Property resize = FilterOf(objects[0].first)->GetDefaults();
    resize["resize/mode"] = Proc::IResize::MODE_SMART_FIT;
    FilterOf(objects[0].first)->ApplyPresetSettings(resize, picture);
    FilterOf(objects[1].first)->ApplyPresetSettings(FilterOf(objects[1].first)->GetDefaults(), picture);
    Property videoPreset = h264->GetDefaults();
    videoPreset[C::TAG_QUALITY] = 99;
    h264->ApplyPresetSettings(videoPreset, picture);
    EXPECT_EQ(picture[V::TAG_WIDTH].GetInt64(), 800);
    EXPECT_EQ(picture[V::TAG_HEIGHT].GetInt64(), 450);
    EXPECT_EQ(picture[V::TAG_FPS].GetRatio(), Core::Ratio(25, 1));

    mp4->CorrectFormatCodec(picture);
    h264->CorrectFormatCodec(picture);
    EXPECT_EQ(picture[C::TAG_QUALITY].GetInt64(), C::MAX_QUALITY);
    EXPECT_EQ(picture[C::TAG_BITRATE_MODE].GetString(), C::TAG_BITRATE_MODE_VBR);
    EXPECT_EQ(picture["encode_options/profile"].GetString(), V::TAG_X264_PROFILE_MAIN);

    // Sound, with what the user asked for.
    const auto aac = CreateDataHelper(A::TAG_FORMAT_CODEC_AUDIO, audioId);
    const auto resampler = FilterOf(Proc::IFilterResample::CLASS_ID);
    Property sound =
        Node(A::TAG_FORMAT_CODEC_AUDIO, {Property(A::TAG_SAMPLE_RATE, 48000), Property(A::TAG_SAMPLE_FORMAT, "s16"),
                                         Property(A::TAG_LAYOUT, A::TAG_CH_LAYOUT_5POINT1)});
    Property resample = resampler->GetDefaults();
    resample.SetChildT(A::TAG_SAMPLE_FORMAT, "s32");
    resampler->ApplyPresetSettings(resample, sound);
    Property audioPreset = aac->GetDefaults();
    audioPreset[C::TAG_BITRATE] = 100000;
    aac->ApplyPresetSettings(audioPreset, sound);
    EXPECT_EQ(sound[A::TAG_SAMPLE_RATE].GetInt64(), 44100);
    EXPECT_EQ(sound[A::TAG_LAYOUT].GetString(), A::TAG_CH_LAYOUT_STEREO);
    EXPECT_EQ(sound[A::TAG_BITS_PER_SAMPLE].GetInt64(), 32);

    // One tree a stream, with each value where the rules read it.
    const auto ruleTree = [&format](const Property& stream) {
        Property root(std::string("preset"));
        root.SetChild(P::KEY_FORMAT, format);
        root.SetChild(P::KEY_FILTER_AUDIO_CODEC, stream);
        Property& section = root.SetChild(Proc::IFilterResample::CLASS_ID).SetChild(Proc::IResample::CLASS_ID);
        for (const std::string& tag : {A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT, A::TAG_LAYOUT})
            section.SetChild(tag, stream[tag]);
        return root;
    };
    EXPECT_EQ(CountBroken(ruleTree(sound), {mp4, aac}), 2) << "the bitrate and the sample format";
    mp4->CorrectFormatCodec(sound);
    aac->CorrectFormatCodec(sound);
    EXPECT_EQ(CountBroken(ruleTree(sound), {mp4, aac}), 0);
    EXPECT_EQ(sound[C::TAG_BITRATE].GetInt64(), 96000);
    EXPECT_EQ(sound[A::TAG_SAMPLE_FORMAT].GetString(), "fltp");
}

}  // namespace
