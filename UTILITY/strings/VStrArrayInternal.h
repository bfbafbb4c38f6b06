// What the sources of the string arrays share.
#ifndef QEL_STRINGS_VSTRARRAYINTERNAL_H
#define QEL_STRINGS_VSTRARRAYINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <new>

#include "QelUtility/VStr.h"

namespace qel {

// `n` null strings, freed with delete[]; null when memory is exhausted or n is negative.
inline VStr* newStrings(int n) {
    // The room for the count that the compiler keeps before an array is left aside.
    constexpr std::size_t kMost = (PTRDIFF_MAX - 64) / sizeof(VStr);
    if (n < 0 || static_cast<std::size_t>(n) > kMost) return nullptr;
    return new (std::nothrow) VStr[static_cast<std::size_t>(n)];
}

// Gives a null `to` what assigning `from` would: the text up to its first NUL. The block changes
// hands, so that an array that moves its elements loses none where memory is exhausted.
inline void takeText(VStr& to, VStr& from) {
    to <<= from;
    if (to.Compare(nullptr) != 0) to.ReleaseBuffer();
}

}  // namespace qel

#endif
