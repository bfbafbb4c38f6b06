// The repeat engine's search for the types 3, 5 and 7, which have a day of the month. For the
// library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTMONTHDAY_H
#define QEL_RECURRENCE_RPTNEXTMONTHDAY_H

#include "QelUtility/RptNext.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

// The first occurrence of type 7 at or after `from`, in `month` or later; false past the range.
bool dayOfMonthsFrom(const ZQTR_REPEAT& repeat, dates::CivilDate month, int from, int& date);

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextMonthDay(const ZQTR_REPEAT& repeat, int previous, int& date);     // type 3
int nextYearDate(const ZQTR_REPEAT& repeat, int previous, int& date);     // type 5
int nextDayOfMonths(const ZQTR_REPEAT& repeat, int previous, int& date);  // type 7

}  // namespace qel::recurrence

#endif
