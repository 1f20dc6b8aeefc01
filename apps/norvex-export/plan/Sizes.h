/// Which size pictures are brought to.
#pragma once

#include "Draft.h"

namespace NorvexExport {

/// The resizer's section for an upright picture. Throws RequestError for a size that was asked and is not legal.
Norvex::Core::Property ResizeSection(Draft& draft, const Request& request, const Norvex::Conf::NamedHelper& codec,
                                     const VideoSource& source);

}  // namespace NorvexExport
