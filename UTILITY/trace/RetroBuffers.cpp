#include "trace/RetroBuffers.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace qel::trace {

RetroBuffers::~RetroBuffers() {
    for (char* buffer : buffers_) std::free(buffer);
}

void RetroBuffers::resize(int size) noexcept {
    for (char*& buffer : buffers_) {
        if (size < 0) break;
        char* resized = static_cast<char*>(
            std::realloc(buffer, static_cast<std::size_t>(size) + std::size_t{1}));
        if (resized == nullptr)
            size = -1;
        else
            buffer = resized;
    }
    size_.store(std::max(size, 0), std::memory_order_relaxed);
    if (size <= 0) return;
    current_ = 0;
    fill_ = 0;
    for (char* buffer : buffers_) buffer[0] = '\0';
}

void RetroBuffers::append(const char* text, std::size_t length) noexcept {
    const auto size = static_cast<std::size_t>(this->size());
    if (length == 0 || length > size) return;
    // What does not fit into the current buffer goes to the head of the other, over its old text.
    const std::size_t head = std::min(length, size - fill_);
    char* current = buffers_[current_];
    std::memcpy(current + fill_, text, head);
    fill_ += head;
    current[fill_] = '\0';
    if (head == length) return;
    current_ = 1 - current_;
    current = buffers_[current_];
    fill_ = length - head;
    std::memcpy(current, text + head, fill_);
    current[fill_] = '\0';
}

}  // namespace qel::trace
