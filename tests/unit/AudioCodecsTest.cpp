#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using A = IFormatCodecAudio;

SP<IDataHelper> PcmS16() {
    return DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S16LE);
}
SP<IDataHelper> Automatic() {
    return DataHelperAudioCodecEmpty::Create(A::CODEC_ID_AUTO);
}

using Mp2 = DataHelperAudioCodecMp2;
using Flac = DataHelperAudioCodecFlac;
using Alac = DataHelperAudioCodecAlac;

TEST(AudioCodecs, PcmCountsWhatItsEncoderTakesAndTellsWhatItStores) {
    const struct {
        const std::string& codecId;
        AVSampleFormat format;
        int taken;
        int stored;
    } cases[] = {
        {A::CODEC_ID_PCM_U8, AV_SAMPLE_FMT_U8, 8, 8},       {A::CODEC_ID_PCM_S16LE, AV_SAMPLE_FMT_S16, 16, 16},
        {A::CODEC_ID_PCM_S24LE, AV_SAMPLE_FMT_S32, 32, 24}, {A::CODEC_ID_PCM_S32BE, AV_SAMPLE_FMT_S32, 32, 32},
        {A::CODEC_ID_PCM_BLURAY, AV_SAMPLE_FMT_S32, 32, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codecId);
        const FakeBuild build(std::map<std::string, FakeEncoder>{{c.codecId, {{}, {c.format}, {}, {}}}});
        Property stream = Tree("s{sample_rate: 44100, sample_format: dblp, channel_layout: stereo}");
        DataHelperAudioCodecPCM::Create(c.codecId)->CorrectFormatCodec(stream);
        EXPECT_EQ(stream[A::TAG_BITRATE].GetInt64(), 44100 * 2 * c.taken);
        EXPECT_EQ(DataHelperAudioCodecPCM::GetStoredBitsPerSample(c.codecId), c.stored);
    }
}

TEST(AudioCodecs, ABitrateNeedsAllItsValuesBeforeANameIsLookedUp) {
    const Property whole = Tree("s{sample_rate: 48000, sample_format: nothing, channel_layout: nowhere}");
    for (const Property& child : whole) {
        Property stream = whole;
        stream.RemoveChild(child.GetName());
        EXPECT_THROW(Flac::CalculateBitrate(stream), Core::PropertyException) << child.GetName();
    }
    EXPECT_EQ(FailureOf<FormatException>([&] { Flac::CalculateBitrate(whole); }),
              "Unknown channel layout, details nowhere");
}

TEST(AudioCodecs, TheListOfTheCallerDecidesWhatAacAndMp2Add) {
    ConstraintMap constraints = {{"filter_resample/resample/channel_layout", nullptr}};
    DataHelperAudioCodecAac::Create()->GetConstraints(constraints);
    EXPECT_FALSE(constraints.at("filter_resample/resample/channel_layout")) << "it is there";
    RuleList rules = CollectRules(*PcmS16());
    rules.emplace_back("/", nullptr);
    DataHelperAudioCodecAac::Create()->GetValidationRules(rules);
    Mp2::Create()->GetValidationRules(rules);
    std::vector<std::string> paths;
    for (const auto& [key, rule] : rules) paths.push_back(rule ? rule->GetSecondPath() : "");
    EXPECT_THAT(paths, ElementsAre("filter_resample/resample/channel_layout", "", "audio_codec/bitrate",
                                   "filter_resample/resample/sample_rate"));
}

TEST(AudioCodecs, WhatHasNoBitrateToChooseTakesNothingFromAPreset) {
    const Property preset =
        Node("audio_codec", {Property(A::TAG_CODEC_ID, "another"), Property(A::TAG_BITRATE_MODE, "cbr"),
                             Property(A::TAG_BITRATE, 5), Node(A::TAG_CODEC_OPTIONS_ENCODE, {Property("level", 5)})});
    const struct {
        SP<IDataHelper> helper;
        const char* dump;
    } cases[] = {
        {Flac::Create(), "s/codec_id: string flac\n"},
        {Alac::Create(), "s/codec_id: string alac\n"},
        {PcmS16(), "s/codec_id: string pcm_s16le\ns/encode_options/level: int 5\n"},
        {Automatic(), "s: node\n"},
    };
    for (const auto& c : cases) {
        Property stream(std::string("s"));
        c.helper->ApplyPresetSettings(preset, stream);
        EXPECT_EQ(Dump(stream), c.dump);
    }
}

}  // namespace
