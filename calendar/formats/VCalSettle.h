// What vCalendar 1.0 demands of an entry before it can be written. Pure; any thread.
#ifndef QEL_CALENDAR_FORMATS_VCALSETTLE_H
#define QEL_CALENDAR_FORMATS_VCALSETTLE_H

#include "calendar/formats/SettledEntry.h"

namespace qel::calendar {

// Makes of the entry what vCalendar 1.0 can express: a duration becomes an end; a rule that the
// format cannot express becomes a list of dates, or an X-ICAL- property where it has too many;
// alarms that the format cannot express are removed.
void settleForVCalendar(SettledEntry& settled);

}  // namespace qel::calendar

#endif
