// Looks for bytes in a text, sixteen at once where the processor can. The same result on every
// processor. Any thread.
#ifndef QEL_CALENDAR_BASE_BYTESEARCH_H
#define QEL_CALENDAR_BASE_BYTESEARCH_H

#include <bit>
#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace qel::calendar {

// What is looked for: whether a byte is `one` of them, and `marks`, which sets the highest bit of
// each of them in sixteen bytes.
template <char... kSearched>
struct AnyOf {
    [[nodiscard]] static bool one(char c) { return ((c == kSearched) || ...); }
#if defined(__SSE2__)
    [[nodiscard]] static __m128i marks(__m128i bytes) {
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(kSearched)))), ...);
        return found;
    }
#endif
};

template <char... kSearched>
struct AnyOrUnprintable {
    [[nodiscard]] static bool one(char c) {
        return c < ' ' || c >= '\x7f' || AnyOf<kSearched...>::one(c);
    }
#if defined(__SSE2__)
    [[nodiscard]] static __m128i marks(__m128i bytes) {
        // Bytes beyond ASCII are negative here.
        return _mm_or_si128(_mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')),
                            AnyOf<'\x7f', kSearched...>::marks(bytes));
    }
#endif
};

template <char... kSearched>
struct AnyOrBeyondAscii {
    [[nodiscard]] static bool one(char c) { return (c & 0x80) != 0 || AnyOf<kSearched...>::one(c); }
#if defined(__SSE2__)
    // A byte beyond ASCII has its highest bit set.
    [[nodiscard]] static __m128i marks(__m128i bytes) {
        return _mm_or_si128(bytes, AnyOf<kSearched...>::marks(bytes));
    }
#endif
};

// The first place from `at` on of a byte that is looked for, else the text's size.
template <typename Searched>
[[nodiscard]] std::size_t findFirst(std::string_view text, std::size_t at) {
#if defined(__SSE2__)
    constexpr std::size_t kBlock = 16;
    const auto maskAt = [text](std::size_t begin) {
        const __m128i bytes =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + begin));
        return static_cast<unsigned>(_mm_movemask_epi8(Searched::marks(bytes)));
    };
    for (; at + kBlock <= text.size(); at += kBlock)
        if (const unsigned mask = maskAt(at); mask != 0)
            return at + static_cast<std::size_t>(std::countr_zero(mask));
    if (at < text.size() && text.size() >= kBlock) {
        // The last block has bytes that have been looked at.
        const std::size_t begin = text.size() - kBlock;
        const unsigned mask = maskAt(begin) >> (at - begin);
        return mask == 0 ? text.size() : at + static_cast<std::size_t>(std::countr_zero(mask));
    }
    constexpr std::size_t kHalf = 8;
    if (text.size() >= kHalf && text.size() < kBlock && at == 0) {
        // The second half has bytes of the first one.
        const auto halfAt = [text](std::size_t begin) {
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text.data() + begin));
        };
        const std::size_t second = text.size() - kHalf;
        const __m128i bytes = _mm_unpacklo_epi64(halfAt(0), halfAt(second));
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(Searched::marks(bytes)));
        if (mask == 0) return text.size();
        const auto first = static_cast<std::size_t>(std::countr_zero(mask));
        return first < kHalf ? first : second + first - kHalf;
    }
#endif
    while (at < text.size() && !Searched::one(text[at])) ++at;
    return at;
}

// The first place from `at` on that holds one of the characters, else the text's size.
template <char... kSearched>
[[nodiscard]] std::size_t findAny(std::string_view text, std::size_t at = 0) {
    return findFirst<AnyOf<kSearched...>>(text, at);
}

// The first place from `at` on that holds one of the characters, a control character or a byte
// beyond ASCII, else the text's size.
template <char... kSearched>
[[nodiscard]] std::size_t findAnyOrUnprintable(std::string_view text, std::size_t at) {
    return findFirst<AnyOrUnprintable<kSearched...>>(text, at);
}

// The first line feed, carriage return or byte beyond ASCII from `at` on, else the text's size.
[[nodiscard]] inline std::size_t findLineEndOrBeyondAscii(std::string_view text, std::size_t at) {
    return findFirst<AnyOrBeyondAscii<'\n', '\r'>>(text, at);
}

// How many capitals, digits and "-" a text begins with, of which names nearly always consist.
[[nodiscard]] inline std::size_t capitalsLength(std::string_view text) {
    std::size_t length = 0;
#if defined(__SSE2__)
    constexpr std::size_t kBlock = 16;
    if (text.size() >= kBlock) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data()));
        const auto isFrom = [bytes](char first, char last) {
            return _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(first - 1))),
                                 _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(last + 1))));
        };
        const __m128i found = _mm_or_si128(_mm_or_si128(isFrom('A', 'Z'), isFrom('0', '9')),
                                           _mm_cmpeq_epi8(bytes, _mm_set1_epi8('-')));
        const auto others = ~static_cast<unsigned>(_mm_movemask_epi8(found));
        length = static_cast<std::size_t>(std::countr_zero(others));
        if (length < kBlock) return length;
    }
#endif
    const auto isOne = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    };
    while (length < text.size() && isOne(text[length])) ++length;
    return length;
}

// How often a text has a character.
[[nodiscard]] inline std::size_t countOf(std::string_view text, char c) {
    std::size_t count = 0;
    std::size_t at = 0;
#if defined(__SSE2__)
    constexpr std::size_t kBlock = 16;
    constexpr std::size_t kMostBlocks = 255;  // which a byte can count
    while (at + kBlock <= text.size()) {
        __m128i counts = _mm_setzero_si128();
        for (std::size_t block = 0; block < kMostBlocks && at + kBlock <= text.size(); ++block) {
            const __m128i bytes =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
            counts = _mm_sub_epi8(counts, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)));
            at += kBlock;
        }
        const __m128i sums = _mm_sad_epu8(counts, _mm_setzero_si128());
        count += static_cast<std::size_t>(_mm_cvtsi128_si32(sums)) +
                 static_cast<std::size_t>(_mm_extract_epi16(sums, 4));
    }
#endif
    for (; at < text.size(); ++at) count += text[at] == c ? 1 : 0;
    return count;
}

template <char... kSearched>
[[nodiscard]] bool hasAny(std::string_view text) {
    return findAny<kSearched...>(text) != text.size();
}

}  // namespace qel::calendar

#endif
