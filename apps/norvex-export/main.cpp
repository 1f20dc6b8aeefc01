// norvex-export: an example of a host. It asks the rule book what an export may look like, and encodes with FFmpeg.

extern "C" {
#include <libavutil/log.h>
}

#include <unistd.h>

#include <boost/exception/diagnostic_information.hpp>
#include <cstdio>
#include <new>

#include "Asked.h"
#include "Media.h"
#include "Plan.h"
#include "Report.h"
#include "Request.h"
#include "Signals.h"
#include "Terminal.h"
#include "common/Presets.h"
#include "common/TextFiles.h"
#include "media/Files.h"
#include "norvex/Norvex.h"
#include "norvex/document/PresetDocument.h"

namespace {

using namespace NorvexExport;
namespace Document = Norvex::Document;

void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

/// What is read is not written over, nor is one file written twice.
void RequireFiles(const Request& request) {
    const TakenFile input = {request.input, "the input"};
    const TakenFile preset = {request.presetFile, "the preset that is read"};
    RequireWritable(request.output, {input, preset});
    if (!request.savePresetFile.empty()) {
        RequireWritable(request.savePresetFile, {input, preset, {request.output, "the output"}});
    }
}

void SavePreset(const Plan& plan) {
    Media::PendingFile file(plan.request.savePresetFile);
    file.Write(Document::WritePreset(plan.settled));
    file.Commit();
}

void Run(Request request) {
    if (!request.classic) RegisterModernHelpers();
    TakeCensus();
    UseIds(request);
    if (!request.presetFile.empty()) {
        request.presetFile = NorvexApps::FindPreset(request.presetFile);
        ChooseFromPreset(request, NorvexApps::ReadText(request.presetFile, Document::g_largestPreset + 1));
    }
    TakeBackOpen(request);
    RequireRanges(request);
    const InputInfo input = Probe(request.input);
    RequireFiles(request);
    const Plan plan = MakePlan(request, input, FindUnwritableCopies);
    if (!request.savePresetFile.empty()) SavePreset(plan);
    const bool asText = !request.json && !request.quiet;
    if (asText) {
        Print(PlanText(plan, TakesColours(STDOUT_FILENO)));
        std::fflush(stdout);
    }
    if (request.dryRun) {
        if (request.json) Print(PlanJson(plan, nullptr));
        return;
    }
    const ExportResult result = [&] {
        ProgressBar bar(asText);
        return RunExport(plan.job, [&bar](const Progress& progress) { bar.Show(progress); });
    }();
    for (const StreamFailure& stream : result.leftOut) {
        std::fprintf(stderr, "norvex-export: stream %d is left out: %s\n", stream.streamIndex, stream.reason.c_str());
    }
    if (request.json) Print(PlanJson(plan, &result));
    if (asText) Print(ResultText(plan, result));
}

}  // namespace

int main(int argc, char** argv) {
    TakeOverSignals("norvex-export");
    const Parsed parsed = ParseCommandLine(argc, argv);
    if (parsed.exitStatus) return *parsed.exitStatus;
    // Failures come as exceptions with FFmpeg's reason in them.
    av_log_set_level(AV_LOG_QUIET);
    try {
        Run(parsed.request);
        return 0;
    } catch (const std::runtime_error& error) {
        // A request or media that cannot be: one plain sentence.
        std::fprintf(stderr, "norvex-export: %s\n", error.what());
    } catch (const std::bad_alloc&) {
        std::fputs("norvex-export: there is not enough memory\n", stderr);
    } catch (const std::exception&) {
        std::fprintf(stderr, "norvex-export: unexpected failure\n%s\n",
                     boost::current_exception_diagnostic_information().c_str());
    }
    return 1;
}
