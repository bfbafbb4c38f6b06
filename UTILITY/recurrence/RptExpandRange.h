// Lists the days on which a series occurs inside a range: every occurrence as a code date, excluded
// ones kept but marked, and the list cut down to a few occurrences around an anchor date on
// request. An open-ended series is never expanded without bound. For the library's own use; no
// state is kept, so calls on different records and lists may run at the same time.
#ifndef QEL_RECURRENCE_UNFOLD_H
#define QEL_RECURRENCE_UNFOLD_H

#include <cstdint>

#include "QelUtility/RptNext.h"

// The name in error reports of the sources that list occurrences.
inline constexpr char kUnfoldSourceName[] = "unfold";

// A growable block of code dates in ascending order. An entry of -d is the excluded occurrence d.
// Freed by DateBlock_Free alone; copies share the data.
struct DateBlock {
    int* data;
    std::int64_t capacity;  // bytes at `data`
    std::int64_t maximum;   // bytes that `data` never exceeds
    std::int64_t step;      // bytes by which it grows
};

// Result codes of the block.
enum DateBlockResult {
    DATEBLOCK_BAD_STEP = 7008,   // the step exceeds the maximum
    DATEBLOCK_NO_MEMORY = 7004,  // the block stands as it was
    DATEBLOCK_FULL = 7012        // more than the maximum was asked for; the block has grown to it
};

// Sets up an empty block and reserves `initialSize` bytes, none for 0. Whatever the block held
// before is overwritten, not freed.
int DateBlock_Init(DateBlock* block, std::int64_t initialSize, std::int64_t step,
                   std::int64_t maximum);

// Makes room for `bytes`: the first time max(bytes, step), later one step more where that suffices,
// otherwise exactly `bytes`; never more than the maximum.
int DateBlock_Reserve(DateBlock* block, std::int64_t bytes);

void DateBlock_Free(DateBlock* block);

// The block that the listing uses.
inline constexpr std::int64_t kDateBlockStep = 512;
inline constexpr std::int64_t kDateBlockMaximum = 100000;

// Lists the occurrences of `repeat` from `from` to `to` (0 = 1 January 1950 and 31 December 2049)
// and cuts the list to the `wanted` ones around `anchor`: those before the anchor go first. Fewer
// are listed when the range holds fewer. *valid becomes the number of occurrences that are not
// excluded, *total that of all entries.
//
// Returns 0, or one reported error: 2024 (`wanted` below 1, a null argument), 2013 (the type has no
// occurrences to estimate), 4008 (a selection that yields no date, or the engine failed, or a
// series does not advance), 2001 (more than the block can hold).
int Unfold_Repeat(ZQTR_REPEAT* repeat, int wanted, int anchor, int from, int to, DateBlock* list,
                  int* valid, int* total);

// 1 when the series has an occurrence in the range that is not excluded, 0 when it has none,
// otherwise the error code of Unfold_Repeat.
int Unfold_HasOccurrence(int from, int to, int anchor, ZQTR_REPEAT* repeat);

// Lists every occurrence from `from` to `to`, at most limit + the number of exclusions + 200; with
// a limit of -1 the exclusions' number + 1. Each occurrence covers unitCount days. On failure
// *valid and *total are 0.
int Unfold_ListDates(ZQTR_REPEAT* repeat, int limit, int from, int to, DateBlock* list, int* valid,
                     int* total);

// Narrows *from and *to to the series' own dates and to as many days around `anchor` as `wanted`
// occurrences are likely to need. A record of type 0 keeps a `to` of 0 when it has no end date.
int Unfold_ClampRange(const ZQTR_REPEAT* repeat, int wanted, int anchor, int* from, int* to);

// The days that `count` occurrences are likely to take, into *days.
int Unfold_EstimateDays(const ZQTR_REPEAT* repeat, std::int64_t count, std::int64_t* days);

// Cuts a list of *valid occurrences to `wanted`: first away from before the anchor, then from the
// end. REQUIRES: wanted <= *valid, *total entries in `list`
int Unfold_TrimToCount(int wanted, int anchor, DateBlock* list, int* valid, int* total);

// The week of the month of a code date, 1 to 5: days 1 to 7 are week 1. A code that names no date
// counts as a first day.
int WeekOfMonth(int codeDate);

#endif
