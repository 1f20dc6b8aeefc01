#pragma once

#include <string>
#include <string_view>

#include "norvex/foundation/Export.h"

namespace Norvex::Core {

/// Translates messages through gettext. A host binds the catalogue of a domain with bindtextdomain and sets the
/// locale; a message without a translation, or with a NUL in it, comes back as it is.
class NORVEX_API LocalizationManager {
public:
    std::string Translate(const std::string& message, const std::string& domain) const;
    /// The same for a message that is not empty, as gettext holds it: good until the locale or a catalogue is changed.
    std::string_view Find(const char* message, const std::string& domain) const noexcept;
};

/// The manager and the gettext domain to ask it about.
struct LocalizationDomain {
    const LocalizationManager& manager;
    std::string domain;
};

NORVEX_API LocalizationDomain GetLocalizationManagerForDomain(const std::string& domain);

}  // namespace Norvex::Core
