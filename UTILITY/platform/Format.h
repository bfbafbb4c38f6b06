// Formatting as printf does. Callable from any thread.
#ifndef QEL_PLATFORM_FORMAT_H
#define QEL_PLATFORM_FORMAT_H

#include <cstdarg>
#include <cstddef>

#include "QelUtility/QelTypes.h"

namespace qel::platform {

// Formats like vsnprintf into `out`, whole or cut at room - 1 bytes, always terminated, and returns
// the length that the whole text has (negative, with an empty text, when the format is bad). %I64d,
// %I32d and their like work on every platform. A null format is the text "(null)".
int formatTextV(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept
    QELUTILITY_PRINTF(3, 0);

}  // namespace qel::platform

#endif
