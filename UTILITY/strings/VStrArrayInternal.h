// What the sources of the string arrays share.
#ifndef QEL_STRINGS_VSTRARRAYINTERNAL_H
#define QEL_STRINGS_VSTRARRAYINTERNAL_H

#include "QelUtility/VStr.h"

namespace qel::strings {

// Gives a null `to` what assigning `from` would: the text up to its first NUL. The block changes
// hands, so that an array that moves its elements loses none where memory is exhausted.
inline void takeText(VStr& to, VStr& from) {
    to <<= from;
    if (to.Compare(nullptr) != 0) to.ReleaseBuffer();
}

}  // namespace qel::strings

#endif
