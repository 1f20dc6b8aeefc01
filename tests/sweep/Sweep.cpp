// What the rule book calls legal, held against the encoders and muxers of the running build: each container with each
// codec that it offers, and each value of each codec and those beside its edges. Every settled stream is encoded for a
// second, written and read back. A table tells pair by pair what came of it; a failure without a reason in the table of
// reasons below ends the program with status 1.
//
// sweep FOLDER [fast] [classic] [WORD...]
//   fast     each container with each codec, and no values
//   classic  without the second set of helpers
//   WORD     only rows with one of these words in their names

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string_view>

extern "C" {
#include <libavutil/log.h>
}

#include "Formats.h"
#include "Plan.h"
#include "common/PairFaults.h"
#include "media/Decoding.h"
#include "media/Input.h"
#include "norvex/Norvex.h"
#include "support/MadeClip.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using namespace NorvexExport;
using Core::Property;
using P = IPreset;
using V = IFormatCodecVideo;
using A = IFormatCodecAudio;

struct Reason {
    const char* what;   ///< the beginning of a row's name, or all of it
    const char* words;  ///< what the failure says, in part
    const char* whose;
    const char* why;
};

// clang-format off
/// What is known not to go beside pairs of container and codec, and whose doing it is. docs/sweep.md says more.
constexpr Reason g_reasons[] = {
    {"",               "has no encoder",     "FFmpeg", "the build has no encoder for it"},
    {"matroska dts",   "'dca'",              "system", "DTS has no rules, and its default bitrate is too low for the encoder"},
    {"mka dts",        "'dca'",              "system", "DTS has no rules, and its default bitrate is too low for the encoder"},
    {"mpeg2video video_codec/frame_rate", "not legal", "system", "the encoder's rates and the helper's own both bind"},
    {"ac3 filter_resample/resample/channel_layout", "allowed: one of mono, stereo", "system",
                                                   "the encoder's layouts and the helper's own both bind"},
    {"pcm_bluray filter_resample/resample", "not legal", "system", "the encoder's values and those of PCM both bind"},
    {"vorbis audio_codec/bitrate", "not legal",        "system", "the list has bitrates that go with no sample rate"},
    {"aac audio_codec/encode_options/profile", "does not code", "FFmpeg", "its encoder codes low complexity alone"},
    {"hevc video_codec/encode_options/profile=main10", "allowed: main", "system", "the default preset goes with main"},
    {"aiff",           "does not hold",      "system", "AIFF offers what WAV carries"},
    {"wav aac",        "does not decode",    "FFmpeg", "its demuxer cannot tell the packets apart that its muxer writes"},
    {"mp4 vorbis", "Invalid data", "FFmpeg", "later majors do not write what their muxer says that it carries"},
    {"webp_anim",      "neither pictures",   "FFmpeg", "its demuxer reads no film of WebP"},
    {"webp_anim",      "read back as webp_anim", "FFmpeg", "later majors read the codec of an animation by a name of its own"},
    {"opus filter_resample/resample/sample_rate", "48000 Hz", "FFmpeg", "its decoder gives 48000 Hz whatever was coded"},
    {"cfhd filter_resize/resize/width=48", "a multiple of 16", "system", "the height of 600 goes with wider steps"},
};
// clang-format on

/// What is known of a row that is a container with a codec.
std::optional<NorvexApps::PairFault> PairFaultOf(const std::string& what) {
    const std::size_t blank = what.find(' ');
    const std::string codec = blank == std::string::npos ? std::string() : what.substr(blank + 1);
    if (codec.empty() || codec == "subtitles" || codec.find('/') != std::string::npos) return std::nullopt;
    return NorvexApps::FaultOf(what.substr(0, blank), codec);
}

/// Whose doing a failure is, and why; empty where nobody knows.
std::string ReasonOf(const std::string& what, const std::string& failure) {
    const auto isIn = [&failure](const char* words) { return failure.find(words) != std::string::npos; };
    const auto pair = PairFaultOf(what);
    if (pair && isIn(pair->failure)) return fmt::format("{}: {}", pair->whose, pair->why);
    for (const Reason& reason : g_reasons) {
        const bool isOfRow = what.compare(0, std::string_view(reason.what).size(), reason.what) == 0;
        if (isOfRow && isIn(reason.words)) return fmt::format("{}: {}", reason.whose, reason.why);
    }
    return {};
}

std::string Join(const std::set<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : "+") + word;
    return text;
}

class Sweep {
public:
    explicit Sweep(const std::set<std::string>& words) : m_words(words) {
        NorvexTest::ClipSettings clip;
        clip.frames = 25;
        clip.width = 160;
        clip.height = 120;
        clip.soundSeconds = 1;
        m_clip = NorvexTest::MakeClip(m_folder.File("clip.nut"), clip);
        m_titles = m_folder.File("titles.srt");
        std::ofstream(m_titles) << "1\n00:00:00,000 --> 00:00:00,800\nA line\n\n";
    }

    /// A row: an export with these choices, under a name. What lies beside an edge may be corrected or refused.
    void Try(const std::string& what, const std::string& format, const std::vector<Choice>& choices,
             bool isBeside = false) {
        const auto isIn = [&what](const std::string& word) { return what.find(word) != std::string::npos; };
        if (!m_words.empty() && std::none_of(m_words.begin(), m_words.end(), isIn)) return;
        Request request;
        request.input = format == "srt" || format == "ass" || format == "ssa" ? m_titles : m_clip;
        request.output = m_folder.File("out." + Extension(format));
        request.choices = choices;
        request.choices.insert(request.choices.begin(),
                               {P::KEY_FORMAT + "/" + IFormatFile::TAG_CONTAINER, Property("", format), "sweep"});
        std::string settled;
        std::string bitrates;
        std::string failure;
        try {
            const Plan plan = MakePlan(request, Probe(request.input));
            std::set<std::string> asked;
            for (const StreamPlan& stream : plan.streams)
                asked.insert(CodecNameOf(stream.settled[V::TAG_CODEC_ID].GetString()));
            settled = Join(asked);
            const ExportResult result = RunExport(plan.job, {});
            bitrates = Bitrates(plan.job, result);
            failure = ReadBack(plan.job, asked);
        } catch (const RequestError& error) {
            failure = error.what();
            if (isBeside && failure.find("is not legal here") != std::string::npos)
                return Print(what, "", "", "", "refused");
        } catch (const MediaError& error) {
            failure = error.what();
        }
        Print(what, settled, bitrates, failure);
    }

    int Finish() const {
        fmt::print("{} went, {} did not for a known reason, {} did not go\n", m_went, m_explained, m_failed);
        return m_failed == 0 ? 0 : 1;
    }

private:
    /// Some demuxers go by the name alone.
    static std::string Extension(const std::string& format) {
        return format == IFormatFile::FORMAT_TARGA ? "tga" : format;
    }

    static std::string Bitrates(const ExportJob& job, const ExportResult& result) {
        const auto text = [](const char* kind, RateControl control, long long set, long long opened) {
            if (control == RateControl::Quality || set == 0 || set == opened) return std::string();
            return fmt::format(" {} {} opened {}", kind, set, opened);
        };
        std::string words;
        for (const VideoJob& video : job.video) {
            words += text("video", video.rateControl, video.bitrate, result.videoBitrates.at(0));
        }
        for (const AudioJob& audio : job.audio) {
            words += text("audio", audio.rateControl, audio.bitrate, result.audioBitrates.at(0));
        }
        return words;
    }

    /// Decodes the file, and tells what is in it other than asked for; empty where nothing is.
    static std::string ReadBack(const ExportJob& job, const std::set<std::string>& asked) {
        const InputInfo info = Probe(job.outputPath);
        std::set<std::string> found;
        for (const VideoSource& video : info.video) found.insert(video.codecId);
        for (const AudioSource& audio : info.audio) found.insert(audio.codecId);
        for (const SubtitleSource& subtitles : info.subtitles) found.insert(subtitles.codecId);
        if (found != asked) return "read back as " + Join(found);

        for (const VideoJob& video : job.video) {
            const auto picture = FirstFrame(job.outputPath, info.video.at(0).streamIndex, AVMEDIA_TYPE_VIDEO);
            if (picture->width != video.width || picture->height != video.height) {
                return fmt::format("read back with {}x{} pixels", picture->width, picture->height);
            }
        }
        for (const AudioJob& audio : job.audio) {
            const auto sound = FirstFrame(job.outputPath, info.audio.at(0).streamIndex, AVMEDIA_TYPE_AUDIO);
            const Media::ChannelLayout layout(audio.layout);
            if (sound->sample_rate != audio.sampleRate) {
                return fmt::format("read back with {} Hz", sound->sample_rate);
            }
            if (sound->ch_layout.nb_channels != layout.Get().nb_channels) {
                return fmt::format("read back with {} channels", sound->ch_layout.nb_channels);
            }
        }
        return {};
    }

    /// The first frame that a stream of the file decodes to. Throws MediaError where there is none.
    static Media::Owned<AVFrame> FirstFrame(const std::string& path, int index, AVMediaType type) {
        Media::Input input(path);
        Media::Decoder decoder(input.Select(index, type));
        Media::Owned<AVFrame> first;
        const auto keep = [&](const AVFrame& frame) {
            if (!first) first = Media::Own(av_frame_clone(&frame));
        };
        const auto packet = Media::Own(av_packet_alloc());
        while (!first && input.Read(*packet)) {
            if (packet->stream_index == index) decoder.Decode(packet.get(), keep);
        }
        if (!first) decoder.Decode(nullptr, keep);
        if (!first) Media::Fail("it does not decode", decoder.LastError());
        return first;
    }

    void Print(const std::string& what, const std::string& settled, const std::string& bitrates,
               const std::string& failure, std::string verdict = "went") {
        if (!failure.empty()) {
            const std::string reason = ReasonOf(what, failure);
            verdict = reason.empty() ? "FAILED: " + failure : fmt::format("{} ({})", reason, failure);
            ++(reason.empty() ? m_failed : m_explained);
        } else if (const auto fault = PairFaultOf(what)) {
            verdict = std::string("FAILED: it went, and the book's page says that it does not: ") + fault->why;
            ++m_failed;
        } else {
            ++m_went;
        }
        fmt::print("{:<58} {:<24} {}{}\n", what, settled, verdict, bitrates);
        std::fflush(stdout);
    }

    NorvexTest::TemporaryFolder m_folder;
    std::set<std::string> m_words;
    std::string m_clip;
    std::string m_titles;
    int m_went = 0;
    int m_explained = 0;
    int m_failed = 0;
};

struct Kind {
    const std::string& streamType;
    const std::string& key;
    const std::string& flatName;
};

/// The codecs that a container offers of a kind.
std::vector<std::string> CodecsOf(const IDataHelper& format, const Kind& kind) {
    ConstraintMap constraints;
    format.GetConstraints(constraints);
    const auto codecs = constraints.find(P::KEY_STREAMS + P::INDEX + kind.streamType + "/" + kind.key + "/codec_id");
    std::vector<std::string> ids;
    if (codecs == constraints.end()) return ids;
    for (const Property& codec : WhatIsAllowed(*codecs->second).values) ids.push_back(codec.GetString());
    return ids;
}

Choice Chosen(const std::string& path, const Property& value) {
    return {path, value, "sweep"};
}

const Kind g_kinds[] = {{P::STREAM_TYPE_VIDEO, P::KEY_FILTER_VIDEO_CODEC, V::TAG_FORMAT_CODEC_VIDEO},
                        {P::STREAM_TYPE_AUDIO, P::KEY_FILTER_AUDIO_CODEC, A::TAG_FORMAT_CODEC_AUDIO}};

void SweepPairs(Sweep& sweep) {
    for (const auto& [format, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        bool isTitles = true;
        for (const Kind& kind : g_kinds) {
            for (const std::string& codec : CodecsOf(*helper, kind)) {
                isTitles = false;
                sweep.Try(format + " " + codec, format, {Chosen(kind.key + "/codec_id", Property("", codec))});
            }
        }
        if (isTitles) sweep.Try(format + " subtitles", format, {});
    }
}

/// The container in which a codec's values are tried: one that reads back well, where one carries the codec; else the
/// last, for AIFF stands first and offers more than it carries.
std::string CarrierOf(const std::string& codec, const Kind& kind) {
    std::string carrier;
    for (const auto& [format, helper] : GetAvailableDataHelpers(P::KEY_FORMAT)) {
        const auto codecs = CodecsOf(*helper, kind);
        const bool isUnreadable = format == IFormatFile::FORMAT_QFX_1_0 || format == ModernFormats::FORMAT_WEBP_ANIM;
        if (isUnreadable || std::find(codecs.begin(), codecs.end(), codec) == codecs.end()) continue;
        if (format == IFormatFile::FORMAT_MATROSKA) return format;
        if (carrier != IFormatFile::FORMAT_MOV) carrier = format;
    }
    return carrier;
}

/// All that a constraint lists, or the edges of its range, and what lies beside them.
std::vector<Property> ValuesToTry(const IPropertyConstraint& constraint) {
    const Allowed allowed = WhatIsAllowed(constraint);
    std::vector<Property> values = allowed.values;
    for (const auto& edge : {allowed.min, allowed.max}) {
        if (edge) values.push_back(*edge);
    }
    std::set<long long> numbers;
    for (const Property& value : values) {
        if (value.GetType() == PT_INT64) numbers.insert(value.GetInt64());
    }
    if (numbers.empty()) return values;
    values.emplace_back("", *numbers.begin() - 1);
    values.emplace_back("", *numbers.rbegin() + 1);
    return values;
}

/// A value that a codec's helper speaks of, and what has to be chosen for it to do so.
struct Ruled {
    std::string path;
    SP<const IPropertyConstraint> constraint;
    std::vector<Choice> conditions;
};

/// Each constraint of a codec, and each rule with a value that meets its condition.
std::vector<Ruled> RuledBy(const IDataHelper& helper, const std::string& key) {
    const auto absolute = [&](const std::string& path) {
        const bool isOfPreset = path.compare(0, 7, "filter_") == 0 || path.compare(0, key.size(), key) == 0;
        return isOfPreset ? path : key + "/" + path;
    };
    std::vector<Ruled> all;
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    for (const auto& [path, constraint] : constraints) all.push_back({absolute(path), constraint, {}});
    RuleList rules;
    helper.GetValidationRules(rules);
    for (const auto& [name, rule] : rules) {
        if (rule->GetSecondConstraint().get() == nullptr) continue;
        Ruled ruled = {absolute(rule->GetSecondPath()), rule->GetSecondConstraint(), {}};
        if (rule->GetFirstConstraint().get() != nullptr) {
            const Allowed allowed = WhatIsAllowed(*rule->GetFirstConstraint());
            const std::string condition = absolute(rule->GetFirstPath());
            if (!allowed.values.empty()) {
                ruled.conditions.push_back(Chosen(condition, allowed.values.front()));
            } else if (allowed.min) {
                ruled.conditions.push_back(Chosen(condition, *allowed.min));
            }
        }
        all.push_back(ruled);
    }
    return all;
}

void SweepValues(Sweep& sweep) {
    const std::string resize = "filter_resize/resize/";
    for (const Kind& kind : g_kinds) {
        for (const auto& [codec, helper] : GetAvailableDataHelpers(kind.key)) {
            const std::string carrier = CarrierOf(codec, kind);
            if (carrier.empty() || !Proc::FindEncoder(codec, Proc::ImplNames::FFMPEG)) continue;
            const Property defaults = helper->GetDefaults();
            std::set<std::string> tried;
            for (const Ruled& ruled : RuledBy(*helper, kind.key)) {
                for (const Property& value : ValuesToTry(*ruled.constraint)) {
                    if (value.GetType() == PT_NODE) continue;
                    std::string what = fmt::format("{} {}={}", codec, ruled.path, Core::PropertyValueToString(value));
                    for (const Choice& condition : ruled.conditions) {
                        what += fmt::format(" {}={}", condition.path, Core::PropertyValueToString(condition.value));
                    }
                    if (!tried.insert(what).second) continue;
                    std::vector<Choice> choices = {Chosen(kind.key + "/codec_id", Property("", codec))};
                    choices.insert(choices.end(), ruled.conditions.begin(), ruled.conditions.end());
                    choices.push_back(Chosen(ruled.path, value));
                    // A bitrate is heeded in the mode that holds it.
                    if (ruled.path == kind.key + "/bitrate") {
                        choices.push_back(Chosen(kind.key + "/bitrate_mode", Property("", V::TAG_BITRATE_MODE_CBR)));
                    }
                    // A size counts where it is asked for.
                    if (ruled.path.compare(0, resize.size(), resize) == 0) {
                        choices.push_back(Chosen(resize + "frame_size_mode", Property("", "custom")));
                    }
                    // A mode needs its number, which not every codec starts with.
                    if (value == Property("", V::TAG_BITRATE_MODE_CBR) && !defaults.ChildExists(V::TAG_BITRATE)) {
                        choices.push_back(Chosen(kind.key + "/bitrate", Property("", 2000000)));
                    }
                    if (value == Property("", V::TAG_BITRATE_MODE_VBR) && !defaults.ChildExists(V::TAG_QUALITY)) {
                        choices.push_back(Chosen(kind.key + "/quality", Property("", 10)));
                    }
                    sweep.Try(what, carrier, choices, !ruled.constraint->IsValid(value));
                }
            }
        }
    }
}

}  // namespace

/// "fast" is the pairs of containers and codecs alone, "classic" leaves the second set out; of other words a row has
/// one.
int main(int argc, char** argv) {
    std::set<std::string> words(argv + 1, argv + argc);
    const bool isFast = words.erase("fast") != 0;
    av_log_set_level(AV_LOG_QUIET);
    if (words.erase("classic") == 0) RegisterModernHelpers();
    TakeCensus();
    Sweep sweep(words);
    SweepPairs(sweep);
    if (!isFast) SweepValues(sweep);
    return sweep.Finish();
}
