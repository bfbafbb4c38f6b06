// The rule text of a time zone, "CET-1CEST,M3.5.0,M10.5.0/3" (POSIX.1, the TZ variable, with the
// wider hours of RFC 8536 3.3.1), as the platform's zone description. Callable from any thread.
#ifndef QEL_PLATFORM_POSIX_POSIXZONERULE_H
#define QEL_PLATFORM_POSIX_POSIXZONERULE_H

#include <string_view>

#include "platform/TimeZone.h"

namespace qel::platform {

// Fills `zone` and returns true; false, with `zone` untouched, for a text that is not a whole rule.
// A pair of rules that month, week, weekday and an hour of the day can express is given so: the
// first Sunday of November at 2:00 is month 11, day 1, dayOfWeek 0. Any other ("the day before the
// last Sunday, 23:00", day 100 of the year) is given as its two dates in `year`. A zone whose
// standard time is the later one (Dublin) is turned around, so that daylight saving is always the
// later time.
[[nodiscard]] bool parsePosixZoneRule(std::string_view text, int year, TimeZoneDescription& zone);

}  // namespace qel::platform

#endif
