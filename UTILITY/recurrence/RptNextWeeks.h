// The repeat engine's search for the types 8 and 15, which have weekdays in weeks of the month. For
// the library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTWEEKS_H
#define QEL_RECURRENCE_RPTNEXTWEEKS_H

#include "QelUtility/RptNext.h"

namespace qel::recurrence {

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextInWeeks(const ZQTR_REPEAT& repeat, int previous, int& date);

}  // namespace qel::recurrence

#endif
