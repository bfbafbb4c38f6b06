// Memory of strings. Callable from any thread.
#ifndef QEL_PLATFORM_MEMORY_H
#define QEL_PLATFORM_MEMORY_H

#include <cstddef>

namespace qel::platform {

// A zero-filled block of `size` bytes, or null when memory is exhausted. Freed by stringFree alone.
[[nodiscard]] char* stringAlloc(std::size_t size) noexcept;

// The block grown or shrunk to `size` bytes, content kept and new bytes zero; it may move. Null
// when memory is exhausted, and then `block` is unchanged. A null `block` allocates.
[[nodiscard]] char* stringRealloc(char* block, std::size_t size) noexcept;

// Frees a block of the two functions above; null is ignored.
void stringFree(char* block) noexcept;

// The number of bytes that may be used in `block`, at least what was asked for; 0 for null.
[[nodiscard]] std::size_t stringBlockSize(const char* block) noexcept;

}  // namespace qel::platform

#endif
