// printf formats: the C library knows both spellings of the sizes of integers.
#include "platform/Format.h"

#include <cstdio>

namespace qel::platform {

int formatTextV(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept {
    if (format == nullptr) return std::snprintf(out, room, "(null)");
    if (room > 0) out[0] = '\0';
    const int length = std::vsnprintf(out, room, format, arguments);
    if (length < 0 && room > 0) out[0] = '\0';
    return length;
}

}  // namespace qel::platform
