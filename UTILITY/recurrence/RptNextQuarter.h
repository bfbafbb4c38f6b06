// The repeat engine's search for the types 13 and 14, which have a day or a weekday of the quarter.
// For the library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTQUARTER_H
#define QEL_RECURRENCE_RPTNEXTQUARTER_H

#include "QelUtility/RptNext.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

// The occurrence in the quarter that begins with the month `first`; false when a date leaves the
// range.
bool dayOfQuarterIn(const ZQTR_REPEAT& repeat, const dates::CivilDate& first, int& date);      // 13
bool weekdayOfQuarterIn(const ZQTR_REPEAT& repeat, const dates::CivilDate& first, int& date);  // 14

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextDayOfQuarter(const ZQTR_REPEAT& repeat, int previous, int& date);      // type 13
int nextWeekdayOfQuarter(const ZQTR_REPEAT& repeat, int previous, int& date);  // type 14

}  // namespace qel::recurrence

#endif
