#include "lifetime/Uses.h"

#include <cstdio>
#include <cstdlib>

#include "norvex/Norvex.h"

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;

struct Kept {
    SP<const IDataHelper> dvd, h264, aac, rate;
    RuleList rules;
    ConstraintMap constraints;
};

namespace {

void Expect(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "wrong: %s\n", what);
    std::_Exit(1);
}

Property MakeStream() {
    Property stream(IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT("codec_id", "aac");
    stream.SetChildT("sample_rate", 44000);
    stream.SetChildT("sample_format", "s16");
    stream.SetChildT("channel_layout", "stereo");
    stream.SetChildT("bitrate", 100000);
    stream.SetChildT("fourcc", 0);
    return stream;
}

}  // namespace

Kept* Take() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
    auto* const kept = new Kept{
        CreateDataHelper(IPreset::KEY_FORMAT, IFormatFile::FORMAT_DVD),
        CreateDataHelper(IPreset::KEY_FILTER_VIDEO_CODEC, IFormatCodecVideo::CODEC_ID_H264),
        CreateDataHelper(IFormatCodecAudio::TAG_FORMAT_CODEC_AUDIO, IFormatCodecAudio::CODEC_ID_AAC),
        CreateDataHelper(Proc::IFilterFrameRate::CLASS_ID, ""),
        {},
        {},
    };
    kept->aac->GetValidationRules(kept->rules);
    kept->h264->GetConstraints(kept->constraints);
    return kept;
}

void AskAndGiveBack(Kept* kept) {
    Property stream = MakeStream();
    kept->aac->CorrectFormatCodec(stream);
    Expect(stream["sample_rate"].GetInt64() == 44100 && stream["bitrate"].GetInt64() == 96000, "a corrected stream");
    Expect(kept->rules.at(0).second->GetSecondPath() == "filter_resample/resample/sample_rate", "a kept rule");
    Property bitrate("bitrate", 1);
    Expect(kept->constraints["bitrate"]->Fixup(bitrate) && bitrate.GetInt64() == 100000, "a shared constraint");
    RuleList rules;
    kept->dvd->GetValidationRules(rules);
    Expect(rules.back().second->GetSecondPath() == "filter_resample/resample/sample_rate", "a rule of the DVD");
    kept->rate->GetConstraints(kept->constraints);
    Property rate("frame_rate", Core::Ratio(24));
    Expect(kept->constraints["frame_rate"]->IsValid(rate), "a list of rates");
    CreateDataHelper("filter_resize", "")->GetValidationRules(rules);
    const auto& [key, even] = rules.back();
    Expect(even->GetSecondPath() == "filter_resize/resize/height", "a rule of the resizer");
    Expect(even->GetSecondConstraint()->Description("") == "Width and height must be even numbers", "a message");

    Expect(GetAvailableDataHelpers("format").size() == 64, "the containers");
    Expect(GetAvailableDataHelpers("video_codec").count("h264") == 1, "the codecs");
    Expect(CreateDataHelper("format_codec_video", "h264") == kept->h264, "a kind that goes by an alias");
    Expect(IsVideoCodec("h264") && IsAudioCodec("aac") && GetAllSubtitleCodecs().size() == 12, "the vocabulary");
    Expect(SampleFmtRecord::Find("s16").bits == 16 && LayoutRecord::Find("stereo").channels == 2, "records");
    Expect(CodecIDFromTextID(GetFFCodecsMap().at(AV_CODEC_ID_AAC)) == AV_CODEC_ID_AAC, "FFmpeg's names");
    Expect(FormatValidator::Instance().GetSupportedAudioCodecs("mp4", {}, {}).size() > 1, "the census");
    Expect(CodecIsSupported(FormatFile::Create([] {
                                Property file("format");
                                file.SetChildT("container", "mpegts");
                                return file;
                            }()),
                            FormatCodecAudio::Create(stream, nullptr)) == false,
           "a muxer without tags");
    const Property preset = AssemblePreset({stream, kept->rate->GetDefaults()});
    Expect(preset["filter_resample/resample/sample_rate"].GetInt64() == 44100, "an assembled preset");
    Expect(CheckPreset(preset, HelpersOf(preset)).empty(), "a checked preset");
    delete kept;
}

bool Answers() {
    try {
        return CreateDataHelper(IPreset::KEY_FILTER_AUDIO_CODEC, IFormatCodecAudio::CODEC_ID_AAC) &&
               GetAvailableDataHelpers(IPreset::KEY_FORMAT).size() == 64 &&
               AssemblePreset({MakeStream()}).ChildExists("audio_codec");
    } catch (const Exception&) {
        return false;
    }
}
