// What the sources of VStr share.
#ifndef QEL_STRINGS_VSTRINTERNAL_H
#define QEL_STRINGS_VSTRINTERNAL_H

#include <climits>
#include <cstddef>
#include <cstring>

#include "QelUtility/VStr.h"

namespace qel::strings {

// The longest text whose size with the terminator is still an `int`.
constexpr int kMaxLength = INT_MAX - 1;

// The number of bytes before the first NUL among the `room` bytes at `text`, at most kMaxLength.
inline int textLength(const char* text, std::size_t room) {
    const std::size_t most = room < static_cast<std::size_t>(kMaxLength) ? room : kMaxLength;
    const void* end = most == 0 ? nullptr : std::memchr(text, '\0', most);
    if (end == nullptr) return static_cast<int>(most);
    return static_cast<int>(static_cast<const char*>(end) - text);
}

// For the library's own writers, which know how long their text is: it is not measured again. The
// text has no NUL.
struct Writer {
    // As VStr::Copy with a count.
    static void assign(VStr& to, const char* text, int length) { to.Assign(text, length, length); }
    // As VStr::Catstr.
    static void append(VStr& to, const char* text, int length) { to.Append(text, length); }
};

}  // namespace qel::strings

#endif
