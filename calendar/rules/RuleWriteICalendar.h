// Writes rules for iCalendar. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEWRITEICALENDAR_H
#define QEL_CALENDAR_RULES_RULEWRITEICALENDAR_H

#include <string>

#include "calendar/rules/Rule.h"

namespace qel::calendar {

// An RRULE value (RFC 5545 section 3.3.10): "FREQ=MONTHLY;COUNT=10;INTERVAL=2;BYDAY=1SU,-1SU".
// UNTIL is written as `rule` has it, WKST only where it affects the dates.
[[nodiscard]] std::string iCalendarText(const Rule& rule);

}  // namespace qel::calendar

#endif
