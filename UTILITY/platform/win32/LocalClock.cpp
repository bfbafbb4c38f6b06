// The local wall clock, from the system's time-zone settings.
#include "platform/LocalClock.h"

#include <windows.h>

namespace qel::platform {

LocalClock localClock() noexcept {
    SYSTEMTIME local{};
    GetLocalTime(&local);
    return {local.wYear,   local.wMonth,  local.wDay,         local.wHour,
            local.wMinute, local.wSecond, local.wMilliseconds};
}

}  // namespace qel::platform
