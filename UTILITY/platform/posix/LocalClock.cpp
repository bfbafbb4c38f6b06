// The local wall clock, from the C library's zone data.
#include "platform/LocalClock.h"

#include <pthread.h>

#include <algorithm>
#include <ctime>

#include "platform/posix/ForkHooks.h"

namespace qel::platform {

namespace {

// The C library takes a time apart under a lock of its own, which it does not free in a child that
// was forked meanwhile. This one is held around it, and around a fork.
pthread_mutex_t zoneLock = PTHREAD_MUTEX_INITIALIZER;

bool takeApart(std::time_t second, std::tm& local) noexcept {
    pthread_mutex_lock(&zoneLock);
    const bool known = localtime_r(&second, &local) != nullptr;
    pthread_mutex_unlock(&zoneLock);
    return known;
}

}  // namespace

void holdLocalClock() noexcept {
    pthread_mutex_lock(&zoneLock);
}

void releaseLocalClock() noexcept {
    pthread_mutex_unlock(&zoneLock);
}

LocalClock localClock() noexcept {
    // A thread's last second is remembered: taking a time apart costs more than asking for it.
    thread_local std::time_t second = -1;
    thread_local std::tm local{};
    std::timespec now{};
    if (std::timespec_get(&now, TIME_UTC) != TIME_UTC) return {};
    if (now.tv_sec != second) {
        second = -1;
        if (!takeApart(now.tv_sec, local)) return {};
        second = now.tv_sec;
    }
    return {local.tm_year + 1900,
            local.tm_mon + 1,
            local.tm_mday,
            local.tm_hour,
            local.tm_min,
            std::min(local.tm_sec, 59),
            static_cast<int>(now.tv_nsec / 1000000)};
}

}  // namespace qel::platform
