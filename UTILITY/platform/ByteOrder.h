// Words that stand for bytes in memory.
#ifndef QEL_PLATFORM_BYTE_ORDER_H
#define QEL_PLATFORM_BYTE_ORDER_H

#include <bit>
#include <concepts>
#include <cstddef>

namespace qel::platform {

// The word that is the same bytes in memory, first to last, as `word` has from its lowest to its
// highest; and back. Nothing to do on most processors.
template <std::unsigned_integral Word>
[[nodiscard]] constexpr Word firstByteLowest(Word word) noexcept {
    if constexpr (std::endian::native == std::endian::little || sizeof(Word) == 1) {
        return word;
    } else {
        Word turned = 0;
        for (std::size_t each = 0; each < sizeof(Word); ++each, word = static_cast<Word>(word >> 8))
            turned = static_cast<Word>(turned << 8 | (word & 0xFF));
        return turned;
    }
}

}  // namespace qel::platform

#endif
