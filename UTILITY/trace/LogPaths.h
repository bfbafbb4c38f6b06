// The paths of the trace's files, which any thread may ask for at any time.
#ifndef QEL_TRACE_LOGPATHS_H
#define QEL_TRACE_LOGPATHS_H

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>

namespace qel::trace {

inline constexpr std::size_t kPathRoom = 512;  // a path and its terminator

enum class Path { kLog, kSavedLog, kSyncInput, kSyncOutput, kRunDirectory, kOptions, kLogName };

// Callable from any thread: each path is an atomic pointer to a text that never changes once it has
// been published, and a mutex guards the list of these texts.
class LogPaths {
  public:
    LogPaths() noexcept;
    ~LogPaths();
    LogPaths(const LogPaths&) = delete;
    LogPaths& operator=(const LogPaths&) = delete;

    // The path in use, empty before it is known. The text stays valid and unchanged for the life
    // of this object, whatever is published later.
    [[nodiscard]] char* get(Path which) const noexcept {
        return paths_[static_cast<std::size_t>(which)].load(std::memory_order_acquire);
    }

    // Makes a copy of `text`, cut at 511 characters, the path. False, with the old one kept, when
    // memory is exhausted.
    bool publish(Path which, const char* text) noexcept;

    // Around a fork.
    void hold() { mutex_.lock(); }
    void release() { mutex_.unlock(); }

  private:
    struct Text {
        char text[kPathRoom];
        Text* next;
    };

    Text empty_{"", nullptr};
    std::mutex mutex_;       // guards known_
    Text* known_ = &empty_;  // every text that was ever a path
    std::array<std::atomic<char*>, 7> paths_;
};

}  // namespace qel::trace

#endif
