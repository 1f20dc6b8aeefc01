#pragma once

#include <string>

#include "norvex/foundation/Export.h"

namespace Norvex::Proc {

/// The audio formatter's own section within the filter's.
struct NORVEX_API IAudioFormatter {
    static const std::string CLASS_ID;
};

/// The filter that cuts sound into packets.
struct NORVEX_API IFilterAudioFormatter {
    static const std::string CLASS_ID;
    static const std::string PACKET_DURATION;  ///< integer, microseconds
};

}  // namespace Norvex::Proc
