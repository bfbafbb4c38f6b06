// One character out of a text of bytes, as the code pages' conversions take them. Any thread.
#ifndef QEL_PLATFORM_POSIX_CODEPAGECHARACTERS_H
#define QEL_PLATFORM_POSIX_CODEPAGECHARACTERS_H

#include <cstddef>
#include <cstdint>

#include "platform/posix/CodePageTables.h"

namespace qel::platform {

inline constexpr std::uint32_t kUtf8 = 65001;  // the page's number

// The size of the character at `in` and its code point; 0 for an invalid
// sequence (RFC 3629: overlong forms, surrogates and what lies past U+10FFFF are invalid).
inline std::uint32_t utf8Character(const unsigned char* in, std::size_t length,
                                   std::uint32_t& point) {
    const std::uint32_t first = in[0];
    const auto follows = [in](std::size_t at) { return (in[at] & 0xC0) == 0x80; };
    if (first < 0x80) {
        point = first;
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0 && length >= 2 && follows(1)) {
        point = (first & 0x1F) << 6 | (in[1] & 0x3FU);
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0 && length >= 3 && follows(1) && follows(2)) {
        point = (first & 0x0F) << 12 | (in[1] & 0x3FU) << 6 | (in[2] & 0x3FU);
        return point < 0x800 || (point >= 0xD800 && point < 0xE000) ? 0 : 3;
    }
    if (first >= 0xF0 && first < 0xF5 && length >= 4 && follows(1) && follows(2) && follows(3)) {
        point =
            (first & 0x07) << 18 | (in[1] & 0x3FU) << 12 | (in[2] & 0x3FU) << 6 | (in[3] & 0x3FU);
        return point < 0x10000 || point > 0x10FFFF ? 0 : 4;
    }
    return 0;
}

// The size of the character at `in` and its unit; 0 for an invalid sequence.
inline std::uint32_t pageCharacter(Page& page, const Rows<char16_t>::Row& singles,
                                   const unsigned char* in, std::size_t length, char16_t& unit) {
    unit = singles[in[0]];
    if (unit != 0 || in[0] == 0) return 1;
    const auto* row = length > 1 ? page.pairs(in[0]) : nullptr;
    unit = row != nullptr ? (*row)[in[1]] : char16_t{0};
    return unit != 0 ? 2 : 0;
}

}  // namespace qel::platform

#endif
