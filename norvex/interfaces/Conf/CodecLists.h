#pragma once

#include <string>
#include <vector>

#include "norvex/foundation/Export.h"

namespace Norvex::Conf {

/// Every codec id of the vocabulary, kind by kind, in the vocabulary's order. The automatic id is in none of them.
NORVEX_API const std::vector<std::string>& GetAllVideoCodecs();
NORVEX_API const std::vector<std::string>& GetAllAudioCodecs();
NORVEX_API const std::vector<std::string>& GetAllSubtitleCodecs();

/// Whether the id is one of GetAllVideoCodecs or GetAllAudioCodecs.
NORVEX_API bool IsVideoCodec(const std::string& id);
NORVEX_API bool IsAudioCodec(const std::string& id);

}  // namespace Norvex::Conf
