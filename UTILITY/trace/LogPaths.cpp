#include "trace/LogPaths.h"

#include <cstring>
#include <new>

namespace qel::trace {

LogPaths::LogPaths() noexcept {
    for (std::atomic<char*>& path : paths_) path.store(empty_.text, std::memory_order_relaxed);
}

LogPaths::~LogPaths() {
    while (known_ != &empty_) {
        const Text* last = known_;
        known_ = known_->next;
        delete last;
    }
}

bool LogPaths::publish(Path which, const char* text) noexcept {
    std::atomic<char*>& path = paths_[static_cast<std::size_t>(which)];
    if (text == path.load(std::memory_order_relaxed)) return true;
    const std::lock_guard lock(mutex_);
    const std::size_t length = strnlen(text, kPathRoom - 1);
    // Callers keep the pointers, so no text is ever freed or changed. A process has a handful of
    // paths, and a linear search for one that is already known is enough.
    Text* known = known_;
    while (known != nullptr &&
           (std::strncmp(known->text, text, length) != 0 || known->text[length] != '\0'))
        known = known->next;
    if (known == nullptr) {
        known = new (std::nothrow) Text;
        if (known == nullptr) return false;
        std::memcpy(known->text, text, length);
        known->text[length] = '\0';
        known->next = known_;
        known_ = known;
    }
    path.store(known->text, std::memory_order_release);
    return true;
}

}  // namespace qel::trace
