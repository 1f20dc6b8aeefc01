#include "Asked.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <limits>

#include "Formats.h"
#include "Plan.h"
#include "common/OtherNames.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using NorvexApps::Named;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;
using V = IFormatCodecVideo;

struct NamedValue {
    std::string path;
    Named kind;
};

std::vector<NamedValue> NamedValues() {
    const std::string& resample = Proc::IFilterResample::CLASS_ID;
    return {
        {Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER}), Named::Format},
        {Path({P::KEY_FILTER_VIDEO_CODEC, C::TAG_CODEC_ID}), Named::VideoCodec},
        {Path({P::KEY_FILTER_AUDIO_CODEC, C::TAG_CODEC_ID}), Named::AudioCodec},
        {Path({P::KEY_FILTER_SUBTITLE_CODEC, C::TAG_CODEC_ID}), Named::SubtitleCodec},
        {Path({resample, Proc::IResample::CLASS_ID, A::TAG_LAYOUT}), Named::Layout},
        {Path({resample, A::TAG_SAMPLE_FORMAT}), Named::SampleFormat},
    };
}

/// A name of an encoder is taken for that of its codec, which another encoder may write.
void TellOfEncoder(Request& request, const std::string& name, const std::string& codecId) {
    const AVCodec* const named = avcodec_find_encoder_by_name(name.c_str());
    const auto encoder = Proc::FindEncoder(CodecNameOf(codecId), Proc::ImplNames::FFMPEG);
    if (named == nullptr || !encoder || name == codecId || named == encoder.Get()) return;
    request.notes.push_back("'" + name + "' is taken for the codec '" + codecId + "', which '" + encoder->name +
                            "' encodes here.");
}

/// Whether a choice is taken back by one that leaves the value at a path open.
bool IsAbout(const Choice& choice, const std::string& path) {
    const std::size_t tag = path.rfind(Property::SEPARATOR);
    const bool isCodec = path.substr(tag + Property::SEPARATOR.size()) == C::TAG_CODEC_ID;
    const std::string section = path.substr(0, tag + Property::SEPARATOR.size());
    return choice.path == path || (isCodec && choice.path.compare(0, section.size(), section) == 0);
}

}  // namespace

void UseIds(Request& request) {
    for (const NamedValue& named : NamedValues()) {
        for (Choice& choice : request.choices) {
            if (choice.path != named.path || choice.isOpen) continue;
            const std::string name = choice.value.GetString();
            const bool isAutomatic = name == C::CODEC_ID_AUTO || name == A::TAG_CH_LAYOUT_UNKNOWN;
            if (isAutomatic) continue;
            const auto id = NorvexApps::FindId(named.kind, name);
            if (!id) throw RequestError(choice.option + ": " + NorvexApps::WhyUnknown(named.kind, name));
            TellOfEncoder(request, name, *id);
            choice.value = Property(choice.path, *id);
        }
    }
}

void TakeBackOpen(Request& request) {
    auto& choices = request.choices;
    for (auto open = choices.begin(); open != choices.end();) {
        if (!open->isOpen || open->stream) {
            ++open;
            continue;
        }
        const std::string path = open->path;
        const auto kept = std::remove_if(choices.begin(), open, [&path](const Choice& c) { return IsAbout(c, path); });
        open = choices.erase(kept, std::next(open));
    }
}

bool Range::Holds(long long value) const {
    return (value >= least && value <= most) || value == automatic;
}

std::string Range::Words() const {
    return "a whole number from " + std::to_string(least) + " to " + std::to_string(most);
}

std::optional<Range> RangeOf(const std::string& path) {
    constexpr long long largest = std::numeric_limits<int>::max();
    const std::string& codec = P::KEY_FILTER_VIDEO_CODEC;
    const auto inResize = [](const std::string& tag) {
        return Path({Proc::IFilterResize::CLASS_ID, Proc::IResize::CLASS_ID, tag});
    };
    const std::pair<std::string, Range> ranges[] = {
        {Path({codec, C::TAG_QUALITY}), {1, C::MAX_QUALITY, {}}},
        {Path({codec, V::TAG_MAX_I_FRAME_INTERVAL}), {0, largest, {}}},
        {Path({codec, V::TAG_MAX_B_FRAME_SEQUENCE}), {0, largest, {}}},
        {Path({codec, C::TAG_THREAD_NUMBER}), {0, largest, {}}},
        {inResize(V::TAG_ASPECTX), {0, largest, {}}},
        {inResize(V::TAG_ASPECTY), {0, largest, {}}},
        {Path({Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_RATE}), {1, largest, -1}},
    };
    const auto* const range =
        std::find_if(std::begin(ranges), std::end(ranges), [&path](const auto& row) { return row.first == path; });
    return range != std::end(ranges) ? std::optional(range->second) : std::nullopt;
}

void RequireRanges(const Request& request) {
    for (const Choice& choice : request.choices) {
        const auto range = RangeOf(choice.path);
        if (!range || choice.value.GetType() != PT_INT64 || range->Holds(choice.value.GetInt64())) continue;
        throw RequestError(choice.option + ": '" + Core::PropertyValueToString(choice.value) + "' is not " +
                           range->Words());
    }
}

}  // namespace NorvexExport
