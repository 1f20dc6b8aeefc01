#pragma once

#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex::Conf {

/// Whether streams in this container keep their headers outside the packets. Throws HelperException for an empty name
/// and for one that the catalogue does not hold.
NORVEX_API bool FormatHasGlobalHeader(const std::string& name);

/// Whether this codec can do so. False for a name that is no video or audio codec, the empty one included: one that is
/// neither of the vocabulary nor registered. Throws HelperException for a codec of the vocabulary that the catalogue
/// has no helper for.
NORVEX_API bool CodecHasGlobalHeader(const std::string& name);

}  // namespace Norvex::Conf
