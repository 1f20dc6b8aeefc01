#include "norvex/Conf/DataHelpers/Answers.h"

#include <algorithm>
#include <string>

#include "norvex/Conf/DataHelpers/KeepingHelper.h"
#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

ConstraintMap ConstraintsOf(const IDataHelper& helper) {
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    return constraints;
}

const Answers* KeptBy(const IDataHelper& helper) {
    const auto* const keeping = dynamic_cast<const KeepingHelper*>(&helper);
    return keeping != nullptr ? keeping->GetKeptAnswers() : nullptr;
}

}  // namespace

RuleList RulesOf(const IDataHelper& helper) {
    RuleList rules;
    helper.GetValidationRules(rules);
    return rules;
}

ReadRules ReadRulesOf(const RuleList& rules) {
    ReadRules read;
    read.reserve(rules.size());
    for (const auto& [key, rule] : rules) {
        if (rule) read.emplace_back(key, rule);
    }
    return read;
}

ResamplerConstraints ResamplerConstraintsOf(const RuleList& rules) {
    // The first rule about the tag decides, which is the encoder's where the encoder declares a list.
    const auto firstAbout = [&rules](const std::string& tag) -> SP<const IPropertyConstraint> {
        const auto rule = std::find_if(rules.begin(), rules.end(), [&tag](const auto& candidate) {
            return candidate.second && candidate.second->GetSecondPath().find(tag) != std::string::npos;
        });
        return rule != rules.end() ? rule->second->GetSecondConstraint() : nullptr;
    };
    return {firstAbout(A::TAG_SAMPLE_RATE), firstAbout(A::TAG_SAMPLE_FORMAT), firstAbout(A::TAG_LAYOUT)};
}

Answers::Answers(const IDataHelper& helper, const RuleList& asked)
    : constraints(ConstraintsOf(helper)),
      rules(ReadRulesOf(asked)),
      resampler(ResamplerConstraintsOf(asked)),
      m_helper(helper) {}

const Core::Property& Answers::Defaults() const {
    return MadeOnce(m_defaults, [this] { return std::make_unique<const Core::Property>(m_helper.GetDefaults()); });
}

Reading::Reading(const IDataHelper& helper) : m_helper(helper), m_kept(KeptBy(helper)) {}

const Core::Property& Reading::Defaults() {
    if (m_kept != nullptr) return m_kept->Defaults();
    if (!m_defaults) m_defaults = m_helper.GetDefaults();
    return *m_defaults;
}

const ConstraintMap& Reading::Constraints() {
    if (m_kept != nullptr) return m_kept->constraints;
    if (!m_constraints) m_constraints = ConstraintsOf(m_helper);
    return *m_constraints;
}

const ReadRules& Reading::Rules() {
    if (m_kept != nullptr) return m_kept->rules;
    if (!m_rules) m_rules = ReadRulesOf(RulesOf(m_helper));
    return *m_rules;
}

}  // namespace Norvex::Conf
