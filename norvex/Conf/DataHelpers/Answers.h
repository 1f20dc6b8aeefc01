#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IDataHelper.h"

/// What a helper answers, as correction and the check read it. Not for hosts.

namespace Norvex::Conf {

/// A rule with its constraints at hand: asking the rule for one takes a reference, over which threads would fight.
struct ReadRule {
    ReadRule(const std::string& listedKey, SP<IValidationRule> asked)
        : key(listedKey),
          rule(std::move(asked)),
          first(rule->GetFirstConstraint()),
          second(rule->GetSecondConstraint()) {}

    std::string key;  ///< that it has in the list of rules
    SP<IValidationRule> rule;
    SP<const IPropertyConstraint> first;  ///< null in a rule without a condition
    SP<const IPropertyConstraint> second;
};
using ReadRules = std::vector<ReadRule>;

RuleList RulesOf(const IDataHelper& helper);
/// The rules in their order, without null ones.
ReadRules ReadRulesOf(const RuleList& rules);

/// The constraints by which sample rate, sample format and layout of a stream of sound are corrected, in this order:
/// each that of the first rule about it, null where there is none.
using ResamplerConstraints = std::array<SP<const IPropertyConstraint>, 3>;
ResamplerConstraints ResamplerConstraintsOf(const RuleList& rules);

/// Everything that a helper answers, made once. It never changes, and callers are handed none of it. Refers to the
/// helper.
struct Answers {
    explicit Answers(const IDataHelper& helper) : Answers(helper, RulesOf(helper)) {}
    ~Answers() { delete m_defaults.load(std::memory_order_acquire); }

    /// Made on the first call, whichever thread makes it: a container's are larger than all the rest, and its
    /// correction needs none of them.
    const Core::Property& Defaults() const;

    const ConstraintMap constraints;
    const ReadRules rules;
    const ResamplerConstraints resampler;

private:
    Answers(const IDataHelper& helper, const RuleList& asked);

    const IDataHelper& m_helper;
    mutable std::atomic<const Core::Property*> m_defaults{nullptr};
};

/// What an atomic pointer leads to, made by the first who asks. Of several threads that make it at once the first one's
/// stays.
template <class T, class Make>
const T& MadeOnce(std::atomic<const T*>& place, const Make& make) {
    if (const T* const kept = place.load(std::memory_order_acquire)) return *kept;
    std::unique_ptr<const T> made = make();
    const T* kept = nullptr;
    if (place.compare_exchange_strong(kept, made.get(), std::memory_order_acq_rel)) kept = made.release();
    return *kept;
}

/// Reads what a helper answers: what it keeps, or else what it is asked for here, each once and only if it is wanted.
/// Refers to the helper.
class Reading {
public:
    explicit Reading(const IDataHelper& helper);

    const Core::Property& Defaults();
    const ConstraintMap& Constraints();
    const ReadRules& Rules();

private:
    const IDataHelper& m_helper;
    const Answers* const m_kept;  ///< null where nothing is
    std::optional<Core::Property> m_defaults;
    std::optional<ConstraintMap> m_constraints;
    std::optional<ReadRules> m_rules;
};

}  // namespace Norvex::Conf
