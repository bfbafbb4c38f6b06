// What iCalendar demands of an entry before it can be written. Pure; any thread.
#ifndef QEL_CALENDAR_FORMATS_ICALSETTLE_H
#define QEL_CALENDAR_FORMATS_ICALSETTLE_H

#include "calendar/formats/SettledEntry.h"

namespace qel::calendar {

// `entry` as iCalendar allows it: an event has a start, ends come after starts, properties stand
// where they may and as often as they may. What has no place there becomes an X-VCAL- property.
[[nodiscard]] SettledEntry settledForICalendar(const Entry& entry);

}  // namespace qel::calendar

#endif
