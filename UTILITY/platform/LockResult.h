// The outcome of waiting for a lock.
#ifndef QEL_PLATFORM_LOCK_RESULT_H
#define QEL_PLATFORM_LOCK_RESULT_H

namespace qel::platform {

enum class LockResult {
    kLocked,
    kTimedOut,
    kUnavailable  // the mutex could not be created; a later call tries again
};

}  // namespace qel::platform

#endif
