#include "Sounds.h"

#include <algorithm>
#include <string>

#include "Containers.h"
#include "Copies.h"
#include "Presets.h"
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

/// Whether the codec's rules settle the sample format. Where they do not, the encoder is left to choose.
bool HasSampleFormatRule(const IDataHelper& codec) {
    RuleList rules;
    codec.GetValidationRules(rules);
    const std::string path = Path({Proc::IFilterResample::CLASS_ID, Proc::IResample::CLASS_ID, A::TAG_SAMPLE_FORMAT});
    return std::any_of(rules.begin(), rules.end(),
                       [&path](const auto& rule) { return rule.second->GetSecondPath() == path; });
}

/// AAC has numbers for the layouts that its standard knows (ISO/IEC 14496-3, table 1.19), whose surround channels
/// FFmpeg calls back ones. For side ones its encoder writes an element of its own, which many decoders refuse.
void UseStandardLayout(Draft& draft, const AudioSource& source, AudioJob& job) {
    const LayoutRecord* const usual = LayoutRecord::FindDefault(LayoutRecord::Find(job.layout).channels);
    if (job.codecId != "aac" || usual == nullptr || *usual->name == job.layout) return;
    const std::string& standard = *usual->name;
    draft.Note("The sound of stream " + std::to_string(source.streamIndex) + " is written as '" + standard +
               "', the layout of AAC that players know, rather than as '" + job.layout + "'.");
    job.layout = standard;
}

void TellDownMix(Draft& draft, const AudioSource& source, const AudioJob& job) {
    const int channels = LayoutRecord::Find(job.layout).channels;
    if (source.channels <= channels) return;
    draft.Note("The " + std::to_string(source.channels) + " channels of stream " + std::to_string(source.streamIndex) +
               " are mixed down to '" + job.layout + "' by FFmpeg's matrix, as loud as can be without clipping.");
}

}  // namespace

void PlanSound(Draft& draft, const AudioSource& source) {
    const std::string& kind = P::KEY_FILTER_AUDIO_CODEC;
    const Request own = draft.plan.request.For(source.streamIndex, kind);
    if (PlanCopy(draft, source, own)) return;
    if (!source.isDecodable) {
        draft.LeaveOut({source.streamIndex}, "this build of FFmpeg cannot decode everything");
        return;
    }
    const Property& stream = *FindStream(draft.formatTree, P::STREAM_TYPE_AUDIO);
    const NamedHelper codec = FindCodec(draft.format, kind, P::STREAM_TYPE_AUDIO, CodecOf(own, stream, kind));
    StreamPlan settled =
        Settle({draft.format, draft.formatTree, codec, {ResampleSection(own)}, own}, AudioStreamOf(source, codec.id));
    settled.kind = StreamKind::Audio;
    settled.source = WordsFor(source);
    settled.sections = SectionsOf(settled);
    AudioJob job = MakeAudioJob(settled.settled, source);
    const bool isFormatChosen = own.Find(Path({Proc::IFilterResample::CLASS_ID, A::TAG_SAMPLE_FORMAT})) != nullptr;
    if (!isFormatChosen && !HasSampleFormatRule(*codec.helper)) job.sampleFormat.clear();
    const int stored = DataHelperAudioCodecPCM::GetStoredBitsPerSample(codec.id);
    const int counted = SampleFmtRecord::Find(settled.settled[A::TAG_SAMPLE_FORMAT].GetString()).bits;
    if (stored != 0 && stored != counted) {
        draft.Note("'" + codec.id + "' stores " + std::to_string(stored) + " of the " + std::to_string(counted) +
                   " bits that its encoder takes and the bitrate counts.");
    }
    TellDownMix(draft, source, job);
    UseStandardLayout(draft, source, job);
    draft.plan.job.audio.push_back(std::move(job));
    draft.Add(std::move(settled), source);
}

}  // namespace NorvexExport
