#pragma once

#include <string>

#include "norvex/foundation/Exception.h"

namespace Norvex::Conf {

/// Root of the rule book's failures.
class NORVEX_API ConfException : public Exception {};

/// A name or number that the tables of sample formats and channel layouts do not hold: TagDetails has it, and
/// TagDescription says of which.
class NORVEX_API FormatException : public ConfException {};

class NORVEX_API ConstraintException : public ConfException {
public:
    using TagConstraintClass = boost::error_info<struct ConstraintClassId, std::string>;  ///< class of the constraint
    using TagValueType = boost::error_info<struct ValueTypeId, PropertyTypes>;            ///< type that it works in
};

/// A value of a type that the constraint cannot judge. It carries both tags.
class NORVEX_API ConstraintIsNotApplicableForTypeException : public ConstraintException {};

/// A failed lookup, which carries the tags below, or a helper that cannot do what it is asked, which carries a
/// TagDescription. In the tags the kind is called class and the id type.
class NORVEX_API HelperException : public ConfException {
public:
    using TagClassIsNotFound = boost::error_info<struct ClassIsNotFoundId, std::string>;  ///< kind that nothing serves
    using TagClassIsFound = boost::error_info<struct ClassIsFoundId, std::string>;        ///< kind that is known ...
    using TagTypeIsNotFound = boost::error_info<struct TypeIsNotFoundId, std::string>;    ///< ... but not with this id
};

/// A helper of the host's own that cannot be registered or made. TagDescription says why; TagDetails has its kind and
/// id.
class NORVEX_API RegistrationException : public HelperException {};

}  // namespace Norvex::Conf
