// The lock under which a profile file is written.
#ifndef QEL_PLATFORM_PROFILE_LOCK_H
#define QEL_PLATFORM_PROFILE_LOCK_H

#include <cstdint>

#include "platform/Files.h"
#include "platform/PathLock.h"

namespace qel::platform {

// Waits for the lock of the file `path`. A busy computer may keep it from this thread for long
// while others write the file one after the other, so only a wait in which the file does not change
// ends with false, or a great many of them.
[[nodiscard]] inline bool lockProfile(PathLock& lock, const char* path) noexcept {
    constexpr std::uint32_t kWaitMilliseconds = 200;
    constexpr int kMostWaits = 25;
    std::int64_t before = changeStamp(path);
    for (int waits = 0; waits < kMostWaits; ++waits) {
        if (lock.acquire(path, kWaitMilliseconds) != LockResult::kTimedOut) return true;
        const std::int64_t now = changeStamp(path);
        if (now == before) return false;
        before = now;
    }
    return false;
}

}  // namespace qel::platform

#endif
