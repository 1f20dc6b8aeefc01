#include "norvex/Conf/Review/CorrectionReport.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <map>
#include <memory_resource>
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
            m_isInOrder = false;
            for (; m_next != m_node->end(); ++m_next) m_rest.emplace(m_next->GetName(), &*m_next);
        }
        const auto child = m_rest.lower_bound(name);
        if (child == m_rest.end() || child->first != name) return nullptr;
        const Property* const taken = child->second;
        m_rest.erase(child);
        return taken;
    }

    /// Whether all names came in the node's own order.
    bool IsInOrder() const { return m_isInOrder; }
    bool HasMore() const { return !m_rest.empty() || (m_node != nullptr && m_next != m_node->end()); }

private:
    const Property* m_node;
    Property::const_iterator m_next;  ///< up to it, all are taken
    bool m_isInOrder = true;
    std::multimap<std::string_view, const Property*> m_rest;
};

/// A node on the way to a leaf.
struct Step {
    const Property* node;
    Property::const_iterator next;
    Siblings others;  ///< of the node in its place in the other tree
};

/// What the walk through a tree saw of another.
struct Likeness {
    bool hasOtherMore = false;  ///< the other may have leaves in places where this one has none
    bool isInOrder = true;      ///< what is in both stands in the same order
};

/// Tells of each leaf of a tree the way to it, and the leaf in its place in another tree, or null. A node that has lost
/// or got all its children is no leaf to tell of: they say what happened. Without recursion: a stream's node may be
/// deeper than the stack.
template <class Tell>
Likeness CompareLeaves(const Property& tree, const Property& other, const Tell& tell) {
    Likeness seen;
    std::vector<Step> way;
    way.push_back({&tree, tree.begin(), Siblings(&other)});
    while (!way.empty()) {
        Step& step = way.back();
        if (step.next == step.node->end()) {
            seen.hasOtherMore = seen.hasOtherMore || step.others.HasMore();
            seen.isInOrder = seen.isInOrder && step.others.IsInOrder();
            way.pop_back();
            continue;
        }
        const Property& child = *step.next++;
        const Property* const twin = step.others.Take(child.GetName());
        if (child.Count() > 0) {
            seen.hasOtherMore = seen.hasOtherMore || (twin != nullptr && twin->Count() == 0);
            way.push_back({&child, child.begin(), Siblings(twin)});
        } else if (twin == nullptr || twin->Count() == 0) {
            tell(way, child, twin);
        } else {
            seen.hasOtherMore = true;
            if (child.GetType() != PT_NODE) tell(way, child, nullptr);
        }
    }
    return seen;
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

/// Adds what differs in two states of a stream: what is there now first, then what was taken away. Gives whether they
/// are the same altogether.
bool AddChanges(const Property& before, const Property& after, const NamedHelper& named, Changes& changes) {
    const auto add = [&](const auto& way, const Property& leaf, const Property* former, const Property* now) {
        if (changes.report.empty()) changes.report.reserve(4);  // who changes one value often changes a few
        if (changes.values.empty()) changes.values.reserve(4);
        CorrectedValue& told = changes.report.emplace_back();
        told.helperKind = named.kind;
        told.helperId = named.id;
        told.path = PathOf(way, leaf);
        if (former != nullptr) told.before = *former;
        if (now != nullptr) told.after = *now;
        changes.values.push_back(now);
    };
    const Likeness seen =
        CompareLeaves(after, before, [&](const auto& way, const Property& leaf, const Property* former) {
            if (former == nullptr || !IsSame(*former, leaf)) add(way, leaf, former, &leaf);
        });
    if (!seen.hasOtherMore) return seen.isInOrder && changes.values.empty();
    CompareLeaves(before, after, [&](const auto& way, const Property& leaf, const Property* now) {
        if (now == nullptr) add(way, leaf, &leaf, nullptr);
    });
    return false;
}

// ------------------------------------------------------------------------------------------------- why it changed

/// FindByPath of many paths in trees that do not change meanwhile: what many children are called is read once.
class Paths {
public:
    explicit Paths(std::pmr::memory_resource& memory) : m_children(&memory) {}

    const Property* Find(const Property& root, std::string_view path) {
        const Property* node = &root;
        for (;;) {
            const std::size_t end = path.find(Property::SEPARATOR);
            node = Child(*node, path.substr(0, end));
            if (node == nullptr || end == std::string_view::npos) return node;
            path.remove_prefix(end + Property::SEPARATOR.size());
        }
    }

private:
    using Children = std::pmr::unordered_map<std::string_view, const Property*>;

    const Property* Child(const Property& node, std::string_view name) {
        if (name.empty()) return nullptr;
        constexpr std::size_t few = 16;
        if (node.Count() <= few) {
            const auto child = node.FindChild(name);
            return child != node.end() ? &*child : nullptr;
        }
        Children& children = m_children[&node];
        if (children.empty()) {
            for (const Property& child : node) children.emplace(child.GetName(), &child);
        }
        const auto child = children.find(name);
        return child != children.end() ? child->second : nullptr;
    }

    std::pmr::unordered_map<const Property*, Children> m_children;
};

/// Says why a helper changed values. The helper is asked once, whatever the number of changes.
class Reasons {
public:
    /// `stream` is settled. Throws what the helper throws.
    Reasons(const NamedHelper& named, const Property& stream)
        : m_named(named),
          m_stream(stream),
          m_helper(*named.helper),
          m_defaults(m_helper.Defaults()),
          m_preset(AssembleStream(stream)) {}

    void GiveTo(const Changes& changes) {
        Collect(changes);
        for (const Said& said : m_said) {
            CorrectedValue& told = said.told;
            if (told.before) TellWhatBroke(said);
            if (told.broken) {
                told.reason = CorrectedValue::Reason::Broken;
            } else if (const Property* const standard = m_paths.Find(m_defaults, told.path);
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

    /// What the helper says about one changed value of the stream.
    struct Said {
        Said(CorrectedValue& changed, std::pmr::memory_resource& memory)
            : told(changed), constraints(&memory), rules(&memory) {}

        CorrectedValue& told;
        std::array<Property*, 2> places = {};  ///< where it stands in the preset, or null
        std::pmr::vector<SaidOfValue> constraints;
        std::pmr::vector<const ReadRule*> rules;
    };

    /// Looks up what the helper says about the changed values, each of its constraints and rules once.
    void Collect(const Changes& changes) {
        m_said.reserve(changes.values.size());  // they are referred to
        m_about.reserve(2 * changes.values.size());
        for (std::size_t i = 0; i < changes.values.size(); ++i) {
            CorrectedValue& told = changes.report[changes.first + i];
            // Values that share a name, or have a separator in it, share a path; it leads to one of them.
            const Property* const value = m_paths.Find(m_stream, told.path);
            if (value != nullptr && value == changes.values[i]) Add(told);
        }
        const SectionOfPreset place(m_preset, SectionOf(m_named.kind));
        for (const auto& constraint : m_helper.Constraints()) {
            VisitValues(place, constraint.first, [&](const Property& value, const Way& way) {
                if (Said* const said = About(&value)) said->constraints.push_back({constraint, value, way});
            });
        }
        for (const ReadRule& rule : m_helper.Rules()) {
            if (Said* const said = About(m_paths.Find(m_preset, rule.rule->GetSecondPath()))) {
                said->rules.push_back(&rule);
            }
        }
    }

    void Add(CorrectedValue& told) {
        Said& said = m_said.emplace_back(told, m_memory);
        const std::string* const section = CodecSectionOf(m_stream.GetName());
        if (section == nullptr) return;
        ((m_path = *section) += Property::SEPARATOR) += told.path;
        AddPlace(said, 0, m_path);
        const std::string* const other = OtherPlaceOf(m_stream.GetName(), told.path);
        if (other != nullptr) AddPlace(said, 1, *other);
    }

    void AddPlace(Said& said, std::size_t index, std::string_view path) {
        const Property* const place = m_paths.Find(m_preset, path);
        if (place == nullptr) return;
        m_about.emplace(place, &said);
        said.places[index] = const_cast<Property*>(place);  // the preset is ours
    }

    /// Null where the value in the preset, which may not be there, did not change.
    Said* About(const Property* value) const {
        const auto said = m_about.find(value);
        return said != m_about.end() ? said->second : nullptr;
    }

    /// What the former value would break if all others stood as they stand now.
    void TellWhatBroke(const Said& said) {
        if (said.constraints.empty() && said.rules.empty()) return;
        const auto put = [&said](const Property& value) {
            for (Property* const place : said.places) {
                if (place != nullptr) place->CopyDataFrom(value);
            }
        };
        put(*said.told.before);
        std::optional<Finding>& broken = said.told.broken;
        for (const auto& [constraint, value, way] : said.constraints) {
            if (!broken) ExplainConstraint(m_named, constraint, value, way, Wanted::Violations, broken);
        }
        for (const ReadRule* const rule : said.rules) {
            if (!broken) ExplainRule(m_preset, m_named, *rule, Wanted::Violations, broken);
        }
        put(*said.told.after);
    }

    const NamedHelper& m_named;
    const Property& m_stream;
    Reading m_helper;
    const Property& m_defaults;
    Property m_preset;
    std::array<std::byte, 4096> m_first;  ///< enough for what most corrections change
    std::pmr::monotonic_buffer_resource m_memory{m_first.data(), m_first.size()};
    Paths m_paths{m_memory};
    std::pmr::vector<Said> m_said{&m_memory};
    std::pmr::unordered_map<const Property*, Said*> m_about{&m_memory};  ///< by the places in the preset
    std::string m_path;                                                  ///< kept for its memory
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
    std::optional<Property> before;   // the stream, while no helper has changed it since
    std::optional<Property> settled;  // the preset of the stream, while no helper may have changed it since
    for (const NamedHelper& named : helpers) {
        if (!named.helper) continue;
        settled.reset();
        if (!before) before.emplace(stream);
        std::exception_ptr failure;
        try {
            named.helper->CorrectFormatCodec(stream);
        } catch (...) {
            failure = std::current_exception();
        }
        Changes changes{report.changes, report.changes.size()};
        if (!AddChanges(*before, stream, named, changes)) before.reset();
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
