#include <set>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::HasSubstr;
using testing::Not;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using F = IFormatFile;
using P = IPreset;
using R = Proc::IResize;
using V = IFormatCodecVideo;
using Texts = std::vector<std::string>;

// clang-format off
/// What paths are made of.
Texts Tags() {
    return {
        C::TAG_CODEC_ID, C::TAG_BITRATE, C::TAG_BITRATE_MODE, C::TAG_QUALITY, C::TAG_CODEC_OPTIONS_ENCODE,
        C::TAG_PROFILE, C::TAG_PRESET, C::TAG_FORMAT, C::TAG_GLOBAL_HEADER, C::TAG_THREAD_NUMBER, C::TAG_FOURCC,
        C::TAG_LOSSLESS, C::TAG_MAIN_STREAM, A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT, A::TAG_LAYOUT,
        A::TAG_BITS_PER_SAMPLE, A::TAG_FORMAT_CODEC_AUDIO, V::TAG_WIDTH, V::TAG_HEIGHT, V::TAG_ASPECTX, V::TAG_ASPECTY,
        V::TAG_FPS, V::TAG_BITS_PER_PIXEL, V::TAG_MAX_B_FRAME_SEQUENCE, V::TAG_MAX_I_FRAME_INTERVAL,
        V::TAG_MULTIPASS_ENCODING, V::TAG_APPROVED_VBR_MODE_ONLY, V::TAG_COVER_FLAG, V::TAG_DISABLE_TRANSPARENCY,
        V::TAG_USE_HW_CONTEXT, V::TAG_FORMAT_CODEC_VIDEO, V::TAG_X264_TUNE, F::TAG_CONTAINER,
        F::TAG_DISABLE_FOR_LOSSLESS, F::TAG_DISK_SIZE, F::TAG_DVD_STANDARD, F::TAG_LIMITS, F::TAG_PROGRESSIVE_READ,
        F::TAG_PSP_MODE, P::KEY_FORMAT, P::KEY_STREAMS, P::KEY_TYPE_ID, P::INDEX, P::KEY_FILTER_VIDEO_CODEC,
        P::KEY_FILTER_AUDIO_CODEC, P::KEY_FILTER_SUBTITLE_CODEC, Proc::IFilterAudioVolume::VOLUME_VALUE,
        Proc::IFilterAudioFormatter::PACKET_DURATION, R::FRAME_SIZE_MODE, R::MODE, R::METHOD, R::SCALE,
        R::BACKGROUND_COLOR, Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID,
        Proc::IFilterAudioVolume::CLASS_ID, Proc::IFilterAudioFormatter::CLASS_ID, Proc::IAudioFormatter::CLASS_ID,
        Proc::IFilterFrameRate::CLASS_ID, Proc::IFilterResize::CLASS_ID, R::CLASS_ID,
    };
}
// clang-format on

TEST(Vocabulary, PatternDiffersFromPath) {
    const std::string pattern = P::KEY_STREAMS + P::INDEX + P::STREAM_TYPE_AUDIO;
    EXPECT_THAT(pattern, Not(HasSubstr(Core::Property::SEPARATOR)));
}

TEST(Vocabulary, TagsAndCodecIdsAreDistinctStepsOfAPath) {
    std::set<std::string> ids;
    for (const Texts& group : {Tags(), GetAllVideoCodecs(), GetAllAudioCodecs(), GetAllSubtitleCodecs()}) {
        if (group == GetAllVideoCodecs()) ids.clear();  // a codec may be called like a tag
        for (const std::string& text : group) {
            EXPECT_TRUE(ids.insert(text).second) << text << " twice";
            EXPECT_THAT(text, Not(HasSubstr(Core::Property::SEPARATOR)));
            EXPECT_NE(text, "");
        }
    }
}

TEST(Vocabulary, TheAudioTagsThatCorrectionLooksForOccurInNoOtherTag) {
    for (const std::string& wanted : {A::TAG_SAMPLE_RATE, A::TAG_SAMPLE_FORMAT, A::TAG_LAYOUT}) {
        for (const std::string& tag : Tags()) {
            EXPECT_TRUE(tag == wanted || tag.find(wanted) == std::string::npos) << tag;
        }
    }
}

TEST(Vocabulary, EveryCodecIdIsFFmpegsNameOfACodecOfItsKind) {
    const auto expectKind = [](const Texts& ids, AVMediaType kind) {
        for (const std::string& id : ids) {
            SCOPED_TRACE(id);
            const AVCodecID number = CodecIDFromTextID(id);
            ASSERT_NE(number, AV_CODEC_ID_NONE);
            EXPECT_EQ(avcodec_get_type(number), kind);
            EXPECT_EQ(GetFFCodecsMap().at(number), id);
            EXPECT_EQ(IsVideoCodec(id), kind == AVMEDIA_TYPE_VIDEO);
            EXPECT_EQ(IsAudioCodec(id), kind == AVMEDIA_TYPE_AUDIO);
        }
    };
    expectKind(GetAllVideoCodecs(), AVMEDIA_TYPE_VIDEO);
    expectKind(GetAllAudioCodecs(), AVMEDIA_TYPE_AUDIO);
    expectKind(GetAllSubtitleCodecs(), AVMEDIA_TYPE_SUBTITLE);
    for (const std::string& id : {C::CODEC_ID_AUTO, std::string("h264\0x", 6)}) {
        EXPECT_EQ(CodecIDFromTextID(id), AV_CODEC_ID_NONE);
    }
    EXPECT_FALSE(IsVideoCodec(C::CODEC_ID_AUTO) || IsAudioCodec(C::CODEC_ID_AUTO) || IsVideoCodec(""));
}

TEST(SampleFmtRecord, MirrorsFFmpegsFormats) {
    for (int number = 0; number < AV_SAMPLE_FMT_NB; ++number) {
        const auto format = static_cast<AVSampleFormat>(number);
        const std::string name = av_get_sample_fmt_name(format);
        SCOPED_TRACE(name);
        const SampleFmtRecord& record = SampleFmtRecord::Find(Proc::SampleFormatNorvexFromFFMPEG(format));
        const bool planar = av_sample_fmt_is_planar(format) != 0;
        const AVSampleFormat twin = planar ? av_get_packed_sample_fmt(format) : av_get_planar_sample_fmt(format);
        EXPECT_EQ(record.format, Proc::SampleFormatNorvexFromFFMPEG(format));
        EXPECT_EQ(record.name, name);
        EXPECT_EQ(record.bits, av_get_bytes_per_sample(format) * 8);
        EXPECT_EQ(record.planar, planar);
        EXPECT_EQ(record.twin, Proc::SampleFormatNorvexFromFFMPEG(twin));
        EXPECT_EQ(&SampleFmtRecord::Find(name), &record);
    }
}

TEST(LayoutRecord, HoldsEveryLayoutThatFFmpegNames) {
    void* position = nullptr;
    int count = 0;
    for (; const AVChannelLayout* layout = av_channel_layout_standard(&position); ++count) {
        char name[64] = "";
        av_channel_layout_describe(layout, name, sizeof name);
        SCOPED_TRACE(name);
        const LayoutRecord& record = LayoutRecord::Find(name);
        EXPECT_EQ(*record.name, name);
        EXPECT_EQ(record.channels, layout->nb_channels);
        EXPECT_EQ(Proc::NorvexFromAVChannelLayout(*layout), record.layout);
        EXPECT_TRUE(Proc::IsSupportedAVChannelLayoutMask(layout->u.mask));
    }
    EXPECT_GE(count, 28);
    EXPECT_EQ(LayoutRecord::Find(A::TAG_CH_LAYOUT_UNKNOWN).channels, 0);
    EXPECT_EQ(LayoutRecord::Find(A::TAG_CH_LAYOUT_UNKNOWN).layout, ChannelLayout::Unknown);
}

TEST(LayoutRecord, DefaultOfACountIsFFmpegsOwn) {
    int found = 0;
    for (int channels = 1; channels <= 64; ++channels) {
        SCOPED_TRACE(channels);
        AVChannelLayout layout{};
        av_channel_layout_default(&layout, channels);
        const LayoutRecord* const record = LayoutRecord::FindDefault(channels);
        ASSERT_EQ(record != nullptr, layout.order == AV_CHANNEL_ORDER_NATIVE);
        if (record == nullptr) continue;
        ++found;
        EXPECT_EQ(record, &LayoutRecord::Find(channels));
        EXPECT_EQ(record->channels, channels);
        EXPECT_EQ(record->layout, Proc::NorvexFromAVChannelLayout(layout));
    }
    EXPECT_GE(found, 8);
    EXPECT_EQ(LayoutRecord::Find(4).name, &A::TAG_CH_LAYOUT_4POINT0);
}

TEST(Records, FailWithTheSubjectForWhatTheyDoNotHold) {
    const auto expect = [](const auto& subject, auto find, const std::string& details) {
        SCOPED_TRACE(details);
        const auto failure = CatchFrom<FormatException>([&] { find(subject); });
        EXPECT_EQ(TagOf<TagDetails>(failure), details);
        EXPECT_NE(TagOf<TagDescription>(failure).value_or(""), "");
    };
    const auto sampleFormat = [](const auto& subject) { SampleFmtRecord::Find(subject); };
    const auto layout = [](const auto& subject) { LayoutRecord::Find(subject); };
    expect(std::string("no format"), sampleFormat, "no format");
    expect(std::string(), sampleFormat, "");
    expect(SampleFormats::None, sampleFormat, "-1");
    expect(static_cast<SampleFormats>(1000), sampleFormat, "1000");
    expect(std::string("no layout"), layout, "no layout");
    expect(static_cast<ChannelLayout>(-1), layout, "-1");
    expect(static_cast<ChannelLayout>(1000), layout, "1000");
    for (const int channels : {-1, 0, 65, 1000}) expect(channels, layout, std::to_string(channels) + " channels");
}

TEST(LayoutConversion, KnowsNoLayoutOfAnotherOrderOrMaskAndTellsTheEndOfAList) {
    const AVChannelLayout end{}, unordered = UnorderedLayout(2), nameless = NativeLayout(AV_CH_TOP_CENTER);
    EXPECT_EQ(Proc::NorvexFromAVChannelLayout(unordered), ChannelLayout::Unknown);
    EXPECT_EQ(Proc::NorvexFromAVChannelLayout(nameless), ChannelLayout::Unknown);
    EXPECT_FALSE(Proc::IsSupportedAVChannelLayoutMask(nameless.u.mask) || Proc::IsSupportedAVChannelLayoutMask(0));
    EXPECT_TRUE(Proc::IsValid(unordered) && Proc::IsValid(nameless) && !Proc::IsValid(end));
    EXPECT_TRUE(Proc::IsZeroed(nullptr) && Proc::IsZeroed(&end));
    EXPECT_FALSE(Proc::IsZeroed(&unordered) || Proc::IsZeroed(&nameless));
}

}  // namespace
