// A recursive mutex with a timed wait, over a plain mutex and a condition: the wait is measured by
// the monotonic clock, so that setting the wall clock back does not lengthen it.
#include "platform/TraceMutex.h"

#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>

#include "platform/Immortal.h"
#include "platform/posix/ForkHooks.h"

namespace qel::platform {

namespace {

class RecursiveTimedMutex {
  public:
    RecursiveTimedMutex() noexcept { initialise(); }

    void hold() noexcept { pthread_mutex_lock(&guard_); }
    void release() noexcept { pthread_mutex_unlock(&guard_); }
    // In a child: free of the threads that it lacks.
    void renew() noexcept {
        initialise();
        impatient_ = 0;
        if (pthread_equal(owner_, pthread_self()) == 0) depth_ = 0;
    }

    bool lock(std::uint32_t milliseconds) noexcept {
        const pthread_t self = pthread_self();
        pthread_mutex_lock(&guard_);
        const bool again = depth_ > 0 && pthread_equal(owner_, self) != 0;
        if (!again && (depth_ > 0 || impatient_ > 0)) wait(milliseconds);
        const bool mine = again || depth_ == 0;
        if (mine) {
            owner_ = self;
            ++depth_;
        }
        pthread_mutex_unlock(&guard_);
        return mine;
    }

    void unlock() noexcept {
        pthread_mutex_lock(&guard_);
        if (--depth_ == 0) {
            // Only the impatient may take it now; which of the waiting ones those are, each knows.
            impatient_ > 0 ? pthread_cond_broadcast(&released_) : pthread_cond_signal(&released_);
        }
        pthread_mutex_unlock(&guard_);
    }

  private:
    void initialise() noexcept {
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
#ifdef QEL_HAS_PTHREAD_CONDATTR_SETCLOCK
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
#endif
        pthread_cond_init(&released_, &attributes);
        pthread_condattr_destroy(&attributes);
    }

    // Whoever comes first takes a free mutex, which is fast; but one who has waited for a while
    // goes before all who have not, or a thread that traces without a pause would shut it out.
    void wait(std::uint32_t milliseconds) noexcept {
        const std::int64_t start = now();
        const std::int64_t end = start + std::int64_t{milliseconds} * 1000000;
        bool impatient = false;
        while (depth_ > 0 || (impatient_ > 0 && !impatient)) {
            if (!waitUntil(end)) break;
            if (!impatient && now() - start > kPatience) {
                impatient = true;
                ++impatient_;
            }
        }
        if (impatient) --impatient_;
    }

    // Waits for a release, or for nothing at all; false when the time is up.
    bool waitUntil(std::int64_t end) noexcept {
#ifdef QEL_HAS_PTHREAD_CONDATTR_SETCLOCK
        const std::timespec until = timeOf(end);
        return pthread_cond_timedwait(&released_, &guard_, &until) == 0;
#else
        // The wall clock may be set meanwhile, so it measures short waits alone.
        const std::int64_t left = end - now();
        if (left <= 0) return false;
        const std::timespec until = timeOf(now(CLOCK_REALTIME) + std::min(left, kShortWait));
        const int failure = pthread_cond_timedwait(&released_, &guard_, &until);
        return failure == 0 || failure == ETIMEDOUT;
#endif
    }

    static std::timespec timeOf(std::int64_t nanoseconds) noexcept {
        return {static_cast<std::time_t>(nanoseconds / 1000000000),
                static_cast<long>(nanoseconds % 1000000000)};
    }

    static std::int64_t now(clockid_t clock = CLOCK_MONOTONIC) noexcept {
        std::timespec time{};
        clock_gettime(clock, &time);
        return std::int64_t{time.tv_sec} * 1000000000 + time.tv_nsec;
    }

    static constexpr std::int64_t kPatience = 5000000;  // nanoseconds
#ifndef QEL_HAS_PTHREAD_CONDATTR_SETCLOCK
    static constexpr std::int64_t kShortWait = 10000000;
#endif

    pthread_mutex_t guard_ = PTHREAD_MUTEX_INITIALIZER;
    pthread_cond_t released_{};
    pthread_t owner_{};
    unsigned depth_ = 0;
    unsigned impatient_ = 0;  // how many of the waiting have waited for long
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

void holdTraceMutex() noexcept {
    traceMutex().hold();
}

void releaseTraceMutex() noexcept {
    traceMutex().release();
}

void renewTraceMutex() noexcept {
    traceMutex().renew();
    traceMutex().release();
}

}  // namespace qel::platform
