#pragma once

#include <cstdint>
#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Proc {

struct NORVEX_API SettingsFilterAudioVolume : Settings {
    std::int32_t volume = 100;  ///< per cent, 100 leaves the sound as it is
};

struct NORVEX_API IFilterAudioVolume {
    static const std::string CLASS_ID;
    static const std::string VOLUME_VALUE;  ///< integer, per cent

    static Core::Property Settings2Property(const SettingsFilterAudioVolume& settings);
};

}  // namespace Norvex::Proc
