#include "norvex/foundation/Excerpt.h"

#include <algorithm>
#include <boost/locale/utf.hpp>

namespace Norvex::Core {

namespace {

namespace utf = boost::locale::utf;

/// Takes the next character off the text. Of bytes that are none it takes one, and gives utf::illegal.
utf::code_point TakeCharacter(std::string_view& text) noexcept {
    const char* position = text.data();
    const utf::code_point character = utf::utf_traits<char>::decode(position, text.data() + text.size());
    if (!utf::is_valid_codepoint(character)) {
        text.remove_prefix(1);
        return utf::illegal;
    }
    text.remove_prefix(static_cast<std::size_t>(position - text.data()));
    return character;
}

bool IsControl(utf::code_point character) noexcept {
    const auto isFrom = [character](utf::code_point first, utf::code_point last) {
        return first <= character && character <= last;
    };
    return character < 0x20 || isFrom(0x7F, 0x9F) || isFrom(0x200E, 0x200F) || isFrom(0x2028, 0x202E) ||
           isFrom(0x2066, 0x2069);
}

}  // namespace

std::string Excerpt(std::string_view text) {
    std::string shown;
    return std::string(Excerpt(text, shown));
}

std::string_view Excerpt(std::string_view text, std::string& shown) {
    constexpr int longest = 100;
    const auto isPlain = [](char c) { return c >= ' ' && c < 0x7F; };
    if (text.size() <= longest && std::all_of(text.begin(), text.end(), isPlain)) return text;
    shown.clear();
    int count = 0;
    while (!text.empty()) {
        if (count == longest) return shown += "…";
        const std::string_view rest = text;
        const utf::code_point character = TakeCharacter(text);
        if (character == utf::illegal) {
            shown += "\xEF\xBF\xBD";
        } else if (character == '\n' || character == '\r' || character == '\t') {
            shown += ' ';
        } else if (IsControl(character)) {
            continue;
        } else {
            shown += rest.substr(0, rest.size() - text.size());
        }
        ++count;
    }
    return shown;
}

bool IsUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        if (TakeCharacter(text) == utf::illegal) return false;
    }
    return true;
}

}  // namespace Norvex::Core
