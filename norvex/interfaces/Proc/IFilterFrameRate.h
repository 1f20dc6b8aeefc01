#pragma once

#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Proc {

struct NORVEX_API SettingsFilterFrameRate : Settings {
    /// The frame rate that keeps the source's: 0/1.
    static const Core::Ratio MARK_USE_ORIGINAL_FRAMERATE;
};

struct NORVEX_API IFilterFrameRate {
    static const std::string CLASS_ID;

    /// The filter's section for a rate in frames per second.
    static Core::Property MakeSettings(const Core::Ratio& frameRate);
};

}  // namespace Norvex::Proc
