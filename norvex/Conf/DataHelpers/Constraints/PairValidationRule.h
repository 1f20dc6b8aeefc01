#pragma once

#include <string>

#include "norvex/interfaces/Conf/IValidationRule.h"

namespace Norvex::Conf {

/// The library's validation rule: if the first holds, the second must hold.
class NORVEX_API PairValidationRule final : public RefCounted<IValidationRule> {
public:
    /// Shares the constraints. A rule without a condition has an empty first path and a null first constraint;
    /// IsValid must not be called on it.
    static SP<IValidationRule> Create(const std::string& firstPath, SP<IPropertyConstraint> firstConstraint,
                                      const std::string& secondPath, SP<IPropertyConstraint> secondConstraint);

    /// The second path is not looked at when the first constraint fails.
    bool IsValid(const Core::Property& root) const noexcept override;
    const std::string& GetFirstPath() const override { return m_firstPath; }
    const std::string& GetSecondPath() const override { return m_secondPath; }
    SP<IPropertyConstraint> GetFirstConstraint() const override { return m_firstConstraint; }
    SP<IPropertyConstraint> GetSecondConstraint() const override { return m_secondConstraint; }

private:
    PairValidationRule(const std::string& firstPath, SP<IPropertyConstraint> firstConstraint,
                       const std::string& secondPath, SP<IPropertyConstraint> secondConstraint)
        : m_firstPath(firstPath),
          m_secondPath(secondPath),
          m_firstConstraint(std::move(firstConstraint)),
          m_secondConstraint(std::move(secondConstraint)) {}

    const std::string m_firstPath;
    const std::string m_secondPath;
    const SP<IPropertyConstraint> m_firstConstraint;
    const SP<IPropertyConstraint> m_secondConstraint;
};

}  // namespace Norvex::Conf
