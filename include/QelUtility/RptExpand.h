/// @file
/// The expansion of a repeat record: a list of the days on which a series occurs inside a range,
/// cut down to a few occurrences around an anchor date on request. An open-ended series is never
/// expanded without bound. Every date is a code date: days since 1 January 1900. No state is kept,
/// so calls on different records and lists may run at the same time on any threads.
#ifndef QELUTILITY_RPTEXPAND_H
#define QELUTILITY_RPTEXPAND_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/RptNext.h"

/// A growable block of code dates in ascending order of their days. An entry of -d is the excluded
/// occurrence d. Set up by DateBlock_Init, freed by DateBlock_Free; copies share the data.
typedef struct DateBlock {
    int* data;         ///< the entries; null until something is reserved
    __int64 capacity;  ///< bytes at `data`
    __int64 maximum;   ///< bytes that `data` never exceeds
    __int64 step;      ///< bytes by which it grows
} DateBlock;

/// Result codes of the block.
enum DateBlockResult {
    DATEBLOCK_NO_MEMORY = 7004,  ///< memory is exhausted; the block is unchanged
    DATEBLOCK_BAD_STEP = 7008,   ///< the step exceeds the maximum
    DATEBLOCK_FULL = 7012        ///< more than the maximum was asked for; the block has grown to it
};

/// The step and maximum, in bytes, that suit a listing: 128 dates at a time, 25,000 at most.
enum DateBlockSize { DATEBLOCK_STEP = 512, DATEBLOCK_MAXIMUM = 100000 };

#ifdef __cplusplus
extern "C" {
#endif

/// Sets up an empty block and reserves `initialSize` bytes, none for 0. Whatever the block held
/// before is overwritten, not freed. Returns 0, DATEBLOCK_BAD_STEP, a code of DateBlock_Reserve, or
/// 2024 for a null block.
QELUTILITY_API int QELUTILITY_CALL DateBlock_Init(DateBlock* block, __int64 initialSize,
                                                  __int64 step, __int64 maximum);

/// Makes room for `bytes`: the first time max(bytes, step), later one step more where that
/// suffices, otherwise exactly `bytes`; never more than the maximum. Returns 0,
/// DATEBLOCK_NO_MEMORY, DATEBLOCK_FULL, or 2024 for a null block.
QELUTILITY_API int QELUTILITY_CALL DateBlock_Reserve(DateBlock* block, __int64 bytes);

/// Frees the data and leaves an empty block, which may be used again. A null block is ignored.
QELUTILITY_API void QELUTILITY_CALL DateBlock_Free(DateBlock* block);

/// Lists the occurrences of `repeat` from `from` to `to` (0 = 1 January 1950 and 31 December 2049)
/// and cuts the list to the `wanted` ones around `anchor`: those before the anchor go first. Fewer
/// are listed when the range holds fewer. `*valid` becomes the number of occurrences that are not
/// excluded, `*total` that of all entries of `list`, which has been set up by DateBlock_Init.
///
/// Returns 0, or one reported error: 2024 (`wanted` below 1, a null argument), 2013 (the type has
/// no occurrences to estimate), 4008 (a selection that yields no date, the engine failed, or a
/// series does not advance), 2001 (more than the block can hold).
///
/// Weekly on Tuesdays from 1 March 2005, three wanted around 10 March 2005 in March 2005:
/// 15, 22 and 29 March.
QELUTILITY_API int QELUTILITY_CALL Unfold_Repeat(ZQTR_REPEAT* repeat, int wanted, int anchor,
                                                 int from, int to, DateBlock* list, int* valid,
                                                 int* total);

/// 1 when the series has an occurrence from `from` to `to` that is not excluded, 0 when it has
/// none, otherwise the reported error of Unfold_Repeat. `anchor` is the date near which to look.
QELUTILITY_API int QELUTILITY_CALL Unfold_HasOccurrence(int from, int to, int anchor,
                                                        ZQTR_REPEAT* repeat);

/// Lists every day that an occurrence covers from `from` to `to`; each occurrence covers unitCount
/// days. At most limit + the number of exclusions + 200 entries; with a limit of -1 the exclusions'
/// number + 1. `*valid` and `*total` are those of Unfold_Repeat, and 0 on failure. endDate is
/// ignored. Returns 0, or one reported error: 2024 (a null argument), 4008, 2001 as above.
QELUTILITY_API int QELUTILITY_CALL Unfold_ListDates(ZQTR_REPEAT* repeat, int limit, int from,
                                                    int to, DateBlock* list, int* valid,
                                                    int* total);

/// The week of the month of a code date, 1 to 5: the days 1 to 7 are week 1. A code that names no
/// date gives 1.
QELUTILITY_API int QELUTILITY_CALL WeekOfMonth(int codeDate);

#ifdef __cplusplus
}
#endif

#endif
