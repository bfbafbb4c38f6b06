// Zones from VTIMEZONE components (RFC 5545 section 3.6.5). Any thread.
#ifndef QEL_CALENDAR_ZONES_ZONEFROMVTIMEZONE_H
#define QEL_CALENDAR_ZONES_ZONEFROMVTIMEZONE_H

#include "calendar/base/Notes.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/zones/Zone.h"

namespace qel::calendar {

// Null when it has no TZID, or no observance with an offset.
[[nodiscard]] ZonePtr zoneFromVTimezone(const Component& component, const NoteSink& sink);

}  // namespace qel::calendar

#endif
