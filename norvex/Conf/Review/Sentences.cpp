#include "norvex/Conf/Review/Sentences.h"

#include "norvex/foundation/Excerpt.h"
#include "norvex/foundation/Localization.h"
#include "norvex/interfaces/Conf/Messages.h"

namespace Norvex::Conf {

using Core::Property;

std::string Translate(const std::string& message) {
    const Core::LocalizationDomain localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    return localization.manager.Translate(message, localization.domain);
}

std::string Fill(std::string_view message, std::initializer_list<std::string_view> texts) {
    std::string filled;
    std::size_t size = message.size();
    for (const std::string_view text : texts) size += text.size();
    filled.reserve(size);
    for (std::size_t i = 0; i < message.size(); ++i) {
        const std::size_t mark =
            message[i] == '%' && i + 1 < message.size() ? static_cast<std::size_t>(message[i + 1] - '1') : texts.size();
        if (mark < texts.size()) {
            filled += *(texts.begin() + mark);
            ++i;
        } else {
            filled += message[i];
        }
    }
    return filled;
}

std::string TextOf(const std::optional<Property>& value) {
    return value ? Core::Excerpt(Core::PropertyValueToString(*value)) : std::string();
}

}  // namespace Norvex::Conf
