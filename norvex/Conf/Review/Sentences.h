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

/// Fills the translation of a message.
std::string Say(const char* message, std::initializer_list<std::string_view> texts);

/// A value as a message shows it; empty for none.
std::string TextOf(const std::optional<Core::Property>& value);

}  // namespace Norvex::Conf
