// ASCII text work that never asks the locale. Bytes above 127 belong to no class. Any thread.
#ifndef QELUTIL_CONVERT_ASCII_H
#define QELUTIL_CONVERT_ASCII_H

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace qel::convert {

[[nodiscard]] constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool isAlpha(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Blank, tab and every other control character.
[[nodiscard]] constexpr bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7f';
}

[[nodiscard]] constexpr char toUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] inline std::string upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), toUpper);
    return result;
}

[[nodiscard]] inline bool equalsIgnoreCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return toUpper(a) == toUpper(b); });
}

[[nodiscard]] inline bool startsWithIgnoreCase(std::string_view text, std::string_view head) {
    return text.size() >= head.size() && equalsIgnoreCase(text.substr(0, head.size()), head);
}

[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

[[nodiscard]] inline bool allDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

// A whole decimal number with an optional sign; numbers beyond 32 bits saturate. Nothing when the
// text is anything else.
[[nodiscard]] inline std::optional<int> parseInt(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    if (!allDigits(text)) return std::nullopt;
    int value = 0;
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem == std::errc::result_out_of_range) value = std::numeric_limits<int>::max();
    return negative ? -value : value;
}

// The text up to the next `separator`, which is taken off `rest` together with it.
[[nodiscard]] inline std::string_view nextField(std::string_view& rest, char separator) {
    const std::size_t end = rest.find(separator);
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return field;
}

// A piece of input for a message: quoted, and cut when it is long.
[[nodiscard]] inline std::string quoted(std::string_view text) {
    constexpr std::size_t kLongest = 60;
    std::string result = "\"";
    result += text.substr(0, kLongest);
    result += text.size() > kLongest ? "...\"" : "\"";
    return result;
}

}  // namespace qel::convert

#endif
