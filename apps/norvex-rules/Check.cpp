#include "Check.h"

#include <algorithm>

#include "common/PresetJson.h"
#include "norvex/Norvex.h"

namespace NorvexRules {

namespace {

using namespace Norvex;
using namespace Norvex::Conf;
using Core::Property;
using Json = nlohmann::ordered_json;

/// What the preset breaks, by helpers that know automatic values.
std::vector<Finding> Check(const Property& preset) {
    std::vector<NamedHelper> helpers = HelpersOf(preset);
    for (NamedHelper& named : helpers) named.helper = CreateDataHelperAuto(named.kind, named.id);
    return CheckPreset(AssemblePreset({preset.begin(), preset.end()}), helpers);
}

/// Moves the findings about values that are not there.
std::vector<Finding> TakeOpen(std::vector<Finding>& findings) {
    const auto open = std::stable_partition(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.problem != Finding::Problem::Missing;
    });
    std::vector<Finding> taken(open, findings.end());
    findings.erase(open, findings.end());
    return taken;
}

/// Whether the value is a legal one now.
bool Mend(Property& preset, const Finding& finding) {
    if (!finding.value || finding.problem == Finding::Problem::WrongType) return false;
    // Rules look for the sample format beside the other values of the resampler; its section may have it above them.
    const std::string& resampler = Proc::IFilterResample::CLASS_ID;
    const std::string beside = resampler + Property::SEPARATOR + IFormatCodecAudio::TAG_SAMPLE_FORMAT;
    const bool isBeside =
        preset.ChildExists(beside) && StreamPathOf(finding.path) == IFormatCodecAudio::TAG_SAMPLE_FORMAT;
    const std::string& path = isBeside ? beside : finding.path;
    return preset.ChildExists(path) && finding.constraint->Fixup(preset[path]);
}

Json FindingsJson(const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"helper", finding.helperKind + (finding.helperId.empty() ? "" : " " + finding.helperId)},
                        {"kind", finding.source == Finding::Source::Rule ? "rule" : "constraint"},
                        {"path", finding.path},
                        {"value", finding.value ? NorvexApps::ToJson(*finding.value) : Json()},
                        {"allowed", finding.allowed.words},
                        {"message", finding.message}});
    }
    return list;
}

}  // namespace

Judgement Judge(const Property& preset) {
    Judgement judgement;
    judgement.broken = Check(preset);
    judgement.open = TakeOpen(judgement.broken);
    judgement.mended = preset;
    // A value that is mended may bring another rule into play, but not for ever: two rules may want opposites.
    constexpr int patience = 8;
    judgement.left = judgement.broken;
    for (int round = 0; round < patience && !judgement.left.empty(); ++round) {
        bool isChanged = false;
        for (const Finding& finding : judgement.left) isChanged = Mend(judgement.mended, finding) || isChanged;
        judgement.left = Check(judgement.mended);
        TakeOpen(judgement.left);
        if (!isChanged) break;
    }
    return judgement;
}

std::string JudgementText(const Judgement& judgement) {
    std::string text;
    if (!judgement.open.empty()) text += "Left open:\n";
    for (const Finding& finding : judgement.open) text += "  - " + finding.message + '\n';
    if (judgement.broken.empty()) return text + "The preset keeps every rule.\n";
    text += "Broken:\n";
    for (const Finding& finding : judgement.broken) text += "  - " + finding.message + '\n';
    if (!judgement.left.empty()) text += "Left after mending:\n";
    for (const Finding& finding : judgement.left) text += "  - " + finding.message + '\n';
    return text + "Mended:\n" + NorvexApps::WritePreset(judgement.mended);
}

std::string JudgementJson(const Judgement& judgement) {
    const Json json = {{"broken", FindingsJson(judgement.broken)},
                       {"open", FindingsJson(judgement.open)},
                       {"left", FindingsJson(judgement.left)},
                       {"mended", Json::parse(NorvexApps::WritePreset(judgement.mended))}};
    // A text of the preset need not be UTF-8.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace NorvexRules
