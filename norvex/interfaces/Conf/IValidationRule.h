#pragma once

#include <string>
#include <utility>
#include <vector>

#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

/// Ties two parameters of a preset: if the value at the first path satisfies the first constraint, the value at
/// the second path must satisfy the second. Immutable.
class NORVEX_API IValidationRule : public IRefCountable {
public:
    /// Whether the tree keeps the rule. The library's own rule ends the process if a path that it has to follow is
    /// missing, or if a value has a type that its constraint refuses: evaluate rules on complete trees.
    virtual bool IsValid(const Core::Property& root) const = 0;
    virtual const std::string& GetFirstPath() const = 0;
    virtual const std::string& GetSecondPath() const = 0;
    /// Null in a rule without a condition.
    virtual SP<IPropertyConstraint> GetFirstConstraint() const = 0;
    virtual SP<IPropertyConstraint> GetSecondConstraint() const = 0;
};

/// Rules in order, each under a key; the key of every rule of the library is Core::Property::SEPARATOR.
using RuleList = std::vector<std::pair<std::string, SP<IValidationRule>>>;

}  // namespace Norvex::Conf
