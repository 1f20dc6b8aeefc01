#include <gmock/gmock.h>

#include <boost/algorithm/string/join.hpp>
#include <regex>
#include <set>

#include "norvex/Norvex.h"
#include "support/Failures.h"
#include "support/TestHelpers.h"
#include "support/Trees.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using testing::ElementsAre;
using testing::StartsWith;
using Lines = std::vector<std::string>;

SP<const IDataHelper> Format(const std::string& id) {
    return CreateDataHelper(IPreset::KEY_FORMAT, id);
}
IDataHelper::DataHelperMap Formats() {
    return GetAvailableDataHelpers(IPreset::KEY_FORMAT);
}

/// Of one section, such as "video_codec".
SP<const IPropertyConstraint> CodecsOf(const IDataHelper& format, const std::string& section) {
    for (const auto& [path, constraint] : CollectConstraints(format)) {
        if (path.find("streams_any_") == 0 && path.find('/' + section + '/') != std::string::npos) return constraint;
    }
    return nullptr;
}
Property Values(const IPropertyConstraint& constraint) {
    const auto consumer = FakeConstraintConsumer::Create();
    constraint.FillValueList(consumer);
    return consumer->GetValue();
}

/// A flat node of a stream with what correction never touches, and one value more.
Property Stream(const std::string& kind, const std::string& codec, const Property& value) {
    return Node("format_codec_" + kind, {{"codec_id", codec}, {"bitrate", 7}, {"bitrate_mode", "vbr"}, value});
}
Property Profile(const std::string& name) {
    return Node("encode_options", {Property("profile", name)});
}
Property Rate(long long numerator, long long denominator = 1) {
    return Property("frame_rate", Ratio(numerator, denominator));
}

TEST(Containers, IdsOfOneClassDifferInNameAlone) {
    const std::vector<Lines> groups = {{"m4a", "m4b", "m4r", "f4a"}, {"3gp", "3g2"}, {"mpeg", "mpeg1video"},
                                       {"vob", "mpeg2video"},        {"wmv", "asf"}, {"wav", "aiff"},
                                       {"dvd", "vcd", "svcd"}};
    for (const Lines& group : groups) {
        const auto first = Format(group.front());
        for (const std::string& id : group) {
            SCOPED_TRACE(id);
            const auto other = Format(id);
            Property defaults = other->GetDefaults();
            defaults["container"] = group.front();
            EXPECT_EQ(TreeDiff(first->GetDefaults(), defaults), "");
            EXPECT_EQ(RulesOf(*other), RulesOf(*first));
            Lines constraints = ConstraintsOf(*first);
            if (id == "vcd" || id == "svcd") constraints[4] = "streams_any_audio/audio_codec/codec_id in mp2";
            EXPECT_EQ(ConstraintsOf(*other), constraints);
        }
    }
    EXPECT_EQ(ListOf(*CodecsOf(*Format("dvd"), "audio_codec")), "mp2, ac3") << "the other discs lack AC-3";
}

TEST(Containers, KeepOneShapeWithFewExceptions) {
    std::set<const IDataHelper*> helpers;
    Lines coversBehindSound, beyondLimits, defaultsBehindOthers, namedUnlikeTheirCodec;
    int namedLikeTheirCodec = 0;
    for (const auto& [id, format] : Formats()) {
        helpers.insert(&*format);
        for (const auto& rule : CollectRules(*format)) EXPECT_EQ(rule.first, "/") << id;
        const Property defaults = format->GetDefaults();
        EXPECT_EQ(defaults["container"].GetString(), id);
        for (const Property& limit : defaults["limits"]) {
            EXPECT_TRUE(id == "qfx" ? limit.GetInt64() == 64 : limit.GetInt64() <= 32) << id;
        }
        std::string order;
        for (const Property& stream : defaults["streams"]) {
            const std::string section = stream[1].GetName();
            const std::string kind = section.substr(0, section.find('_'));
            const std::string codec = stream[1]["codec_id"].GetString();
            const std::string list = ListOf(*CodecsOf(*format, section));
            order += kind + (stream.ChildExists("cover") && stream["cover"].GetBool() ? " cover " : " ");
            if (defaults["limits"][kind].GetInt64() == 0) beyondLimits.push_back(id + ' ' + kind);
            if (id != "qfx" && list.find(codec) != 0) defaultsBehindOthers.push_back(id + ' ' + codec);
            if (list != codec || CollectConstraints(*format).size() != 1) continue;
            if (id != codec) namedUnlikeTheirCodec.push_back(id + ' ' + codec);
            if (id == codec) ++namedLikeTheirCodec;
        }
        if (order == "audio video cover ") {
            coversBehindSound.push_back(id);
        } else {
            EXPECT_NE(std::string("video audio subtitle ").find(order), std::string::npos) << id << ": " << order;
        }
    }
    EXPECT_EQ(helpers.size(), 64U);
    EXPECT_THAT(coversBehindSound, ElementsAre("f4a", "flac", "m4a", "m4b", "m4r", "mp3"));
    EXPECT_THAT(beyondLimits, ElementsAre("flv subtitle")) << "offered, and limited away";
    EXPECT_THAT(defaultsBehindOthers, ElementsAre("avi mp3", "dvd mpeg2video", "flv aac", "mpeg2ts h264",
                                                  "mpeg2video mpeg2video", "mxf mpeg2video", "ogv vorbis",
                                                  "svcd mpeg2video", "swf mjpeg", "vcd mpeg2video", "vob mpeg2video"));
    EXPECT_THAT(namedUnlikeTheirCodec,
                ElementsAre("adts aac", "aiff pcm_s16le", "au pcm_s16be", "avif av1", "heic hevc", "heif hevc",
                            "jpeg mjpeg", "ogg vorbis", "wav pcm_s16le", "wma wmav2"));
    EXPECT_EQ(namedLikeTheirCodec, 21) << "17 still pictures, GIF, AC-3, SSA and ASS";
}

TEST(Containers, SayWhichKindTheyLack) {
    const SP<DataHelperFormatAAC> adts(new DataHelperFormatAAC);
    EXPECT_EQ(TagOf<TagDescription>(CatchFrom<HelperException>([&] { adts->DefaultVideoCodec(); })),
              "Video codecs constraint is not set");
    EXPECT_EQ(adts->DefaultAudioCodec(), "aac");
}

TEST(Containers, CorrectWhatTheirRulesReachAndNothingElse) {
    const auto sound = [](int rate) { return Property("sample_rate", rate); };
    const auto layout = [](const char* name) { return Property("channel_layout", name); };
    const Property source("frame_rate", Proc::SettingsFilterFrameRate::MARK_USE_ORIGINAL_FRAMERATE);
    const Property bare("cover", false);
    const Property cover("cover", true);
    const Property film = Rate(24000, 1001);
    struct Case {
        const char* codec;
        Property value, corrected;
    };
    const std::pair<const char*, std::vector<Case>> rows[] = {
        {"vob", {{"mpeg2video", Rate(20), Rate(20)}, {"mpeg1video", Rate(7), Rate(20)}, {"h264", Rate(61), Rate(61)}}},
        {"mpeg", {{"mpeg1video", Rate(20), film}, {"mpeg2video", Rate(20), Rate(20)}}},
        {"mxf", {{"mpeg2video", Rate(20), film}, {"pcm_s16le", sound(44100), sound(48000)}}},
        {"mxf", {{"h264", Profile("high"), Profile("baseline")}, {"mpeg2video", Profile("high"), Profile("high")}}},
        {"gif", {{"gif", Rate(7), Rate(8)}, {"gif", Rate(12), Rate(12)}, {"gif", Rate(60), Rate(30)}}},
        {"gif", {{"gif", source, source}, {"h264", Rate(7), Rate(7)}}},
        {"mp3", {{"mjpeg", bare, cover}}},
        {"m4a", {{"png", bare, cover}}},
        {"flac", {{"bmp", bare, cover}, {"h264", bare, bare}}},
        {"dvd", {{"mp2", sound(44100), sound(48000)}, {"aac", sound(44100), sound(44100)}}},
        {"vcd", {{"ac3", sound(96000), sound(48000)}}},
        {"flv", {{"aac", sound(48000), sound(44100)}, {"mp3", sound(30000), sound(22050)}}},
        {"swf", {{"mp3", sound(8000), sound(11025)}, {"aac", sound(8000), sound(8000)}}},
        {"au", {{"pcm_s16be", sound(44100), sound(8192)}, {"pcm_s16be", sound(8000), sound(8000)}}},
        {"wav", {{"pcm_s16le", sound(7), sound(7)}}},
        {"avi", {{"aac", layout("5.1"), layout("stereo")}, {"mp3", layout("5.1"), layout("5.1")}}},
    };
    for (const auto& [id, cases] : rows) {
        for (const auto& [codec, value, corrected] : cases) {
            const bool isSound = value.GetName() == "sample_rate" || value.GetName() == "channel_layout";
            Property stream = Stream(isSound ? "audio" : "video", codec, value);
            Format(id)->CorrectFormatCodec(stream);
            EXPECT_EQ(TreeDiff(Stream(isSound ? "audio" : "video", codec, corrected), stream), "") << id << codec;
        }
    }
    // The repeats in the lists are part of what hosts see.
    EXPECT_THAT(
        RulesOf(*Format("gif")),
        ElementsAre("video_codec/codec_id in gif, gif -> filter_rate/frame_rate in Auto, 8, 10, 12, 12, 12, 15, "
                    "20, 23.97, 24, 25, 29.97, 30"));
    EXPECT_THAT(RulesOf(*Format("mpeg")),
                ElementsAre(StartsWith("video_codec/codec_id in mpeg1video, mpeg1video -> ")));
}

TEST(Containers, ACorrectedStreamKeepsTheRulesThatReachItAndIsCorrectedNoFurther) {
    const std::regex whereItIs("^(format|filter_rate|filter_resample/resample)/");  // in front of the node's own path
    int kept = 0;
    for (const auto& [id, format] : Formats()) {
        for (const std::string kind : {"video", "audio"}) {
            const auto codecs = CodecsOf(*format, kind + "_codec");
            const Property ids = codecs ? Values(*codecs) : Property();
            for (const Property& codec : ids) {
                SCOPED_TRACE(id + ' ' + codec.GetString());
                Property once = Node("format_codec_" + kind, {{"codec_id", codec.GetString()},
                                                              Rate(7),
                                                              {"cover", false},
                                                              Profile("none"),
                                                              {"sample_rate", 7},
                                                              {"channel_layout", "7.1"}});
                format->CorrectFormatCodec(once);
                Property twice = once;
                format->CorrectFormatCodec(twice);
                EXPECT_EQ(TreeDiff(once, twice), "");
                for (const auto& [key, rule] : CollectRules(*format)) {
                    const std::string path = std::regex_replace(rule->GetSecondPath(), whereItIs, "");
                    if (rule->GetFirstPath().find(kind) != 0 || !once.ChildExists(path)) continue;
                    if (!rule->GetFirstConstraint()->IsValid(codec)) continue;
                    EXPECT_TRUE(rule->GetSecondConstraint()->IsValid(once[path])) << path;
                    ++kept;
                }
            }
        }
    }
    EXPECT_GT(kept, 30);
}

TEST(Discs, RulesAreStricterThanConstraintsAndOnlyReport) {
    const auto dvd = Format("dvd");
    const auto constraint = CollectConstraints(*dvd).at("streams/0/video_codec/bitrate");
    const struct {
        const char* video;
        int videoBitrate;
        bool accepted;  ///< by the constraint
        const char *audio, *mode;
        int bitrate, rate;
        const char* refused;  ///< by which rules, in their order
    } rows[] = {
        {"mpeg1video", 2000000, true, "mp2", "cbr", 256000, 48000, "2"},
        {"mpeg1video", 1856000, true, "ac3", "vbr", 256000, 48000, "3"},
        {"mpeg2video", 9800000, true, "mp2", "cbr", 192000, 48000, "4"},
        {"mpeg2video", 9800001, true, "ac3", "cbr", 256000, 44100, "15"},
        {"mpeg2video", 99999, false, "aac", "vbr", 7, 7, "1"},
        {"h264", 800000001, false, "mp2", "vbr", 7, 7, "345"},
    };
    for (const auto& row : rows) {
        const Property preset = Node(
            "", {Node("video_codec", {{"codec_id", row.video}, {"bitrate", row.videoBitrate}}),
                 Node("audio_codec", {{"codec_id", row.audio}, {"bitrate_mode", row.mode}, {"bitrate", row.bitrate}}),
                 Node("filter_resample", {Node("resample", {{"sample_rate", row.rate}})})});
        std::string refused;
        int number = 0;
        for (const auto& rule : CollectRules(*dvd)) {
            ++number;
            if (!rule.second->IsValid(preset)) refused += std::to_string(number);
        }
        EXPECT_EQ(refused, row.refused) << row.videoBitrate;
        EXPECT_EQ(constraint->IsValid(Property("", row.videoBitrate)), row.accepted) << row.videoBitrate;
    }
}

TEST(Discs, OfferTheirSizesByTitle) {
    const auto constraints = CollectConstraints(*Format("svcd"));
    EXPECT_EQ(TreeDiff(Node("", {Property("mini", 1459978240LL), Property("standard", 4700372992LL),
                                 Property("double layer", 8543666176LL)}),
                       Values(*constraints.at("disk_size"))),
              "");
    EXPECT_EQ(ListOf(*constraints.at("dvd_standard")), "ntsc, pal");
    const Property defaults = Format("svcd")->GetDefaults();
    EXPECT_EQ(defaults["dvd_standard"].GetString(), "ntsc");
    EXPECT_EQ(defaults["disk_size"].GetInt64(), 4700372992LL);
    EXPECT_EQ(ListOf(*constraints.at("streams/0/video_codec/bitrate_mode")), "cbr_auto, cbr");
    EXPECT_EQ(constraints.size(), 6U);
}

TEST(ProjectFormat, CarriesEveryCodecAndTakesAnyWordOnLossless) {
    const auto qfx = Format("qfx");
    const auto constraints = CollectConstraints(*qfx);
    EXPECT_EQ(constraints.size(), 4U);
    using boost::algorithm::join;
    EXPECT_EQ(ListOf(*CodecsOf(*qfx, "video_codec")), join(GetAllVideoCodecs(), ", "));
    EXPECT_EQ(ListOf(*CodecsOf(*qfx, "audio_codec")), join(GetAllAudioCodecs(), ", "));
    EXPECT_EQ(ListOf(*CodecsOf(*qfx, "subtitle_codec")), join(GetAllSubtitleCodecs(), ", "));
    const auto anything = constraints.at("disable_for_lossless");
    for (const Property& value : {Property(), Property("", true), Property("", "x"), Node("n", {Rate(7)})}) {
        EXPECT_TRUE(anything->IsValid(value));
    }
    EXPECT_EQ(anything->Description("x"), "");
}

}  // namespace
