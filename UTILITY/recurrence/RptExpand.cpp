// The list of dates and the block that it is written to.
#include "QelUtility/RptExpand.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "QelUtility/BxTrace.h"
#include "dates/CivilDate.h"
#include "recurrence/RptExpandRange.h"
#include "recurrence/RptNextJump.h"

namespace {

int fail(int line, int detail, int code) {
    return BxTrace_Error(qel::recurrence::kExpandSourceName, line, detail, code);
}

bool isExcluded(const ZQTR_REPEAT& repeat, int date) {
    if (repeat.exclusions == nullptr || repeat.exclusionCount <= 0) return false;
    const int* const end = repeat.exclusions + repeat.exclusionCount;
    return std::find(static_cast<const int*>(repeat.exclusions), end, date) != end;
}

// A list under construction.
struct Listing {
    int* entries;
    std::int64_t capacity;  // entries
    int total = 0;
    int valid = 0;
};

// Lists the days of the occurrence that begins on `start` and lie from `from` to `to`; true when
// the listing is complete.
bool listOccurrence(const ZQTR_REPEAT& repeat, int start, int from, int to, Listing& listing) {
    const std::int64_t end = std::int64_t{start} + repeat.unitCount;
    for (std::int64_t day = std::max(start, from); day < end; ++day) {
        if (day > to || listing.total >= listing.capacity) return true;
        const int date = static_cast<int>(day);
        const bool excluded = isExcluded(repeat, date);
        listing.entries[listing.total++] = excluded ? -date : date;
        if (!excluded) ++listing.valid;
        if (listing.total >= listing.capacity) return true;
    }
    return false;
}

// The first occurrence that covers a day from `from` on, or one before it, into `date`; false where
// the series is stepped from its start.
bool jumpToRange(const ZQTR_REPEAT& repeat, int from, int& date) {
    const std::int64_t first = std::int64_t{from} - repeat.unitCount + 1;
    if (first <= repeat.startDate) return false;
    return qel::recurrence::jump(
        repeat, static_cast<int>(std::min<std::int64_t>(first, qel::dates::kLastCodeDate)), date);
}

}  // namespace

int QELUTILITY_CALL DateBlock_Init(DateBlock* block, __int64 initialSize, __int64 step,
                                   __int64 maximum) {
    if (block == nullptr) return QEL_NOT_INITIALIZED;
    *block = {nullptr, 0, maximum, step};
    if (step > maximum) return DATEBLOCK_BAD_STEP;
    return initialSize > 0 ? DateBlock_Reserve(block, initialSize) : QEL_OK;
}

int QELUTILITY_CALL DateBlock_Reserve(DateBlock* block, __int64 bytes) {
    if (block == nullptr) return QEL_NOT_INITIALIZED;
    if (bytes <= block->capacity) return QEL_OK;
    // The capacity is at most the maximum, so the sum stays in range.
    const __int64 grown =
        block->data == nullptr
            ? block->step
            : block->capacity + std::min(block->step, block->maximum - block->capacity);
    const __int64 size = std::min(std::max(bytes, grown), block->maximum);
    if (size > block->capacity) {
        if (size > PTRDIFF_MAX) return DATEBLOCK_NO_MEMORY;
        void* const data = std::realloc(block->data, static_cast<std::size_t>(size));
        if (data == nullptr) return DATEBLOCK_NO_MEMORY;
        block->data = static_cast<int*>(data);
        block->capacity = size;
    }
    if (bytes > block->maximum) return DATEBLOCK_FULL;
    return QEL_OK;
}

void QELUTILITY_CALL DateBlock_Free(DateBlock* block) {
    if (block == nullptr) return;
    std::free(block->data);
    block->data = nullptr;
    block->capacity = 0;
}

int QELUTILITY_CALL WeekOfMonth(int codeDate) {
    if (!qel::dates::isCodeDate(codeDate)) return 1;
    return (qel::dates::decodeCivilDate(codeDate).day - 1) / 7 + 1;
}

int QELUTILITY_CALL Unfold_ListDates(ZQTR_REPEAT* repeat, int limit, int from, int to,
                                     DateBlock* list, int* valid, int* total) {
    if (repeat == nullptr || list == nullptr || valid == nullptr || total == nullptr)
        return fail(__LINE__, 0, QEL_NOT_INITIALIZED);
    *valid = 0;
    *total = 0;
    const int exclusions = std::max<int>(repeat->exclusionCount, 0);
    const std::int64_t capacity =
        limit == -1 ? exclusions + std::int64_t{1} : std::int64_t{limit} + exclusions + 200;
    if (const int result = DateBlock_Reserve(list, capacity * std::int64_t{sizeof(int)});
        result != QEL_OK)
        return fail(__LINE__, result, QEL_OUT_OF_MEMORY);
    Listing listing{list->data, capacity};
    int current = repeat->startDate;  // the single occurrence of a record of type 0
    int previous = -1;
    // Occurrences that end before the range are skipped.
    bool isFound = jumpToRange(*repeat, from, current);
    if (isFound) previous = current;
    for (bool isFirst = true;; isFirst = false, isFound = false) {
        const int before = current;
        if (!isFound) {
            const int result = ZQRepeatNextDate(repeat, &current, &previous);
            if (result != QEL_OK) return fail(__LINE__, result, result);
            if (!isFirst && current <= before) return fail(__LINE__, current, QEL_REPEAT_ENGINE);
        }
        // Past the last code date there is nothing to list, wherever the range ends.
        if (current > qel::dates::kLastCodeDate) break;
        if (listOccurrence(*repeat, current, from, to, listing)) break;
        if (repeat->type == REPEAT_NONE) break;
    }
    *valid = listing.valid;
    *total = listing.total;
    return QEL_OK;
}

int QELUTILITY_CALL Unfold_Repeat(ZQTR_REPEAT* repeat, int wanted, int anchor, int from, int to,
                                  DateBlock* list, int* valid, int* total) {
    if (repeat == nullptr || list == nullptr || valid == nullptr || total == nullptr)
        return fail(__LINE__, 0, QEL_NOT_INITIALIZED);
    *valid = 0;
    *total = 0;
    if (wanted < 1) return fail(__LINE__, wanted, QEL_NOT_INITIALIZED);
    int result = qel::recurrence::Unfold_ClampRange(repeat, wanted, anchor, &from, &to);
    if (result == QEL_OK) result = Unfold_ListDates(repeat, wanted, from, to, list, valid, total);
    if (result == QEL_OK && *valid > wanted)
        result = qel::recurrence::Unfold_TrimToCount(wanted, anchor, list, valid, total);
    return result;
}

int QELUTILITY_CALL Unfold_HasOccurrence(int from, int to, int anchor, ZQTR_REPEAT* repeat) {
    DateBlock list{nullptr, 0, DATEBLOCK_MAXIMUM, DATEBLOCK_STEP};
    int valid = 0;
    int total = 0;
    const int result = Unfold_Repeat(repeat, 1, anchor, from, to, &list, &valid, &total);
    DateBlock_Free(&list);
    if (result != QEL_OK) return fail(__LINE__, result, result);
    return valid > 0 ? 1 : 0;
}
