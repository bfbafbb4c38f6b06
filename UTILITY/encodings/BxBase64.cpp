#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "QelUtility/BxEncodings.h"
#include "encodings/Base64Groups.h"
#include "platform/AsciiText.h"

namespace qel::encodings {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::uint64_t kMaxResult = std::numeric_limits<int>::max();

constexpr std::uint8_t kNoDigit = 0xFF;
constexpr auto kValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNoDigit);
    for (std::uint8_t i = 0; i < 64; ++i) values[static_cast<unsigned char>(kAlphabet[i])] = i;
    return values;
}();
static_assert(sizeof kAlphabet == 65 && kValues['A'] == 0 && kValues['/'] == 63);

char digit(unsigned int sixBits) {
    assert(sixBits < 64);
    return kAlphabet[sixBits];
}

void skipSpace(const char*& text) {
    while (platform::isAsciiSpace(*text)) ++text;
}

// True when `text`, at the first "=", ends a group of which `state` digits have come, with nothing
// but white space besides.
bool isPaddedEnd(const char* text, unsigned int state) {
    if (state < 2) return false;
    ++text;
    if (state == 2) {
        skipSpace(text);
        if (*text != kPadding) return false;
        ++text;
    }
    skipSpace(text);
    return *text == '\0';
}

// Puts one digit's bits where its place in the group of four has them; false when `dst` is full.
bool storeDigit(unsigned int value, unsigned int state, unsigned char* dst, unsigned int dstSize,
                std::uint64_t index) {
    // The second and third digit begin the next byte as well.
    const bool beginsNext = state == 1 || state == 2;
    if (index + (beginsNext ? 1 : 0) >= dstSize) return false;
    if (state == 0) {
        dst[index] = static_cast<unsigned char>(value << 2);
        return true;
    }
    dst[index] = static_cast<unsigned char>(dst[index] | value >> (6 - 2 * state));
    if (beginsNext) dst[index + 1] = static_cast<unsigned char>(value << (2 + 2 * state) & 0xFF);
    return true;
}

}  // namespace
}  // namespace qel::encodings

int QELUTILITY_CALL Bx_Base64_Encode(const unsigned char* src, unsigned int srcLength, char* dst,
                                     unsigned int dstSize) {
    if (dst == nullptr || (src == nullptr && srcLength != 0)) return -1;
    const std::uint64_t room = std::min<std::uint64_t>(dstSize, qel::encodings::kMaxResult);
    const auto groups = static_cast<std::size_t>(std::min<std::uint64_t>(srcLength / 3, room / 4));
    qel::encodings::encodeGroups(src, groups, dst);
    if (groups < srcLength / 3) return -1;
    std::uint64_t position = std::uint64_t{groups} * 4;
    if (const unsigned int left = srcLength % 3; left != 0) {
        if (position + 4 > room) return -1;
        const unsigned int first = src[groups * 3];
        const unsigned int second = left > 1 ? src[groups * 3 + 1] : 0U;
        char* group = dst + position;
        group[0] = qel::encodings::digit(first >> 2);
        group[1] = qel::encodings::digit((first & 0x03) << 4 | second >> 4);
        group[2] =
            left > 1 ? qel::encodings::digit((second & 0x0F) << 2) : qel::encodings::kPadding;
        group[3] = qel::encodings::kPadding;
        position += 4;
    }
    if (position >= dstSize) return -1;
    dst[position] = '\0';
    return static_cast<int>(position);
}

int QELUTILITY_CALL Bx_Base64_Decode(const char* src, unsigned char* dst, unsigned int dstSize) {
    if (src == nullptr) return -1;
    const char* text = src;
    const char* const end = src + std::strlen(src);
    std::uint64_t index = 0;
    unsigned int state = 0;  // digits of the current group so far
    for (;; ++text) {
        if (state == 0 && dst != nullptr && index < dstSize) {
            // Whole groups at once, as far as there is room and nothing comes between them.
            const auto groups = qel::encodings::decodeGroups(
                text,
                std::min(static_cast<std::size_t>(end - text) / 4,
                         static_cast<std::size_t>(dstSize - index) / 3),
                dst + index);
            text += 4 * groups;
            index += 3 * std::uint64_t{groups};
        }
        if (*text == '\0' || *text == qel::encodings::kPadding) break;
        if (qel::platform::isAsciiSpace(*text)) continue;
        const unsigned int value = qel::encodings::kValues[static_cast<unsigned char>(*text)];
        if (value == qel::encodings::kNoDigit) return -1;
        if (dst != nullptr && !qel::encodings::storeDigit(value, state, dst, dstSize, index))
            return -1;
        if (state != 0) ++index;
        state = (state + 1) % 4;
    }
    if (index > qel::encodings::kMaxResult) return -1;
    if (*text == '\0') return state == 0 ? static_cast<int>(index) : -1;

    if (!qel::encodings::isPaddedEnd(text, state)) return -1;
    if (dst != nullptr && dst[index] != 0) return -1;
    return static_cast<int>(index);
}
