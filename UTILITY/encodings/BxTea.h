// The TEA block cipher: 64-bit blocks, 128-bit key, 32 cycles. Pure functions, usable at compile
// time.
#ifndef QEL_ENCODINGS_BXTEA_H
#define QEL_ENCODINGS_BXTEA_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel::encodings {

using TeaKey = std::array<std::uint32_t, 4>;
using TeaBlock = std::array<std::uint32_t, 2>;

constexpr std::size_t kTeaBlockSize = 8;
constexpr std::uint32_t kTeaDelta = 0x9E3779B9;
constexpr int kTeaCycles = 32;
constexpr std::uint32_t kTeaLastSum = 0xC6EF3720;
static_assert(kTeaLastSum == static_cast<std::uint32_t>(kTeaDelta * std::uint64_t{kTeaCycles}));

[[nodiscard]] constexpr TeaBlock teaEncipher(TeaBlock block, const TeaKey& key) {
    auto [first, second] = block;
    std::uint32_t sum = 0;
    for (int cycle = 0; cycle < kTeaCycles; ++cycle) {
        sum += kTeaDelta;
        first += ((second << 4) + key[0]) ^ (second + sum) ^ ((second >> 5) + key[1]);
        second += ((first << 4) + key[2]) ^ (first + sum) ^ ((first >> 5) + key[3]);
    }
    return {first, second};
}

[[nodiscard]] constexpr TeaBlock teaDecipher(TeaBlock block, const TeaKey& key) {
    auto [first, second] = block;
    std::uint32_t sum = kTeaLastSum;
    for (int cycle = 0; cycle < kTeaCycles; ++cycle) {
        second -= ((first << 4) + key[2]) ^ (first + sum) ^ ((first >> 5) + key[3]);
        first -= ((second << 4) + key[0]) ^ (second + sum) ^ ((second >> 5) + key[1]);
        sum -= kTeaDelta;
    }
    return {first, second};
}

static_assert(teaEncipher({0, 0}, {0, 0, 0, 0}) == TeaBlock{0x41EA3A0A, 0x94BAA940});
static_assert(teaDecipher({0x41EA3A0A, 0x94BAA940}, {0, 0, 0, 0}) == TeaBlock{0, 0});

// The two directions of the enciphered hexadecimal code, under any key; see ZQUT_EncodeToString and
// ZQUT_DecodeFromString for the contract.
[[nodiscard]] int encipherToHex(const char* text, char* out, int outSize, const TeaKey& key);
[[nodiscard]] int decipherFromHex(const char* hex, void* out, unsigned int outSize,
                                  const TeaKey& key);

}  // namespace qel::encodings

#endif
