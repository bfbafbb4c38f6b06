// The repeat engine's search for the types 10 and 11, which have a kind of day. For the
// library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTKIND_H
#define QEL_RECURRENCE_RPTNEXTKIND_H

#include "QelUtility/RptNext.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

// The occurrence in one month; false when a date leaves the range. REQUIRES: isKindOfDay
bool kindOfDayIn(const ZQTR_REPEAT& repeat, const dates::CivilDate& month, int& date);

// The occurrence after `previous` (kNoPrevious: the first one) into `date`; 0, or 4008 after one
// reported error. REQUIRES: a start date of 0 or later, an interval of at least 1
int nextKindOfDay(const ZQTR_REPEAT& repeat, int previous, int& date);

}  // namespace qel::recurrence

#endif
