extern "C" {
#include <libavformat/avformat.h>
}

#include <set>
#include <stdexcept>

#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;
using testing::Contains;
using IdList = std::vector<std::string>;

/// Lists an encoder for the codecs that the test names, or for all.
class MadeFactory final : public RefCounted<Proc::ICodecFactory> {
public:
    explicit MadeFactory(std::set<std::string> codecs = {}) : m_codecs(std::move(codecs)) {}

    IdList ListEncoders(const std::string& codecId, bool onlyStable, bool onlySoftware) const override {
        EXPECT_TRUE(onlyStable && onlySoftware);
        ++m_asked;
        if (codecId == throwsFor) throw std::out_of_range(codecId);
        const bool known = m_codecs.empty() || m_codecs.count(codecId) != 0;
        return known ? IdList{"an encoder"} : IdList{};
    }
    int Asked() const { return m_asked; }

    std::string throwsFor = "none";

private:
    const std::set<std::string> m_codecs;
    mutable int m_asked = 0;
};

SP<MadeFactory> Fill(std::set<std::string> codecs = {}) {
    SP<MadeFactory> factory(new MadeFactory(std::move(codecs)));
    FormatValidator::Instance().FillEncoders(factory);
    return factory;
}

IdList Video(const std::string& format, const IdList& fallback, const IdList& exclusions = {}) {
    return FormatValidator::Instance().GetSupportedVideoCodecs(format, fallback, exclusions);
}

class FormatValidatorTest : public testing::Test {
protected:
    ~FormatValidatorTest() override { Fill({"no codec has this name"}); }  // an empty census for the next test
};

TEST_F(FormatValidatorTest, WithoutAnAnswerTheFallbackComesBackAsItIs) {
    Fill({"no codec has this name"});
    EXPECT_THAT(Video("matroska", {"b", "a", "b"}, {"a"}), ElementsAre("b", "a", "b")) << "empty census";
    Fill();
    EXPECT_THAT(Video("no such muxer", {"b", "a", "b"}), ElementsAre("b", "a", "b"));
    EXPECT_THAT(Video("wav", {"b", "b"}), ElementsAre("b", "b")) << "nothing survives";
    EXPECT_THAT(Video("wav", {}), ElementsAre());
}

TEST_F(FormatValidatorTest, FFmpegsNamesComeSortedAndTheFallbackBehindThem) {
    Fill({"h264", "mpeg4", "aac", "subrip"});
    // In a build with every helper MPEG-4 is among them; until it has one it is not offered.
    IdList expected = {"h264"};
    if (GetAvailableDataHelpers(IPreset::KEY_FILTER_VIDEO_CODEC).count("mpeg4") != 0) expected.emplace_back("mpeg4");
    IdList all = expected;
    all.insert(all.end(), {"x", "a"});
    EXPECT_EQ(Video("matroska", {"x", "h264", "x", "a"}), all);
    EXPECT_THAT(Video("matroska", {"h264", "x"}, {"h264", "mpeg4"}), ElementsAre("h264", "x"))
        << "all of FFmpeg's are excluded; the fallback is not filtered";
    EXPECT_THAT(FormatValidator::Instance().GetSupportedAudioCodecs("matroska", {}, {}), ElementsAre("aac"));
    EXPECT_THAT(FormatValidator::Instance().GetSupportedSubtitleCodecs("matroska", {}, {}), ElementsAre("subrip"))
        << "a subtitle codec needs no helper";
}

TEST_F(FormatValidatorTest, AnswersAsFFmpegDoesForEveryMuxerAndCodec) {
    Fill();
    int offered = 0;
    void* position = nullptr;
    while (const AVOutputFormat* muxer = av_muxer_iterate(&position)) {
        const AVOutputFormat* const guessed = av_guess_format(muxer->name, nullptr, nullptr);
        for (const std::string& kind : {IPreset::KEY_FILTER_VIDEO_CODEC, IPreset::KEY_FILTER_AUDIO_CODEC}) {
            IdList expected;
            for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
                const AVCodecID number = CodecIDFromTextID(id);
                if (number != AV_CODEC_ID_NONE &&
                    (avcodec_find_encoder(number) != nullptr || avcodec_find_decoder(number) != nullptr) &&
                    avformat_query_codec(guessed, number, 0) == 1) {
                    expected.push_back(id);
                }
            }
            FormatValidator& validator = FormatValidator::Instance();
            EXPECT_EQ(kind == IPreset::KEY_FILTER_VIDEO_CODEC ? validator.GetSupportedVideoCodecs(muxer->name, {}, {})
                                                              : validator.GetSupportedAudioCodecs(muxer->name, {}, {}),
                      expected)
                << muxer->name;
            offered += static_cast<int>(expected.size());
        }
    }
    EXPECT_GT(offered, 100);
}

TEST_F(FormatValidatorTest, AsksTheFactoryForEveryEntryAndKeepsWhatItFoundBeforeAFailure) {
    const auto asked = Fill()->Asked();
    int entries = 0;
    void* position = nullptr;
    while (av_codec_iterate(&position) != nullptr) ++entries;
    EXPECT_EQ(asked, entries);

    SP<MadeFactory> failing(new MadeFactory({"h264", "hevc", "aac"}));
    failing->throwsFor = "aac";
    EXPECT_THROW(FormatValidator::Instance().FillEncoders(failing), std::out_of_range);
    EXPECT_THAT(FormatValidator::Instance().GetSupportedAudioCodecs("matroska", {}, {}), ElementsAre());
    // The entries of H.264 that FFmpeg lists in front of AAC's.
    position = nullptr;
    const AVCodec* codec = av_codec_iterate(&position);
    while (codec->id != AV_CODEC_ID_AAC && codec->id != AV_CODEC_ID_H264) codec = av_codec_iterate(&position);
    EXPECT_EQ(Video("matroska", {}, {"hevc"}), codec->id == AV_CODEC_ID_H264 ? IdList{"h264"} : IdList{});
}

TEST_F(FormatValidatorTest, AFormatKeepsTheListsOfTheCensusThatItWasBuiltWith) {
    Fill({"no codec has this name"});
    const auto early = DataHelperFormatMp4::Create(IFormatFile::FORMAT_MP4, false, false);
    Fill();
    const auto late = DataHelperFormatMp4::Create(IFormatFile::FORMAT_MP4, false, false);
    const auto audioOf = [](const SP<IDataHelper>& helper) {
        return ListOf(*CollectConstraints(*helper).at("streams_any_audio/audio_codec/codec_id"));
    };
    EXPECT_EQ(audioOf(early), "aac, ac3, mp3");
    EXPECT_THAT(audioOf(late), testing::HasSubstr("vorbis"));
    // The default is the class's own, whatever FFmpeg puts first.
    EXPECT_EQ(late->GetDefaults()["streams/1/audio_codec/codec_id"].GetString(), "aac");
}

TEST_F(FormatValidatorTest, FormatsAskUnderOneNameAddTheirListAndRefuseWhatTheyDoNotWant) {
    const struct {
        SP<IDataHelper> (*make)();
        const char* muxer;  ///< empty for a container that does not ask
        IdList refused;
    } rows[] = {
        {[] { return DataHelperFormatMp4::Create("", false, false); }, "mp4", {}},
        {DataHelperFormatMov::Create, "mov", {"av1", "vp8", "vp9", "flac"}},
        {DataHelperFormatMkv::Create, "matroska", {}},
        {DataHelperFormatMka::Create, "matroska", {}},
        {DataHelperFormatAvi::Create, "avi", {}},
        {DataHelperFormatFlv::Create, "flv", {"h263", "mpeg4", "hevc"}},
        {DataHelperFormatWebm::Create, "webm", {}},
        {[] { return DataHelperFormatWav::Create("wav"); }, "wav", {}},
        {[] { return DataHelperFormatWav::Create("aiff"); }, "wav", {}},
        {DataHelperFormatOgv::Create, "", {}},
        {DataHelperFormatSwf::Create, "", {}},
        {DataHelperFormatMxf::Create, "", {}},
        {DataHelperFormatMpegTS::Create, "", {}},
        {DataHelperFormatMp3::Create, "", {}},
    };
    FormatValidator& validator = FormatValidator::Instance();
    const auto values = [](const auto& constraint) {
        IdList ids;
        for (const Property& id : WhatIsAllowed(*constraint).values) ids.push_back(id.GetString());
        return ids;
    };
    std::set<std::string> refused;
    for (const bool isMade : {true, false}) {
        for (const auto& [make, muxer, exclusions] : rows) {
            Fill({"no codec has this name"});
            const auto early = make();
            if (isMade) Fill({"h263", "mpeg4", "av1", "vp8", "vp9", "flac", "flv1", "pcm_s16le", "ass"});
            if (!isMade) validator.FillEncoders(Proc::FFmpegCodecFactory::Create());
            const auto late = make();
            EXPECT_EQ(TreeDiff(early->GetDefaults(), late->GetDefaults()), "");
            const auto lists = CollectConstraints(*early);
            for (const auto& [pattern, codecs] : CollectConstraints(*late)) {
                SCOPED_TRACE(muxer + (' ' + pattern));
                const bool isVideo = pattern.find("/video_") != std::string::npos;
                const auto query = isVideo ? &FormatValidator::GetSupportedVideoCodecs
                                   : pattern.find("/audio_") != std::string::npos
                                       ? &FormatValidator::GetSupportedAudioCodecs
                                       : &FormatValidator::GetSupportedSubtitleCodecs;
                const IdList list = values(lists.at(pattern)), offered = (validator.*query)(muxer, IdList(), IdList());
                EXPECT_EQ(values(codecs), *muxer == 0 ? list : (validator.*query)(muxer, list, exclusions));
                for (const std::string& codec : exclusions) {
                    EXPECT_THAT(values(codecs), Not(Contains(codec)));
                    if (testing::Value(offered, Contains(codec))) refused.insert(muxer + (' ' + codec));
                }
            }
        }
    }
    EXPECT_THAT(refused, testing::IsSupersetOf({"flv h263", "flv mpeg4", "mov vp9"})) << "FFmpeg offers them";
    // The rule on the sample rate holds for the codecs that FFmpeg added, too.
    Property pcm = Tree("format_codec_audio{codec_id: pcm_s16le, sample_rate: 48000}");
    DataHelperFormatFlv::Create()->CorrectFormatCodec(pcm);
    EXPECT_EQ(pcm["sample_rate"].GetInt64(), 44100);
}

TEST(CodecFactory, ListsTheEncodersOfTheBuildAndNarrowsOnRequest) {
    const auto factory = Proc::FFmpegCodecFactory::Create();
    int stable = 0;
    for (const auto& [number, id] : GetFFCodecsMap()) {
        IdList all;
        IdList narrowed;
        void* position = nullptr;
        while (const AVCodec* codec = av_codec_iterate(&position)) {
            if (codec->id != number || !av_codec_is_encoder(codec)) continue;
            all.emplace_back(codec->name);
            if ((codec->capabilities & (AV_CODEC_CAP_EXPERIMENTAL | AV_CODEC_CAP_HARDWARE | AV_CODEC_CAP_HYBRID)) ==
                0) {
                narrowed.emplace_back(codec->name);
            }
        }
        EXPECT_EQ(factory->ListEncoders(id, false, false), all) << id;
        EXPECT_EQ(factory->ListEncoders(id, true, true), narrowed) << id;
        stable += narrowed.empty() ? 0 : 1;
    }
    EXPECT_GT(stable, 50);
    EXPECT_THAT(factory->ListEncoders("", false, false), ElementsAre());
}

}  // namespace
