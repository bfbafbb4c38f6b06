#include "platform/Memory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qel::platform {

namespace {

// Up to this size malloc's ready blocks are cleared here: calloc does not use those and searches.
// A larger block may come from the system, which has cleared it already; calloc knows.
constexpr std::size_t kReadyBlock = 1024;

}  // namespace

char* stringAlloc(std::size_t size) noexcept {
    if (size > kReadyBlock) return static_cast<char*>(std::calloc(size, 1));
    char* block = static_cast<char*>(std::malloc(size));
    // All of the block, which may be larger than was asked for: it can be used to its end.
    if (block != nullptr) std::memset(block, 0, malloc_usable_size(block));
    return block;
}

char* stringRealloc(char* block, std::size_t size) noexcept {
    const std::size_t before = stringBlockSize(block);
    char* grown = static_cast<char*>(std::realloc(block, size));
    if (grown != nullptr) {
        // What a block held beyond its new size is forgotten, so that it cannot come back as "new"
        // bytes when the block grows again.
        const std::size_t kept = std::min(before, size);
        std::memset(grown + kept, 0, malloc_usable_size(grown) - kept);
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
