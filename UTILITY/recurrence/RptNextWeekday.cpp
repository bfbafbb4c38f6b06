// Types of the repeat engine that name the n-th weekday of a month: 4 (monthly) and 6 (yearly).
#include "recurrence/RptNextSteps.h"
#include "recurrence/unfold.h"

namespace qel::rptnext {

// The record's weekday of the month of `month`, in the record's week or, where the month has no
// such week, in its last one: week 5 is always the last, week 4 the fourth even of five. False when
// the month cannot be encoded.
bool weekdayOfMonthIn(const ZQTR_REPEAT& repeat, const CivilDate& month, int& date) {
    int last = 0;
    const int length = clampDay(31, month.month, month.year);
    if (!encode({month.year, month.month, length}, last)) return false;
    int back = weekdayOf(last) - repeat.dayOfWeek;
    if (back < 0) back += 7;
    date = last - back;
    // A weekday outside its range may lead out of the month.
    const bool inMonth = back >= 0 && back < length;
    const int week = inMonth ? (length - back - 1) / 7 + 1 : WeekOfMonth(date);
    if (repeat.weekOfMonth < week) date -= (week - repeat.weekOfMonth) * 7;
    return true;
}

int nextWeekdayOfMonth(const ZQTR_REPEAT& repeat, int previous, int& date) {
    const bool isMonthly = repeat.type == REPEAT_MONTHLY_WEEKDAY;
    CivilDate month{};
    if (!decode(baseDate(repeat, previous), month)) return failDate(kLineWeekdayDecode);
    if (previous != kNoPrevious) (isMonthly ? month.month : month.year) += repeat.interval;
    carryMonth(month);
    if (!isMonthly) month.month = repeat.month;
    do {
        if (!weekdayOfMonthIn(repeat, month, date)) return failDate(kLineWeekdayEncode);
        ++(isMonthly ? month.month : month.year);
        carryMonth(month);
    } while (date < repeat.startDate);
    return QEL_OK;
}

}  // namespace qel::rptnext
