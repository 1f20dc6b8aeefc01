#include <set>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using A = IFormatCodecAudio;

TEST(Vocabulary, EveryCodecIdIsFFmpegsNameOfACodecOfItsKind) {
    const auto expectKind = [](const std::vector<std::string>& ids, AVMediaType kind) {
        EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size());
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
    for (const std::string& id : {A::CODEC_ID_AUTO, std::string("h264\0x", 6)}) {
        EXPECT_EQ(CodecIDFromTextID(id), AV_CODEC_ID_NONE);
    }
    EXPECT_FALSE(IsVideoCodec(A::CODEC_ID_AUTO) || IsAudioCodec(A::CODEC_ID_AUTO) || IsVideoCodec(""));
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
    const auto sampleFormat = [](const auto& subject, const std::string& details) {
        EXPECT_EQ(FailureOf([&] { SampleFmtRecord::Find(subject); }), "Unknown sample format, details " + details);
    };
    const auto layout = [](const auto& subject, const std::string& details) {
        EXPECT_EQ(FailureOf([&] { LayoutRecord::Find(subject); }), "Unknown channel layout, details " + details);
    };
    for (const std::string name : {"no format", ""}) sampleFormat(name, name), layout(name, name);
    for (const int number : {-1, 1000}) {
        sampleFormat(static_cast<SampleFormats>(number), std::to_string(number));
        layout(static_cast<ChannelLayout>(number), std::to_string(number));
    }
    for (const int channels : {-1, 0, 65, 1000}) layout(channels, std::to_string(channels) + " channels");
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
