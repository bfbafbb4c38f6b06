// The computer's current time zone.
#ifndef QEL_PLATFORM_TIME_ZONE_H
#define QEL_PLATFORM_TIME_ZONE_H

#include <cstdint>

namespace qel::platform {

// The moment of a yearly change of offset, in the wall-clock time that it ends. With `year` 0 a
// rule: the `day`-th (1 to 4, 5 = the last) `dayOfWeek` of `month`. With another year a date: `day`
// of `month`. Month 0: the zone has no such change.
struct ZoneChangeMoment {
    int year = 0;
    int month = 0;      // [0, 12]
    int dayOfWeek = 0;  // [0, 6], 0 = Sunday
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// A zone's offsets in minutes, UTC = local time + bias. In standard time the bias is
// `bias + standardBias`; daylight saving adds `daylightBias`, which is mostly -60.
struct TimeZoneDescription {
    int bias = 0;
    int standardBias = 0;
    int daylightBias = 0;
    ZoneChangeMoment standardDate;  // the change to standard time
    ZoneChangeMoment daylightDate;  // the change to daylight saving
};

// The computer's current zone with the rules that hold now. Where a rule cannot be put as a weekday
// of a month, both changes come as the dates of `year`. UTC when the system does not know. May read
// a file; callable from any thread that no other thread changes the environment under.
[[nodiscard]] TimeZoneDescription currentTimeZone(int year) noexcept;

// A number that changes, for the calling thread, whenever currentTimeZone might describe another
// zone than before. Costs little: it neither searches the environment nor opens a file each time. A
// zone that is set in the environment counts at once, a replaced zone file and the system's
// settings a few milliseconds later.
[[nodiscard]] std::uint32_t timeZoneVersion() noexcept;

// Whether the computer follows daylight saving: true unless its settings say otherwise.
[[nodiscard]] bool followsDaylightSaving() noexcept;

}  // namespace qel::platform

#endif
