#include "norvex/Conf/Review/CorrectionReport.h"

#include <cmath>
#include <iterator>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "norvex/Conf/Review/Explaining.h"
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

    bool HasMore() const { return !m_rest.empty() || (m_node != nullptr && m_next != m_node->end()); }

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
/// deeper than the stack. Gives whether the other tree may have leaves in places where this one has none.
template <class Tell>
bool CompareLeaves(const Property& tree, const Property& other, const Tell& tell) {
    bool hasOtherMore = false;
    std::vector<Step> way;
    way.push_back({&tree, tree.begin(), Siblings(&other)});
    while (!way.empty()) {
        Step& step = way.back();
        if (step.next == step.node->end()) {
            hasOtherMore = hasOtherMore || step.others.HasMore();
            way.pop_back();
            continue;
        }
        const Property& child = *step.next++;
        const Property* const twin = step.others.Take(child.GetName());
        if (child.Count() > 0) {
            hasOtherMore = hasOtherMore || (twin != nullptr && twin->Count() == 0);
            way.push_back({&child, child.begin(), Siblings(twin)});
        } else if (twin == nullptr || twin->Count() == 0) {
            tell(way, child, twin);
        } else {
            hasOtherMore = true;
            if (child.GetType() != PT_NODE) tell(way, child, nullptr);
        }
    }
    return hasOtherMore;
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

/// What one helper changed.
struct Changes {
    std::vector<CorrectedValue>& report;
    const std::size_t first;                   ///< of this helper's in the report
    std::vector<const Property*> values = {};  ///< that are there now, or null, of each from the first on
};

/// Adds what differs in two states of a stream: what is there now first, then what was taken away.
void AddChanges(const Property& before, const Property& after, const NamedHelper& named, Changes& changes) {
    const auto add = [&](const auto& way, const Property& leaf, const Property* former, const Property* now) {
        if (changes.report.empty()) changes.report.reserve(4);  // who changes one value often changes a few
        CorrectedValue& told = changes.report.emplace_back();
        told.helperKind = named.kind;
        told.helperId = named.id;
        told.path = PathOf(way, leaf);
        if (former != nullptr) told.before = *former;
        if (now != nullptr) told.after = *now;
        changes.values.push_back(now);
    };
    const bool isSomeGone =
        CompareLeaves(after, before, [&](const auto& way, const Property& leaf, const Property* former) {
            if (former == nullptr || !IsSame(*former, leaf)) add(way, leaf, former, &leaf);
        });
    if (!isSomeGone) return;
    CompareLeaves(before, after, [&](const auto& way, const Property& leaf, const Property* now) {
        if (now == nullptr) add(way, leaf, &leaf, nullptr);
    });
}

// ------------------------------------------------------------------------------------------------- why it changed

/// Says why a helper changed values. The helper is asked once, whatever the number of changes.
class Reasons {
public:
    /// `stream` is settled. Throws what the helper throws.
    Reasons(const NamedHelper& named, const Property& stream)
        : m_named(named),
          m_stream(stream),
          m_said(*named.helper),
          m_defaults(m_said.Defaults()),
          m_preset(AssembleStream(stream)) {}

    void GiveTo(const Changes& changes) {
        Collect(changes);
        for (std::size_t i = 0; i < changes.values.size(); ++i) {
            CorrectedValue& told = changes.report[changes.first + i];
            const Said& said = m_about[told.path];
            // Values that share a name, or have a separator in it, share a path; it leads to one of them.
            if (said.value == nullptr || said.value != changes.values[i]) continue;
            if (told.before) told.broken = WhatBroke(told, said);
            if (told.broken) {
                told.reason = CorrectedValue::Reason::Broken;
            } else if (const Property* const standard = m_defaults.FindByPath(told.path);
                       standard != nullptr && *standard == *told.after) {
                told.reason = CorrectedValue::Reason::Default;
            }
        }
    }

    /// The settled stream.
    Property TakePreset() { return std::move(m_preset); }

private:
    struct SaidOfValue {
        const ConstraintMap::value_type& constraint;
        const Property& value;
        Way way;
    };

    /// What the helper says about one value of the stream.
    struct Said {
        const Property* value = nullptr;  ///< that the path leads to, or null
        std::vector<SaidOfValue> constraints;
        std::vector<const ReadRule*> rules;
    };

    /// Looks up what the helper says about the changed values, each of its constraints and rules once.
    void Collect(const Changes& changes) {
        m_about.reserve(changes.values.size());
        for (std::size_t i = changes.first; i < changes.report.size(); ++i) {
            const std::string& path = changes.report[i].path;
            m_about[path].value = m_stream.FindByPath(path);
        }
        const std::string& section = SectionOf(m_named.kind);
        for (const auto& constraint : m_said.Constraints()) {
            VisitValues(m_preset, section, constraint.first, [&](const Property& value, const Way& way) {
                const auto said = m_about.find(WithinStream(way.Path()));
                if (said != m_about.end()) said->second.constraints.push_back({constraint, value, way});
            });
        }
        for (const ReadRule& rule : m_said.Rules()) {
            const auto said = m_about.find(WithinStream(rule.rule->GetSecondPath()));
            if (said != m_about.end()) said->second.rules.push_back(&rule);
        }
    }

    /// What the former value would break if all others stood as they stand now.
    std::optional<Finding> WhatBroke(const CorrectedValue& told, const Said& said) {
        if (said.constraints.empty() && said.rules.empty()) return std::nullopt;
        std::vector<Property*> places;
        for (const std::string& path : PresetPathsOf(m_stream.GetName(), told.path)) places.push_back(&m_preset[path]);
        for (Property* const place : places) place->CopyDataFrom(*told.before);
        m_found.clear();
        for (const auto& [constraint, value, way] : said.constraints) {
            if (m_found.empty()) ExplainConstraint(m_named, constraint, value, way, Wanted::Violations, m_found);
        }
        for (const ReadRule* const rule : said.rules) {
            if (m_found.empty()) ExplainRule(m_preset, m_named, *rule, Wanted::Violations, m_found);
        }
        for (Property* const place : places) place->CopyDataFrom(*told.after);
        if (m_found.empty()) return std::nullopt;
        return std::move(m_found.front());
    }

    const NamedHelper& m_named;
    const Property& m_stream;
    Reading m_said;
    const Property& m_defaults;
    Property m_preset;
    std::unordered_map<std::string_view, Said> m_about;  ///< by the path in the stream
    std::vector<Finding> m_found;                        ///< kept for its memory
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
    std::optional<Property> settled;  // the preset of the stream, while no helper may have changed it since
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        settled.reset();
        const Property before = stream;
        std::exception_ptr failure;
        try {
            named.helper->CorrectFormatCodec(stream);
        } catch (...) {
            failure = std::current_exception();
        }
        Changes changes{report.changes, report.changes.size()};
        AddChanges(before, stream, named, changes);
        if (failure) report.failure = failure;
        if (!changes.values.empty()) {
            ask([&] {
                Reasons reasons(named, stream);
                reasons.GiveTo(changes);
                settled = reasons.TakePreset();
            });
        }
        if (failure) break;
    }
    if (!settled) settled = AssembleStream(stream);
    for (const NamedHelper& named : helpers) {
        ask([&] {
            std::vector<Finding> left;
            ExplainHelper(*settled, named, Wanted::Violations, left);
            std::move(left.begin(), left.end(), std::back_inserter(report.left));
        });
    }
    return report;
}

}  // namespace Norvex::Conf
