// Zones from the TZ and DAYLIGHT lines of vCalendar 1.0. Any thread.
#ifndef QEL_CALENDAR_ZONES_ZONEFROMVCALENDAR_H
#define QEL_CALENDAR_ZONES_ZONEFROMVCALENDAR_H

#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/lines/ContentLine.h"
#include "calendar/zones/Zone.h"

namespace qel::calendar {

// Null without a usable TZ. An invalid DAYLIGHT line is reported and ignored. Lines that follow one
// yearly rule mean that rule in all years, and so does a single line that begins and ends on one
// weekday; where the rule changes, the first and the last two years or more stand for those before
// and after them. Any others mean themselves alone. Local times of change are read on the clock
// before the change.
[[nodiscard]] ZonePtr zoneFromVCalendar(const ContentLine& tz,
                                        const std::vector<ContentLine>& daylight,
                                        const NoteSink& sink);

}  // namespace qel::calendar

#endif
