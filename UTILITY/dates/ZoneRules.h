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

// When daylight saving holds in one year.
struct DaylightYear {
    std::int64_t begin = 0;       // of the year
    std::int64_t end = 0;         // of the year: the first file time after it
    bool changes = false;         // the rules name both dates
    bool southern = false;        // the year begins and ends in daylight saving
    std::int64_t toStandard = 0;  // in the local time that ends
    std::int64_t toDaylight = 0;

    [[nodiscard]] bool has(std::int64_t fileTime) const {
        return fileTime >= begin && fileTime < end;
    }
    // Whether a time of the year lies in daylight saving. Both changes are taken `daylightOffset`
    // before their local time, so that the time is treated as if it were UTC.
    [[nodiscard]] bool isDaylight(std::int64_t fileTime, std::int64_t daylightOffset) const {
        // The daylight offset for both changes, the one to daylight saving too: what is converted
        // is compared as a time of the daylight half of the year.
        const bool beforeStandard = fileTime < toStandard - daylightOffset;
        const bool fromDaylight = fileTime >= toDaylight - daylightOffset;
        return changes &&
               (southern ? beforeStandard || fromDaylight : beforeStandard && fromDaylight);
    }
};

// The year of a file time by a zone's rules. REQUIRES: fileTime >= 0
[[nodiscard]] DaylightYear daylightYear(std::int64_t fileTime,
                                        const platform::TimeZoneDescription& zone);

// Whether a time lies in the daylight saving of a zone's rules; false for times up to 0.
[[nodiscard]] bool isDaylightTime(std::int64_t fileTime, const platform::TimeZoneDescription& zone,
                                  std::int64_t daylightOffset);

}  // namespace qel::dates

#endif
