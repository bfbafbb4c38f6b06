#include "platform/Platform.h"

#include <malloc.h>

#include <cstdlib>
#include <cstring>

namespace qel::platform {

char* stringAlloc(std::size_t size) noexcept {
    return static_cast<char*>(std::calloc(size, 1));
}

char* stringRealloc(char* block, std::size_t size) noexcept {
    const std::size_t before = stringBlockSize(block);
    char* grown = static_cast<char*>(std::realloc(block, size));
    if (grown != nullptr) {
        const std::size_t after = malloc_usable_size(grown);
        if (after > before) std::memset(grown + before, 0, after - before);
    }
    return grown;
}

void stringFree(char* block) noexcept {
    std::free(block);
}

std::size_t stringBlockSize(const char* block) noexcept {
    // malloc_usable_size takes a pointer to non-const but only looks at the block's header.
    return malloc_usable_size(const_cast<char*>(block));
}

}  // namespace qel::platform
