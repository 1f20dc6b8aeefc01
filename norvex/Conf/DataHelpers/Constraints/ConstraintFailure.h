#pragma once

#include "norvex/interfaces/Conf/Exceptions.h"

namespace Norvex::Conf {

/// The failure of a constraint of that class, which works in that type, on a value of another.
inline ConstraintIsNotApplicableForTypeException NotApplicable(const char* constraintClass, PropertyTypes type) {
    ConstraintIsNotApplicableForTypeException exception;
    exception << ConstraintException::TagConstraintClass(constraintClass) << ConstraintException::TagValueType(type);
    return exception;
}

}  // namespace Norvex::Conf
