// The growable block that a listing writes to.
#include <algorithm>
#include <cstdlib>

#include "recurrence/RptExpandRange.h"

int DateBlock_Init(DateBlock* block, std::int64_t initialSize, std::int64_t step,
                   std::int64_t maximum) {
    *block = {nullptr, 0, maximum, step};
    if (step > maximum) return DATEBLOCK_BAD_STEP;
    return initialSize > 0 ? DateBlock_Reserve(block, initialSize) : QEL_OK;
}

int DateBlock_Reserve(DateBlock* block, std::int64_t bytes) {
    if (bytes <= block->capacity) return QEL_OK;
    std::int64_t size = block->data == nullptr ? std::max(bytes, block->step)
                                               : std::max(bytes, block->capacity + block->step);
    size = std::min(size, block->maximum);
    if (size > block->capacity) {
        void* const grown = std::realloc(block->data, static_cast<std::size_t>(size));
        if (grown == nullptr) return DATEBLOCK_NO_MEMORY;
        block->data = static_cast<int*>(grown);
        block->capacity = size;
    }
    if (bytes > block->maximum) return DATEBLOCK_FULL;
    return QEL_OK;
}

void DateBlock_Free(DateBlock* block) {
    std::free(block->data);
    block->data = nullptr;
    block->capacity = 0;
}
