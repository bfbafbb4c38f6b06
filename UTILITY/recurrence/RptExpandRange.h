// How far an expansion looks, and how its list is cut. For the library's own use, from any thread;
// nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTEXPANDRANGE_H
#define QEL_RECURRENCE_RPTEXPANDRANGE_H

#include <cstdint>

#include "QelUtility/RptExpand.h"

namespace qel::recurrence {

// The name in the expansion's error reports.
inline constexpr char kExpandSourceName[] = "unfold";

// Narrows *from and *to to the series' own dates and to as many days around `anchor` as `wanted`
// occurrences are likely to need. A record of type 0 keeps a `to` of 0 when it has no end date.
int Unfold_ClampRange(const ZQTR_REPEAT* repeat, int wanted, int anchor, int* from, int* to);

// The days that `count` occurrences are likely to take, into *days.
int Unfold_EstimateDays(const ZQTR_REPEAT* repeat, std::int64_t count, std::int64_t* days);

// Cuts a list of *valid occurrences to `wanted`: first away from before the anchor, then from the
// end. REQUIRES: wanted <= *valid, *total entries in `list`
int Unfold_TrimToCount(int wanted, int anchor, DateBlock* list, int* valid, int* total);

}  // namespace qel::recurrence

#endif
