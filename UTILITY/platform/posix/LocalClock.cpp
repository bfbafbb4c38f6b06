// The local wall clock, from the C library's zone data.
#include <algorithm>
#include <ctime>

#include "platform/Platform.h"

namespace qel::platform {

LocalClock localClock() noexcept {
    std::timespec now{};
    std::tm local{};
    if (std::timespec_get(&now, TIME_UTC) != TIME_UTC) return {};
    if (localtime_r(&now.tv_sec, &local) == nullptr) return {};
    return {local.tm_year + 1900,
            local.tm_mon + 1,
            local.tm_mday,
            local.tm_hour,
            local.tm_min,
            std::min(local.tm_sec, 59),
            static_cast<int>(now.tv_nsec / 1000000)};
}

}  // namespace qel::platform
