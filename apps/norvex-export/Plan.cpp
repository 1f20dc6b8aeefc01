#include "Plan.h"

#include "Formats.h"
#include "norvex/Norvex.h"
#include "plan/Containers.h"
#include "plan/Pictures.h"
#include "plan/Presets.h"
#include "plan/Sounds.h"
#include "plan/Subtitles.h"

namespace NorvexExport {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
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

Plan PlanFor(const Request& request, const InputInfo& input) {
    Plan plan;
    plan.request = request;
    plan.input = input;
    const std::string chosen = request.TextAt(Path({P::KEY_FORMAT, IFormatFile::TAG_CONTAINER}));
    plan.formatId = chosen.empty() ? FormatOf(request.output) : chosen;
    const NamedHelper format = FindFormat(plan.formatId);
    const Property formatTree = format.helper->GetDefaults();
    plan.settled = Property(std::string("preset"));
    plan.settled.SetChild(P::KEY_FORMAT).SetChildT(IFormatFile::TAG_CONTAINER, plan.formatId);

    plan.job.inputPath = request.input;
    plan.job.outputPath = request.output;
    plan.job.muxer = MuxerOf(plan.formatId);
    plan.job.muxerOptions = MuxerOptionsOf(plan.formatId);
    plan.job.globalHeader = FormatHasGlobalHeader(plan.formatId);
    PlanVideo(plan, format, formatTree);
    PlanAudio(plan, format, formatTree);
    PlanSubtitles(plan, format, formatTree);
    if (plan.streams.empty()) {
        throw RequestError("'" + request.input + "' has no stream that the format '" + plan.formatId + "' could hold");
    }
    for (const StreamPlan& stream : plan.streams) {
        if (!stream.isCopied) AddSettled(stream.settled, plan.settled);
    }
    return plan;
}

}  // namespace

Plan MakePlan(const Request& request, const InputInfo& input) {
    try {
        return PlanFor(request, input);
    } catch (const Core::PropertyException& error) {
        RefuseUnreadable(request, error);
    }
}

}  // namespace NorvexExport
