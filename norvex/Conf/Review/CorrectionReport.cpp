#include "norvex/Conf/Review/CorrectionReport.h"

#include <cmath>
#include <iterator>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "norvex/Conf/DataHelpers/PlainHelper.h"
#include "norvex/Conf/Review/PresetAssembly.h"

namespace Norvex::Conf {

namespace {

using Core::Property;

// -------------------------------------------------------------------------------------------------- what changed

/// Hands out a node's children by name, each once: of those that share a name, the first to who asks first. Two states
/// of a tree mostly hold the same names in the same order, and then there is nothing to look up.
class Siblings {
public:
    /// `node` may be null, and then there are none.
    explicit Siblings(const Property* node) : m_node(node) {
        if (m_node != nullptr) m_next = m_node->begin();
    }

    const Property* Take(const std::string& name) {
        if (m_node == nullptr) return nullptr;
        if (m_rest.empty()) {
            if (m_next == m_node->end()) return nullptr;
            if (m_next->GetName() == name) return &*m_next++;
            for (; m_next != m_node->end(); ++m_next) m_rest.emplace(m_next->GetName(), &*m_next);
        }
        const auto child = m_rest.lower_bound(name);
        if (child == m_rest.end() || child->first != name) return nullptr;
        const Property* const taken = child->second;
        m_rest.erase(child);
        return taken;
    }

private:
    const Property* m_node;
    Property::const_iterator m_next;  ///< up to it, all are taken
    std::multimap<std::string_view, const Property*> m_rest;
};

/// A node on the way to a leaf.
struct Step {
    const Property* node;
    Property::const_iterator next;
    Siblings others;  ///< of the node in its place in the other tree
};

/// Tells of each leaf of a tree the way to it, and the leaf in its place in another tree, or null. A node that has lost
/// or got all its children is no leaf to tell of: they say what happened. Without recursion: a stream's node may be
/// deeper than the stack.
template <class Tell>
void CompareLeaves(const Property& tree, const Property& other, const Tell& tell) {
    std::vector<Step> way;
    way.push_back({&tree, tree.begin(), Siblings(&other)});
    while (!way.empty()) {
        Step& step = way.back();
        if (step.next == step.node->end()) {
            way.pop_back();
            continue;
        }
        const Property& child = *step.next++;
        const Property* const twin = step.others.Take(child.GetName());
        if (child.Count() > 0) {
            way.push_back({&child, child.begin(), Siblings(twin)});
        } else if (twin == nullptr || twin->Count() == 0) {
            tell(way, child, twin);
        } else if (child.GetType() != PT_NODE) {
            tell(way, child, nullptr);
        }
    }
}

std::string PathOf(const std::vector<Step>& way, const Property& leaf) {
    std::string path;
    for (auto step = std::next(way.begin()); step != way.end(); ++step) {
        path += step->node->GetName();
        path += Property::SEPARATOR;
    }
    return path += leaf.GetName();
}

bool IsSame(const Property& one, const Property& two) {
    if (one.GetType() != two.GetType()) return false;
    return one == two || (one.GetType() == PT_DOUBLE && std::isnan(one.GetDouble()) && std::isnan(two.GetDouble()));
}

struct Change {
    CorrectedValue told;
    const Property* value;  ///< that is there now, or null
};

/// What differs in two states of a stream: what is there now first, then what was taken away.
std::vector<Change> ChangesBetween(const Property& before, const Property& after, const NamedHelper& named) {
    std::vector<Change> changes;
    const auto add = [&](std::string path, const Property* former, const Property* now) {
        CorrectedValue told;
        told.helperKind = named.kind;
        told.helperId = named.id;
        told.path = std::move(path);
        if (former != nullptr) told.before = *former;
        if (now != nullptr) told.after = *now;
        changes.push_back({std::move(told), now});
    };
    if (before == after) return changes;
    CompareLeaves(after, before, [&](const auto& way, const Property& leaf, const Property* former) {
        if (former == nullptr || !IsSame(*former, leaf)) add(PathOf(way, leaf), former, &leaf);
    });
    CompareLeaves(before, after, [&](const auto& way, const Property& leaf, const Property* now) {
        if (now == nullptr) add(PathOf(way, leaf), &leaf, nullptr);
    });
    return changes;
}

// ------------------------------------------------------------------------------------------------- why it changed

/// A part of what another helper says.
class Excerpt final : public PlainHelper {
public:
    Property GetDefaults() const override { return Property(std::string()); }
    void GetConstraints(ConstraintMap& out) const override { out = constraints; }
    void GetValidationRules(RuleList& out) const override { out = rules; }

    ConstraintMap constraints;
    RuleList rules;
};

/// Says why a helper changed a value. The helper is asked once, whatever the number of changes.
class Reasons {
public:
    /// `stream` is settled. Throws what the helper throws.
    Reasons(const NamedHelper& named, const Property& stream)
        : m_named(named),
          m_stream(stream),
          m_defaults(named.helper->GetDefaults()),
          m_preset(AssemblePreset({stream})) {
        const SP<Excerpt> said(new Excerpt);
        named.helper->GetConstraints(said->constraints);
        for (const Finding& finding : ExplainPreset(m_preset, {{named.kind, named.id, said}})) {
            About(finding.path).excerpt->constraints[finding.key] = finding.constraint;
        }
        named.helper->GetValidationRules(said->rules);
        for (const auto& rule : said->rules) {
            if (rule.second) About(rule.second->GetSecondPath()).excerpt->rules.push_back(rule);
        }
    }

    void GiveTo(Change& change) {
        CorrectedValue& told = change.told;
        told.broken = WhatBroke(change);
        if (told.broken) {
            told.reason = CorrectedValue::Reason::Broken;
        } else if (told.after && m_defaults.ChildExists(told.path) && m_defaults[told.path] == *told.after &&
                   ValueAt(told.path) == change.value) {
            told.reason = CorrectedValue::Reason::Default;
        }
    }

private:
    /// What the helper says about one value of the stream.
    struct Said {
        const Property* value;
        SP<Excerpt> excerpt;
    };

    /// What a path of the stream leads to. Values that share a name, or have a separator in it, share a path; it leads
    /// to one of them.
    const Property* ValueAt(const std::string& path) const {
        return m_stream.ChildExists(path) ? &m_stream[path] : nullptr;
    }

    Said& About(const std::string& presetPath) {
        std::string path = StreamPathOf(presetPath);
        const auto said = m_said.find(path);
        if (said != m_said.end()) return said->second;
        const Property* const value = ValueAt(path);
        return m_said.emplace(std::move(path), Said{value, SP<Excerpt>(new Excerpt)}).first->second;
    }

    /// What the former value would break if all others stood as they stand now.
    std::optional<Finding> WhatBroke(const Change& change) {
        const CorrectedValue& told = change.told;
        const auto said = m_said.find(told.path);
        if (!told.before || !told.after || said == m_said.end() || said->second.value != change.value) {
            return std::nullopt;
        }
        Put(told.path, *told.before);
        std::vector<Finding> findings = CheckPreset(m_preset, {{m_named.kind, m_named.id, said->second.excerpt}});
        Put(told.path, *told.after);
        for (Finding& finding : findings) {
            if (StreamPathOf(finding.path) == told.path) return std::move(finding);
        }
        return std::nullopt;
    }

    void Put(const std::string& path, const Property& value) {
        for (const std::string& place : PresetPathsOf(m_stream.GetName(), path)) m_preset[place].CopyDataFrom(value);
    }

    const NamedHelper& m_named;
    const Property& m_stream;
    const Property m_defaults;
    Property m_preset;
    std::unordered_map<std::string, Said> m_said;
};

}  // namespace

CorrectionReport CorrectWithReport(Property& stream, const std::vector<NamedHelper>& helpers) {
    CorrectionReport report;
    const auto ask = [&report](const auto& operation) {
        try {
            operation();
        } catch (...) {
            if (!report.failure) report.failure = std::current_exception();
        }
    };
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        const Property before = stream;
        std::exception_ptr failure;
        try {
            named.helper->CorrectFormatCodec(stream);
        } catch (...) {
            failure = std::current_exception();
        }
        std::vector<Change> changes = ChangesBetween(before, stream, named);
        if (failure) report.failure = failure;
        if (!changes.empty()) {
            ask([&] {
                Reasons reasons(named, stream);
                for (Change& change : changes) reasons.GiveTo(change);
            });
        }
        for (Change& change : changes) report.changes.push_back(std::move(change.told));
        if (failure) break;
    }
    const Property preset = AssemblePreset({stream});
    for (const NamedHelper& named : helpers) {
        ask([&] {
            std::vector<Finding> left = CheckPreset(preset, {named});
            std::move(left.begin(), left.end(), std::back_inserter(report.left));
        });
    }
    return report;
}

}  // namespace Norvex::Conf
