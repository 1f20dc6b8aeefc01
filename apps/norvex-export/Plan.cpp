#include "Plan.h"

#include <algorithm>
#include <filesystem>

#include "Formats.h"
#include "norvex/Norvex.h"
#include "plan/Containers.h"
#include "plan/Copies.h"
#include "plan/Draft.h"
#include "plan/Pictures.h"
#include "plan/Presets.h"
#include "plan/Selection.h"
#include "plan/Sounds.h"
#include "plan/Subtitles.h"
#include "plan/Words.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using C = IFormatCodec;
using P = IPreset;

void TakeCensus() {
    FormatValidator::Instance().FillEncoders(Proc::FFmpegCodecFactory::Create());
}

namespace {

/// A value of a type that cannot be read comes from a preset: the command line gives every value its type.
[[noreturn]] void RefuseUnreadable(const Request& request, const Core::PropertyException& error) {
    const auto* const name = boost::get_error_info<Core::PropertyException::TagPropertyName>(error);
    const auto* const type = boost::get_error_info<Core::PropertyException::TagPropertyType>(error);
    for (auto choice = request.choices.rbegin(); choice != request.choices.rend(); ++choice) {
        const std::string tag = choice->path.substr(choice->path.rfind(Property::SEPARATOR) + 1);
        if (name != nullptr && type != nullptr && tag == *name && choice->value.GetType() == *type) {
            throw RequestError(choice->option + ": '" + Core::PropertyValueToString(choice->value) +
                               "' is no value of the type of '" + choice->path + "'");
        }
    }
    throw;
}

/// Whoever names a codec on the command line wants such a stream.
template <class Sources>
void RequireWhatIsAsked(const Draft& draft, const std::string& section, const std::string& type, const Sources& sources,
                        bool isUnwanted) {
    const Choice* const choice = draft.plan.request.Find(Path({section, C::TAG_CODEC_ID}));
    if (choice == nullptr || choice->isFromPreset || isUnwanted) return;
    const bool isHeld = FindStream(draft.formatTree, type) != nullptr;
    if (isHeld && !sources.empty()) return;
    throw RequestError(choice->option + ": there is no " + NameOf(*KindOfSection(section)) + " in the " +
                       (isHeld ? "input" : "format '" + draft.plan.formatId + "'"));
}

/// What is chosen for a stream by its number must be of its kind.
void RequireFittingNumbers(const Draft& draft) {
    for (const Choice& choice : draft.plan.request.choices) {
        if (!choice.stream) continue;
        const StreamKind kind = *KindOfSection(choice.path.substr(0, choice.path.find(Property::SEPARATOR)));
        const auto& streams = draft.plan.streams;
        const auto stream = std::find_if(streams.begin(), streams.end(),
                                         [&choice](const StreamPlan& s) { return s.streamIndex == *choice.stream; });
        const auto isOfKind = [&kind](const StreamPlan& s) {
            return s.kind == kind || (s.kind == StreamKind::Cover && kind == StreamKind::Video);
        };
        // A preset may be of another film.
        if (choice.isFromPreset || (stream != streams.end() && isOfKind(*stream))) continue;
        std::vector<int> fitting;
        for (const StreamPlan& s : streams) {
            if (isOfKind(s)) fitting.push_back(s.streamIndex);
        }
        throw RequestError(choice.option + ": stream " + std::to_string(*choice.stream) + " is no " + NameOf(kind) +
                           " that goes over" + (fitting.empty() ? "" : "; take " + StreamsText(fitting)));
    }
}

/// The preset's container stands, whatever the output is called.
void NoteOtherExtension(Draft& draft) {
    const Request& request = draft.plan.request;
    const Choice* const container = request.Find(Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER}));
    if (container == nullptr || !container->isFromPreset) return;
    const std::string dotted = std::filesystem::path(request.output).extension().string();
    const std::string extension = dotted.substr(std::min<std::size_t>(dotted.size(), 1));
    const std::vector<std::string> usual = FileExtensions(draft.plan.formatId);
    if (std::find(usual.begin(), usual.end(), extension) != usual.end()) return;
    draft.Note("The preset makes the output " + FullNameForPeople(P::KEY_FORMAT, draft.plan.formatId) +
               ", whatever its extension says; --format chooses another.");
}

Plan PlanFor(const Request& request, const InputInfo& input, const std::vector<StreamFailure>& unwritable) {
    Draft draft;
    Plan& plan = draft.plan;
    plan.request = request;
    plan.notes = request.notes;
    plan.input = input;
    const std::string chosen = request.TextAt(Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER}));
    plan.formatId = chosen.empty() ? FormatOf(request.output) : chosen;
    draft.format = FindFormat(plan.formatId);
    draft.formatTree = draft.format.helper->GetDefaults();
    draft.unwritable = unwritable;

    plan.job.inputPath = request.input;
    plan.job.outputPath = request.output;
    plan.job.muxer = MuxerOf(plan.formatId);
    plan.job.muxerOptions = MuxerOptionsOf(plan.formatId);
    if (HasMovableIndex(plan.formatId) && !request.noFaststart) {
        plan.job.muxerOptions.emplace_back("movflags", "+faststart");
    }
    plan.job.span.begin = request.start.value_or(0);
    if (request.duration) plan.job.span.end = plan.job.span.begin + *request.duration;
    plan.job.globalHeader = FormatHasGlobalHeader(plan.formatId);

    RequireWhatIsAsked(draft, P::KEY_FILTER_VIDEO_CODEC, P::STREAM_TYPE_VIDEO, input.video, request.noVideo);
    RequireWhatIsAsked(draft, P::KEY_FILTER_AUDIO_CODEC, P::STREAM_TYPE_AUDIO, input.audio, request.noAudio);
    const Selection selection = SelectStreams(draft);
    for (const VideoSource* const source : selection.pictures) PlanPicture(draft, *source);
    for (const VideoSource* const source : selection.covers) PlanCover(draft, *source);
    for (const AudioSource* const source : selection.sounds) PlanSound(draft, *source);
    PlanSubtitles(draft, selection.subtitles);
    PlanOthers(draft, selection.attachments, selection.data);
    draft.NoteCopyable();
    NoteOtherExtension(draft);
    if (plan.streams.empty()) {
        throw RequestError("'" + request.input + "' has no stream that the format '" + plan.formatId + "' could hold");
    }
    if (input.chapters > 0 && !HoldsChapters(plan.formatId)) {
        draft.Note("'" + plan.formatId + "' holds no chapters; " + std::to_string(input.chapters) +
                   (input.chapters == 1 ? " is" : " are") + " left out.");
    }
    RequireFittingNumbers(draft);
    std::sort(plan.streams.begin(), plan.streams.end(),
              [](const StreamPlan& one, const StreamPlan& two) { return one.streamIndex < two.streamIndex; });
    plan.settled = PresetOf(plan);
    return plan;
}

}  // namespace

Plan MakePlan(const Request& request, const InputInfo& input, const TryCopies& tryCopies) {
    try {
        std::vector<StreamFailure> unwritable;
        for (;;) {
            Plan plan = PlanFor(request, input, unwritable);
            if (!tryCopies || plan.job.copies.empty()) return plan;
            // Each round carries over fewer streams than the one before it.
            const std::vector<StreamFailure> more = tryCopies(plan.job);
            if (more.empty()) return plan;
            unwritable.insert(unwritable.end(), more.begin(), more.end());
        }
    } catch (const Core::PropertyException& error) {
        RefuseUnreadable(request, error);
    }
}

}  // namespace NorvexExport
