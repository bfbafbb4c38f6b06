// The current time zone from the Win32 settings.
#include "platform/TimeZone.h"

#include <windows.h>

namespace qel::platform {

namespace {

ZoneChangeMoment momentOf(const SYSTEMTIME& time) {
    return {time.wYear, time.wMonth,  time.wDayOfWeek, time.wDay,
            time.wHour, time.wMinute, time.wSecond,    time.wMilliseconds};
}

}  // namespace

TimeZoneDescription currentTimeZone(int /*year*/) noexcept {
    TIME_ZONE_INFORMATION info{};
    if (GetTimeZoneInformation(&info) == TIME_ZONE_ID_INVALID) return {};
    TimeZoneDescription zone;
    zone.bias = static_cast<int>(info.Bias);
    zone.standardBias = static_cast<int>(info.StandardBias);
    zone.daylightBias = static_cast<int>(info.DaylightBias);
    zone.standardDate = momentOf(info.StandardDate);
    zone.daylightDate = momentOf(info.DaylightDate);
    return zone;
}

std::uint32_t timeZoneVersion() noexcept {
    // The settings are asked for once in a tick of the clock, every 16 milliseconds.
    return GetTickCount();
}

bool followsDaylightSaving() noexcept {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "System\\CurrentControlSet\\control\\TimezoneInformation",
                      0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
        return true;
    DWORD type = 0;
    DWORD disabled = 0;
    DWORD size = sizeof disabled;
    const LSTATUS status = RegQueryValueExA(key, "DisableAutoDaylightTimeSet", nullptr, &type,
                                            reinterpret_cast<BYTE*>(&disabled), &size);
    RegCloseKey(key);
    return status != ERROR_SUCCESS || type != REG_DWORD || disabled == 0;
}

}  // namespace qel::platform
