// Presets that were turned into those of another container or codec, on the codecs of the installed FFmpeg.

#include <set>

#include "norvex/document/PresetDocument.h"
#include "support/TestHelpers.h"

namespace {

using namespace NorvexTest;

std::vector<std::string> Messages(const std::vector<Finding>& findings) {
    std::vector<std::string> messages;
    for (const Finding& finding : findings) {
        if (finding.problem != Finding::Problem::Missing) messages.push_back(finding.message);
    }
    return messages;
}

/// Everything that a container starts from: its own defaults, those of its codecs, and those of the filters.
Property DefaultPreset(const IDataHelper& container) {
    const Property format = container.GetDefaults();
    Property preset = Node("preset", {format});
    for (const Property& stream : format["streams"]) {
        for (const char* const kind : {"video_codec", "audio_codec", "subtitle_codec"}) {
            if (!stream.ChildExists(kind)) continue;
            const std::string id = stream[kind]["codec_id"].GetString();
            const bool hasHelper = std::string(kind) != "subtitle_codec";
            preset.SetChild(kind, hasHelper ? CreateDataHelper(kind, id)->GetDefaults() : stream[kind]);
        }
    }
    for (const char* const filter : {"filter_resample", "filter_resize", "filter_rate"}) {
        preset.AddNamed(CreateDataHelper(filter, "")->GetDefaults());
    }
    return preset;
}

class PresetMending : public testing::Test {
protected:
    PresetMending() { FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create()); }
};

TEST_F(PresetMending, MakesEachContainersPresetLegalInEachOther) {
    const auto& containers = GetAvailableDataHelpers("format");
    std::set<std::string> starts, documents;  // some containers start alike, and many pairs end in the same document
    int broken = 0;
    for (const auto& [from, helper] : containers) {
        Property preset = DefaultPreset(*helper);
        preset["format"]["container"] = "";
        if (!starts.insert(Dump(preset)).second) continue;
        for (const auto& [to, other] : containers) {
            SCOPED_TRACE(from + " to " + to);
            preset["format"]["container"] = to;
            const MendedPreset mended = MendPreset(preset);
            broken += mended.broken.empty() ? 0 : 1;
            EXPECT_THAT(Messages(mended.left), IsEmpty());
            const std::string document = Document::WritePreset(mended.preset);
            if (!documents.insert(document).second) continue;
            Property read;
            ASSERT_NO_THROW(read = Document::ReadPreset(document).preset) << document;
            EXPECT_EQ(TreeDiff(mended.preset, read), "");
            EXPECT_THAT(Messages(JudgePreset(read)), IsEmpty());
        }
    }
    EXPECT_GT(broken, 1500);
    EXPECT_GT(documents.size(), 500U);
}

TEST_F(PresetMending, KeepsWhatMeansTheSameAndTellsTheRest) {
    const auto read = [](const std::string& sections) {
        const std::string text = R"({"norvex-preset": 1, "preset": {)" + sections + "}}";
        return Document::ReadPreset(text, Document::Foreign::Left).preset;
    };
    const auto mend = [&read](const std::string& sections) {
        const MendedPreset mended = MendPreset(read(sections));
        EXPECT_THAT(Messages(mended.left), IsEmpty());
        std::vector<std::string> told;
        for (const MendedValue& value : mended.values) told.push_back(value.message);
        return std::pair(told, PropertyValueToString(mended.preset));
    };
    const std::string h264 = R"("video_codec": {"codec_id": "h264", "bitrate_mode": "cbr", "bitrate": 3000000)";
    const std::string dv = R"("video_codec": {"codec_id": "dvvideo", "bitrate_mode": "cbr", "bitrate": 2000000)";
    const std::string surround = R"x("filter_resample": {"resample": {"channel_layout": "5.1(side)"}})x";
    const auto options = [](const std::string& values) { return R"(, "encode_options": {)" + values + "}}"; };
    const struct {
        std::string sections;
        std::vector<std::string> told;
        std::string mended;
    } cases[] = {
        // Legal as it is: nothing is touched, be it narrower than the container or beyond a dialog's list.
        {R"("format": {"container": "mp4", "limits": {"audio": 1}}, )" + surround +
             R"(, "audio_codec": {"codec_id": "aac", "bitrate": 96000})",
         {},
         "{format: {container: mp4, limits: {audio: 1}}, filter_resample: {resample: {channel_layout: "
         "5.1(side)}}, audio_codec: {codec_id: aac, bitrate: 96000}}"},
        // A codec that the container does not carry.
        {R"("format": {"container": "webm"}, )" + h264 + options(R"("tune": "film")"),
         {"Parameter video_codec/codec_id is vp8 now, the default of webm",
          "Parameter video_codec/bitrate_mode stays cbr", "Parameter video_codec/bitrate stays 3000000",
          "video_codec/encode_options/tune is left out",
          "Parameter video_codec/encode_options/disable_transparency is false now, the default of vp8",
          "Parameter video_codec/quality is 10 now, the default of vp8"},
         "{format: {container: webm}, video_codec: {codec_id: vp8, bitrate_mode: cbr, bitrate: 3000000, "
         "quality: 10, encode_options: {disable_transparency: false}}}"},
        // A codec that somebody wrote in the place of another.
        {R"("video_codec": {"codec_id": "mpeg4", "bitrate": 5, "quality": 20)" +
             options(R"("profile": "high", "tune": "film")"),
         {"Parameter video_codec/bitrate is 2000000 now, the default of mpeg4",
          "Parameter video_codec/quality stays 20",
          "Parameter video_codec/encode_options/profile is simple now, the default of mpeg4",
          "video_codec/encode_options/tune is left out",
          "Parameter video_codec/bitrate_mode is cbr now, the default of mpeg4",
          "Parameter video_codec/global_header is true now, the default of mpeg4"},
         "{video_codec: {codec_id: mpeg4, quality: 20, bitrate: 2000000, bitrate_mode: cbr, encode_options: "
         "{profile: simple}, global_header: true}}"},
        // A rule on a stream's profile that is told of the container.
        {R"("format": {"container": "mxf"}, )" + h264 + options(R"("profile": "high")"),
         {"Parameter video_codec/encode_options/profile is baseline now; it was high"},
         "{format: {container: mxf}, video_codec: {codec_id: h264, bitrate_mode: cbr, bitrate: 3000000, "
         "encode_options: {profile: baseline}}}"},
        // What only a test knows, and the nearest that is no mark.
        {R"("filter_resize": {"resize": {"width": 641, "height": 16}}, "filter_rate": {"frame_rate": "0.4"})",
         {"Parameter filter_rate/frame_rate is 1/1 now; it was 2/5",
          "Parameter filter_resize/resize/height is 32 now; it was 16",
          "Parameter filter_resize/resize/width is 640 now; it was 641"},
         "{filter_resize: {resize: {width: 640, height: 32}}, filter_rate: {frame_rate: 1/1}}"},
        // Sizes that a codec offers, which its rule does not look at.
        {dv + R"(}, "filter_resize": {"resize": {"frame_size_mode": "original", "width": 800, "height": 600}})",
         {"Parameter filter_resize/resize/width is 720 now; it was 800",
          "Parameter filter_resize/resize/height is 576 now; it was 600",
          "Parameter filter_resize/resize/frame_size_mode is custom now, the default of filter_resize"},
         "{video_codec: {codec_id: dvvideo, bitrate_mode: cbr, bitrate: 2000000}, filter_resize: {resize: "
         "{frame_size_mode: custom, width: 720, height: 576}}}"},
        // A value that is mended brings another rule into play.
        {R"("filter_resample": {"resample": {"sample_rate": 7000}}, "audio_codec": {"codec_id": "mp3", "bitrate": 320000})",
         {"Parameter filter_resample/resample/sample_rate is 11025 now; it was 7000",
          "Parameter audio_codec/bitrate is 64000 now; it was 320000"},
         "{filter_resample: {resample: {sample_rate: 11025}}, audio_codec: {codec_id: mp3, bitrate: 64000}}"},
        // A mode that the codec has not, and what the other one needs.
        {R"("video_codec": {"codec_id": "dvvideo", "bitrate_mode": "vbr"})",
         {"Parameter video_codec/bitrate_mode is cbr now, the default of dvvideo",
          "Parameter video_codec/bitrate is 2000000 now, the default of dvvideo"},
         "{video_codec: {codec_id: dvvideo, bitrate_mode: cbr, bitrate: 2000000}}"},
        {R"("audio_codec": {"codec_id": "mp3", "bitrate_mode": "x"}, "video_codec": {"codec_id": "h264", "bitrate_mode": "x"})",
         {"Parameter video_codec/bitrate_mode is vbr now, the default of h264",
          "Parameter audio_codec/bitrate_mode is cbr now, the default of mp3",
          "Parameter video_codec/quality is 14 now, the default of h264",
          "Parameter audio_codec/bitrate is 256000 now, the default of mp3"},
         "{audio_codec: {codec_id: mp3, bitrate_mode: cbr, bitrate: 256000}, video_codec: {codec_id: h264, "
         "bitrate_mode: vbr, quality: 14}}"},
        // No stream that the container has room for.
        {R"("format": {"container": "aiff", "limits": {"other": 17, "audio": 0}, "streams": {"0": {"type": "video", "video_codec": {"codec_id": "h264"}}}})",
         {"Parameter format/streams/0 is {type: audio, audio_codec: {codec_id: pcm_s16le}} now, the default of aiff",
          "Parameter format/limits/other is 16 now, the default of aiff"},
         "{format: {container: aiff, limits: {other: 16, audio: 0}, streams: {0: {type: audio, audio_codec: {codec_id: "
         "pcm_s16le}}}}}"},
        // No value at all.
        {R"("audio_codec": {"codec_id": "aac", "bitrate": {"$bytes": "ff"}}, "filter_volume": {"volume": "loud"})",
         {"Parameter audio_codec/bitrate is 256000 now, the default of aac",
          "Parameter filter_volume/volume is 100 now, the default of filter_volume"},
         "{audio_codec: {codec_id: aac, bitrate: 256000}, filter_volume: {volume: 100}}"},
        // A container's tags, facts and streams, which are named by their places where one of them has no number.
        {R"("format": {"container": "wav", "global_header": true, "disk_size": 1, "limits": {"video": 9, "audio": 1, "subtitle": -1}, "streams": {
            "0": {"type": "video", "video_codec": {"codec_id": "mpeg2video"}}, "x": {"type": "audio", "audio_codec": {"codec_id": "pcm_s16le"}},
            "2": {"type": "audio", "audio_codec": {"codec_id": "pcm_s16le"}}}})",
         {"format/streams/0 is left out", "format/streams/2 is left out",
          "Parameter format/global_header is false now, the default of wav",
          "Parameter format/limits/video is 0 now, the default of wav",
          "Parameter format/limits/subtitle is 0 now, the default of wav", "format/disk_size is left out"},
         "{format: {container: wav, global_header: false, limits: {video: 0, audio: 1, subtitle: 0}, streams: {1: "
         "{type: audio, audio_codec: {codec_id: pcm_s16le}}}}}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sections);
        const auto [told, mended] = mend(c.sections);
        EXPECT_EQ(told, c.told);
        EXPECT_EQ(mended, c.mended);
    }
    const auto judged = [&read](const std::string& sections) {
        std::vector<std::string> told;
        for (const Finding& finding : JudgePreset(read(sections))) {
            const bool isThere = finding.problem != Finding::Problem::Missing;
            EXPECT_EQ(finding.source == Finding::Source::Rule, !isThere || finding.path == "filter_resize/resize");
            if (isThere) told.push_back(finding.path + ' ' + finding.documentPath + ": " + finding.message);
        }
        return told;
    };
    const std::string size = R"(}, "filter_resize": {"resize": {"width": 800, "height": 600}})";
    EXPECT_THAT(judged(h264 + size), IsEmpty());
    EXPECT_THAT(judged(dv + R"(, "encode_options": {"tune": "film"})" + size),
                ElementsAre("video_codec/encode_options/tune video_codec/encode_options/tune: Parameter "
                            "video_codec/encode_options/tune has no place: dvvideo has none such",
                            "filter_resize/resize filter_resize/resize: Section filter_resize/resize makes pictures of "
                            "800 x 600, but those of dvvideo must be one of 720 x 480, 720 x 576"));
}

}  // namespace
