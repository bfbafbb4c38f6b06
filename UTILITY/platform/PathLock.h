// Locks between processes.
#ifndef QEL_PLATFORM_PATH_LOCK_H
#define QEL_PLATFORM_PATH_LOCK_H

#include <cstdint>

#include "platform/LockResult.h"

namespace qel::platform {

// Keeps the processes that write, rotate or rewrite the file `path` apart; advisory, and held by
// one object at a time, so a thread that holds one must not wait for another on the same path. The
// lock leaves no file behind. One thread.
class PathLock {
  public:
    PathLock() noexcept = default;
    ~PathLock() { release(); }
    PathLock(const PathLock&) = delete;
    PathLock& operator=(const PathLock&) = delete;

    // Waits at most `timeoutMilliseconds`. kUnavailable: nothing to lock with, as where the
    // directory does not exist.
    LockResult acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept;
    void release() noexcept;
    // Lets go of a lock that a fork has copied; the process that took it keeps it.
    void abandon() noexcept;
    [[nodiscard]] bool held() const noexcept { return handle_ != kNone; }

  private:
    static constexpr std::intptr_t kNone = -1;
    std::intptr_t handle_ = kNone;
};

}  // namespace qel::platform

#endif
