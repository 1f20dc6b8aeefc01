#include <gmock/gmock.h>

#include <cmath>
#include <random>
#include <sstream>

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
using A = IFormatCodecAudio;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// A stream's tree from "RATE FORMAT LAYOUT MODE BITRATE QUALITY", where "-" leaves a child out, and back.
const std::string g_tags[] = {"sample_rate", "sample_format", "channel_layout", "bitrate_mode", "bitrate", "quality"};

Property Stream(const std::string& text) {
    Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    std::istringstream words(text);
    std::string word;
    for (const std::string& tag : g_tags) {
        if (!(words >> word) || word == "-") continue;
        const bool isNumber = tag == A::TAG_SAMPLE_RATE || tag == A::TAG_BITRATE || tag == A::TAG_QUALITY;
        if (isNumber) {
            stream.SetChildT(tag, std::stoll(word));
        } else {
            stream.SetChildT(tag, word);
        }
    }
    return stream;
}

std::string Text(const Property& stream) {
    std::string text;
    for (const std::string& tag : g_tags) {
        text += (text.empty() ? "" : " ") +
                (stream.ChildExists(tag) ? Core::PropertyValueToString(stream[tag]) : std::string("-"));
    }
    return text;
}

SP<IDataHelper> PcmS16() {
    return DataHelperAudioCodecPCM::Create(A::CODEC_ID_PCM_S16LE);
}
SP<IDataHelper> Automatic() {
    return DataHelperAudioCodecEmpty::Create(A::CODEC_ID_AUTO);
}

struct Correction {
    const char* name;
    SP<IDataHelper> (*create)();
    const char* asked;
    const char* corrected;
};

void PrintTo(const Correction& c, std::ostream* out) {
    *out << c.name << ": " << c.asked;
}

class AudioCorrection : public testing::TestWithParam<Correction> {};

/// In a build without encoders, where the hand-written lists stand alone.
TEST_P(AudioCorrection, FollowsTheHandWrittenLists) {
    const auto helper = GetParam().create();
    Property stream = Stream(GetParam().asked);
    helper->CorrectFormatCodec(stream);
    EXPECT_EQ(Text(stream), GetParam().corrected);
    helper->CorrectFormatCodec(stream);
    EXPECT_EQ(Text(stream), GetParam().corrected) << "a second correction changed something";
}

using Mp3 = DataHelperAudioCodecMp3;
using Mp2 = DataHelperAudioCodecMp2;
using Ac3 = DataHelperAudioCodecAc3;
using Dts = DataHelperAudioCodecDTS;
using Vorbis = DataHelperAudioCodecVorbis;
using Flac = DataHelperAudioCodecFlac;
using Alac = DataHelperAudioCodecAlac;
using Amr = DataHelperAudioCodecAmrNB;
using Wma = DataHelperAudioCodecWmav2;

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, AudioCorrection, testing::Values(
    Correction{"Mp3Caps22050",      &Mp3::Create, "22050 s16 stereo cbr 192000 -",     "22050 s16 stereo cbr 160000 1"},
    Correction{"Mp3Caps8000",       &Mp3::Create, "8000 s16 stereo cbr 128000 5",      "8000 s16 stereo cbr 64000 5"},
    Correction{"Mp3Keeps44100",     &Mp3::Create, "44100 s16 stereo cbr 128000 52",    "44100 s16 stereo cbr 128000 51"},
    Correction{"Mp3CapsTheDefault", &Mp3::Create, "22050 s16 stereo - - -",            "22050 s16 stereo cbr 160000 1"},
    Correction{"Mp3UnknownMode",    &Mp3::Create, "44100 s16 stereo cbr_auto 128000 1", "44100 s16 stereo vbr 128000 1"},
    Correction{"Mp2Rate",           &Mp2::Create, "22050 s16 stereo vbr 50000 7",      "32000 s16 stereo cbr 48000 7"},
    Correction{"Ac3Nearest",        &Ac3::Create, "44100 fltp stereo cbr 300000 -",    "44100 fltp stereo cbr 320000 -"},
    Correction{"Ac3Tie",            &Ac3::Create, "44100 fltp stereo cbr 288000 -",    "44100 fltp stereo cbr 256000 -"},
    Correction{"Ac3Low",            &Ac3::Create, "96000 fltp 5.1 vbr 50000 -",        "48000 fltp stereo cbr 64000 -"},
    Correction{"Ac3High",           &Ac3::Create, "44100 fltp mono cbr 640000 -",      "44100 fltp mono cbr 448000 -"},
    Correction{"DtsKeepsAnything",  &Dts::Create, "1 s16 9.9 sometimes 1 99",          "1 s16 9.9 sometimes 1 99"},
    Correction{"DtsFillsGaps",      &Dts::Create, "44100 s32 5.1 - - 4",               "44100 s32 5.1 cbr 256000 4"},
    Correction{"VorbisExact",       &Vorbis::Create, "44100 fltp stereo cbr 128000 1", "44100 fltp stereo cbr 128000 1"},
    Correction{"VorbisTop",         &Vorbis::Create, "44100 fltp mono cbr 320000 1",   "44100 fltp mono cbr 224000 1"},
    Correction{"VorbisKeepsRate",   &Vorbis::Create, "8000 fltp stereo cbr 128000 1",  "8000 fltp stereo cbr 80000 1"},
    Correction{"VorbisKeepsLayout", &Vorbis::Create, "8000 fltp 7.1 cbr 16000 1",      "8000 fltp 7.1 cbr 64000 1"},
    Correction{"VorbisTie",         &Vorbis::Create, "48000 fltp mono cbr 40000 -",    "48000 fltp mono cbr 32000 1"},
    Correction{"FlacStereo",        &Flac::Create, "44100 s16 stereo cbr 1 9",         "44100 s16 stereo vbr 940999 9"},
    Correction{"FlacMono",          &Flac::Create, "8000 s16 mono - - -",              "8000 s16 mono vbr 101000 -"},
    Correction{"FlacBeyondSix",     &Flac::Create, "48000 s16 7.1 cbr 7 -",            "48000 s16 7.1 vbr 1119002 -"},
    Correction{"FlacRateTie",       &Flac::Create, "12000 s16 mono cbr 7 -",           "8000 s16 mono vbr 101000 -"},
    Correction{"AlacHasNoRules",    &Alac::Create, "12000 s16 mono cbr 7 -",           "12000 s16 mono vbr 101000 -"},
    Correction{"AlacHighRate",      &Alac::Create, "100000 s16 mono cbr 7 -",          "100000 s16 mono vbr 584999 -"},
    Correction{"PcmStereo",         &PcmS16,       "48000 s16 stereo vbr 1 3",         "48000 s16 stereo cbr 1536000 3"},
    Correction{"PcmRateTie",        &PcmS16,       "7000 s16 mono - - -",              "6000 s16 mono cbr 96000 -"},
    Correction{"PcmLayout",         &PcmS16,       "44100 s32 7.1 - - -",              "44100 s32 5.1(side) cbr 8467200 -"},
    Correction{"AutomaticKeepsAll", &Automatic,    "7 u8 mono vbr 1 99",               "7 u8 mono vbr 1 99"},
    Correction{"AmrNearest",        &Amr::Create,  "44100 s16 stereo vbr 9000 5",      "8000 s16 mono cbr 7950 5"},
    Correction{"AmrTop",            &Amr::Create,  "8000 s16 mono cbr 12000 -",        "8000 s16 mono cbr 12200 -"},
    Correction{"WmaMode",           &Wma::Create,  "48000 fltp 5.1 cbr_auto 240000 0", "48000 fltp stereo cbr 224000 1"},
    Correction{"WmaQuality",        &Wma::Create,  "24000 fltp mono vbr 32000 60",     "22050 fltp mono vbr 32000 51"}),
    [](const auto& test) { return std::string(test.param.name); });
// clang-format on

TEST(AudioCodecs, OnlyMp2OverrulesTheEncodersRates) {
    const FakeEncoder encoder = {{}, {AV_SAMPLE_FMT_S16}, {22050, 24000, 96000}, {}};
    const FakeBuild build({{"mp2", encoder}, {"mp3", encoder}, {"ac3", encoder}, {"dts", encoder}});
    EXPECT_THAT(
        RulesOf(*Mp2::Create()),
        ElementsAre("audio_codec/codec_id in mp2 -> filter_resample/resample/sample_format in s16",
                    "audio_codec/codec_id in mp2 -> filter_resample/resample/sample_rate in 32000, 44100, 48000"));
    EXPECT_THAT(RulesOf(*Ac3::Create()).front(), testing::EndsWith("sample_rate in 22050, 24000, 96000"));
    EXPECT_THAT(RulesOf(*Dts::Create()), ElementsAre());
    Property stream = Stream("44100 s16 stereo cbr 320000 1");
    Mp3::Create()->CorrectFormatCodec(stream);
    EXPECT_EQ(Text(stream), "24000 s16 stereo cbr 160000 1") << "the cap follows the rate that the encoder has";
}

TEST(AudioCodecs, SurroundAc3IsCorrectButNotValid) {
    const FakeBuild build({{"ac3", {{}, {}, {}, {NativeLayout(AV_CH_LAYOUT_5POINT1)}}}});
    const auto ac3 = Ac3::Create();
    Property stream = Stream("48000 fltp 5.1(side) cbr 448000 -");
    ac3->CorrectFormatCodec(stream);
    EXPECT_EQ(Text(stream), "48000 fltp 5.1(side) cbr 448000 -");
    int refused = 0;
    for (const auto& [key, rule] : CollectRules(*ac3)) {
        if (rule->GetSecondPath() == "filter_resample/resample/channel_layout") {
            refused += rule->GetSecondConstraint()->IsValid(stream[A::TAG_LAYOUT]) ? 0 : 1;
        }
    }
    EXPECT_EQ(refused, 1);
}

TEST(AudioCodecs, Mp3TiesTheBitrateToTheRate) {
    EXPECT_THAT(RulesOf(*Mp3::Create()),
                testing::IsSupersetOf({
                    std::string("filter_resample/resample/sample_rate in 8000, 11025, 12000 -> audio_codec/bitrate in "
                                "32000, 64000"),
                    std::string("filter_resample/resample/sample_rate in 16000 -> audio_codec/bitrate in 32000, 64000, "
                                "96000, 128000"),
                    std::string("filter_resample/resample/sample_rate in 22050, 24000 -> audio_codec/bitrate in 32000, "
                                "64000, 96000, 128000, 160000"),
                }));
    // Whatever correction makes of a listed rate and bitrate keeps every rule of its own.
    for (const long long rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
        for (long long bitrate = 0; bitrate <= 400000; bitrate += 8000) {
            Property stream = Stream(std::to_string(rate) + " s16 stereo cbr " + std::to_string(bitrate) + " 1");
            const auto mp3 = Mp3::Create();
            mp3->CorrectFormatCodec(stream);
            Property root(std::string("preset"));
            root.SetChild("audio_codec", stream).SetChildT(A::TAG_CODEC_ID, A::CODEC_ID_MP3);
            root.SetChild("filter_resample").SetChild("resample", stream);
            for (const auto& [key, rule] : CollectRules(*mp3)) {
                EXPECT_TRUE(rule->IsValid(root)) << Text(stream) << ' ' << rule->GetSecondPath();
            }
        }
    }
}

/// The legal combinations of Vorbis, written out in a way of their own: for each count of channels and each rate the
/// places of the first and last bitrate in the list.
struct Record {
    long long channels;
    long long rate;
    long long bitrate;
};

std::vector<Record> VorbisRecords() {
    const long long bitrates[] = {16, 32, 48, 64, 80, 96, 112, 128, 160, 192, 224, 256, 288, 320};
    const long long rates[] = {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000};
    const char* const runs[] = {"ab ac af ae ae bi bk bk", "ae af bj bi bi cn cn cn", "bg ch cm cl cl fn fn fn",
                                "bi cj dn dn dn hn hn hn", "cj dk en en en in in in", "ck em fn fn fn jn jn jn",
                                "dm fn gn gn gn kn kn kn", "dn fn hn hn hn ln ln ln"};
    std::vector<Record> records;
    for (long long channels = 1; channels <= 8; ++channels) {
        for (std::size_t r = 0; r < 8; ++r) {
            const char* const run = runs[channels - 1] + 3 * r;
            for (char place = run[0]; place <= run[1]; ++place) {
                records.push_back({channels, rates[r], bitrates[place - 'a'] * 1000});
            }
        }
    }
    return records;
}

TEST(AudioCodecs, VorbisGoesToTheNearestCombination) {
    // An encoder that takes everything leaves the choice to the search.
    std::vector<int> rates;
    for (int rate = 11025; rate <= 100000; rate += 275) rates.push_back(rate);
    std::vector<AVChannelLayout> layouts;
    for (int channels = 1; channels <= 24; ++channels) {
        if (LayoutRecord::FindDefault(channels) != nullptr) layouts.push_back(UnorderedLayout(channels));
    }
    const FakeBuild build({{"vorbis", {{}, {}, rates, layouts}}});
    const auto vorbis = Vorbis::Create();
    const std::vector<Record> records = VorbisRecords();
    ASSERT_EQ(records.size(), 490U);

    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> anyRate(0, rates.size() - 1);
    std::uniform_int_distribution<std::size_t> anyLayout(0, layouts.size() - 1);
    const long long bitrates[] = {16000, 32000, 48000, 64000, 80000, 96000, 112000, 128000, 160000, 320000};
    int moved = 0;
    for (int i = 0; i < 2000; ++i) {
        const LayoutRecord& layout = LayoutRecord::Find(layouts[anyLayout(random)].nb_channels);
        const long long rate = rates[anyRate(random)];
        const long long bitrate = bitrates[random() % std::size(bitrates)];
        const auto distance = [&](const Record& record) {
            const double c = 100.0 * static_cast<double>(std::abs(record.channels - layout.channels)) / 8;
            const double r = 10.0 * static_cast<double>(std::abs(record.rate - rate)) / 48000;
            const double b = static_cast<double>(std::abs(record.bitrate - bitrate)) / 320000;
            return std::sqrt(c * c + r * r + b * b);
        };
        const Record* best = &records.front();
        for (const Record& record : records) {
            if (distance(record) < distance(*best)) best = &record;
        }
        const std::string name = best->channels == layout.channels
                                     ? *layout.name
                                     : *LayoutRecord::Find(static_cast<int>(best->channels)).name;
        Property stream =
            Stream(std::to_string(rate) + " fltp " + *layout.name + " cbr " + std::to_string(bitrate) + " 1");
        const std::string asked = Text(stream);
        vorbis->CorrectFormatCodec(stream);
        EXPECT_EQ(Text(stream),
                  std::to_string(best->rate) + " fltp " + name + " cbr " + std::to_string(best->bitrate) + " 1")
            << asked;
        moved += Text(stream) == asked ? 0 : 1;
    }
    EXPECT_GT(moved, 500);
}

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
        Property stream = Stream("44100 dblp stereo - - -");
        DataHelperAudioCodecPCM::Create(c.codecId)->CorrectFormatCodec(stream);
        EXPECT_EQ(stream[A::TAG_BITRATE].GetInt64(), 44100 * 2 * c.taken);
        EXPECT_EQ(DataHelperAudioCodecPCM::GetStoredBitsPerSample(c.codecId), c.stored);
    }
}

TEST(AudioCodecs, ABitrateNeedsAllItsValuesBeforeANameIsLookedUp) {
    for (const char* const text : {"- s16 nowhere", "48000 - nowhere", "48000 nothing -"}) {
        EXPECT_THROW(Flac::CalculateBitrate(Stream(text)), Core::PropertyException) << text;
    }
    const auto failure = CatchFrom<FormatException>([] { Flac::CalculateBitrate(Stream("48000 nothing nowhere")); });
    EXPECT_EQ(TagOf<TagDetails>(failure), "nowhere");
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

TEST(AudioCodecs, TheAutomaticCodecIsPinnedToTheSource) {
    EXPECT_THAT(RulesOf(*Automatic()),
                ElementsAre("audio_codec/codec_id in auto -> filter_resample/resample/sample_rate in -1",
                            "audio_codec/codec_id in auto -> filter_resample/resample/channel_layout in unknown"));
    EXPECT_THAT(ConstraintsOf(*Automatic()), ElementsAre("bitrate_mode in cbr_auto"));
}

TEST(AudioCodecs, EveryDefaultIsLegalForItsOwnHelper) {
    const auto& helpers = GetAvailableDataHelpers(IPreset::KEY_FILTER_AUDIO_CODEC);
    EXPECT_EQ(helpers.size(), 26U);
    int checked = 0;
    for (const auto& [id, helper] : helpers) {
        SCOPED_TRACE(id);
        const Property defaults = helper->GetDefaults();
        for (const auto& [path, constraint] : CollectConstraints(*helper)) {
            if (!defaults.ChildExists(path)) continue;
            EXPECT_TRUE(constraint->IsValid(defaults[path])) << path;
            ++checked;
        }
        ObjectList objects;
        helper->GetRequiredObjects(objects);
        EXPECT_THAT(objects, ElementsAre(testing::Pair("filter_resample", "")));
    }
    EXPECT_GT(checked, 20);
}

}  // namespace
