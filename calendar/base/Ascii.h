// ASCII text functions that ignore the locale. Bytes above 127 belong to no class. Any thread.
#ifndef QEL_CALENDAR_BASE_ASCII_H
#define QEL_CALENDAR_BASE_ASCII_H

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace qel::calendar {

// Names are compared with "..."sv: of texts of different lengths nothing else is looked at then.
using std::string_view_literals::operator""sv;

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

// The blanks that a line continues with.
[[nodiscard]] constexpr bool isFoldBlank(char c) {
    return c == ' ' || c == '\t';
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
    // Nearly always they are the same or differ at once.
    if (one.size() != other.size()) return false;
    if (one == other) return true;
    return std::equal(one.begin(), one.end(), other.begin(),
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

// Takes exactly `count` digits off the front of `text` and gives their number. Nothing, and `text`
// as it was, when it does not begin with so many. REQUIRES: count <= 9
[[nodiscard]] constexpr std::optional<int> takeDigits(std::string_view& text, std::size_t count) {
    if (text.size() < count) return std::nullopt;
    // Two or four digits each: std::from_chars costs three times as much, and dates are read often.
    int number = 0;
    for (std::size_t at = 0; at < count; ++at) {
        if (!isDigit(text[at])) return std::nullopt;
        number = number * 10 + (text[at] - '0');
    }
    text.remove_prefix(count);
    return number;
}

// Eight bytes of a text at once, for questions about all of its bytes. REQUIRES: eight bytes there.
[[nodiscard]] inline std::uint64_t eightBytes(const char* text) {
    std::uint64_t word = 0;
    std::memcpy(&word, text, sizeof word);
    return word;
}
inline constexpr std::uint64_t kEachByte = 0x0101010101010101U;

// How many bytes from the front on are below 128.
[[nodiscard]] inline std::size_t asciiLength(std::string_view text) {
    std::size_t at = 0;
    while (at + 8 <= text.size() && (eightBytes(text.data() + at) & (kEachByte * 0x80)) == 0)
        at += 8;
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

[[nodiscard]] inline bool isAscii(std::string_view text) {
    return asciiLength(text) == text.size();
}

// True when all bytes are printable ASCII characters, the blank among them: such a text is the same
// in every character set, and has no control that would have to go.
[[nodiscard]] inline bool isPrintableAscii(std::string_view text) {
    if (text.size() < 8)
        return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < '\x7f'; });
    // The high bit shows a byte from 128 on, one that is 127 when 1 is added, and one below 32 when
    // 32 is taken away; a byte that carries into the next one has been marked itself.
    const auto marksOf = [](std::uint64_t word) {
        return word | (word + kEachByte) | (word - kEachByte * 0x20);
    };
    // The last eight bytes may have been looked at in part already.
    std::uint64_t marks = marksOf(eightBytes(text.data() + text.size() - 8));
    for (std::size_t at = 0; at + 8 < text.size(); at += 8)
        marks |= marksOf(eightBytes(text.data() + at));
    return (marks & (kEachByte * 0x80)) == 0;
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

}  // namespace qel::calendar

#endif
