#include "norvex/foundation/Localization.h"

#include <libintl.h>

namespace Norvex::Core {

std::string LocalizationManager::Translate(const std::string& message, const std::string& domain) const {
    // The empty message is gettext's key for the catalogue's own header.
    return message.empty() ? message : dgettext(domain.c_str(), message.c_str());
}

LocalizationDomain GetLocalizationManagerForDomain(const std::string& domain) {
    static const LocalizationManager manager;
    return {manager, domain};
}

}  // namespace Norvex::Core
