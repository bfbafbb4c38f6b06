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

// TZ and DAYLIGHT, and the years for which they are right.
struct VCalendarZone {
    std::vector<ZoneLine> lines;
    int first;
    int last;
};
// For the years `first` to `last`: the lines that were read where they are right for those, else
// lines that also hold until `until`.
[[nodiscard]] VCalendarZone vCalendarZone(const Zone& zone, int first, int last, int until);
// True for a zone that has a name of its own, not one that was made up for TZ and DAYLIGHT.
[[nodiscard]] bool hasOwnName(const Zone& zone);

}  // namespace qel::calendar

#endif
