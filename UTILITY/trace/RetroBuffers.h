// Retroactive tracing: the most recent traces are kept in two memory buffers, which costs one copy
// of each, and reach the log only when an error is reported.
#ifndef QEL_TRACE_RETROBUFFERS_H
#define QEL_TRACE_RETROBUFFERS_H

#include <array>
#include <atomic>
#include <cstddef>

namespace qel::trace {

// The writer's mutex guards everything here; only size() may be called without it.
class RetroBuffers {
  public:
    RetroBuffers() noexcept = default;
    ~RetroBuffers();
    RetroBuffers(const RetroBuffers&) = delete;
    RetroBuffers& operator=(const RetroBuffers&) = delete;

    // Characters of each buffer; 0 while retroactive tracing is off. Any thread.
    [[nodiscard]] int size() const noexcept { return size_.load(std::memory_order_relaxed); }

    // Resizes the buffers and empties them. A negative size, or one that there is no memory for,
    // turns them off.
    void resize(int size) noexcept;

    // True while traces go to the buffers instead of the log.
    [[nodiscard]] bool takeTraces() const noexcept { return size() > 0 && !flushing_; }

    // True while the text of the buffers is being written to the log.
    [[nodiscard]] bool flushing() const noexcept { return flushing_; }
    void setFlushing(bool flushing) noexcept { flushing_ = flushing; }

    // Drops a text that is longer than one buffer.
    void append(const char* text, std::size_t length) noexcept;

    // Empties the buffers.
    void clear() noexcept {
        drain([](const char*) {});
    }

    // Calls `write` with the text of each buffer that holds any, the older first, and empties them.
    template <typename Write>
    void drain(Write write) {
        for (const std::size_t each : {1 - current_, current_}) {
            char* text = buffers_[each];
            if (text == nullptr) continue;
            if (text[0] != '\0') write(text);
            text[0] = '\0';
        }
        fill_ = 0;
    }

  private:
    std::atomic<int> size_{0};
    std::array<char*, 2> buffers_{};  // size_ + 1 bytes each; null before the first resize
    std::size_t current_ = 0;         // the buffer that is being filled
    std::size_t fill_ = 0;            // characters in it
    bool flushing_ = false;
};

}  // namespace qel::trace

#endif
