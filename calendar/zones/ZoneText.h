// Zones as the two formats write them: VTIMEZONE, and TZ with DAYLIGHT. Any thread.
#ifndef QEL_CALENDAR_ZONES_ZONETEXT_H
#define QEL_CALENDAR_ZONES_ZONETEXT_H

#include <string>
#include <vector>

#include "calendar/zones/Zone.h"

namespace qel::calendar {

// VTIMEZONE as content lines, BEGIN and END included, not folded: what was read, or what is right
// from `year` on.
[[nodiscard]] std::vector<std::string> vTimezoneLines(const Zone& zone, int year);

// True when there is nothing but its changes to write a VTIMEZONE from.
[[nodiscard]] bool isDescribedByChanges(const Zone& zone);

// TZ and DAYLIGHT for the years from..to. Lines that were read are valid for all years.
[[nodiscard]] std::vector<ZoneLine> vCalendarZoneLines(const Zone& zone, int from, int to);
// True when vCalendarZoneLines gives the same for all years.
[[nodiscard]] bool sameInAllYears(const Zone& zone);

}  // namespace qel::calendar

#endif
