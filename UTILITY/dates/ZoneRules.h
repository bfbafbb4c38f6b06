// The arithmetic of a zone with yearly rules, on Win32 file times: signed counts of 100 nanoseconds
// since 1 January 1601. Without state, the current zone passed in; callable from any thread.
#ifndef QEL_DATES_ZONERULES_H
#define QEL_DATES_ZONERULES_H

#include <cstdint>

#include "platform/TimeZone.h"

namespace qel::dates {

constexpr std::int64_t kFileTimePerSecond = 10'000'000;
constexpr std::int64_t kFileTimePerMinute = 60 * kFileTimePerSecond;
constexpr std::int64_t kFileTimeOf1900 = 94'354'848'000'000'000;

struct FileTimeFields {
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

// The calendar fields of a file time.
// REQUIRES: fileTime >= 0
[[nodiscard]] FileTimeFields splitFileTime(std::int64_t fileTime);

// A zone's offsets from UTC (local time = UTC + offset), in file-time units.
struct ZoneOffsets {
    std::int64_t standard;
    std::int64_t daylight;
    bool daylightEnabled;
};

// The offsets of a description; both are the standard one when the zone has no daylight saving or
// it is not followed. Offsets are kept to 16 bits of minutes.
[[nodiscard]] ZoneOffsets zoneOffsets(const platform::TimeZoneDescription& zone,
                                      bool followsDaylight);

// Whether a time lies in the daylight saving of a zone's rules. Both changes are taken
// `daylightOffset` before their local time, so that the time is treated as if it were UTC. False
// for times up to 0, and for rules that name no date.
[[nodiscard]] bool isDaylightTime(std::int64_t fileTime, const platform::TimeZoneDescription& zone,
                                  std::int64_t daylightOffset);

}  // namespace qel::dates

#endif
