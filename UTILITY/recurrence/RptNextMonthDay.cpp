// Types of the repeat engine that name a day of the month: 3 (monthly), 5 (yearly) and 7 (in the
// selected months).
#include "recurrence/RptNextSteps.h"

namespace qel::rptnext {

int nextMonthDay(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate day{};
    if (!decode(baseDate(repeat, previous), day)) return failDate(kLineMonthDayDecode);
    if (previous != kNoPrevious) {
        day.month += repeat.interval;
        carryMonth(day);
        day.day = clampDay(repeat.dayOfMonth, day.month, day.year);
        return encode(day, date) ? QEL_OK : failDate(kLineMonthDayStepEncode);
    }
    do {
        day.day = clampDay(repeat.dayOfMonth, day.month, day.year);
        if (!encode(day, date)) return failDate(kLineMonthDayFirstEncode);
        ++day.month;
        carryMonth(day);
    } while (date < repeat.startDate);
    return QEL_OK;
}

int nextYearDate(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate day{};
    if (previous != kNoPrevious) {
        // The month is the previous occurrence's own, whatever the record says: a caller that moved
        // an occurrence keeps the month it was moved to.
        if (!decode(previous, day)) return failDate(kLineYearDateStepDecode);
        day.year += repeat.interval;
        day.day = clampDay(repeat.dayOfMonth, day.month, day.year);
        return encode(day, date) ? QEL_OK : failDate(kLineYearDateStepEncode);
    }
    if (!decode(repeat.startDate, day)) return failDate(kLineYearDateFirstDecode);
    day.month = repeat.month;
    do {
        day.day = clampDay(repeat.dayOfMonth, day.month, day.year);
        if (!encode(day, date)) return failDate(kLineYearDateFirstEncode);
        ++day.year;
    } while (date < repeat.startDate);
    return QEL_OK;
}

int nextDayOfMonths(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate day{};
    if (!decode(baseDate(repeat, previous), day)) return failDate(kLineMonthsDecode);
    const auto nextMonth = [&day] {
        ++day.month;
        carryMonth(day);
    };
    if (previous != kNoPrevious) nextMonth();
    for (;; nextMonth()) {
        // From kLastSearchedYear on every month counts, which ends the search when none is
        // selected.
        while (repeat.months[day.month - 1] == 0 && day.year < kLastSearchedYear) nextMonth();
        day.day = clampDay(repeat.dayOfMonth, day.month, day.year);
        if (!encode(day, date)) return failDate(kLineMonthsEncode);
        if (date >= repeat.startDate) return QEL_OK;
    }
}

}  // namespace qel::rptnext
