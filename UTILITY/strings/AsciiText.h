// ASCII text without the locale: folding, white space, comparison. Bytes above 127 are themselves.
#ifndef QEL_STRINGS_ASCIITEXT_H
#define QEL_STRINGS_ASCIITEXT_H

#include <cstddef>
#include <string_view>

namespace qel::strings {

[[nodiscard]] constexpr char asciiToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The six characters that isspace knows in the C locale.
[[nodiscard]] constexpr bool isAsciiSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Equal but for the case of ASCII letters.
[[nodiscard]] constexpr bool equalNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiToLower(a[i]) != asciiToLower(b[i])) return false;
    return true;
}

static_assert(equalNoCase("Utf-8", "uTF-8") && !equalNoCase("a", "ab") && !equalNoCase("[", "{"));

}  // namespace qel::strings

#endif
