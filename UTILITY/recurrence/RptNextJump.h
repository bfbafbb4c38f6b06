// The first occurrence of a series at or after a date, found without the occurrences before it. For
// the library's own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTJUMP_H
#define QEL_RECURRENCE_RPTNEXTJUMP_H

#include "QelUtility/RptNext.h"

namespace qel::recurrence {

// The first occurrence at or after `date` that ZQRepeatNextDate reaches when it steps from the
// series' first one, into `found`; every step up to it succeeds and advances. The time does not
// grow with the distance.
//
// False, with `found` undefined and nothing reported, where the caller has to step: for a date not
// after the start or past 31 December 2499, a record that the engine refuses, fields that may take
// an occurrence out of its month or quarter, and past the last occurrence.
[[nodiscard]] bool jump(const ZQTR_REPEAT& repeat, int date, int& found);

}  // namespace qel::recurrence

#endif
