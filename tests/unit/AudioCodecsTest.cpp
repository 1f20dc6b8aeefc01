#include <algorithm>
#include <cmath>
#include <sstream>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using A = IFormatCodecAudio;
using testing::ElementsAre;

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

using Mp2 = DataHelperAudioCodecMp2;
using Vorbis = DataHelperAudioCodecVorbis;
using Flac = DataHelperAudioCodecFlac;
using Alac = DataHelperAudioCodecAlac;

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
    for (int rate = 11025; rate <= 100000; rate += 2575) rates.push_back(rate);
    std::vector<AVChannelLayout> layouts;
    for (int channels = 1; channels <= 24; ++channels) {
        if (LayoutRecord::FindDefault(channels) != nullptr) layouts.push_back(UnorderedLayout(channels));
    }
    const FakeBuild build({{"vorbis", {{}, {}, rates, layouts}}});
    const auto vorbis = Vorbis::Create();
    const std::vector<Record> records = VorbisRecords();
    ASSERT_EQ(records.size(), 490U);
    const auto text = [](long long rate, const std::string& layout, long long bitrate) {
        return std::to_string(rate) + " fltp " + layout + " cbr " + std::to_string(bitrate) + " 1";
    };
    for (const AVChannelLayout& asked : layouts) {
        const LayoutRecord& layout = LayoutRecord::Find(asked.nb_channels);
        for (const long long rate : rates) {
            for (const long long bitrate : {16000, 64000, 96000, 160000, 320000}) {
                const auto distance = [&](const Record& record) {
                    return std::hypot(100.0 * static_cast<double>(record.channels - layout.channels) / 8,
                                      10.0 * static_cast<double>(record.rate - rate) / 48000,
                                      static_cast<double>(record.bitrate - bitrate) / 320000);
                };
                const Record& best =
                    *std::min_element(records.begin(), records.end(),
                                      [&](const Record& a, const Record& b) { return distance(a) < distance(b); });
                Property stream = Stream(text(rate, *layout.name, bitrate));
                vorbis->CorrectFormatCodec(stream);
                EXPECT_EQ(Text(stream),
                          text(best.rate, *LayoutRecord::Find(static_cast<int>(best.channels)).name, best.bitrate))
                    << text(rate, *layout.name, bitrate);
            }
        }
    }
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

}  // namespace
