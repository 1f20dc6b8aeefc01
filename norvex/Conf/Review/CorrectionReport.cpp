#include "norvex/Conf/Review/CorrectionReport.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "norvex/Conf/DataHelpers/Words.h"
#include "norvex/Conf/Review/PresetAssembly.h"

namespace Norvex::Conf {

namespace {

using Core::Property;

using Leaves = std::vector<std::pair<std::string, const Property*>>;

void CollectLeaves(const Property& node, const std::string& path, Leaves& leaves) {
    for (const Property& child : node) {
        const std::string below = path.empty() ? child.GetName() : Path(path, child.GetName());
        if (child.Count() > 0) {
            CollectLeaves(child, below, leaves);
        } else {
            leaves.emplace_back(below, &child);
        }
    }
}

Leaves LeavesOf(const Property& tree) {
    Leaves leaves;
    CollectLeaves(tree, std::string(), leaves);
    return leaves;
}

const Property* Find(const Leaves& leaves, const std::string& path) {
    const auto leaf = std::find_if(leaves.begin(), leaves.end(), [&path](const auto& l) { return l.first == path; });
    return leaf != leaves.end() ? leaf->second : nullptr;
}

/// The paths at which two states of a tree differ, those that are still there first.
std::vector<std::string> DifferingPaths(const Leaves& before, const Leaves& after) {
    std::vector<std::string> paths;
    for (const auto& [path, value] : after) {
        const Property* const former = Find(before, path);
        if (former == nullptr || former->GetType() != value->GetType() || *former != *value) paths.push_back(path);
    }
    for (const auto& [path, value] : before) {
        if (Find(after, path) == nullptr) paths.push_back(path);
    }
    return paths;
}

std::optional<Property> Copy(const Property* value) {
    return value != nullptr ? std::optional<Property>(*value) : std::nullopt;
}

/// What the former value would break if all others stood as they stand now.
std::optional<Finding> WhatBroke(const CorrectedValue& change, Property settled, const NamedHelper& named) {
    // A path that cannot be followed is one with a separator within a name.
    if (!change.before || !change.after || !settled.ChildExists(change.path)) return std::nullopt;
    settled[change.path].CopyDataFrom(*change.before);
    for (Finding& finding : CheckPreset(AssemblePreset({settled}), {named})) {
        if (StreamPathOf(finding.path) == change.path) return std::move(finding);
    }
    return std::nullopt;
}

std::vector<CorrectedValue> Compare(const Property& before, const Property& after, const NamedHelper& named) {
    const Leaves old = LeavesOf(before);
    const Leaves now = LeavesOf(after);
    const Property defaults = named.helper->GetDefaults();
    std::vector<CorrectedValue> changes;
    for (const std::string& path : DifferingPaths(old, now)) {
        CorrectedValue change;
        change.helperKind = named.kind;
        change.helperId = named.id;
        change.path = path;
        change.before = Copy(Find(old, path));
        change.after = Copy(Find(now, path));
        change.broken = WhatBroke(change, after, named);
        if (change.broken) {
            change.reason = CorrectedValue::Reason::Broken;
        } else if (change.after && defaults.ChildExists(path) && defaults[path] == *change.after) {
            change.reason = CorrectedValue::Reason::Default;
        }
        changes.push_back(std::move(change));
    }
    return changes;
}

}  // namespace

CorrectionReport CorrectWithReport(Property& stream, const std::vector<NamedHelper>& helpers) {
    CorrectionReport report;
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        const Property before = stream;
        try {
            named.helper->CorrectFormatCodec(stream);
        } catch (...) {
            report.failure = std::current_exception();
        }
        std::vector<CorrectedValue> changes = Compare(before, stream, named);
        std::move(changes.begin(), changes.end(), std::back_inserter(report.changes));
        if (report.failure) break;
    }
    report.left = CheckPreset(AssemblePreset({stream}), helpers);
    return report;
}

}  // namespace Norvex::Conf
