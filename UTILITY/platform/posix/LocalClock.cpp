// The local wall clock, from the C library's zone data.
#include <algorithm>
#include <ctime>

#include "platform/Platform.h"

namespace qel::platform {

LocalClock localClock() noexcept {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (localtime_r(&now, &local) == nullptr) return {};
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,        local.tm_min,     std::min(local.tm_sec, 59)};
}

}  // namespace qel::platform
