// What the codec base makes of a preset, and of a stream that is not legal.

#include <gmock/gmock.h>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/FakeBuild.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

SP<TestCodec> Codec(MediaType type) {
    SP<TestCodec> codec(new TestCodec(type));
    codec->defaults =
        Node("defaults",
             {Property(C::TAG_CODEC_ID, "test"),
              Node(C::TAG_CODEC_OPTIONS_ENCODE, {Property(C::TAG_PROFILE, "main"), Property(C::TAG_PRESET, "slow")})});
    return codec;
}

Property Preset(const std::string& mode, std::initializer_list<Property> more = {}) {
    Property preset = Node("preset", {Property(C::TAG_CODEC_ID, "test"), Property(C::TAG_BITRATE_MODE, mode)});
    for (const Property& child : more) preset.AddNamed(child);
    return preset;
}

Property VideoStream() {
    return Node("s",
                {Property(V::TAG_WIDTH, 1280), Property(V::TAG_HEIGHT, 720), Property(V::TAG_FPS, Ratio(30000, 1001)),
                 Property(V::TAG_BITS_PER_PIXEL, 24), Property(V::TAG_COVER_FLAG, true)});
}

const char* const g_defaultOptions = "s/encode_options/profile: string main\ns/encode_options/preset: string slow\n";

TEST(AudioPreset, MovesModeBitrateAndQuality) {
    const Property bitrate(C::TAG_BITRATE, 64000);
    const Property quality(C::TAG_QUALITY, 4);
    const struct {
        Property preset;
        const char* settled;
    } cases[] = {
        {Preset("cbr", {quality, bitrate}),
         "s/bitrate: int 64000\ns/codec_id: string test\ns/bitrate_mode: string cbr\n"},
        {Preset("vbr", {bitrate, quality}),
         "s/bitrate: int 64000\ns/codec_id: string test\ns/bitrate_mode: string vbr\ns/quality: int 4\n"},
        {Preset("cbr_auto", {bitrate}), "s/bitrate: int 7\ns/codec_id: string test\ns/bitrate_mode: string cbr\n"},
    };
    for (const auto& c : cases) {
        Property stream = Node("s", {Property(C::TAG_BITRATE, 7)});
        Codec(MediaType::Audio)->ApplyPresetSettings(c.preset, stream);
        EXPECT_EQ(Dump(stream), std::string(c.settled) + g_defaultOptions);
    }
}

TEST(VideoPreset, WorksOutABitrate) {
    const Property bitrate(C::TAG_BITRATE, 64000);
    const Property quality(C::TAG_QUALITY, 4);
    const auto approval = [](bool approved) {
        return Node(C::TAG_CODEC_OPTIONS_ENCODE, {Property(V::TAG_APPROVED_VBR_MODE_ONLY, approved)});
    };
    const auto computed = [](double fps, int q) { return GetDefaultVideoBitrate("test", 1280, 720, fps, q); };
    const struct {
        const char* name;
        Property preset;
        const char* mode;
        long long bitrate;
        Ratio fps;
    } cases[] = {
        {"constant", Preset("cbr", {bitrate}), "cbr", 64000, {30000, 1001}},
        {"quality", Preset("vbr", {quality, bitrate}), "vbr", computed(30000 / 1001.0, 4), {30000, 1001}},
        {"not approved",
         Preset("vbr", {quality, bitrate, approval(false)}),
         "vbr",
         computed(30000 / 1001.0, 4),
         {30000, 1001}},
        {"approved", Preset("vbr", {quality, bitrate, approval(true)}), "vbr", 64000, {30000, 1001}},
        {"approved, none there",
         Preset("vbr", {quality, approval(true)}),
         "vbr",
         computed(30000 / 1001.0, 4),
         {30000, 1001}},
        {"automatic", Preset("cbr_auto", {bitrate, quality}), "cbr", computed(30000 / 1001.0, -1), {30000, 1001}},
        {"own rate", Preset("cbr_auto", {Property(V::TAG_FPS, Ratio(50, 1))}), "cbr", computed(50, -1), {50, 1}},
        {"zero rate",
         Preset("cbr_auto", {Property(V::TAG_FPS, Ratio(0, 1))}),
         "cbr",
         computed(30000 / 1001.0, -1),
         {30000, 1001}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Property stream = VideoStream();
        Codec(MediaType::Video)->ApplyPresetSettings(c.preset, stream);
        EXPECT_EQ(stream[C::TAG_BITRATE_MODE].GetString(), c.mode);
        EXPECT_EQ(stream[C::TAG_BITRATE].GetInt64(), c.bitrate);
        EXPECT_EQ(stream[V::TAG_FPS].GetRatio(), c.fps);
        EXPECT_EQ(stream.ChildExists(C::TAG_QUALITY), std::string(c.mode) == "vbr");
        // What the preset does not hold is reset.
        EXPECT_EQ(stream[V::TAG_BITS_PER_PIXEL].GetInt64(), 0);
        EXPECT_FALSE(stream[V::TAG_COVER_FLAG].GetBool());
    }
}

TEST(VideoPreset, CopiesWhatThePresetHolds) {
    Property stream = VideoStream();
    Codec(MediaType::Video)
        ->ApplyPresetSettings(
            Preset("cbr", {Property(C::TAG_BITRATE, 1), Property(V::TAG_MULTIPASS_ENCODING, "two_pass"),
                           Property(C::TAG_THREAD_NUMBER, 3), Property(V::TAG_MAX_B_FRAME_SEQUENCE, 2),
                           Property(V::TAG_MAX_I_FRAME_INTERVAL, 250), Property(V::TAG_BITS_PER_PIXEL, 30),
                           Property(V::TAG_COVER_FLAG, true),
                           Node(C::TAG_CODEC_OPTIONS_ENCODE, {Property(C::TAG_PROFILE, "high")})}),
            stream);
    EXPECT_EQ(Dump(stream),
              "s/width: int 1280\ns/height: int 720\ns/frame_rate: ratio 30000/1001\ns/bits_per_pixel: int "
              "30\ns/cover: bool true\n"
              "s/codec_id: string test\ns/key_frame_interval: int 250\ns/max_b_frames: int 2\ns/thread_number: int 3\n"
              "s/passes: string two_pass\ns/bitrate_mode: string cbr\ns/bitrate: int 1\n"
              "s/encode_options/profile: string high\ns/encode_options/preset: string slow\n");
}

TEST(Preset, AnEmptyOptionsNodeCountsAsAbsentAndDropsTheStreams) {
    for (const Property& options : {Node(C::TAG_CODEC_OPTIONS_ENCODE, {}), Property(C::TAG_CODEC_OPTIONS_ENCODE, 5)}) {
        Property stream = Node("s", {Node(C::TAG_CODEC_OPTIONS_ENCODE, {Property("old", 1)})});
        Codec(MediaType::Audio)->ApplyPresetSettings(Preset("cbr_auto", {options}), stream);
        EXPECT_EQ(Dump(stream["encode_options"]),
                  "encode_options/profile: string main\nencode_options/preset: string slow\n");
    }
}

TEST(Preset, RefusesInAFixedOrder) {
    Property foreign = Preset("sometimes");
    foreign["codec_id"] = "another";
    const struct {
        MediaType type;
        Property preset;
        const char* description;
        const char* written;
    } cases[] = {
        {MediaType::None, foreign, "Incompatible preset codec id: another, required test", "s: node\n"},
        {MediaType::None, Preset("sometimes"), "Unknown stream type", "s: node\n"},
        {MediaType::Audio, Preset("sometimes"), "Unknown bitrate mode", "s/codec_id: string test\n"},
    };
    for (const auto& c : cases) {
        Property stream(std::string("s"));
        const auto failure =
            CatchFrom<HelperException>([&] { TestCodec(c.type).ApplyPresetSettings(c.preset, stream); });
        EXPECT_EQ(TagOf<TagDescription>(failure), c.description);
        EXPECT_TRUE(TagOf<TagCallStack>(failure));
        EXPECT_EQ(Dump(stream), c.written);
    }
    Property stream = VideoStream();
    const auto failure =
        CatchFrom<HelperException>([&] { Codec(MediaType::Video)->ApplyPresetSettings(Preset("vbr"), stream); });
    EXPECT_EQ(TagOf<TagDescription>(failure), "Quality is required for VBR bitrate mode");
    EXPECT_EQ(stream[C::TAG_BITRATE_MODE].GetString(), "vbr") << "written before the failure";
    EXPECT_FALSE(stream.ChildExists(C::TAG_BITRATE));
}

TEST(Preset, MissingChildrenFailAsTheTreeDoes) {
    const auto missing = [](MediaType type, const Property& preset, Property stream) {
        return TagOf<TagDetails>(
            CatchFrom<Core::PropertyException>([&] { Codec(type)->ApplyPresetSettings(preset, stream); }));
    };
    EXPECT_EQ(missing(MediaType::Audio, Property(std::string("p")), VideoStream()), C::TAG_CODEC_ID);
    EXPECT_EQ(missing(MediaType::Audio, Preset("cbr"), VideoStream()), C::TAG_BITRATE);
    EXPECT_EQ(missing(MediaType::Audio, Preset("vbr", {Property(C::TAG_BITRATE, 1)}), VideoStream()), C::TAG_QUALITY);
    EXPECT_EQ(missing(MediaType::Video, Preset("cbr"), VideoStream()), C::TAG_BITRATE);
    EXPECT_EQ(missing(MediaType::Video, Preset("cbr_auto"), Property(std::string("s"))), V::TAG_WIDTH);
}

TEST(BitrateCorrection, FallsBackOnTheDefault) {
    const auto throwing = ConstraintMethod::Create([](const Property&) -> bool { throw std::bad_alloc(); }, "");
    const auto refusing = ConstraintMethod::Create([](const Property&) { return false; }, "");
    const auto range = ConstraintRange::Create(10LL, 20LL, 0LL);
    const struct {
        const char* name;
        bool present;
        SP<IPropertyConstraint> constraint;
        bool hasDefault;
        const char* corrected;
        bool throws;
    } cases[] = {
        {"absent, default", false, range, true, "s/bitrate: int 12\n", false},
        {"absent, no default", false, range, false, "s: node\n", false},
        {"no constraint, default", true, nullptr, true, "s/bitrate: int 12\n", false},
        {"no constraint, no default", true, nullptr, false, "s/bitrate: int 99\n", false},
        {"fixed", true, range, true, "s/bitrate: int 20\n", false},
        {"refused, default", true, refusing, true, "s/bitrate: int 12\n", false},
        {"refused, no default", true, refusing, false, "s/bitrate: int 99\n", false},
        {"throws, default", true, throwing, true, "s/bitrate: int 12\n", true},
        {"throws, no default", true, throwing, false, "s/bitrate: int 99\n", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TestCodec codec(MediaType::Video);
        codec.defaults = Node("d", {});
        if (c.hasDefault) codec.defaults->SetChildT(C::TAG_BITRATE, 12);
        codec.constraints["encode_options/bitrate"] = refusing;  // a longer key is not the tag
        if (c.constraint) codec.constraints[C::TAG_BITRATE] = c.constraint;
        Property stream(std::string("s"));
        if (c.present) stream.SetChildT(C::TAG_BITRATE, 99);
        if (c.throws) {
            EXPECT_THROW(codec.CorrectBitrate(stream), std::bad_alloc);
        } else {
            codec.CorrectBitrate(stream);
        }
        EXPECT_EQ(Dump(stream), c.corrected);
    }
}

TEST(VideoCorrection, BringsInFrameLimitsAndTakesBFramesFromFourCodecs) {
    int without = 0;
    for (const std::string& id : GetAllVideoCodecs()) {
        TestCodec codec(MediaType::Video, id);
        codec.defaults =
            Node("d", {Property(V::TAG_MAX_B_FRAME_SEQUENCE, 2), Property(V::TAG_MAX_I_FRAME_INTERVAL, 250)});
        Property fresh(std::string("s"));
        codec.CorrectFormatCodec(fresh);
        Property own = Node("s", {Property(V::TAG_MAX_B_FRAME_SEQUENCE, 5), Property(V::TAG_MAX_I_FRAME_INTERVAL, 9)});
        codec.CorrectFormatCodec(own);
        const bool loses = id == "mjpeg" || id == "flv1" || id == "wmv2" || id == "h263";
        EXPECT_EQ(Dump(fresh),
                  (loses ? "" : "s/max_b_frames: int 2\n") + std::string("s/key_frame_interval: int 250\n"))
            << id;
        EXPECT_EQ(Dump(own), (loses ? "" : "s/max_b_frames: int 5\n") + std::string("s/key_frame_interval: int 9\n"))
            << id;
        without += loses ? 1 : 0;
    }
    EXPECT_EQ(without, 4);
}

Property AudioStream(long long rate, const std::string& format, const std::string& layout) {
    return Node(A::TAG_FORMAT_CODEC_AUDIO, {Property(A::TAG_SAMPLE_RATE, rate), Property(A::TAG_SAMPLE_FORMAT, format),
                                            Property(A::TAG_LAYOUT, layout)});
}

TEST(AudioCorrection, TheFirstRuleAboutATagDecidesWhateverItsFirstHalf) {
    TestCodec codec(MediaType::Audio);
    const auto set = [](long long rate) { return ConstraintSet::Create(PairList<long long>{{"", rate}}); };
    const auto never = ConstraintMethod::Create([](const Property&) { return false; }, "");
    codec.rules = {{"/", PairValidationRule::Create("nowhere", never, "x/sample_rate", set(1))},
                   {"/", PairValidationRule::Create("nowhere", never, "x/sample_rate", set(2))}};
    Property stream = AudioStream(44100, "s16", "stereo");
    codec.CorrectFormatCodec(stream);
    EXPECT_EQ(TreeDiff(AudioStream(1, "s16", "stereo"), stream), "") << "no rule about the rest leaves it";
}

TEST(AudioCorrection, WhatCannotBeMadeLegalIsAFailureWithTheTagTheValueAndTheCodec) {
    TestCodec codec(MediaType::Audio);
    codec.defaults = Node("d", {Property(C::TAG_BITRATE, 12)});
    codec.rules = {
        {"/", PairValidationRule::Create("", nullptr, "x/sample_rate", ConstraintRange::Create(8000LL, 16000LL, 0LL))},
        {"/", PairValidationRule::Create("", nullptr, "x/sample_format",
                                         ConstraintMethod::Create([](const Property&) { return false; }, ""))}};
    Property stream = AudioStream(44100, "s16", "stereo");
    const auto failure = CatchFrom<std::logic_error>([&] { codec.CorrectFormatCodec(stream); });
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->what(), testing::StartsWith("Can't fix value [sample_format] = s16 for encoder [test]\n"));
    EXPECT_EQ(TreeDiff(AudioStream(16000, "s16", "stereo"), stream), "")
        << "the rate stays corrected, the bitrate is not reached";
}

TEST(AudioCorrection, NeedsTheThreeTagsOfTheAudioFormat) {
    Property stream = Node("s", {Property(A::TAG_SAMPLE_RATE, 1)});
    const auto failure =
        CatchFrom<Core::PropertyException>([&] { TestCodec(MediaType::Audio).CorrectFormatCodec(stream); });
    EXPECT_EQ(TagOf<TagDetails>(failure), A::TAG_SAMPLE_FORMAT);
}

TEST(Correction, OfAnotherMediaTypeIsRefused) {
    Property stream(std::string("s"));
    const auto failure = CatchFrom<HelperException>([&] { TestCodec(MediaType::None).CorrectFormatCodec(stream); });
    EXPECT_EQ(TagOf<TagDescription>(failure), "Unknown stream type");
    EXPECT_TRUE(TagOf<TagCallStack>(failure));
}

TEST(AudioCorrection, FollowsTheEncoderBeforeAacsOwnLists) {
    const FakeBuild build({{"aac",
                            {{},
                             {AV_SAMPLE_FMT_FLTP},
                             {44100, 48000},
                             {NativeLayout(AV_CH_LAYOUT_STEREO), NativeLayout(AV_CH_LAYOUT_HEXADECAGONAL)}}}});
    const auto aac = DataHelperAudioCodecAac::Create();
    const struct {
        long long asked;
        long long corrected;
    } bitrates[] = {{100000, 96000}, {80000, 64000}, {10000, 32000}, {600000, 512000}};
    for (const auto& [asked, corrected] : bitrates) {
        Property stream = AudioStream(46051, "s16", "hexadecagonal");
        stream.SetChildT(C::TAG_BITRATE, asked);
        stream.SetChildT(C::TAG_BITRATE_MODE, "vbr");
        stream.SetChildT(C::TAG_QUALITY, 3);
        aac->CorrectFormatCodec(stream);
        Property expected = AudioStream(48000, "fltp", "hexadecagonal");
        expected.SetChildT(C::TAG_BITRATE, corrected);
        expected.SetChildT(C::TAG_BITRATE_MODE, "cbr");
        expected.SetChildT(C::TAG_QUALITY, 3);
        EXPECT_EQ(TreeDiff(expected, stream), "");
    }
}

TEST(KeptAnswers, AreThoseOfAHelperThatSaysSo) {
    const auto bitrateOf = [](const TestCodec& codec) {
        Property stream = VideoStream();
        codec.CorrectFormatCodec(stream);
        return stream[C::TAG_BITRATE].GetInt64();
    };
    const SP<TestCodec> codec = Codec(MediaType::Video);
    for (const long long bitrate : {1, 2}) {
        codec->defaults->SetChildT(C::TAG_BITRATE, bitrate);
        EXPECT_EQ(bitrateOf(*codec), bitrate) << "a host's helper is asked each time";
    }
    codec->KeepAnswers();
    EXPECT_EQ(bitrateOf(*codec), 2);
    codec->defaults->SetChildT(C::TAG_BITRATE, 3);
    EXPECT_EQ(bitrateOf(*codec), 2);
    codec->Load();
    EXPECT_EQ(bitrateOf(*codec), 3) << "what changes the answers drops those that were kept";
}

}  // namespace
