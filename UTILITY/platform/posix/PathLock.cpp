// Locks between processes: a lock on the directory itself, so that no lock file is left in it.
#include "platform/PathLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>

#include "platform/Files.h"
#include "platform/Process.h"

namespace qel::platform {

LockResult PathLock::acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept {
    release();
    char directory[PATH_MAX] = ".";
    const std::size_t length = directoryLength(path);
    if (length >= sizeof directory) return LockResult::kUnavailable;
    if (length > 0) {
        std::memcpy(directory, path, length);
        directory[length] = '\0';
    }
    const int handle = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return LockResult::kUnavailable;
    // There is no lock with a timeout, so this tries again and again, less and less often.
    const std::uint32_t start = tickCount();
    long pause = 20000;  // nanoseconds
    while (flock(handle, LOCK_EX | LOCK_NB) != 0) {
        const bool contended = errno == EWOULDBLOCK || errno == EINTR;
        if (!contended || tickCount() - start >= timeoutMilliseconds) {
            close(handle);
            return contended ? LockResult::kTimedOut : LockResult::kUnavailable;
        }
        const std::timespec wait{0, pause};
        nanosleep(&wait, nullptr);
        pause = std::min(pause + pause / 4, 1000000L);
    }
    handle_ = handle;
    return LockResult::kLocked;
}

void PathLock::release() noexcept {
    if (handle_ == kNone) return;
    // A child that was forked meanwhile has the same lock, and may live long.
    flock(static_cast<int>(handle_), LOCK_UN);
    abandon();
}

void PathLock::abandon() noexcept {
    if (handle_ == kNone) return;
    close(static_cast<int>(handle_));
    handle_ = kNone;
}

}  // namespace qel::platform
