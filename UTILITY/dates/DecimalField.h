// How the date functions read numbers out of texts and write them: ASCII alone, never by the
// locale, and never past the terminator. For the library's own use, from any thread.
#ifndef QEL_DATES_DECIMALFIELD_H
#define QEL_DATES_DECIMALFIELD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dates/DateTimeFields.h"
#include "platform/AsciiText.h"
#include "platform/ByteOrder.h"

namespace qel::dates {

// The decimal number at the head of the first `width` characters: blanks, a sign, digits. Anything
// else, the terminator too, ends it; nothing readable is 0.
// REQUIRES: width <= 9
[[nodiscard]] constexpr int decimalField(const char* text, std::size_t width) noexcept {
    std::size_t i = 0;
    while (i < width && platform::isAsciiSpace(text[i])) ++i;
    bool negative = false;
    if (i < width && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
    text += i;
    const auto value = platform::takeDecimal<int>(text, width - i);
    return negative ? -value : value;
}

// "00" to "99", one after the other.
inline constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
    return pairs;
}();

// Writes two digits. REQUIRES: value <= 99
inline void putPair(char* buffer, unsigned value) noexcept {
    std::memcpy(buffer, kPairs.data() + std::size_t{2} * value, 2);
}

// Writes "20050615T083000" and a last character, without a terminator: in two words, because what
// reads single digits again as a whole at once waits for each of them to reach the memory.
// REQUIRES: year in [0, 9999], the other fields in [0, 99]
inline void putDateTime(char* buffer, const DateTimeFields& fields, char last) noexcept {
    const auto pair = [](int value) {
        const char* digits = kPairs.data() + std::size_t{2} * static_cast<unsigned>(value);
        return std::uint64_t{static_cast<unsigned char>(digits[0])} |
               std::uint64_t{static_cast<unsigned char>(digits[1])} << 8;
    };
    const std::uint64_t words[2] = {
        platform::firstByteLowest(pair(fields.year / 100) | pair(fields.year % 100) << 16 |
                                  pair(fields.month) << 32 | pair(fields.day) << 48),
        platform::firstByteLowest(std::uint64_t{'T'} | pair(fields.hour) << 8 |
                                  pair(fields.minute) << 24 | pair(fields.second) << 40 |
                                  std::uint64_t{static_cast<unsigned char>(last)} << 56)};
    std::memcpy(buffer, words, sizeof words);
}

}  // namespace qel::dates

#endif
