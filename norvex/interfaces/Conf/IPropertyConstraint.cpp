#include "norvex/interfaces/Conf/IPropertyConstraint.h"

namespace Norvex::Conf {

const std::string IPropertyConstraint::DESCRIPTION_ID_EVEN_SIZE = "Width and height must be even numbers";

}  // namespace Norvex::Conf
