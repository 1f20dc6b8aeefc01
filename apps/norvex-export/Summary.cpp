#include "Summary.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using Norvex::Conf::CorrectedValue;
using Norvex::Conf::FullNameForPeople;
using Norvex::Conf::NameForPeople;
using Norvex::Conf::ParameterForPeople;
using Norvex::Conf::ValueForPeople;
using Norvex::Core::Property;
using A = Norvex::Conf::IFormatCodecAudio;
using C = Norvex::Conf::IFormatCodec;
using P = Norvex::Conf::IPreset;
using V = Norvex::Conf::IFormatCodecVideo;

/// A value of a stream's node in words; empty where there is none.
std::string Words(const Property& stream, const std::string& tag) {
    return stream.ChildExists(tag) ? ValueForPeople(tag, stream[tag]) : std::string();
}

std::string CodecName(const Property& stream) {
    if (!stream.ChildExists(C::TAG_CODEC_ID)) return {};
    const std::string id = stream[C::TAG_CODEC_ID].GetString();
    const bool isAudio = stream.GetName() == A::TAG_FORMAT_CODEC_AUDIO;
    return NameForPeople(isAudio ? P::KEY_FILTER_AUDIO_CODEC : P::KEY_FILTER_VIDEO_CODEC, id);
}

/// "quality 20" or "2 Mbit/s". A codec that can but be lossless has neither: of sound that is said; pictures may lose
/// colours before they reach it.
std::string EffortOf(const Property& stream) {
    const Norvex::Proc::EncoderFacts facts = Norvex::Proc::FactsOf(
        Norvex::Proc::FindEncoder(stream[C::TAG_CODEC_ID].GetString(), Norvex::Proc::ImplNames::FFMPEG));
    if (facts.isLossless && !facts.isLossy) return stream.GetName() == A::TAG_FORMAT_CODEC_AUDIO ? "lossless" : "";
    const bool isByQuality = stream.ChildExists(C::TAG_BITRATE_MODE) && stream.ChildExists(C::TAG_QUALITY) &&
                             stream[C::TAG_BITRATE_MODE] == Property(std::string(), C::TAG_BITRATE_MODE_VBR);
    return isByQuality ? "quality " + Words(stream, C::TAG_QUALITY) : Words(stream, C::TAG_BITRATE);
}

std::string Joined(const std::vector<std::string>& words, const char* joint) {
    std::string text;
    for (const std::string& word : words) {
        if (!word.empty()) text += (text.empty() ? "" : joint) + word;
    }
    return text;
}

std::string StreamSummary(const StreamPlan& stream) {
    if (stream.isCopied) return stream.source + " as it is";
    const Property& settled = stream.settled;
    if (settled.GetName() == A::TAG_FORMAT_CODEC_AUDIO) {
        return Joined(
            {CodecName(settled), Words(settled, A::TAG_LAYOUT), Words(settled, A::TAG_SAMPLE_RATE), EffortOf(settled)},
            " ");
    }
    if (settled.GetName() != V::TAG_FORMAT_CODEC_VIDEO) {
        return settled.ChildExists(C::TAG_CODEC_ID)
                   ? NameForPeople(P::KEY_FILTER_SUBTITLE_CODEC, settled[C::TAG_CODEC_ID].GetString())
                   : stream.source;
    }
    const std::string profile = C::TAG_CODEC_OPTIONS_ENCODE + Property::SEPARATOR + C::TAG_PROFILE;
    const bool hasProfile = settled.ChildExists(C::TAG_CODEC_OPTIONS_ENCODE) &&
                            settled[C::TAG_CODEC_OPTIONS_ENCODE].ChildExists(C::TAG_PROFILE);
    const std::string size = ValueForPeople(std::string(), settled);
    const std::string rate = stream.kind == StreamKind::Cover ? std::string() : Words(settled, V::TAG_FPS);
    return Joined({Joined({CodecName(settled), hasProfile ? ValueForPeople(profile, settled[profile]) : "", size,
                           rate.empty() ? "" : "at " + rate.substr(0, rate.find(" ("))},
                          " "),
                   EffortOf(settled)},
                  ", ");
}

/// What became of one value in the end, and the change that says most of it.
struct Difference {
    std::string path;
    std::optional<Property> before;
    std::optional<Property> after;
    const CorrectedValue* why = nullptr;  ///< null where the program gave way to what was asked
};

std::string HelperName(const CorrectedValue& change) {
    return NameForPeople(change.helperKind, change.helperId);
}

/// "; AAC has no such bitrate where the sample rate is 8 kHz"
std::string Reason(const Difference& difference) {
    if (difference.why == nullptr) return ", for what was asked beside it";
    const CorrectedValue& change = *difference.why;
    if (change.reason == CorrectedValue::Reason::Default) return ", the default of " + HelperName(change);
    if (!change.broken) return ", as " + HelperName(change) + " works it out";
    std::string text =
        ", which " + NameForPeople(change.broken->helperKind, change.broken->helperId) + " does not take";
    const std::string& path = change.broken->conditionPath;
    const bool isTied = change.broken->condition && path.rfind(C::TAG_CODEC_ID) == std::string::npos;
    if (isTied) text += " where " + ParameterForPeople(path) + " is " + ValueForPeople(path, *change.broken->condition);
    return text;
}

std::vector<Difference> DifferencesOf(const StreamPlan& stream, bool isSampleFormatAsked) {
    std::vector<Difference> differences;
    const auto add = [&differences](const CorrectedValue& change, bool isGivenWay) {
        const auto isSame = [&change](const Difference& known) { return known.path == change.path; };
        auto known = std::find_if(differences.begin(), differences.end(), isSame);
        if (known == differences.end()) known = differences.insert(known, {change.path, change.before, {}, nullptr});
        known->after = change.after;
        if (!isGivenWay && (known->why == nullptr || change.broken)) known->why = &change;
    };
    for (const CorrectedValue& change : stream.changes) add(change, false);
    for (const CorrectedValue& change : stream.givenWay) add(change, true);
    // What stood nowhere before was not asked for, and of the samples' format people hardly know.
    const auto isNone = [isSampleFormatAsked](const Difference& d) {
        return !d.before || (d.after && *d.after == *d.before) ||
               (d.path == A::TAG_SAMPLE_FORMAT && !isSampleFormatAsked);
    };
    differences.erase(std::remove_if(differences.begin(), differences.end(), isNone), differences.end());
    return differences;
}

/// "sample rate 44.1 kHz instead of 96 kHz, which MP3 does not take"
std::string DifferenceText(const Difference& difference) {
    const std::string& path = difference.path;
    const std::string before = ValueForPeople(path, *difference.before);
    if (!difference.after) return ParameterForPeople(path) + " " + before + " is left out" + Reason(difference);
    return ParameterForPeople(path) + ' ' + ValueForPeople(path, *difference.after) + " instead of " + before +
           Reason(difference);
}

}  // namespace

std::string SummaryText(const Plan& plan) {
    std::vector<std::string> streams;
    for (const StreamPlan& stream : plan.streams) streams.push_back(StreamSummary(stream));
    std::string text = NameForPeople(P::KEY_FORMAT, plan.formatId) + ", " + Joined(streams, "; ") + "\n";
    const std::string format = Norvex::Proc::IFilterResample::CLASS_ID + Property::SEPARATOR + A::TAG_SAMPLE_FORMAT;
    const bool isFormatAsked = plan.request.Find(format) != nullptr;
    for (const StreamPlan& stream : plan.streams) {
        for (const Difference& difference : DifferencesOf(stream, isFormatAsked))
            text += "  " + DifferenceText(difference) + "\n";
    }
    return text;
}

}  // namespace NorvexExport
