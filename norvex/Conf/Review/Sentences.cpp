#include "norvex/Conf/Review/Sentences.h"

#include <utility>

#include "norvex/Conf/Review/PresetCheck.h"
#include "norvex/foundation/Excerpt.h"
#include "norvex/foundation/Localization.h"
#include "norvex/interfaces/Conf/Messages.h"

namespace Norvex::Conf {

using Core::Property;

// gettext messages. The marks stand for: %1 the parameter, %2 its value, %3 what is allowed, %4 the parameter of the
// condition, %5 its value.
const char* const notAllowedMessage = "Parameter %1 is %2 but must be %3";
const char* const notAllowedWhenMessage = "Parameter %1 is %2 but must be %3 when %4 is %5";
const char* const missingMessage = "Parameter %1 is missing but must be %3";
const char* const missingWhenMessage = "Parameter %1 is missing but must be %3 when %4 is %5";
const char* const wrongTypeMessage = "Parameter %1 is %2, which is no value of its type, but must be %3";
const char* const wrongTypeWhenMessage =
    "Parameter %1 is %2, which is no value of its type, but must be %3 when %4 is %5";
// %1 the section or the stream, %2 the container, %3 the kind of stream, %4 a number.
const char* const sectionMessage = "Section %1 has no place: %2 holds no %3";
const char* const streamMessage = "Stream %1 has no place: %2 holds no %3";
const char* const surplusMessage = "Stream %1 is one too many: %2 holds no more than %4 of %3";
// %1 a section of a stream, %2 the type of that stream.
const char* const otherKindMessage = "Section %1 has no place in a stream of type %2";
const char* const videoWord = "video";
const char* const audioWord = "audio";
const char* const subtitlesWord = "subtitles";
const char* const otherWord = "other types";
// What stands for %3: of a list, and where a constraint has no words.
const char* const oneOfMessage = "one of %1";
const char* const otherMessage = "another value";
// %1 the parameter, %2 the helper.
const char* const foreignMessage = "Parameter %1 has no place: %2 has none such";
// %1 the resizer's section, %2 a size, %3 the sizes that are allowed, %4 the codec.
const char* const sizeMessage = "Section %1 makes pictures of %2, but those of %4 must be %3";

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

std::map<std::string, std::string> FindingSentences() {
    std::map<std::string, std::string> sentences;
    for (const auto& [name, message] :
         std::initializer_list<std::pair<const char*, const char*>>{{"notAllowed", notAllowedMessage},
                                                                    {"notAllowedWhen", notAllowedWhenMessage},
                                                                    {"missing", missingMessage},
                                                                    {"missingWhen", missingWhenMessage},
                                                                    {"wrongType", wrongTypeMessage},
                                                                    {"wrongTypeWhen", wrongTypeWhenMessage},
                                                                    {"section", sectionMessage},
                                                                    {"stream", streamMessage},
                                                                    {"surplus", surplusMessage},
                                                                    {"otherKind", otherKindMessage},
                                                                    {"video", videoWord},
                                                                    {"audio", audioWord},
                                                                    {"subtitles", subtitlesWord},
                                                                    {"otherTypes", otherWord},
                                                                    {"oneOf", oneOfMessage},
                                                                    {"other", otherMessage},
                                                                    {"foreign", foreignMessage},
                                                                    {"size", sizeMessage}}) {
        sentences.emplace(name, Translate(message));
    }
    return sentences;
}

}  // namespace Norvex::Conf
