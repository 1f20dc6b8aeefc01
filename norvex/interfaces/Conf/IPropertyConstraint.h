#pragma once

#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/foundation/RefCount.h"
#include "norvex/interfaces/Conf/IConstraintConsumer.h"

namespace Norvex::Conf {

/// Which values one parameter may take. Immutable, so that threads may share it.
class NORVEX_API IPropertyConstraint : public IRefCountable {
public:
    /// Message identifier of the rule that a size is even; its text is the English one.
    static const std::string DESCRIPTION_ID_EVEN_SIZE;

    /// Tells the consumer what is allowed. Does not reset it.
    virtual void FillValueList(const SP<IConstraintConsumer>& consumer) const = 0;
    /// Whether the value is allowed. Lists throw ConstraintIsNotApplicableForTypeException for a value of another
    /// type than theirs.
    virtual bool IsValid(const Core::Property& value) const = 0;
    /// Makes the value an allowed one if it can, keeping its name. True: it is allowed now, changed or not. False:
    /// it is not, and was not touched. Throws as IsValid does where the class does not say otherwise, and leaves the
    /// value as it was then.
    virtual bool Fixup(Core::Property& value) const = 0;
    /// What is allowed, worded for a message about the parameter of that name; empty where there are no words.
    virtual std::string Description(const std::string& parameterName) const = 0;
};

}  // namespace Norvex::Conf
