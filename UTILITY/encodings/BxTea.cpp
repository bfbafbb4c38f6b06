// The enciphered hexadecimal code.
#include "encodings/BxTea.h"

#include <algorithm>
#include <cstring>

#include "QelUtility/BxEncodings.h"
#include "platform/AsciiText.h"

namespace qel::encodings {
namespace {

constexpr std::size_t kHexBlockSize = 2 * kTeaBlockSize;

// Big-endian words of the first `count` bytes; the others count as zero.
TeaBlock packed(const unsigned char* bytes, std::size_t count) {
    TeaBlock block{};
    for (std::size_t i = 0; i < count; ++i)
        block[i / 4] |= std::uint32_t{bytes[i]} << (24 - 8 * (i % 4));
    return block;
}

unsigned char byteOf(const TeaBlock& block, std::size_t i) {
    return static_cast<unsigned char>(block[i / 4] >> (24 - 8 * (i % 4)) & 0xFF);
}

void clear(void* out, std::uint64_t size) {
    if (out != nullptr && size != 0) std::memset(out, 0, static_cast<std::size_t>(size));
}

}  // namespace

int encipherToHex(const char* text, char* out, int outSize, const TeaKey& key) {
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    const std::uint64_t blocks = (std::uint64_t{length} + kTeaBlockSize - 1) / kTeaBlockSize;
    if (outSize < 0 || static_cast<std::uint64_t>(outSize) < blocks * kHexBlockSize)
        return ZQUT_OUTPUT_TOO_SMALL;
    if (out == nullptr) return outSize == 0 ? 0 : ZQUT_OUTPUT_TOO_SMALL;
    clear(out, static_cast<std::uint64_t>(outSize));
    for (std::size_t done = 0; done < length; done += kTeaBlockSize) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(text) + done;
        const TeaBlock block =
            teaEncipher(packed(bytes, std::min(kTeaBlockSize, length - done)), key);
        for (std::size_t i = 0; i < kTeaBlockSize; ++i) {
            *out++ = platform::kHexDigits[byteOf(block, i) >> 4];
            *out++ = platform::kHexDigits[byteOf(block, i) & 0x0F];
        }
    }
    // With room for the digits alone this is the byte after them.
    if (length > 0) *out = '\0';
    return 0;
}

int decipherFromHex(const char* hex, void* out, unsigned int outSize, const TeaKey& key) {
    const std::size_t length = hex == nullptr ? 1 : std::strlen(hex);
    if (length % 8 != 0) return ZQUT_MALFORMED;
    int result = 0;
    if (std::any_of(hex, hex + length, [](char c) { return platform::hexValue(c) < 0; }) ||
        length % kHexBlockSize != 0)
        result = ZQUT_MALFORMED;
    else if (outSize < length / 2 || (out == nullptr && outSize != 0))
        result = ZQUT_OUTPUT_TOO_SMALL;
    if (result != 0) {
        clear(out, outSize);
        return result;
    }

    // A block is read before its half as long text is written, so `out` may be `hex`; the clearing
    // of the rest comes last for the same reason.
    auto* plain = static_cast<unsigned char*>(out);
    for (std::size_t done = 0; done < length; done += kHexBlockSize) {
        unsigned char cipher[kTeaBlockSize];
        for (std::size_t i = 0; i < kTeaBlockSize; ++i) {
            const char* pair = hex + done + 2 * i;
            cipher[i] = static_cast<unsigned char>(platform::hexValue(pair[0]) * 16 +
                                                   platform::hexValue(pair[1]));
        }
        // The cipher block is measured as a C string: from its first zero byte on it counts as
        // zero, and so does not decode to its text. That is the format that hosts exchange.
        const auto* end = std::find(cipher, cipher + kTeaBlockSize, 0);
        const TeaBlock block =
            teaDecipher(packed(cipher, static_cast<std::size_t>(end - cipher)), key);
        for (std::size_t i = 0; i < kTeaBlockSize; ++i) plain[done / 2 + i] = byteOf(block, i);
    }
    if (plain != nullptr) clear(plain + length / 2, outSize - length / 2);
    return 0;
}

}  // namespace qel::encodings
