// Texts of unknown origin, as they are shown and taken apart. Any thread.
#ifndef QELUTIL_BASE_TEXT_H
#define QELUTIL_BASE_TEXT_H

#include <cstddef>
#include <locale>
#include <string>
#include <string_view>

#include "QelCalendar/Texts.h"

namespace qel::cli {

// See qelcal::printable.
[[nodiscard]] inline std::string printable(std::string_view text, std::size_t longest = 4096) {
    return qelcal::printable(std::string(text), longest);
}

[[nodiscard]] inline bool isUtf8(std::string_view text) {
    return qelcal_is_utf8(text.data(), text.size()) != 0;
}

// The length of the UTF-8 character at the start of `text`, 1 to 4; 0 when the bytes there are not
// a character. REQUIRES: text is not empty.
[[nodiscard]] inline std::size_t utf8CharacterLength(std::string_view text) {
    constexpr std::size_t kLongest = 4;
    for (std::size_t length = 1; length <= kLongest && length <= text.size(); ++length)
        if (isUtf8(text.substr(0, length))) return length;
    return 0;
}

// Only ASCII letters change, whatever the locale.
[[nodiscard]] inline std::string lowerCase(std::string text) {
    const auto& letters = std::use_facet<std::ctype<char>>(std::locale::classic());
    letters.tolower(text.data(), text.data() + text.size());
    return text;
}

[[nodiscard]] inline std::string upperCase(std::string text) {
    const auto& letters = std::use_facet<std::ctype<char>>(std::locale::classic());
    letters.toupper(text.data(), text.data() + text.size());
    return text;
}

}  // namespace qel::cli

#endif
