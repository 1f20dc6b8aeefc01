#include "norvex/interfaces/Conf/IPropertyConstraint.h"

#include "norvex/foundation/Lasting.h"

namespace Norvex::Conf {

NORVEX_CONSTANT(const std::string,
                IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE) = "Width and height must be even numbers";

}  // namespace Norvex::Conf
