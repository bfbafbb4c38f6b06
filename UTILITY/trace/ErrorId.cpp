#include "trace/ErrorId.h"

#include <cstdio>

namespace qel::trace {

void ErrorId::set(const char* text) {
    const std::lock_guard lock(mutex_);
    std::snprintf(text_, sizeof text_, "%s", text != nullptr ? text : "");
}

bool ErrorId::get(char* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) return false;
    const std::lock_guard lock(mutex_);
    std::snprintf(buffer, size, "%s", text_);
    return buffer[0] != '\0';
}

}  // namespace qel::trace
