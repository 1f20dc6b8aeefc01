#include "norvex/Conf/DataHelpers/Constraints/PairValidationRule.h"

namespace Norvex::Conf {

SP<IValidationRule> PairValidationRule::Create(const std::string& firstPath, SP<IPropertyConstraint> firstConstraint,
                                               const std::string& secondPath,
                                               SP<IPropertyConstraint> secondConstraint) {
    return SP<IValidationRule>(
        new PairValidationRule(firstPath, std::move(firstConstraint), secondPath, std::move(secondConstraint)));
}

bool PairValidationRule::IsValid(const Core::Property& root) const noexcept {
    if (!m_firstConstraint->IsValid(root.ChildByPath(m_firstPath))) return true;
    return m_secondConstraint->IsValid(root.ChildByPath(m_secondPath));
}

}  // namespace Norvex::Conf
