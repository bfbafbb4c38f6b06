#include "platform/Memory.h"

#include <windows.h>

namespace qel::platform {

char* stringAlloc(std::size_t size) noexcept {
    return static_cast<char*>(LocalAlloc(LMEM_ZEROINIT, size));
}

char* stringRealloc(char* block, std::size_t size) noexcept {
    if (block == nullptr) return stringAlloc(size);
    return static_cast<char*>(LocalReAlloc(block, size, LMEM_MOVEABLE | LMEM_ZEROINIT));
}

void stringFree(char* block) noexcept {
    if (block != nullptr) LocalFree(block);
}

std::size_t stringBlockSize(const char* block) noexcept {
    return block == nullptr ? 0 : LocalSize(const_cast<char*>(block));
}

}  // namespace qel::platform
