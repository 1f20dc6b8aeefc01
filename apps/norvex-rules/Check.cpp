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

/// Whether the value is a legal one now, and was not before.
bool Mend(Property& preset, const Finding& finding) {
    if (!finding.value || finding.problem == Finding::Problem::WrongType || !preset.ChildExists(finding.path))
        return false;
    return finding.constraint->Fixup(preset[finding.path]);
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
    return json.dump(2) + '\n';
}

}  // namespace NorvexRules
