#include <cmath>
#include <functional>
#include <map>

#include "support/FakeBuild.h"
#include "support/TestHelpers.h"
#include "support/Translation.h"

namespace {

using namespace NorvexTest;
using Lines = std::vector<std::string>;
using Constraint = SP<IPropertyConstraint>;

Lines Messages(const std::vector<Finding>& findings) {
    Lines lines;
    for (const Finding& finding : findings) lines.push_back(finding.message);
    return lines;
}

/// Each finding as "SOURCE VERDICT PATH = VALUE".
Lines Looked(const std::vector<Finding>& findings) {
    const char* const verdicts[] = {"kept", "does not apply", "violated"};
    Lines lines;
    for (const Finding& finding : findings) {
        lines.push_back(std::string(finding.source == Finding::Source::Rule ? "rule " : "constraint ") +
                        verdicts[static_cast<int>(finding.verdict)] + ' ' + finding.path + " = " +
                        (finding.value ? Core::PropertyValueToString(*finding.value) : "-"));
    }
    return lines;
}

NamedHelper Audio(const SP<const IDataHelper>& helper, const std::string& id = "test") {
    return {"audio_codec", id, helper};
}
NamedHelper Video(const SP<const IDataHelper>& helper, const std::string& id) {
    return {"video_codec", id, helper};
}

/// Refuses all, and throws what is no exception at that, or when it is asked for its list.
class Thrower final : public RefCounted<IPropertyConstraint> {
public:
    void FillValueList(const SP<IConstraintConsumer>& /*consumer*/) const override { throw "no list"; }
    bool IsValid(const Property& /*value*/) const override { throw 5; }
    bool Fixup(Property& /*value*/) const override { throw 5; }
    std::string Description(const std::string& /*name*/) const override { throw "no words"; }
};

Constraint Numbers(const std::vector<long long>& numbers) {
    PairList<long long> list;
    for (const long long number : numbers) list.emplace_back(std::to_string(number), number);
    return ConstraintSet::Create(list);
}
Constraint Texts(const Lines& texts) {
    PairList<std::string> list;
    for (const std::string& text : texts) list.emplace_back(text, text);
    return ConstraintSet::Create(list);
}

SP<TestCodec> Ruled(const RuleList& rules, const ConstraintMap& constraints = {}) {
    const SP<TestCodec> codec(new TestCodec(MediaType::Audio));
    codec->rules = rules;
    codec->constraints = constraints;
    return codec;
}

/// A rule without a condition where `first` is null.
RuleList Rule(const Constraint& first, const Constraint& second, const std::string& path = "audio_codec/b") {
    return {{"/", PairValidationRule::Create(first ? "audio_codec/a" : "", first, path, second)}};
}

/// A preset from the texts of its sections.
Property PresetOf(const Lines& sections) {
    std::vector<Property> trees;
    for (const std::string& section : sections) trees.push_back(Tree(section));
    return AssemblePreset(trees);
}

TEST(PresetCheck, SaysOfEachFaultWhatIsAllowedAndWhen) {
    using P = Finding::Problem;
    const Constraint one = Texts({"yes"}), two = Numbers({1, 2, 1}), range = ConstraintRange::Create(1LL, 51LL, 2LL);
    const Constraint even = ConstraintMethod::CreateEven(IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE);
    const Constraint mute = ConstraintMethod::Create(nullptr, ""), thrower(new Thrower);
    EXPECT_EQ(WhatIsAllowed(*range).step, Property("", 2));
    const std::string isThree = "Parameter audio_codec/b is 3 but must be ";
    const std::string wrong = "Parameter audio_codec/b is %3 %1, which is no value of its type, but must be ";
    const std::string missing = "Parameter audio_codec/b is missing but must be ", when = " when audio_codec/a is yes";
    const struct {
        SP<TestCodec> codec;
        const char* values;
        P problem;
        std::string message;
    } cases[] = {
        {Ruled({}, {{"b", two}}), "b: 3", P::NotAllowed, isThree + "one of 1, 2"},
        {Ruled({}, {{"b", two}}), "b: %3 %1", P::WrongType, wrong + "one of 1, 2"},
        {Ruled({}, {{"b", range}}), "b: 52", P::NotAllowed, "Parameter audio_codec/b is 52 but must be from 1 to 51"},
        {Ruled({}, {{"b", range}}), "b: %3 %1", P::WrongType, wrong + "from 1 to 51"},
        {Ruled({}, {{"b", one}}), "b: %3 %1", P::NotAllowed, "Parameter audio_codec/b is %3 %1 but must be yes"},
        {Ruled({}, {{"b", thrower}}), "b: %3 %1", P::WrongType, wrong + "another value"},
        {Ruled(Rule(nullptr, even)), "b: 3", P::NotAllowed, isThree + "even"},
        {Ruled(Rule(nullptr, even)), "", P::Missing, missing + "even"},
        {Ruled(Rule(one, mute)), "a: yes, b: 3", P::NotAllowed, isThree + "another value" + when},
        {Ruled(Rule(one, two)), "a: yes", P::Missing, missing + "one of 1, 2" + when},
        {Ruled(Rule(one, two)), "a: yes, b: %3 %1", P::WrongType, wrong + "one of 1, 2" + when},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        const auto findings = CheckPreset(PresetOf({std::string("audio_codec{") + c.values + "}"}), {Audio(c.codec)});
        ASSERT_THAT(Messages(findings), ElementsAre(c.message));
        EXPECT_EQ(findings[0].problem, c.problem);
        EXPECT_EQ(findings[0].helperKind + ' ' + findings[0].helperId, "audio_codec test");
        EXPECT_EQ(findings[0].value.has_value(), c.problem != P::Missing);
    }
}

TEST(PresetCheck, IsTranslatedWithTheWordsWithinItsSentence) {
    EXPECT_EQ(FindingSentences().size(), 18U);
    const Translation translation({{"Parameter %1 is %2 but must be %3 when %4 is %5", "%5/%4: %1=%2, nur %3; %6 %"},
                                   {"one of %1", "eines von %1"}});
    const auto codec = Ruled(Rule(Texts({"%2"}), Numbers({1, 2})));
    EXPECT_THAT(Messages(CheckPreset(PresetOf({"audio_codec{a: %2, b: 3}"}), {Audio(codec)})),
                ElementsAre("%2/audio_codec/a: audio_codec/b=3, nur eines von 1, 2; %6 %"));
}

TEST(PresetCheck, ExplainsAlsoWhatIsKeptAndWhatDoesNotApply) {
    const Constraint yes = Texts({"yes"}), numbers = Numbers({1}), thrower(new Thrower);
    RuleList rules;
    for (const auto& rule : {Rule(yes, numbers), Rule(thrower, numbers), Rule(yes, numbers, "x/y"), Rule(yes, nullptr)})
        rules.push_back(rule.front());
    rules.emplace_back("/", nullptr);
    const SP<TestCodec> codec = Ruled(rules, {{"a", yes}, {"b", nullptr}, {"c", yes}});
    const auto explain = [&](const char* section) {
        return Looked(ExplainPreset(PresetOf({section}), {Audio(nullptr), Audio(codec)}));
    };
    EXPECT_THAT(explain("audio_codec{a: yes, b: 1}"),
                ElementsAre("constraint kept audio_codec/a = yes", "constraint kept audio_codec/b = 1",
                            "rule kept audio_codec/b = 1", "rule does not apply audio_codec/b = 1",
                            "rule violated x/y = -", "rule kept audio_codec/b = 1"));
    const Lines none(4, "rule does not apply audio_codec/b = -");
    EXPECT_THAT(explain("audio_codec{}"), ElementsAre(none[0], none[0], "rule does not apply x/y = -", none[0]));
    EXPECT_THAT(explain("audio_codec{a: 5}"), ElementsAre("constraint violated audio_codec/a = 5", none[0], none[0],
                                                          "rule does not apply x/y = -", none[0]));
}

TEST(PresetCheck, LooksForConstraintsInTheSectionFromTheRootAndInEveryStream) {
    const FakeBuild build({{"aac", {{}, {AV_SAMPLE_FMT_FLTP}, {48000}, {NativeLayout(AV_CH_LAYOUT_MONO)}}}});
    Property format = DataHelperFormatDVD::Create("dvd")->GetDefaults();
    format["disk_size"] = 5;
    format["streams"].CopyDataFrom(  // two of the same name
        Tree("{a: {type: audio, audio_codec: {codec_id: aac}}, a: {type: audio, audio_codec: {codec_id: mp3}}, "
             ": {type: video, video_codec: {codec_id: h264}}, "
             "v/w: {type: video, video_codec: {codec_id: mpeg2video}}, "
             "s: {type: other, audio_codec: {codec_id: aac}}, leaf: audio}"));
    const Property flat = Tree("format_codec_audio{codec_id: aac, channel_layout: 5.1, sample_rate: 5, bitrate: 5}");
    const auto findings = CheckPreset(
        AssemblePreset({format, flat}),
        {{"format", "dvd", DataHelperFormatDVD::Create("dvd")}, Audio(DataHelperAudioCodecAac::Create(), "aac")});
    Lines paths;
    for (const Finding& finding : findings)
        if (finding.source == Finding::Source::Constraint)
            paths.push_back(finding.path + " = " + Core::PropertyValueToString(*finding.value));
    EXPECT_THAT(paths, ElementsAre("format/disk_size = 5", "format/streams/a/audio_codec/codec_id = aac",
                                   "format/streams/a/audio_codec/codec_id = mp3", "audio_codec/codec_id = aac",
                                   "format/streams//video_codec/codec_id = h264", "audio_codec/bitrate = 5",
                                   "filter_resample/resample/channel_layout = 5.1"));
}

TEST(PresetCheck, TellsWhatAContainerHasNoRoomFor) {
    const std::string hevc = "video_codec{codec_id: hevc}";
    const struct {
        Lines sections, messages;
    } cases[] = {
        {{"format{container: wav, streams: {0: {type: audio}}}", hevc},
         {"Section video_codec has no place: wav holds no video"}},
        {{"format{container: srt, streams: {0: {type: video}, 1: {type: subtitles_text}}}", hevc,
          "audio_codec{codec_id: aac}"},
         {"Section video_codec has no place: srt holds no video",
          "Section audio_codec has no place: srt holds no audio",
          "Stream format/streams/0 has no place: srt holds no video"}},
        // A limit without a list of codecs, and a default stream beyond the limit.
        {{"format{container: webm, streams: {0: {type: subtitles_text}}}"},
         {"Stream format/streams/0 has no place: webm holds no subtitles"}},
        {{"format{container: flv, streams: {0: {type: video}, 1: {type: subtitles_text}}}",
          "subtitle_codec{codec_id: text}"},
         {}},
        {{"format{container: flv, streams: {0: {type: subtitles_text}, 1: {type: subtitles_text}}}"},
         {"Stream format/streams/1 is one too many: flv holds no more than 1 of subtitles"}},
        {{"format{container: mp4, streams: {0: {type: video}, 1: {type: video}, 2: {type: audio}, 3: {type: video}}}"},
         {"Stream format/streams/3 is one too many: mp4 holds no more than 2 of video"}},
        {{"format{container: 3gp, streams: {0: {type: data}}}"},
         {"Stream format/streams/0 is one too many: 3gp holds no more than 0 of other types"}},
        {{"format{container: mp4, streams: {0: {type: audio, video_codec: {codec_id: hevc}}}}"},
         {"Section format/streams/0/video_codec has no place in a stream of type audio"}},
    };
    for (const auto& c : cases) {
        const Property preset = PresetOf(c.sections);
        const std::vector<Finding> findings = CheckPreset(preset, {HelpersOf(preset).front()});
        EXPECT_EQ(Messages(findings), c.messages) << Dump(preset);
        for (const Finding& finding : findings) {
            const bool isSurplus = finding.message.find("one too many") != std::string::npos;
            EXPECT_EQ(finding.problem, isSurplus ? Finding::Problem::TooMany : Finding::Problem::NoPlace);
            EXPECT_EQ(finding.documentPath, finding.path);
        }
    }
    int closed = 0;
    for (const auto& [id, helper] : GetAvailableDataHelpers("format")) {
        const Property format = helper->GetDefaults();
        const NamedHelper container{"format", id, helper};
        EXPECT_THAT(Messages(CheckPreset(AssemblePreset({format}), {container})), IsEmpty()) << id;
        for (const std::string kind : {"video", "audio"}) {
            if (format["limits"][kind].GetInt64() > 0) continue;
            const Property section = Tree(kind + "_codec{codec_id: h264}");
            EXPECT_EQ(CheckPreset(AssemblePreset({format, section}), {container}).size(), 1U) << id;
            ++closed;
        }
    }
    EXPECT_EQ(closed, 36);
}

TEST(PresetCheck, TellsAFaultOnce) {
    const Constraint two = Numbers({1, 2});
    const SP<TestCodec> codec = Ruled(Rule(Texts({"yes"}), Numbers({1, 2})), {{"b", two}, {"c", two}});
    const auto findings = CheckPreset(PresetOf({"audio_codec{a: yes, b: 3, c: 3}"}), {Audio(codec)});
    EXPECT_EQ(findings.size(), 3U);
    EXPECT_THAT(Messages(TellOnce(findings)), ElementsAre("Parameter audio_codec/b is 3 but must be one of 1, 2",
                                                          "Parameter audio_codec/c is 3 but must be one of 1, 2"));
}

TEST(PresetAssembly, PutsAStreamWhereRulesLookAndFindsTheWayBack) {
    const struct {
        const char* stream;
        const char* preset;
        std::map<std::string, std::string> ways;
    } cases[] = {
        {"format_codec_video{width: 720, height: 480, frame_rate: 25/1, cover: true}",
         "{video_codec: {width: 720, height: 480, frame_rate: 25/1, cover: true}, filter_resize: {resize: {width: "
         "720, height: 480}}, filter_rate: {frame_rate: 25/1}, format: {cover: true}}",
         {{"filter_resize/resize/width", "width"},
          {"filter_resize/resize/height", "height"},
          {"filter_rate/frame_rate", "frame_rate"},
          {"format/cover", "cover"},
          {"video_codec/encode_options/tune", "encode_options/tune"},
          {"video_codecs/bitrate", "video_codecs/bitrate"}}},
        {"format_codec_audio{sample_rate: 8000, sample_format: s16, channel_layout: mono}",
         "{audio_codec: {sample_rate: 8000, sample_format: s16, channel_layout: mono}, filter_resample: {resample: "
         "{sample_rate: 8000, sample_format: s16, channel_layout: mono}}}",
         {{"filter_resample/resample/sample_rate", "sample_rate"},
          {"filter_resample/resample/sample_format", "sample_format"},
          {"filter_resample/resample/channel_layout", "channel_layout"},
          {"audio_codec/bitrate", "bitrate"},
          {"format/container", "format/container"}}},
    };
    for (const auto& [stream, preset, ways] : cases) {
        EXPECT_EQ(Core::PropertyValueToString(PresetOf({stream})), preset);
        for (const auto& [path, tag] : ways) EXPECT_EQ(StreamPathOf(path), tag);
    }
}

TEST(PresetCheck, TakesAutomaticHelpers) {
    const Property preset = PresetOf(
        {"filter_resample{resample: {sample_rate: -1}}", "audio_codec{codec_id: mp3, bitrate_mode: cbr_auto}"});
    const auto mp3 = FindHelper("audio_codec", "mp3");
    EXPECT_EQ(CheckPreset(preset, {mp3}).size(), 2U);
    EXPECT_THAT(CheckPreset(preset, {{mp3.kind, mp3.id, CreateDataHelperAuto(mp3.kind, mp3.id)}}), IsEmpty());
}

TEST(PresetCheck, FindsTheHelpersThatAPresetNames) {
    const auto names = [](const char* preset) {
        Lines lines;
        for (const auto& [kind, id, helper] : HelpersOf(Tree(preset))) lines.push_back(kind + ' ' + id);
        return lines;
    };
    EXPECT_THAT(names("{filter_rate: {}, filter_resize: 5, audio_codec: {codec_id: mp3}, video_codec: {codec_id: "
                      "h264}, format: {container: mp4}, filter_x: 1}"),
                ElementsAre("format mp4", "video_codec h264", "audio_codec mp3", "filter_rate ", "filter_resize "));
    EXPECT_THAT(names("{format: mp4, video_codec: {codec_id: 5}, audio_codec: {codec_id: h264}, : {}}"), IsEmpty());
    EXPECT_THROW(FindHelper("audio_codec", "h264"), HelperException);
}

// ------------------------------------------------------------------------------------------------------- the report

/// Each change as "ID PATH: BEFORE > AFTER REASON", with the message of what was broken.
Lines Changes(const CorrectionReport& report) {
    const char* const reasons[] = {"broken", "default", "helper"};
    const auto text = [](const std::optional<Property>& value) {
        return value ? Core::PropertyValueToString(*value) : std::string("-");
    };
    Lines lines;
    for (const CorrectedValue& change : report.changes) {
        EXPECT_EQ(change.broken.has_value(), change.reason == CorrectedValue::Reason::Broken);
        lines.push_back(change.helperId + ' ' + change.path + ": " + text(change.before) + " > " + text(change.after) +
                        ' ' + reasons[static_cast<int>(change.reason)] +
                        (change.broken ? ": " + change.broken->message : std::string()));
    }
    return lines;
}

TEST(CorrectionReport, TellsWhatChangedAndWhy) {
    const FakeBuild build({{"aac", {{}, {AV_SAMPLE_FMT_FLTP}, {44100, 48000}, {}}}});
    const auto m4a = DataHelperFormatM4a::Create("m4a");
    const std::string isAac = " when audio_codec/codec_id is aac", audio = ": Parameter audio_codec/",
                      resample = ": Parameter filter_resample/", video = ": Parameter video_codec/";
    const struct {
        const char* stream;
        std::vector<NamedHelper> helpers;
        Lines changes;
    } cases[] = {
        {"format_codec_audio{codec_id: aac, sample_rate: 47000, sample_format: s16, channel_layout: stereo, bitrate: "
         "100000}",
         {{"format", "m4a", m4a}, Audio(nullptr), Audio(DataHelperAudioCodecAac::Create(), "aac")},
         {"aac sample_rate: 47000 > 48000 broken" + resample +
              "resample/sample_rate is 47000 but must be one of 44100, 48000" + isAac,
          "aac sample_format: s16 > fltp broken" + resample + "sample_format is s16 but must be fltp" + isAac,
          "aac bitrate: 100000 > 96000 broken" + audio +
              "bitrate is 100000 but must be one of 32000, 64000, 96000, "
              "128000, 160000, 192000, 224000, 256000, 320000, 448000, 512000",
          "aac bitrate_mode: - > cbr default"}},
        {"format_codec_audio{codec_id: mp3, sample_rate: 10900, sample_format: s16, channel_layout: mono, "
         "bitrate_mode: cbr, bitrate: 256000}",
         {Audio(DataHelperAudioCodecMp3::Create(), "mp3")},
         {"mp3 sample_rate: 10900 > 11025 broken" + resample +
              "resample/sample_rate is 10900 but must be one of 8000, 11025, "
              "12000, 16000, 22050, 24000, 32000, 44100, 48000 when audio_codec/codec_id is mp3",
          "mp3 bitrate: 256000 > 64000 broken" + audio +
              "bitrate is 256000 but must be one of 32000, 64000 when filter_resample/resample/sample_rate is 11025",
          "mp3 quality: - > 1 default"}},
        {"format_codec_audio{codec_id: flac, sample_rate: 48000, sample_format: s16, channel_layout: stereo}",
         {Audio(DataHelperAudioCodecFlac::Create(), "flac")},
         {"flac bitrate_mode: - > vbr default", "flac bitrate: - > 991999 helper"}},
        {"format_codec_video{codec_id: mjpeg, key_frame_interval: 9, bitrate_mode: vbr, bitrate: 0, quality: 3, "
         "cover: false, max_b_frames: 2}",
         {{"format", "m4a", m4a}, Video(DataHelperVideoCodecMjpeg::Create(), "mjpeg")},
         {"m4a cover: false > true broken" + video +
              "cover is false but must be true when video_codec/codec_id is mjpeg",
          "mjpeg bitrate: 0 > 100000 broken" + video + "bitrate is 0 but must be from 100000 to 800000000",
          "mjpeg max_b_frames: 2 > - helper"}},
        {"format_codec_video{codec_id: hevc, bitrate_mode: cbr_auto, bitrate: 5000000, quality: 1}",
         {Video(DataHelperVideoCodecX265::Create(), "hevc")},
         {"hevc bitrate_mode: cbr_auto > cbr broken" + video + "bitrate_mode is cbr_auto but must be one of cbr, vbr"}},
    };
    for (const auto& c : cases) {
        Property stream = Tree(c.stream);
        const CorrectionReport report = CorrectWithReport(stream, c.helpers);
        EXPECT_EQ(Changes(report), c.changes);
        EXPECT_THAT(Messages(report.left), IsEmpty());
        EXPECT_FALSE(report.failure);
    }
}

TEST(CorrectionReport, TellsWhatValidationWantsBeyondCorrection) {
    const FakeBuild build({{"ac3", {{}, {}, {}, {NativeLayout(AV_CH_LAYOUT_5POINT1)}}}});
    Property stream = Tree(
        "format_codec_audio{codec_id: ac3, sample_rate: 48000, sample_format: fltp, channel_layout: 5.1(side), "
        "bitrate_mode: cbr, bitrate: 448000}");
    const CorrectionReport report = CorrectWithReport(stream, {Audio(DataHelperAudioCodecAc3::Create(), "ac3")});
    EXPECT_THAT(Changes(report), IsEmpty());
    EXPECT_THAT(Messages(report.left), ElementsAre("Parameter filter_resample/resample/channel_layout is 5.1(side) but "
                                                   "must be one of mono, stereo when audio_codec/codec_id is ac3"));
}

TEST(CorrectionReport, KeepsAFailureAndWhatWasDoneUpToIt) {
    Property stream = Tree("format_codec_audio{sample_rate: 10900, bitrate: 5}");
    const CorrectionReport report = CorrectWithReport(
        stream, {Audio(DataHelperAudioCodecMp3::Create(), "mp3"), Audio(DataHelperAudioCodecAc3::Create(), "ac3")});
    EXPECT_THAT(Changes(report), ElementsAre("mp3 sample_rate: 10900 > 11025 helper"));
    EXPECT_EQ(Dump(stream), "format_codec_audio/sample_rate: int 11025\nformat_codec_audio/bitrate: int 5\n");
    ASSERT_TRUE(report.failure);
    EXPECT_THROW(std::rethrow_exception(report.failure), Core::PropertyException);
}

/// A correction that does what a test wants, and a helper that fails when it is asked for one thing.
class Corrector final : public RefCounted<DataHelperCodecFFMPEG> {
public:
    explicit Corrector(std::function<void(Property&)> change)
        : RefCounted<DataHelperCodecFFMPEG>("test", MediaType::Audio), m_change(std::move(change)) {}
    Property GetDefaults() const override { return Answer('d'), Tree("audio_codec{a: {b: 1}}"); }
    void GetConstraints(ConstraintMap& out) const override { Answer('c'), out = constraints; }
    void GetValidationRules(RuleList& /*out*/) const override { Answer('r'); }
    void CorrectFormatCodec(Property& tree) const override { m_change(tree); }

    ConstraintMap constraints;
    char failsAt = ' ';
    mutable int asked = 0;

private:
    void Answer(char what) const {
        ++asked;
        if (what == failsAt) throw what;
    }

    std::function<void(Property&)> m_change;
};

TEST(CorrectionReport, KeepsWhatAHelperThrowsBesideItsCorrection) {
    for (const char what : {'d', 'c', 'r'}) {
        const SP<Corrector> broken(new Corrector([](Property& tree) { tree["a"] = 2; }));
        broken->failsAt = what;
        const SP<Corrector> next(new Corrector([](Property& tree) { tree["a"] = 3; }));
        next->constraints["a"] = Numbers({9});
        Property stream = Tree("format_codec_audio{a: 1}");
        const CorrectionReport report = CorrectWithReport(stream, {Audio(broken), Audio(next)});
        EXPECT_THAT(Changes(report), ElementsAre("test a: 1 > 2 helper", testing::StartsWith("test a: 2 > 3 broken")));
        EXPECT_THAT(Messages(report.left), ElementsAre("Parameter audio_codec/a is 3 but must be 9"));
        EXPECT_THROW(std::rethrow_exception(report.failure), char);
    }
}

TEST(CorrectionReport, AsksAHelperOnceHoweverMuchChanges) {
    int asked = 0;
    for (const int count : {1, 300}) {
        const SP<Corrector> codec(new Corrector([](Property& tree) {
            for (Property& leaf : tree) leaf = 1;
        }));
        for (int i = 0; i < 300; ++i) codec->constraints[std::to_string(i)] = Numbers({1});
        Property stream("format_codec_audio");
        for (int i = 0; i < count; ++i) stream.SetChildT(std::to_string(i), 5);
        const auto report = CorrectWithReport(stream, {Audio(codec)});
        EXPECT_EQ(report.changes.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(report.changes.back().broken->message,
                  "Parameter audio_codec/" + std::to_string(count - 1) + " is 5 but must be 1");
        EXPECT_EQ(codec->asked, count == 1 ? asked = codec->asked : asked);
    }
}

TEST(CorrectionReport, TellsApartValuesThatShareAPath) {
    Property before = Tree(
        "format_codec_audio{a: 1, a: 2, nan: x, : {a: 3}, full: 5, empty: {}, emptied: {x: 1}, a/b: 1, a: {b: 2}}");
    before["nan"] = std::nan("");
    const auto changes = [&](const std::function<void(Property&)>& change) {
        Property stream = before;
        return Changes(CorrectWithReport(stream, {Audio(SP<IDataHelper>(new Corrector(change)))}));
    };
    EXPECT_THAT(changes([](Property&) {}), IsEmpty());
    EXPECT_THAT(changes([](Property& tree) { tree.RemoveChild("full"), tree.SetChildT("full", 5); }), IsEmpty());
    EXPECT_THAT(changes([](Property& tree) { tree[1] = 7, tree[3]["a"] = 8; }),
                ElementsAre("test a: 2 > 7 helper", "test /a: 3 > 8 helper"));
    EXPECT_THAT(changes([](Property& tree) { tree["full"].CopyDataFrom(Tree("x{y: 1}")); }),
                ElementsAre("test full/y: - > 1 helper", "test full: 5 > - helper"));
    EXPECT_THAT(changes([](Property& tree) {
                    tree["empty"].SetChildT("y", 1), tree["emptied"].RemoveAll(), tree["full"] = 5.0, tree[7] = 3;
                }),
                ElementsAre("test full: 5 > 5 helper", "test empty/y: - > 1 helper", "test a/b: 1 > 3 helper",
                            "test emptied/x: 1 > - helper"));
}

TEST(CorrectionReport, GivesAReasonToTheValueThatAPathLeadsTo) {
    for (const bool isConstrained : {true, false}) {
        const SP<Corrector> codec(new Corrector([](Property& tree) { tree[0] = 1, tree[1]["b"] = 1, tree[2] = 1; }));
        if (isConstrained) codec->constraints["a/b"] = Numbers({1});
        Property stream = Tree("format_codec_audio{a/b: 6, a: {b: 2}, a/b: 7}");
        EXPECT_THAT(Changes(CorrectWithReport(stream, {Audio(codec)})),
                    ElementsAre("test a/b: 6 > 1 helper",
                                isConstrained ? "test a/b: 2 > 1 broken: Parameter audio_codec/a/b is 2 but must be 1"
                                              : "test a/b: 2 > 1 default",
                                "test a/b: 7 > 1 helper"));
    }
}

TEST(FitInto, SaysNoCodecWhereOnlyTheRunningBuildCouldTell) {
    const auto sound = FormatCodecAudio::Create(Tree("stream{codec_id: flac, sample_rate: 96000}"), nullptr);
    const auto subtitles = FormatCodecSubtitle::Create(Tree("stream{codec_id: subrip}"));
    const Translation translation({{"FFmpeg carries %1 in %2, but the rule book refuses it: %3", "%3! %1, %2?"},
                                   {"FFmpeg's table of tags for %2 has none for it", "no %2 tag"}});
    std::string told;
    for (const StreamFit& fit : FitInto("matroska", {sound, subtitles, sound}).streams) {
        EXPECT_EQ(fit.encodedTo + std::to_string(fit.changes.size()), "0");
        told += fit.isEncoded ? "encoded, " : "not encoded, ";
        told += fit.reason + '\n';
    }
    EXPECT_EQ(told,
              "not encoded, matroska takes flac as it is\nencoded, no matroska tag! subrip, matroska?\n"
              "not encoded, matroska takes flac as it is\n");
    const StreamFit mp3 = FitInto("mp3", {sound}).streams[0];
    EXPECT_TRUE(mp3.isEncoded && mp3.encodedTo.empty() && mp3.answer == StreamFit::Answer::Encoded) << mp3.reason;
}

}  // namespace
