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

// The first place from `at` on that holds one of the characters, else the text's size.
template <char... kSearched>
[[nodiscard]] std::size_t findAny(std::string_view text, std::size_t at = 0) {
#if defined(__SSE2__)
    constexpr std::size_t kBlock = 16;
    const auto maskAt = [text](std::size_t begin) {
        const __m128i bytes =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + begin));
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(kSearched)))), ...);
        return static_cast<unsigned>(_mm_movemask_epi8(found));
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
#endif
    while (at < text.size() && ((text[at] != kSearched) && ...)) ++at;
    return at;
}

template <char... kSearched>
[[nodiscard]] bool hasAny(std::string_view text) {
    return findAny<kSearched...>(text) != text.size();
}

}  // namespace qel::calendar

#endif
