#include "norvex/Conf/Review/CorrectionReport.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

#include "norvex/Conf/Review/PresetAssembly.h"

namespace Norvex::Conf {

namespace {

using Core::Property;

/// A value of a tree. Names may repeat, so that a path alone does not tell which.
struct Leaf {
    std::string path;
    int ordinal;  ///< among the leaves of that path
    const Property* value;
};
using Leaves = std::vector<Leaf>;

/// Without recursion: a stream's node may be deeper than the stack.
Leaves LeavesOf(const Property& tree) {
    struct Open {
        const Property* node;
        Property::const_iterator next;
        std::size_t prefix;  ///< length of the path in front of the children
    };
    Leaves leaves;
    std::map<std::string, int> counts;
    std::string path;
    std::vector<Open> open = {{&tree, tree.begin(), 0}};
    while (!open.empty()) {
        auto& [node, next, prefix] = open.back();
        path.resize(prefix);
        if (next == node->end()) {
            open.pop_back();
            continue;
        }
        const Property& child = *next++;
        path += child.GetName();
        if (child.Count() > 0) {
            path += Property::SEPARATOR;
            open.push_back({&child, child.begin(), path.size()});
        } else {
            leaves.push_back({path, counts[path]++, &child});
        }
    }
    return leaves;
}

const Property* Find(const Leaves& leaves, const Leaf& wanted) {
    const auto leaf = std::find_if(leaves.begin(), leaves.end(), [&wanted](const Leaf& l) {
        return l.ordinal == wanted.ordinal && l.path == wanted.path;
    });
    return leaf != leaves.end() ? leaf->value : nullptr;
}

bool IsSame(const Property& one, const Property& two) {
    if (one.GetType() != two.GetType()) return false;
    return one == two || (one.GetType() == PT_DOUBLE && std::isnan(one.GetDouble()) && std::isnan(two.GetDouble()));
}

/// Whether the leaf is a node that the other tree has with children in it: those tell what happened.
bool IsOnlyEmptied(const Leaf& leaf, const Property& other) {
    return leaf.value->GetType() == PT_NODE && other.ChildExists(leaf.path) && other[leaf.path].GetType() == PT_NODE;
}

/// The leaves in which two states of a tree differ, those that are still there first.
Leaves DifferingLeaves(const Property& before, const Leaves& old, const Property& after, const Leaves& now) {
    Leaves differing;
    for (const Leaf& leaf : now) {
        const Property* const former = Find(old, leaf);
        if (former != nullptr ? !IsSame(*former, *leaf.value) : !IsOnlyEmptied(leaf, before)) differing.push_back(leaf);
    }
    for (const Leaf& leaf : old) {
        if (Find(now, leaf) == nullptr && !IsOnlyEmptied(leaf, after)) differing.push_back(leaf);
    }
    return differing;
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
    for (const Leaf& leaf : DifferingLeaves(before, old, after, now)) {
        const std::string& path = leaf.path;
        CorrectedValue change;
        change.helperKind = named.kind;
        change.helperId = named.id;
        change.path = path;
        change.before = Copy(Find(old, leaf));
        change.after = Copy(Find(now, leaf));
        if (leaf.ordinal == 0) change.broken = WhatBroke(change, after, named);
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
