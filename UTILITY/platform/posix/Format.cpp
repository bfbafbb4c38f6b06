// printf formats in the C library's own spelling of the sizes of integers.
#include "platform/Format.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

namespace qel::platform {

namespace {

// Writes `format` to `out` (of the same size) with "I64" as "ll" and "I32" as nothing wherever they
// are the size of an integer; the C library would read the "I" as a flag of its own.
void respell(const char* format, char* out) noexcept {
    bool inside = false;  // between a "%" and its conversion
    for (const char* p = format; *p != '\0';) {
        if (inside && std::strncmp(p, "I64", 3) == 0) {
            *out++ = 'l';
            *out++ = 'l';
            p += 3;
        } else if (inside && std::strncmp(p, "I32", 3) == 0) {
            p += 3;
        } else {
            if (*p == '%')
                inside = !inside;
            else if (inside && std::strchr("0123456789+-# .*'hlqjzt", *p) == nullptr)
                inside = false;
            *out++ = *p++;
        }
    }
    *out = '\0';
}

}  // namespace

int formatTextV(char* out, std::size_t room, const char* format, std::va_list arguments) noexcept {
    if (format == nullptr) return std::snprintf(out, room, "(null)");
    if (room > 0) out[0] = '\0';
    int length = -1;
    if (std::strstr(format, "I64") == nullptr && std::strstr(format, "I32") == nullptr) {
        length = std::vsnprintf(out, room, format, arguments);
    } else {
        // Formats are short; only a long one needs memory of its own.
        char shortFormat[512];
        const std::size_t size = std::strlen(format) + 1;
        std::unique_ptr<char[]> longFormat;
        if (size > sizeof shortFormat) {
            longFormat.reset(new (std::nothrow) char[size]);
            if (longFormat == nullptr) return -1;
        }
        char* const own = longFormat != nullptr ? longFormat.get() : shortFormat;
        respell(format, own);
        length = std::vsnprintf(out, room, own, arguments);
    }
    if (length < 0 && room > 0) out[0] = '\0';
    return length;
}

}  // namespace qel::platform
