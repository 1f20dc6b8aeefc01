#include "norvex/Conf/DataHelpers/Answers.h"

#include <algorithm>
#include <string>

#include "norvex/interfaces/Conf/IFormatCodecAudio.h"

namespace Norvex::Conf {

namespace {

using A = IFormatCodecAudio;

ConstraintMap ConstraintsOf(const IDataHelper& helper) {
    ConstraintMap constraints;
    helper.GetConstraints(constraints);
    return constraints;
}

}  // namespace

ReadRules ReadRulesOf(const IDataHelper& helper) {
    RuleList asked;
    helper.GetValidationRules(asked);
    ReadRules rules;
    rules.reserve(asked.size());
    for (auto& [key, rule] : asked) {
        if (rule) rules.emplace_back(std::move(rule));
    }
    return rules;
}

ResamplerConstraints ResamplerConstraintsOf(const ReadRules& rules) {
    // The first rule about the tag decides, which is the encoder's where the encoder declares a list.
    const auto firstAbout = [&rules](const std::string& tag) -> const IPropertyConstraint* {
        const auto read = std::find_if(rules.begin(), rules.end(), [&tag](const ReadRule& candidate) {
            return candidate.rule->GetSecondPath().find(tag) != std::string::npos;
        });
        return read != rules.end() ? read->second.get() : nullptr;
    };
    return {firstAbout(A::TAG_SAMPLE_RATE), firstAbout(A::TAG_SAMPLE_FORMAT), firstAbout(A::TAG_LAYOUT)};
}

Answers::Answers(const IDataHelper& helper)
    : defaults(helper.GetDefaults()),
      constraints(ConstraintsOf(helper)),
      rules(ReadRulesOf(helper)),
      resampler(ResamplerConstraintsOf(rules)) {}

}  // namespace Norvex::Conf
