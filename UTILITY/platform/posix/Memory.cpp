#include "platform/Memory.h"

#ifdef QEL_HAS_MALLOC_USABLE_SIZE
#include <malloc.h>
#endif

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace qel::platform {

#ifdef QEL_HAS_MALLOC_USABLE_SIZE

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

#else

// The size stands in front of each block, in as many bytes as leave the block aligned for
// everything.
namespace {

constexpr std::size_t kHead = std::max(alignof(std::max_align_t), sizeof(std::size_t));

char* headOf(const char* block) noexcept {
    return const_cast<char*>(block) - kHead;
}

bool fits(std::size_t size) noexcept {
    return size <= std::numeric_limits<std::size_t>::max() - kHead;
}

char* blockAfter(void* head, std::size_t size) noexcept {
    if (head == nullptr) return nullptr;
    std::memcpy(head, &size, sizeof size);
    return static_cast<char*>(head) + kHead;
}

}  // namespace

char* stringAlloc(std::size_t size) noexcept {
    return fits(size) ? blockAfter(std::calloc(kHead + size, 1), size) : nullptr;
}

char* stringRealloc(char* block, std::size_t size) noexcept {
    if (block == nullptr) return stringAlloc(size);
    if (!fits(size)) return nullptr;
    const std::size_t before = stringBlockSize(block);
    char* grown = blockAfter(std::realloc(headOf(block), kHead + size), size);
    if (grown != nullptr && before < size) std::memset(grown + before, 0, size - before);
    return grown;
}

void stringFree(char* block) noexcept {
    if (block != nullptr) std::free(headOf(block));
}

std::size_t stringBlockSize(const char* block) noexcept {
    std::size_t size = 0;
    if (block != nullptr) std::memcpy(&size, headOf(block), sizeof size);
    return size;
}

#endif

}  // namespace qel::platform
