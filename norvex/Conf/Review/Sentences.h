#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "norvex/foundation/Property.h"

/// How the reviews word what they tell. Not for hosts.

namespace Norvex::Conf {

/// In the language of the locale, by the gettext domain of the library.
std::string Translate(const std::string& message);

/// The message, translated, with the texts in the places of its marks %1, %2 and so on. They are put there in one go: a
/// text may look like a mark itself.
std::string Say(const char* message, std::initializer_list<std::string_view> texts);

/// What findings say: messages of the gettext domain.
extern const char* const notAllowedMessage;
extern const char* const notAllowedWhenMessage;
extern const char* const missingMessage;
extern const char* const missingWhenMessage;
extern const char* const wrongTypeMessage;
extern const char* const wrongTypeWhenMessage;
extern const char* const sectionMessage;
extern const char* const streamMessage;
extern const char* const surplusMessage;
extern const char* const otherKindMessage;
extern const char* const videoWord;
extern const char* const audioWord;
extern const char* const subtitlesWord;
extern const char* const otherWord;
extern const char* const oneOfMessage;
extern const char* const otherMessage;
extern const char* const foreignMessage;
extern const char* const sizeMessage;

/// A value as a message shows it; empty for none.
std::string TextOf(const std::optional<Core::Property>& value);

}  // namespace Norvex::Conf
