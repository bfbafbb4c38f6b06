// The lines that the error functions write. Callable from any thread.
#ifndef QEL_TRACE_ERRORLINE_H
#define QEL_TRACE_ERRORLINE_H

#include <cstddef>
#include <cstdio>

#include "trace/Stamp.h"

namespace qel::trace {

// Two texts of 350 characters, a file name of 256, the stamp and the numbers, the error ID.
inline constexpr std::size_t kErrorLineRoom = 1280;

// The text, or "(null)" for null.
[[nodiscard]] inline const char* shownText(const char* text) noexcept {
    return text != nullptr ? text : "(null)";
}

// Appends the error ID, when there is one and the line does not contain it, writes the line, and
// flushes the retroactive buffers. Returns the code.
int writeErrorLine(int code, const char* line);

// Formats "<stamp>: Error <details>.<code> at <file> line <line>" and writes it. `format` has the
// conversions of the details, each with a dot after it.
template <typename... Details>
int reportError(const char* file, int line, int code, const char* format, Details... details) {
    char text[kErrorLineRoom];
    std::snprintf(text, sizeof text, format, makeStamp().text, details..., code, shownText(file),
                  line);
    return writeErrorLine(code, text);
}

}  // namespace qel::trace

#endif
