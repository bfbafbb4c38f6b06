// Types of the repeat engine that name the n-th weekday of a month: 4 (monthly) and 6 (yearly).
#include "recurrence/RptNextWeekday.h"

#include "QelUtility/RptExpand.h"
#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

// The same for a weekday outside its range, which is counted back from the month's end and may lead
// out of the month.
int oddWeekdayOfMonth(const ZQTR_REPEAT& repeat, int first, int length) {
    const int last = first + length - 1;
    int back = dates::weekdayOfCode(last) - repeat.dayOfWeek;
    if (back < 0) back += 7;
    const int date = last - back;
    const int week = WeekOfMonth(date);
    return repeat.weekOfMonth < week ? date - (week - repeat.weekOfMonth) * 7 : date;
}

}  // namespace

// The record's weekday of the month of `month`, in the record's week or, where the month has no
// such week, in its last one: week 5 is always the last, week 4 the fourth even of five.
bool weekdayOfMonthIn(const ZQTR_REPEAT& repeat, const CivilDate& month, int& date) {
    int first = 0;
    if (!encode({month.year, month.month, 1}, first)) return false;
    const int length = dates::daysInMonth(month.year, month.month);
    if (repeat.dayOfWeek < 1 || repeat.dayOfWeek > 7) {
        date = oddWeekdayOfMonth(repeat, first, length);
        return true;
    }
    int forward =
        repeat.dayOfWeek - dates::weekdayOfCode(first);  // [0, 6], days to the first of them
    if (forward < 0) forward += 7;
    const int weeks = forward + 28 < length ? 5 : 4;
    date = first + forward + 7 * (std::min<int>(repeat.weekOfMonth, weeks) - 1);
    return true;
}

int nextWeekdayOfMonth(const ZQTR_REPEAT& repeat, int previous, int& date) {
    const bool isMonthly = repeat.type == REPEAT_MONTHLY_WEEKDAY;
    CivilDate month{};
    if (!decode(baseDate(repeat, previous), month)) return failDate(kLineWeekdayDecode);
    if (previous != kNoPrevious) (isMonthly ? month.month : month.year) += repeat.interval;
    carryMonth(month);
    if (!isMonthly) month.month = repeat.month;
    for (;;) {
        if (!weekdayOfMonthIn(repeat, month, date)) return failDate(kLineWeekdayEncode);
        if (date >= repeat.startDate) return QEL_OK;
        ++(isMonthly ? month.month : month.year);
        carryMonth(month);
    }
}

}  // namespace qel::recurrence
