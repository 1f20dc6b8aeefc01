#include "norvex/foundation/Localization.h"

#include <libintl.h>

namespace Norvex::Core {

std::string LocalizationManager::Translate(const std::string& message, const std::string& domain) const {
    // The empty message is gettext's key for the catalogue's own header, and behind a NUL it would not read on.
    if (message.empty() || message.find('\0') != std::string::npos) return message;
    return dgettext(domain.c_str(), message.c_str());
}

std::string_view LocalizationManager::Find(const char* message, const std::string& domain) const noexcept {
    return dgettext(domain.c_str(), message);
}

LocalizationDomain GetLocalizationManagerForDomain(const std::string& domain) {
    static const LocalizationManager manager;
    return {manager, domain};
}

}  // namespace Norvex::Core
