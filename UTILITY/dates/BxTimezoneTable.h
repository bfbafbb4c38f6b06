// The built-in table of 77 time zones: names, offsets and every change of offset from 1990 to 2010.
// The rules are the table's own and stay as they are, also where the world's have changed since.
// Constant data; callable from any thread.
#ifndef QEL_DATES_BXTIMEZONETABLE_H
#define QEL_DATES_BXTIMEZONETABLE_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace qel::dates {

constexpr int kZoneCount = 77;  // zone numbers are 1 to 77

// A date and time of day with an offset from UTC (local time = UTC + offset). Also what a date-time
// text becomes while it is converted.
struct ZoneTime {
    std::int32_t date = 0;  // eight digits as a number, 19900401
    std::uint8_t hour = 0;
    std::uint8_t minute = 0;
    std::int8_t offsetHours = 0;
    std::int8_t offsetMinutes = 0;  // of the same sign as the hours
};
static_assert(sizeof(ZoneTime) == 8);

// A change of a zone's offset. Both halves carry the offset that holds from then on, and the UTC
// half is the local half minus that offset.
struct ZoneChange {
    ZoneTime local;
    ZoneTime utc;
};
static_assert(sizeof(ZoneChange) == 16);

[[nodiscard]] constexpr bool isZoneNumber(int zone) noexcept {
    return zone >= 1 && zone <= kZoneCount;
}

// REQUIRES: isZoneNumber(zone)
[[nodiscard]] const char* zoneName(int zone) noexcept;

// The zone's changes in the order of time: 42, two for each year from 1990 to 2010, or a single one
// on 7 January 1990 at 0:00 for a zone without daylight saving.
// REQUIRES: isZoneNumber(zone)
[[nodiscard]] std::span<const ZoneChange> zoneChanges(int zone) noexcept;

}  // namespace qel::dates

#endif
