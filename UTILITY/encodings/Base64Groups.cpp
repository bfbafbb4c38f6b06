// Runs of Base64 groups: by tables, sixteen digits at a time where the processor has SSSE3, and
// thirty-two where it has AVX2.
#include "encodings/Base64Groups.h"

#include <array>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#define QEL_BASE64_WIDE
#include <immintrin.h>
// 32-bit Windows does not align the stack for wide registers, so each function does.
#define QEL_WIDE_CODE(processor) __attribute__((target(processor), force_align_arg_pointer))
#endif

namespace qel::encodings {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Pair = std::array<char, 2>;

// The two digits of each 12 bits.
constexpr auto kPairs = [] {
    std::array<Pair, 4096> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
    return pairs;
}();

constexpr std::uint32_t kNoDigit = 1U << 31;

// The bits of each digit at its place in the group; kNoDigit for any other character.
constexpr auto kPlaced = [] {
    std::array<std::array<std::uint32_t, 256>, 4> tables{};
    for (std::size_t place = 0; place < 4; ++place) {
        tables[place].fill(kNoDigit);
        for (std::uint32_t value = 0; value < 64; ++value)
            tables[place][static_cast<unsigned char>(kAlphabet[value])] = value << (18 - 6 * place);
    }
    return tables;
}();

void encodeByTable(const unsigned char* src, std::size_t groups, char* dst) {
    for (; groups != 0; --groups, src += 3, dst += 4) {
        const unsigned bits = static_cast<unsigned>(src[0] << 16 | src[1] << 8 | src[2]);
        std::memcpy(dst, kPairs[bits >> 12].data(), 2);
        std::memcpy(dst + 2, kPairs[bits & 0xFFF].data(), 2);
    }
}

std::size_t decodeByTable(const char* src, std::size_t groups, unsigned char* dst) {
    const auto* text = reinterpret_cast<const unsigned char*>(src);
    for (std::size_t done = 0; done < groups; ++done, text += 4, dst += 3) {
        const std::uint32_t bits =
            kPlaced[0][text[0]] | kPlaced[1][text[1]] | kPlaced[2][text[2]] | kPlaced[3][text[3]];
        if ((bits & kNoDigit) != 0) return done;
        dst[0] = static_cast<unsigned char>(bits >> 16);
        dst[1] = static_cast<unsigned char>(bits >> 8);
        dst[2] = static_cast<unsigned char>(bits);
    }
    return groups;
}

#ifdef QEL_BASE64_WIDE

bool hasWide() {
    static const bool has = __builtin_cpu_supports("ssse3") != 0;
    return has;
}

bool hasWidest() {
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has;
}

constexpr std::size_t kWideGroups = 4;
constexpr std::size_t kWidestGroups = 8;
// From here on a run is worth the wider registers.
constexpr std::size_t kLongRun = 64;

// As encodeWide, whose constants are explained there, in both halves of a register at once.
QEL_WIDE_CODE("avx2")
std::size_t encodeWidest(const unsigned char* src, std::size_t groups, char* dst) {
    const __m256i spread = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    const __m256i offsets = _mm256_broadcastsi128_si256(
        _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                      '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0));
    std::size_t done = 0;
    for (; (groups - done) * 3 >= 28; done += kWidestGroups, src += 24, dst += 32) {
        const __m256i bytes = _mm256_shuffle_epi8(
            _mm256_inserti128_si256(
                _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src))),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 12)), 1),
            spread);
        const __m256i evenDigits = _mm256_mulhi_epu16(
            _mm256_and_si256(bytes, _mm256_set1_epi32(0x0FC0FC00)), _mm256_set1_epi32(0x04000040));
        const __m256i oddDigits = _mm256_mullo_epi16(
            _mm256_and_si256(bytes, _mm256_set1_epi32(0x003F03F0)), _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(evenDigits, oddDigits);
        const __m256i capital = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        const __m256i range = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                              _mm256_and_si256(capital, _mm256_set1_epi8(13)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst),
                            _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, range)));
    }
    return done;
}

// As decodeWide, in both halves of a register at once.
QEL_WIDE_CODE("avx2")
std::size_t decodeWidest(const char* src, std::size_t groups, unsigned char* dst) {
    const __m256i badByLow =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                  0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A));
    const __m256i badByHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
                                                  0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10));
    const __m256i offsets = _mm256_broadcastsi128_si256(_mm_setr_epi8(
        0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0));
    const __m256i gather = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
    const __m256i join = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    const __m256i lowHalf = _mm256_set1_epi8(0x0F);
    std::size_t done = 0;
    for (; groups - done >= kWidestGroups; done += kWidestGroups, src += 32, dst += 24) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
        const __m256i high = _mm256_and_si256(_mm256_srli_epi32(text, 4), lowHalf);
        const __m256i bad =
            _mm256_and_si256(_mm256_shuffle_epi8(badByLow, _mm256_and_si256(text, lowHalf)),
                             _mm256_shuffle_epi8(badByHigh, high));
        if (_mm256_testz_si256(bad, bad) == 0) break;
        const __m256i isSlash = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('/'));
        const __m256i values =
            _mm256_add_epi8(text, _mm256_shuffle_epi8(offsets, _mm256_add_epi8(high, isSlash)));
        const __m256i twelve = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
        const __m256i group = _mm256_madd_epi16(twelve, _mm256_set1_epi32(0x00011000));
        const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(group, gather), join);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm256_castsi256_si128(bytes));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + 16), _mm256_extracti128_si256(bytes, 1));
    }
    return done;
}

// Four groups at a time while 16 bytes can be read; the number of groups.
QEL_WIDE_CODE("ssse3")
std::size_t encodeWide(const unsigned char* src, std::size_t groups, char* dst) {
    // Each group's bytes 1 0 2 1 in a lane of 32 bits; then each digit's bits in a byte of its own.
    const __m128i spread = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
    // What is added to a digit's value to give its character, by the range that the value is in.
    const __m128i offsets =
        _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                      '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
    std::size_t done = 0;
    for (; (groups - done) * 3 >= 16; done += kWideGroups, src += 12, dst += 16) {
        const __m128i bytes =
            _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)), spread);
        const __m128i evenDigits = _mm_mulhi_epu16(_mm_and_si128(bytes, _mm_set1_epi32(0x0FC0FC00)),
                                                   _mm_set1_epi32(0x04000040));
        const __m128i oddDigits = _mm_mullo_epi16(_mm_and_si128(bytes, _mm_set1_epi32(0x003F03F0)),
                                                  _mm_set1_epi32(0x01000010));
        const __m128i values = _mm_or_si128(evenDigits, oddDigits);
        // 0 for letters, 1 to 12 from '0' on; capitals, below 26, become 13.
        const __m128i capital = _mm_cmplt_epi8(values, _mm_set1_epi8(26));
        const __m128i range = _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)),
                                           _mm_and_si128(capital, _mm_set1_epi8(13)));
        const __m128i digits = _mm_add_epi8(values, _mm_shuffle_epi8(offsets, range));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), digits);
    }
    return done;
}

// Four groups at a time while every character is a digit; the number of groups.
QEL_WIDE_CODE("ssse3")
std::size_t decodeWide(const char* src, std::size_t groups, unsigned char* dst) {
    // For each half of a character the set of halves that it does not go with, as bits: a character
    // is a digit when the sets of its two halves share none.
    const __m128i badByLow = _mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                           0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m128i badByHigh = _mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10,
                                            0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10);
    // What is added to a character to give its value, by its high half; "/" takes entry 1.
    const __m128i offsets = _mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a',
                                          26 - 'a', 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i gather = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m128i lowHalf = _mm_set1_epi8(0x0F);
    std::size_t done = 0;
    for (; groups - done >= kWideGroups; done += kWideGroups, src += 16, dst += 12) {
        const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
        const __m128i high = _mm_and_si128(_mm_srli_epi32(text, 4), lowHalf);
        const __m128i low = _mm_and_si128(text, lowHalf);
        const __m128i bad =
            _mm_and_si128(_mm_shuffle_epi8(badByLow, low), _mm_shuffle_epi8(badByHigh, high));
        if (_mm_movemask_epi8(_mm_cmpgt_epi8(bad, _mm_setzero_si128())) != 0) break;
        const __m128i isSlash = _mm_cmpeq_epi8(text, _mm_set1_epi8('/'));
        const __m128i values =
            _mm_add_epi8(text, _mm_shuffle_epi8(offsets, _mm_add_epi8(high, isSlash)));
        // Two digits to 12 bits, two of those to 24, and the bytes of each 24 in their order.
        const __m128i twelve = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
        const __m128i group = _mm_madd_epi16(twelve, _mm_set1_epi32(0x00011000));
        const __m128i bytes = _mm_shuffle_epi8(group, gather);
        // Twelve bytes exactly: what follows the result does not belong to this function.
        const int last = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 8));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), bytes);
        std::memcpy(dst + 8, &last, 4);
    }
    return done;
}

#endif

}  // namespace

void encodeGroups(const unsigned char* src, std::size_t groups, char* dst) {
    std::size_t done = 0;
#ifdef QEL_BASE64_WIDE
    if (groups >= kLongRun && hasWidest()) done = encodeWidest(src, groups, dst);
    if (hasWide()) done += encodeWide(src + 3 * done, groups - done, dst + 4 * done);
#endif
    encodeByTable(src + 3 * done, groups - done, dst + 4 * done);
}

std::size_t decodeGroups(const char* src, std::size_t groups, unsigned char* dst) {
    std::size_t done = 0;
#ifdef QEL_BASE64_WIDE
    if (groups >= kLongRun && hasWidest()) done = decodeWidest(src, groups, dst);
    if (hasWide()) done += decodeWide(src + 4 * done, groups - done, dst + 3 * done);
#endif
    return done + decodeByTable(src + 4 * done, groups - done, dst + 3 * done);
}

}  // namespace qel::encodings
