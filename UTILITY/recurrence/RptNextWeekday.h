// The repeat engine's search for the types 4 and 6, which have a weekday of the month. For the
// library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTWEEKDAY_H
#define QEL_RECURRENCE_RPTNEXTWEEKDAY_H

#include "QelUtility/RptNext.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

// The occurrence in one month; false when a date leaves the range.
bool weekdayOfMonthIn(const ZQTR_REPEAT& repeat, const dates::CivilDate& month, int& date);

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextWeekdayOfMonth(const ZQTR_REPEAT& repeat, int previous, int& date);

}  // namespace qel::recurrence

#endif
