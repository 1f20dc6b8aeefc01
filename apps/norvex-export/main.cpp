// norvex-export: an example of a host. It asks the rule book what an export may look like, and encodes with FFmpeg.

extern "C" {
#include <libavutil/log.h>
}

#include <unistd.h>

#include <boost/exception/diagnostic_information.hpp>
#include <cstdio>

#include "Media.h"
#include "Plan.h"
#include "Report.h"
#include "Request.h"
#include "common/PresetJson.h"
#include "common/TextFiles.h"
#include "norvex/Norvex.h"

namespace {

using namespace NorvexExport;

void Print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

void Run(Request request) {
    if (!request.classic) RegisterModernHelpers();
    TakeCensus();
    if (!request.presetFile.empty()) ChooseFromPreset(request, NorvexApps::ReadText(request.presetFile));
    const Plan plan = MakePlan(request, Probe(request.input));
    if (!request.savePresetFile.empty())
        NorvexApps::WriteText(request.savePresetFile, NorvexApps::WritePreset(plan.settled));
    const bool asText = !request.json && !request.quiet;
    if (asText) {
        Print(PlanText(plan, isatty(STDOUT_FILENO) != 0));
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
    if (request.json) Print(PlanJson(plan, &result));
    if (asText) Print(ResultText(plan, result));
}

}  // namespace

int main(int argc, char** argv) {
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
    } catch (const std::exception&) {
        std::fprintf(stderr, "norvex-export: unexpected failure\n%s\n",
                     boost::current_exception_diagnostic_information().c_str());
    }
    return 1;
}
