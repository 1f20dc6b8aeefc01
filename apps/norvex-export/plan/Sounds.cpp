#include "Sounds.h"

#include <algorithm>

#include "Containers.h"
#include "Copies.h"
#include "Words.h"
#include "norvex-export/Formats.h"
#include "norvex-export/Jobs.h"
#include "norvex-export/Settle.h"
#include "norvex/Norvex.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using A = IFormatCodecAudio;
using C = IFormatCodec;
using P = IPreset;

namespace {

/// Whether the name is one of FFmpeg's layouts, or the like, that the rule book has a record of.
template <class Record>
void RequireKnown(const Request& request, const std::string& path) {
    const std::string name = request.TextAt(path);
    if (name.empty()) return;
    try {
        Record::Find(name);
    } catch (const FormatException&) {
        throw RequestError(request.Find(path)->option + ": unknown name '" + name + "'");
    }
}

Property ResampleSection(const Request& request) {
    const std::string& filter = Proc::IFilterResample::CLASS_ID;
    RequireKnown<LayoutRecord>(request, Path({filter, Proc::IResample::CLASS_ID, A::TAG_LAYOUT}));
    RequireKnown<SampleFmtRecord>(request, Path({filter, A::TAG_SAMPLE_FORMAT}));
    return WithChoices(Proc::IFilterResample::Settings2Property({}), request);
}

Property AudioStreamOf(const AudioSource& source, const std::string& codecId) {
    Property stream(A::TAG_FORMAT_CODEC_AUDIO);
    stream.SetChildT(C::TAG_CODEC_ID, codecId);
    stream.SetChildT(A::TAG_SAMPLE_RATE, source.sampleRate);
    stream.SetChildT(A::TAG_SAMPLE_FORMAT, source.sampleFormat);
    stream.SetChildT(A::TAG_LAYOUT, source.layout);
    return stream;
}

/// The stream of its kind that a player would take, or null.
template <class Source>
const Source* FindMain(const std::vector<Source>& streams) {
    const auto main = std::find_if(streams.begin(), streams.end(), [](const Source& source) { return source.isMain; });
    return main != streams.end() ? &*main : nullptr;
}

/// Whether the codec's rules settle the sample format. Where they do not, the encoder is left to choose.
bool HasSampleFormatRule(const IDataHelper& codec) {
    RuleList rules;
    codec.GetValidationRules(rules);
    const std::string path = Path({Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_FORMAT});
    return std::any_of(rules.begin(), rules.end(),
                       [&path](const auto& rule) { return rule.second->GetSecondPath() == path; });
}

}  // namespace

void PlanAudio(Plan& plan, const NamedHelper& format, const Property& formatTree) {
    const Property* const stream = FindStream(formatTree, P::STREAM_TYPE_AUDIO);
    const Request& request = plan.request;
    const std::string& kind = P::KEY_FILTER_AUDIO_CODEC;
    const bool isCodecChosen = request.Find(Path({kind, C::TAG_CODEC_ID})) != nullptr;
    const AudioSource* const main = FindMain(plan.input.audio);
    if (request.noAudio || stream == nullptr || main == nullptr) {
        if (isCodecChosen && !request.noAudio) {
            throw RequestError("--audio: there is no sound in the " +
                               std::string(stream == nullptr ? "format '" + plan.formatId + "'" : "input"));
        }
        if (main != nullptr && !request.noAudio && !plan.job.video.empty()) {
            plan.notes.push_back("'" + plan.formatId + "' holds no sound; it is left out.");
        }
        return;
    }
    const AudioSource& source = *main;
    const bool isAsked = isCodecChosen || request.Asks(kind) || request.Asks(Proc::IFilterResample::CLASS_ID);
    if (PlanCopy(plan, formatTree, source, isAsked)) return;

    const NamedHelper codec = FindCodec(format, kind, P::STREAM_TYPE_AUDIO, CodecOf(request, *stream, kind));
    StreamPlan settled =
        Settle({format, formatTree, codec, {ResampleSection(request)}, request}, AudioStreamOf(source, codec.id));
    settled.kind = StreamPlan::Kind::Audio;
    settled.source = WordsFor(source);
    plan.job.audio.push_back(MakeAudioJob(settled.settled, source));
    plan.streams.push_back(std::move(settled));
    const bool isFormatChosen = request.Find(Path({Proc::IFilterResample::CLASS_ID, A::TAG_SAMPLE_FORMAT})) != nullptr;
    if (!isFormatChosen && !HasSampleFormatRule(*codec.helper)) plan.job.audio.back().sampleFormat.clear();
    const int stored = DataHelperAudioCodecPCM::GetStoredBitsPerSample(codec.id);
    const int counted = SampleFmtRecord::Find(plan.streams.back().settled[A::TAG_SAMPLE_FORMAT].GetString()).bits;
    if (stored != 0 && stored != counted) {
        plan.notes.push_back("'" + codec.id + "' stores " + std::to_string(stored) + " of the " +
                             std::to_string(counted) + " bits that its encoder takes and the bitrate counts.");
    }
}

}  // namespace NorvexExport
