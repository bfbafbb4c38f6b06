// What a fork asks of the locks of this folder. Each that is held is released, or renewed in the
// child.
#ifndef QEL_PLATFORM_POSIX_FORK_HOOKS_H
#define QEL_PLATFORM_POSIX_FORK_HOOKS_H

namespace qel::platform {

void holdTraceMutex() noexcept;
void releaseTraceMutex() noexcept;
void renewTraceMutex() noexcept;

void holdLocalClock() noexcept;
void releaseLocalClock() noexcept;

void holdLocks() noexcept;
void releaseLocks() noexcept;
void renewLocks() noexcept;

void holdPathLocks() noexcept;
void releasePathLocks() noexcept;

}  // namespace qel::platform

#endif
