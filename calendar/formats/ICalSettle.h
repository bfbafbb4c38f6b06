// What iCalendar demands of an entry before it can be written. Pure; any thread.
#ifndef QEL_CALENDAR_FORMATS_ICALSETTLE_H
#define QEL_CALENDAR_FORMATS_ICALSETTLE_H

#include "calendar/formats/SettledEntry.h"

namespace qel::calendar {

// Puts the entry in the order that iCalendar demands: an event has a start, ends come after starts,
// properties stand where they may and as often as they may. What has no place there becomes an
// X-VCAL- property.
void settleForICalendar(SettledEntry& settled);

}  // namespace qel::calendar

#endif
