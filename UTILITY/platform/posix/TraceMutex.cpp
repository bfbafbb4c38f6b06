// A recursive mutex with a timed wait, over a plain mutex and a condition: the wait is measured by
// the monotonic clock, so that setting the wall clock back does not lengthen it.
#include <pthread.h>

#include <ctime>

#include "platform/Immortal.h"
#include "platform/Platform.h"

namespace qel::platform {

namespace {

class RecursiveTimedMutex {
  public:
    RecursiveTimedMutex() noexcept {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&released_, &attributes);
        pthread_condattr_destroy(&attributes);
    }

    bool lock(std::uint32_t milliseconds) noexcept {
        const pthread_t self = pthread_self();
        pthread_mutex_lock(&guard_);
        if (depth_ > 0 && pthread_equal(owner_, self) == 0) waitUntilFree(milliseconds);
        const bool mine = depth_ == 0 || pthread_equal(owner_, self) != 0;
        if (mine) {
            owner_ = self;
            ++depth_;
        }
        pthread_mutex_unlock(&guard_);
        return mine;
    }

    void unlock() noexcept {
        pthread_mutex_lock(&guard_);
        if (--depth_ == 0) pthread_cond_signal(&released_);
        pthread_mutex_unlock(&guard_);
    }

  private:
    void waitUntilFree(std::uint32_t milliseconds) noexcept {
        std::timespec end{};
        clock_gettime(CLOCK_MONOTONIC, &end);
        end.tv_sec += static_cast<std::time_t>(milliseconds / 1000);
        end.tv_nsec += static_cast<long>(milliseconds % 1000) * 1000000;
        if (end.tv_nsec >= 1000000000) {
            end.tv_nsec -= 1000000000;
            ++end.tv_sec;
        }
        while (depth_ > 0 && pthread_cond_timedwait(&released_, &guard_, &end) == 0) {
        }
    }

    pthread_mutex_t guard_ = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t released_{};
    pthread_t owner_{};
    unsigned depth_ = 0;
};

RecursiveTimedMutex& traceMutex() noexcept {
    static Immortal<RecursiveTimedMutex> mutex;
    return mutex.get();
}

}  // namespace

LockResult lockTraceMutex(std::uint32_t timeoutMilliseconds) noexcept {
    return traceMutex().lock(timeoutMilliseconds) ? LockResult::kLocked : LockResult::kTimedOut;
}

void unlockTraceMutex() noexcept {
    traceMutex().unlock();
}

}  // namespace qel::platform
