// Names for people: that nothing of the rule book lacks one, and how values are written. Each test has a process of its
// own, in which it says what stands in the book.

#include <gmock/gmock.h>

#include <set>

#include "norvex/Conf/Review/NameTables.h"
#include "support/TestHelpers.h"
#include "support/Translation.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexTest;
using Core::Property;
using Core::Ratio;
using P = IPreset;

/// Walks through the book and keeps what has no name.
class Walk {
public:
    Walk() {
        FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
        for (const std::string& kind : {P::KEY_FORMAT, P::KEY_FILTER_VIDEO_CODEC, P::KEY_FILTER_AUDIO_CODEC}) {
            for (const auto& [id, helper] : GetAvailableDataHelpers(kind)) {
                LookAtId(kind, id);
                LookAt(*helper);
                LookAt(*CreateDataHelperAuto(kind, id));
            }
        }
        for (const auto& [kind, list] : {std::pair(P::KEY_FILTER_VIDEO_CODEC, GetAllVideoCodecs()),
                                         std::pair(P::KEY_FILTER_AUDIO_CODEC, GetAllAudioCodecs()),
                                         std::pair(P::KEY_FILTER_SUBTITLE_CODEC, GetAllSubtitleCodecs())}) {
            for (const std::string& id : list) LookAtId(kind, id);
        }
        for (const char* const filter :
             {"filter_resample", "filter_volume", "filter_formatter", "filter_rate", "filter_resize"}) {
            LookAtPath(filter);
            LookAt(*CreateDataHelper(filter, ""));
        }
    }

    std::set<std::string> nameless;
    std::set<std::string> twice;  ///< full names that two ids of a kind have
    std::size_t values = 0;

private:
    void LookAtId(const std::string& kind, const std::string& id) {
        if (!m_ids.insert(kind + ' ' + id).second) return;
        if (FindIdName(kind, id) == nullptr) nameless.insert(kind + ' ' + id);
        if (!m_names.insert(kind + FullNameForPeople(kind, id)).second) twice.insert(FullNameForPeople(kind, id));
        if (kind == P::KEY_FORMAT && FileExtensions(id).empty()) nameless.insert("extension of " + id);
    }

    void LookAtPath(const std::string& path) {
        std::istringstream tags(path);
        for (std::string tag; std::getline(tags, tag, '/');) {
            const bool isPlace =
                tag.find_first_not_of("0123456789") == std::string::npos || tag.find("_any_") < tag.size();
            if (!isPlace && FindTagName(tag) == nullptr) nameless.insert("tag " + tag);
        }
    }

    void LookAtValue(const std::string& path, const Property& value) {
        ++values;
        const std::string tag = path.substr(path.rfind('/') + 1);
        const std::string text = PropertyValueToString(value);
        const TagName* const row = FindTagName(tag);
        const Unit unit = row != nullptr ? row->unit : Unit::Section;
        bool isNamed = unit != Unit::Section && unit != Unit::Text && !ValueForPeople(path, value).empty();
        if (unit == Unit::SampleFormat) isNamed = ValueForPeople(path, value) != text;
        if (unit == Unit::Container) isNamed = FindIdName(P::KEY_FORMAT, text) != nullptr;
        // FFmpeg lets containers carry subtitles that the vocabulary lacks, and describes them.
        if (unit == Unit::Codec) isNamed = ValueForPeople(path, value) != text || FindIdName("audio_codec", text);
        if (!isNamed && FindValueName(tag, text) == nullptr) nameless.insert("value " + path + " = " + text);
    }

    void LookAt(const std::string& path, const SP<const IPropertyConstraint>& constraint) {
        LookAtPath(path);
        if (!constraint) return;
        const Allowed allowed = WhatIsAllowed(*constraint);
        for (const Property& value : allowed.values) LookAtValue(path, value);
        if (allowed.min) LookAtValue(path, *allowed.min);
    }

    void LookAtDefaults(const Property& node, const std::string& path) {
        for (const Property& child : node) {
            const std::string below = path + '/' + child.GetName();
            LookAtPath(below);
            child.GetType() == PT_NODE ? LookAtDefaults(child, below) : LookAtValue(below, child);
        }
    }

    void LookAt(const IDataHelper& helper) {
        LookAtDefaults(helper.GetDefaults(), helper.GetDefaults().GetName());
        for (const auto& [path, constraint] : CollectConstraints(helper)) LookAt(path, constraint);
        for (const auto& [key, rule] : CollectRules(helper)) {
            LookAt(rule->GetFirstPath(), rule->GetFirstConstraint());
            LookAt(rule->GetSecondPath(), rule->GetSecondConstraint());
        }
    }

    std::set<std::string> m_ids;
    std::set<std::string> m_names;
};

void ExpectAllNamed() {
    const Walk walk;
    EXPECT_THAT(walk.nameless, testing::IsEmpty());
    EXPECT_THAT(walk.twice, testing::IsEmpty());
    EXPECT_GT(walk.values, 5000U);
}

TEST(Names, OfTheClassicBookAreComplete) {
    ExpectAllNamed();
}

TEST(Names, OfTheSecondSetAreComplete) {
    RegisterModernHelpers();
    ExpectAllNamed();
}

TEST(Names, AreThoseThatPeopleKnow) {
    const struct {
        const char *kind, *id, *name, *full;
    } cases[] = {
        {"format", "matroska", "Matroska", "Matroska (.mkv)"},
        {"format", "mpeg2ts", "MPEG transport stream, Blu-ray", "MPEG transport stream, Blu-ray (.m2ts)"},
        {"video_codec", "h264", "H.264", "H.264 (AVC)"},
        {"format_codec_audio", "ac3", "AC-3", "AC-3 (Dolby Digital)"},
        {"audio_codec", "pcm_s24be", "PCM 24 bit", "PCM 24 bit (big-endian)"},
        {"subtitle_codec", "hdmv_pgs_subtitle", "Blu-ray subtitles", "Blu-ray subtitles (PGS)"},
        {"filter_resize", "", "resizing", "resizing"},
        // A host's: as FFmpeg has it, and as the host does.
        {"audio_codec", "tta", "TTA (True Audio)", "TTA (True Audio)"},
        {"format", "tta", "TTA (True Audio)", "TTA (True Audio) (.tta)"},
        {"video_codec", "our_codec", "our codec", "our codec"},
        {"filter_of_ours", "", "filter of ours", "filter of ours"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(NameForPeople(c.kind, c.id), c.name);
        EXPECT_EQ(FullNameForPeople(c.kind, c.id), c.full);
    }
    EXPECT_THAT(FileExtensions("jpeg"), testing::ElementsAre("jpg", "jpeg", "jpe", "jfif"));
    EXPECT_THAT(FileExtensions("nothing"), testing::IsEmpty());
    EXPECT_EQ(ParameterForPeople("video_codec/encode_options/profile"), "profile");
    EXPECT_EQ(ParameterForPeople("our_own"), "our own");
    EXPECT_EQ(UnitForPeople("our_own"), "");
}

TEST(Names, OfValuesHaveUnits) {
    const struct {
        const char* path;
        Property value;
        const char* text;
    } cases[] = {
        {"video_codec/bitrate", {"", 800000000}, "800 Mbit/s"},
        {"bitrate", {"", 9800000}, "9.8 Mbit/s"},
        {"bitrate", {"", 1411200}, "1411.2 kbit/s"},
        {"bitrate", {"", 4750}, "4.75 kbit/s"},
        {"bitrate", {"", 0}, "0 bit/s"},
        {"sample_rate", {"", 48000}, "48 kHz"},
        {"sample_rate", {"", 11025}, "11.025 kHz"},
        {"sample_rate", {"", -1}, "as the source"},
        {"sample_rate", {"", -8}, "-8 Hz"},
        {"sample_rate", {"", "many"}, "many"},
        {"frame_rate", {"", Ratio(30000, 1001)}, "29.97 fps (30000/1001)"},
        {"frame_rate", {"", "24000/1001"}, "23.976 fps (24000/1001)"},
        {"frame_rate", {"", Ratio(25, 2)}, "12.5 fps"},
        {"frame_rate", {"", Ratio(0)}, "as the source"},
        {"channel_layout", {"", "5.1(side)"}, "5.1(side)"},
        {"sample_format", {"", "s16p"}, "16 bit, planar"},
        {"sample_format", {"", "flt"}, "32 bit float"},
        {"streams/0/audio_codec/codec_id", {"", "dts"}, "DTS"},
        {"codec_id", {"", "hevc"}, "H.265 (HEVC)"},
        {"container", {"", "mp4"}, "MP4 (.mp4)"},
        {"passes", {"", "one_pass"}, "one pass"},
        {"frame_size_mode", Node("", {{"width", 720}, {"height", 576}}), "720x576"},
        {"disk_size", {"", 4700372992LL}, "4.7 GB"},
        {"packet_duration", {"", 100500}, "100.5 ms"},
        {"frame_duration", {"", "2.5"}, "2.5 ms"},
        {"scale", {"", 0.5}, "50 %"},
        {"background_color", {"", 4278190080LL}, "black"},
        {"background_color", {"", 0xFFFFFFFFLL}, "white"},
        {"background_color", {"", 0xFE204060LL}, "#204060, 99 % opaque"},
        {"fourcc", {"", 0x317e7661}, "av~1"},
        {"fourcc", {"", 0x01637661}, "23295585"},
        {"fourcc", {"", 0x7f637661}, "2137224801"},
        {"cover", {"", true}, "yes"},
        {"our_own", {"", "a_value"}, "a value"},
    };
    for (const auto& c : cases) EXPECT_EQ(ValueForPeople(c.path, c.value), c.text) << c.path;
}

TEST(Names, SpeakTheLanguage) {
    const Translation translation{{"frame rate", "Takt"}, {"%1 fps (%2)", "%2 genau, %1/s"}, {"%1 (%2)", "%2: %1"}};
    EXPECT_EQ(ParameterForPeople("filter_rate/frame_rate"), "Takt");
    EXPECT_EQ(ValueForPeople("frame_rate", Property("", Ratio(30000, 1001))), "30000/1001 genau, 29.97/s");
    EXPECT_EQ(FullNameForPeople("format", "matroska"), ".mkv: Matroska");
}

}  // namespace
