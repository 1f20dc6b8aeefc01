#pragma once

#include <string>
#include <string_view>

#include "norvex/foundation/Export.h"

namespace Norvex::Core {

/// A text from outside as one line of a message can show it: the first 100 characters, with "…" where there were more.
/// Control characters, those that turn the writing direction included, are left out, the ends of lines become spaces,
/// and bytes that are no UTF-8 the replacement character.
NORVEX_API std::string Excerpt(std::string_view text);
/// The same without a copy where the text can stay as it is; else it is kept in `shown`.
NORVEX_API std::string_view Excerpt(std::string_view text, std::string& shown);

/// Whether the bytes are UTF-8, without surrogates and without longer forms than needed.
NORVEX_API bool IsUtf8(std::string_view text) noexcept;

}  // namespace Norvex::Core
