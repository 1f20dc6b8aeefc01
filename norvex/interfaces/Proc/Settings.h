#pragma once

#include <string>

#include "norvex/foundation/Exception.h"
#include "norvex/foundation/Export.h"

namespace Norvex::Proc {

/// Names of implementations of a processing object.
struct NORVEX_API ImplNames {
    static const std::string DEFAULT;
    static const std::string FFMPEG;
};

/// A text or number that names no value of its parameter; TagDetails has it, TagDescription the parameter.
class NORVEX_API SettingsException : public Exception {};

/// What the settings of every processing object begin with.
struct NORVEX_API Settings {
    std::string implementation = ImplNames::DEFAULT;
};

}  // namespace Norvex::Proc
