// What the codec base makes of a preset, and of a stream that is not legal.

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using Core::Ratio;
using C = IFormatCodec;
using V = IFormatCodecVideo;

SP<TestCodec> Codec(MediaType type) {
    SP<TestCodec> codec(new TestCodec(type));
    codec->defaults = Tree("defaults{codec_id: test, encode_options: {profile: main, preset: slow}}");
    return codec;
}

Property Preset(const std::string& mode, const std::string& more = {}) {
    return Tree("preset{codec_id: test, bitrate_mode: " + mode + (more.empty() ? "" : ", ") + more + "}");
}

Property VideoStream() {
    return Tree("s{width: 1280, height: 720, frame_rate: 30000/1001, bits_per_pixel: 24, cover: true}");
}

const char* const g_defaultOptions = "s/encode_options/profile: string main\ns/encode_options/preset: string slow\n";

TEST(AudioPreset, MovesModeBitrateAndQuality) {
    const struct {
        const char *mode, *values, *settled;
    } cases[] = {
        {"cbr", "quality: 4, bitrate: 64000",
         "s/bitrate: int 64000\ns/codec_id: string test\ns/bitrate_mode: string cbr\n"},
        {"vbr", "bitrate: 64000, quality: 4",
         "s/bitrate: int 64000\ns/codec_id: string test\ns/bitrate_mode: string vbr\ns/quality: int 4\n"},
        {"cbr_auto", "bitrate: 64000", "s/bitrate: int 7\ns/codec_id: string test\ns/bitrate_mode: string cbr\n"},
    };
    for (const auto& c : cases) {
        Property stream = Tree("s{bitrate: 7}");
        Codec(MediaType::Audio)->ApplyPresetSettings(Preset(c.mode, c.values), stream);
        EXPECT_EQ(Dump(stream), std::string(c.settled) + g_defaultOptions);
    }
}

TEST(VideoPreset, WorksOutABitrate) {
    const auto computed = [](double fps, int q) { return GetDefaultVideoBitrate("test", 1280, 720, fps, q); };
    const std::string asked = "quality: 4, bitrate: 64000", approved = "encode_options: {approved_vbr_only: ";
    const Ratio own(30000, 1001);
    const struct {
        const char* preset;
        std::string values, mode;
        long long bitrate;
        Ratio fps;
    } cases[] = {
        {"cbr", "bitrate: 64000", "cbr", 64000, own},
        {"vbr", asked, "vbr", computed(30000 / 1001.0, 4), own},
        {"vbr", asked + ", " + approved + "false}", "vbr", computed(30000 / 1001.0, 4), own},
        {"vbr", asked + ", " + approved + "true}", "vbr", 64000, own},
        {"vbr", "quality: 4, " + approved + "true}", "vbr", computed(30000 / 1001.0, 4), own},
        {"cbr_auto", asked, "cbr", computed(30000 / 1001.0, -1), own},
        {"cbr_auto", "frame_rate: 50/1", "cbr", computed(50, -1), {50, 1}},
        {"cbr_auto", "frame_rate: 0/1", "cbr", computed(30000 / 1001.0, -1), own},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.preset + c.values);
        Property stream = VideoStream();
        Codec(MediaType::Video)->ApplyPresetSettings(Preset(c.preset, c.values), stream);
        EXPECT_EQ(stream[C::TAG_BITRATE_MODE].GetString(), c.mode);
        EXPECT_EQ(stream[C::TAG_BITRATE].GetInt64(), c.bitrate);
        EXPECT_EQ(stream[V::TAG_FPS].GetRatio(), c.fps);
        EXPECT_EQ(stream.ChildExists(C::TAG_QUALITY), c.mode == "vbr");
        // What the preset does not hold is reset.
        EXPECT_EQ(stream[V::TAG_BITS_PER_PIXEL].GetInt64(), 0);
        EXPECT_FALSE(stream[V::TAG_COVER_FLAG].GetBool());
    }
}

TEST(VideoPreset, CopiesWhatThePresetHolds) {
    Property stream = VideoStream();
    Codec(MediaType::Video)
        ->ApplyPresetSettings(
            Preset("cbr",
                   "bitrate: 1, passes: two_pass, thread_number: 3, max_b_frames: 2, key_frame_interval: 250, "
                   "bits_per_pixel: 30, cover: true, encode_options: {profile: high}"),
            stream);
    EXPECT_EQ(PropertyValueToString(stream),
              "{width: 1280, height: 720, frame_rate: 30000/1001, bits_per_pixel: 30, cover: true, codec_id: test, "
              "key_frame_interval: 250, max_b_frames: 2, thread_number: 3, passes: two_pass, bitrate_mode: cbr, "
              "bitrate: 1, encode_options: {profile: high, preset: slow}}");
}

TEST(Preset, AnEmptyOptionsNodeCountsAsAbsentAndDropsTheStreams) {
    for (const char* const options : {"encode_options: {}", "encode_options: 5"}) {
        Property stream = Tree("s{encode_options: {old: 1}}");
        Codec(MediaType::Audio)->ApplyPresetSettings(Preset("cbr_auto", options), stream);
        EXPECT_EQ(Dump(stream["encode_options"]),
                  "encode_options/profile: string main\nencode_options/preset: string slow\n");
    }
}

TEST(Preset, RefusesInAFixedOrder) {
    const Property foreign = Tree("preset{codec_id: another, bitrate_mode: sometimes}");
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
        EXPECT_EQ(FailureOf<HelperException>([&] { TestCodec(c.type).ApplyPresetSettings(c.preset, stream); }),
                  std::string(c.description) + ", stack");
        EXPECT_EQ(Dump(stream), c.written);
    }
    Property stream = VideoStream();
    EXPECT_EQ(FailureOf<HelperException>([&] { Codec(MediaType::Video)->ApplyPresetSettings(Preset("vbr"), stream); }),
              "Quality is required for VBR bitrate mode, stack");
    EXPECT_EQ(stream[C::TAG_BITRATE_MODE].GetString(), "vbr") << "written before the failure";
    EXPECT_FALSE(stream.ChildExists(C::TAG_BITRATE));
}

TEST(Preset, MissingChildrenFailAsTheTreeDoes) {
    const std::tuple<MediaType, Property, Property, std::string> cases[] = {
        {MediaType::Audio, Property(std::string("p")), VideoStream(), "codec_id, node p of node"},
        {MediaType::Audio, Preset("cbr"), VideoStream(), "bitrate, node preset of node"},
        {MediaType::Audio, Preset("vbr", "bitrate: 1"), VideoStream(), "quality, node preset of node"},
        {MediaType::Video, Preset("cbr"), VideoStream(), "bitrate, node preset of node"},
        {MediaType::Video, Preset("cbr_auto"), Property(std::string("s")), "width, node s of node"},
        {MediaType::None, Property(), Tree("s{sample_rate: 1}"), "sample_format, node s of node"},  // not applied
    };
    for (const auto& [type, preset, stream, missing] : cases) {
        EXPECT_THAT(FailureOf<Core::PropertyException>([&, &type = type, &preset = preset, changed = stream]() mutable {
                        type == MediaType::None ? TestCodec(MediaType::Audio).CorrectFormatCodec(changed)
                                                : Codec(type)->ApplyPresetSettings(preset, changed);
                    }),
                    testing::StartsWith("There is no such child, details " + missing));
    }
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
    } cases[] = {
        {"absent, default", false, range, true, "s/bitrate: int 12\n"},
        {"absent, no default", false, range, false, "s: node\n"},
        {"no constraint, default", true, nullptr, true, "s/bitrate: int 12\n"},
        {"no constraint, no default", true, nullptr, false, "s/bitrate: int 99\n"},
        {"fixed", true, range, true, "s/bitrate: int 20\n"},
        {"refused, default", true, refusing, true, "s/bitrate: int 12\n"},
        {"refused, no default", true, refusing, false, "s/bitrate: int 99\n"},
        {"throws, default", true, throwing, true, "s/bitrate: int 12\n"},
        {"throws, no default", true, throwing, false, "s/bitrate: int 99\n"},
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
        if (c.constraint == throwing) {
            EXPECT_THROW(codec.CorrectBitrate(stream), std::bad_alloc);
        } else {
            codec.CorrectBitrate(stream);
        }
        EXPECT_EQ(Dump(stream), c.corrected);
    }
}

Property AudioStream(long long rate, const std::string& format, const std::string& layout) {
    return Tree("format_codec_audio{sample_rate: " + std::to_string(rate) + ", sample_format: " + format +
                ", channel_layout: " + layout + "}");
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
    codec.defaults = Tree("d{bitrate: 12}");
    codec.rules = {
        {"/", PairValidationRule::Create("", nullptr, "x/sample_rate", ConstraintRange::Create(8000LL, 16000LL, 0LL))},
        {"/", PairValidationRule::Create("", nullptr, "x/sample_format",
                                         ConstraintMethod::Create([](const Property&) { return false; }, ""))}};
    Property stream = AudioStream(44100, "s16", "stereo");
    EXPECT_THAT([&] { codec.CorrectFormatCodec(stream); },
                testing::ThrowsMessage<std::logic_error>(
                    testing::StartsWith("Can't fix value [sample_format] = s16 for encoder [test]\n")));
    EXPECT_EQ(TreeDiff(AudioStream(16000, "s16", "stereo"), stream), "")
        << "the rate stays corrected, the bitrate is not reached";
}

TEST(Correction, OfAnotherMediaTypeIsRefused) {
    Property stream(std::string("s"));
    EXPECT_EQ(FailureOf<HelperException>([&] { TestCodec(MediaType::None).CorrectFormatCodec(stream); }),
              "Unknown stream type, stack");
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
