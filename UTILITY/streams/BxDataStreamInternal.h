// What the sources of the buffer and the stream share.
#ifndef QEL_STREAMS_BXDATASTREAMINTERNAL_H
#define QEL_STREAMS_BXDATASTREAMINTERNAL_H

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#include "QelUtility/BxTrace.h"
#include "QelUtility/QelTypes.h"
#include "platform/AsciiText.h"

namespace qel::streams {

constexpr char kStreamSourceName[] = "BxDataStream";
constexpr char kSeparator = '\x1F';

constexpr bool endsValue(unsigned char c) {
    return c == static_cast<unsigned char>(kSeparator) || c == 0;
}

// The number of bytes before the first that ends a value; `room` where none of so many does. Eight
// at a time as long as none of them does.
inline std::size_t lengthOfValue(const unsigned char* p, std::size_t room) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    const auto hasZero = [](std::uint64_t word) {
        return ((word - kOnes) & ~word & (kOnes << 7)) != 0;
    };
    std::size_t length = 0;
    for (std::uint64_t word = 0; room - length >= sizeof word; length += sizeof word) {
        std::memcpy(&word, p + length, sizeof word);
        if (hasZero(word) || hasZero(word ^ kOnes * static_cast<unsigned char>(kSeparator))) break;
    }
    while (length < room && !endsValue(p[length])) ++length;
    return length;
}

// The head of bytes that need not end in a zero, as a log line shows it.
struct Excerpt {
    char text[351];

    Excerpt(const void* bytes, std::size_t size) {
        const auto* from = static_cast<const char*>(bytes);
        std::size_t length = 0;
        while (from != nullptr && length < std::min(size, sizeof text - 1) && from[length] != '\0')
            ++length;
        if (length > 0) std::memcpy(text, from, length);
        text[length] = '\0';
    }
};

inline bool pointsInto(const void* p, const void* block, std::size_t size) {
    const std::less<const void*> before;
    return block != nullptr && !before(p, block) &&
           before(p, static_cast<const char*>(block) + size);
}

// Logs the code with a size as detail, cut to what a detail holds, and throws it.
[[noreturn]] inline void failWithSize(int line, unsigned long long size, int code) {
    const int detail = size > INT_MAX ? INT_MAX : static_cast<int>(size);
    throw BxTrace_Error(kStreamSourceName, line, detail, code);
}

constexpr auto kHexValues = [] {
    std::array<short, 256> values{};
    for (std::size_t c = 0; c < values.size(); ++c)
        values[c] = static_cast<short>(platform::hexValue(static_cast<char>(c)));
    return values;
}();

}  // namespace qel::streams

#endif
