// Locks between processes: a lock on the directory itself, so that no lock file is left in it.
// Where directories cannot be locked, a file in it that is there for as long as somebody holds the
// lock.
#include "platform/PathLock.h"

#include <fcntl.h>
#include <pthread.h>
#ifdef QEL_HAS_FLOCK
#include <sys/file.h>
#endif
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/posix/ForkHooks.h"

namespace qel::platform {

namespace {

bool directoryOf(const char* path, char (&directory)[PATH_MAX]) noexcept {
    const std::size_t length = directoryLength(path);
    if (length >= sizeof directory) return false;
    std::snprintf(directory, sizeof directory, "%.*s", static_cast<int>(length), path);
    if (length == 0) std::strcpy(directory, ".");
    return true;
}

// There is no lock with a timeout, so this tries again and again, less and less often.
template <typename TryLock>
LockResult lockInTime(std::uint32_t timeoutMilliseconds, TryLock tryLock) noexcept {
    const std::uint32_t start = tickCount();
    long pause = 20000;  // nanoseconds
    for (;;) {
        const LockResult result = tryLock();
        if (result != LockResult::kTimedOut || tickCount() - start >= timeoutMilliseconds)
            return result;
        const std::timespec wait{0, pause};
        nanosleep(&wait, nullptr);
        pause = std::min(pause + pause / 4, 1000000L);
    }
}

}  // namespace

#ifdef QEL_HAS_FLOCK

void holdPathLocks() noexcept {}

void releasePathLocks() noexcept {}

LockResult PathLock::acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept {
    release();
    char directory[PATH_MAX];
    if (!directoryOf(path, directory)) return LockResult::kUnavailable;
    const int handle = open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return LockResult::kUnavailable;
    const LockResult result = lockInTime(timeoutMilliseconds, [handle] {
        if (flock(handle, LOCK_EX | LOCK_NB) == 0) return LockResult::kLocked;
        const bool contended = errno == EWOULDBLOCK || errno == EINTR;
        return contended ? LockResult::kTimedOut : LockResult::kUnavailable;
    });
    if (result == LockResult::kLocked)
        handle_ = handle;
    else
        close(handle);
    return result;
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

#else

namespace {

// A lock that this process holds. The system keeps only processes apart, and whoever closes a file
// gives up all of his process's locks on it: so no thread opens a file that another one has locked.
struct Held {
    int file = -1;
    dev_t device = 0;
    ino_t number = 0;
    char name[PATH_MAX] = "";
};

// More at once count as contended.
std::array<Held, 16> heldLocks;
pthread_mutex_t heldGuard = PTHREAD_MUTEX_INITIALIZER;

bool isHeld(const Held& held, const struct stat& status) noexcept {
    return held.file >= 0 && held.device == status.st_dev && held.number == status.st_ino;
}

// REQUIRES: heldGuard is held.
LockResult lockFile(Held& held, const char* name) noexcept {
    const auto busy = [](int number) {
        return number == EACCES || number == EAGAIN || number == EINTR;
    };
    held.file = open(name, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (held.file < 0) return LockResult::kUnavailable;
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    struct stat status {};
    LockResult result = LockResult::kLocked;
    if (fcntl(held.file, F_SETLK, &whole) != 0)
        result = busy(errno) ? LockResult::kTimedOut : LockResult::kUnavailable;
    else if (!stillNamed(held.file, name))
        result = LockResult::kTimedOut;  // its last holder has just removed it
    else if (fstat(held.file, &status) != 0)
        result = LockResult::kUnavailable;
    held.device = status.st_dev;
    held.number = status.st_ino;
    if (result == LockResult::kLocked) {
        std::strcpy(held.name, name);
    } else {
        close(held.file);
        held.file = -1;
    }
    return result;
}

// The place of the lock goes to `handle`.
LockResult tryLock(const char* name, std::intptr_t& handle) noexcept {
    LockResult result = LockResult::kTimedOut;
    pthread_mutex_lock(&heldGuard);
    struct stat status {};
    const bool isThere = stat(name, &status) == 0;
    const bool mine = isThere && std::any_of(
                                     heldLocks.begin(), heldLocks.end(),
                                     [&](const Held& held) { return isHeld(held, status); });
    const auto free = std::find_if(heldLocks.begin(), heldLocks.end(),
                                   [](const Held& held) { return held.file < 0; });
    if (!mine && free != heldLocks.end()) {
        result = lockFile(*free, name);
        if (result == LockResult::kLocked) handle = free - heldLocks.begin();
    }
    pthread_mutex_unlock(&heldGuard);
    return result;
}

void forget(std::intptr_t handle, bool removed) noexcept {
    pthread_mutex_lock(&heldGuard);
    Held& held = heldLocks[static_cast<std::size_t>(handle)];
    // Removed before it is unlocked: who locks it next sees that it has no name any more.
    if (removed) unlink(held.name);
    close(held.file);
    held = Held();
    pthread_mutex_unlock(&heldGuard);
}

}  // namespace

void holdPathLocks() noexcept {
    pthread_mutex_lock(&heldGuard);
}

void releasePathLocks() noexcept {
    pthread_mutex_unlock(&heldGuard);
}

LockResult PathLock::acquire(const char* path, std::uint32_t timeoutMilliseconds) noexcept {
    release();
    constexpr char kName[] = "/.qelutility.lock";
    char name[PATH_MAX];
    if (!directoryOf(path, name) || std::strlen(name) + sizeof kName > sizeof name)
        return LockResult::kUnavailable;
    std::strcat(name, kName);
    return lockInTime(timeoutMilliseconds, [&] { return tryLock(name, handle_); });
}

void PathLock::release() noexcept {
    if (handle_ != kNone) forget(handle_, true);
    handle_ = kNone;
}

void PathLock::abandon() noexcept {
    if (handle_ != kNone) forget(handle_, false);
    handle_ = kNone;
}

#endif

}  // namespace qel::platform
