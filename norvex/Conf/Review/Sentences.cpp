#include "norvex/Conf/Review/Sentences.h"

#include "norvex/foundation/Excerpt.h"
#include "norvex/foundation/Localization.h"
#include "norvex/interfaces/Conf/Messages.h"

namespace Norvex::Conf {

using Core::Property;

namespace {

std::string Fill(std::string_view message, std::initializer_list<std::string_view> texts) {
    std::string filled;
    std::size_t size = message.size();
    for (const std::string_view text : texts) size += text.size();
    filled.reserve(size);
    for (;;) {
        const std::size_t percent = message.find('%');
        if (percent == std::string_view::npos || percent + 1 == message.size()) break;
        const auto mark = static_cast<std::size_t>(message[percent + 1] - '1');
        const bool isMark = mark < texts.size();
        filled += message.substr(0, isMark ? percent : percent + 1);
        if (isMark) filled += *(texts.begin() + mark);
        message.remove_prefix(isMark ? percent + 2 : percent + 1);
    }
    filled += message;
    return filled;
}

}  // namespace

std::string Translate(const std::string& message) {
    const Core::LocalizationDomain localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    return localization.manager.Translate(message, localization.domain);
}

std::string Say(const char* message, std::initializer_list<std::string_view> texts) {
    const Core::LocalizationDomain localization = Core::GetLocalizationManagerForDomain(DATAHELPERS_MESSAGE_DOMAIN);
    return Fill(localization.manager.Find(message, localization.domain), texts);
}

std::string TextOf(const std::optional<Property>& value) {
    return value ? Core::Excerpt(Core::PropertyValueToString(*value)) : std::string();
}

}  // namespace Norvex::Conf
