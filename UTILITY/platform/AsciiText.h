// ASCII text without the locale: letters, white space, digits, decimal and hexadecimal numbers.
// Bytes above 127 belong to no class and stay unchanged. It is in the lowest room, so that
// every room can use it.
#ifndef QEL_PLATFORM_ASCIITEXT_H
#define QEL_PLATFORM_ASCIITEXT_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string_view>

namespace qel::platform {

[[nodiscard]] constexpr char asciiToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// For comparisons with a capital letter alone, in one step: a letter becomes its capital, and no
// other character becomes a letter.
[[nodiscard]] constexpr char asciiCapital(char c) {
    return static_cast<char>(c & 0xDF);
}

[[nodiscard]] constexpr bool isAsciiLetter(char c) {
    return asciiCapital(c) >= 'A' && asciiCapital(c) <= 'Z';
}

// The six characters that isspace knows in the C locale.
[[nodiscard]] constexpr bool isAsciiSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

[[nodiscard]] constexpr bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

// Equal but for the case of ASCII letters.
[[nodiscard]] constexpr bool equalNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (asciiToLower(a[i]) != asciiToLower(b[i])) return false;
    return true;
}

// Reads decimal digits, at most `width`, and moves past them; 0 when there are none. A number above
// kMost is held there. REQUIRES: without kMost, a `width` whose digits fit into a Number
template <typename Number, Number kMost = std::numeric_limits<Number>::max()>
[[nodiscard]] constexpr Number takeDecimal(const char*& text, std::size_t width) {
    Number number = 0;
    for (; width > 0 && isAsciiDigit(*text); --width, ++text) {
        number = number * 10 + static_cast<Number>(*text - '0');
        if constexpr (kMost != std::numeric_limits<Number>::max()) number = std::min(number, kMost);
    }
    return number;
}

inline constexpr char kHexDigits[] = "0123456789abcdef";

// 0 to 15; -1 when `c` is not a hexadecimal digit.
[[nodiscard]] constexpr int hexValue(char c) {
    if (isAsciiDigit(c)) return c - '0';
    const char letter = asciiCapital(c);
    return letter >= 'A' && letter <= 'F' ? letter - 'A' + 10 : -1;
}

static_assert(equalNoCase("Utf-8", "uTF-8") && !equalNoCase("a", "ab") && !equalNoCase("[", "{"));
static_assert(hexValue('9') == 9 && hexValue('f') == 15 && hexValue('A') == 10);
static_assert(hexValue('g') == -1 && hexValue('@') == -1 && hexValue('\xC1') == -1);
static_assert(isAsciiLetter('z') && !isAsciiLetter('[') && !isAsciiLetter('\xE1'));

}  // namespace qel::platform

#endif
