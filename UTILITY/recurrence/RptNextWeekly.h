// The repeat engine's search for the types 1, 2 and 12, which step by days and weeks. For the
// library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTWEEKLY_H
#define QEL_RECURRENCE_RPTNEXTWEEKLY_H

#include "QelUtility/RptNext.h"

namespace qel::recurrence {

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextDaily(const ZQTR_REPEAT& repeat, int previous, int& date);       // type 1
int nextWeekly(const ZQTR_REPEAT& repeat, int previous, int& date);      // type 2
int nextWeeklyDays(const ZQTR_REPEAT& repeat, int previous, int& date);  // type 12

}  // namespace qel::recurrence

#endif
