// The local wall clock, from the C library's zone data.
#include "platform/LocalClock.h"

#include <algorithm>
#include <ctime>

namespace qel::platform {

LocalClock localClock() noexcept {
    // A thread's last second is remembered: taking a time apart costs more than asking for it.
    thread_local std::time_t second = -1;
    thread_local std::tm local{};
    std::timespec now{};
    if (std::timespec_get(&now, TIME_UTC) != TIME_UTC) return {};
    if (now.tv_sec != second) {
        second = -1;
        if (localtime_r(&now.tv_sec, &local) == nullptr) return {};
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
