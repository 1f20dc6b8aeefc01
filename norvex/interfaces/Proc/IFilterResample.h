#pragma once

#include <cstdint>
#include <string>

#include "norvex/foundation/Property.h"
#include "norvex/interfaces/Conf/LayoutRecord.h"
#include "norvex/interfaces/Conf/SampleFmtRecord.h"
#include "norvex/interfaces/Proc/Settings.h"

namespace Norvex::Proc {

/// The audio resampler's own section within the filter's.
struct NORVEX_API IResample {
    static const std::string CLASS_ID;
};

struct NORVEX_API SettingsFilterResample : Settings {
    static const std::string CLASS_ID;  ///< the section that these settings fill, IResample's

    ChannelLayout layout = ChannelLayout::Unknown;     ///< Unknown keeps the source's
    SampleFormats sampleFormat = SampleFormats::None;  ///< None keeps the source's
    std::int32_t sampleRate = -1;                      ///< Hz, -1 keeps the source's
};

/// The filter that settles sample rate, layout and sample format of a stream.
struct NORVEX_API IFilterResample {
    static const std::string CLASS_ID;

    /// Rate and layout stand in IResample's section, a sample format that is chosen directly in the filter's. Throws
    /// Conf::FormatException for a layout or sample format that is none of its enumeration.
    static Core::Property Settings2Property(const SettingsFilterResample& settings);
};

}  // namespace Norvex::Proc
