// Types of the repeat engine that name a day of the month: 3 (monthly), 5 (yearly) and 7 (in the
// selected months).
#include "recurrence/RptNextMonthDay.h"

#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

void toNextMonth(CivilDate& month) {
    ++month.month;
    carryMonth(month);
}

}  // namespace

bool dayOfMonthsFrom(const ZQTR_REPEAT& repeat, CivilDate month, int from, int& date) {
    for (;; toNextMonth(month)) {
        // From kLastSearchedYear on every month counts, which ends the search when none is
        // selected.
        while (repeat.months[month.month - 1] == 0 && month.year < kLastSearchedYear)
            toNextMonth(month);
        if (!dayOfMonthIn(repeat, month, date)) return false;
        if (date >= from) return true;
    }
}

int nextMonthDay(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate day{};
    if (!decode(baseDate(repeat, previous), day)) return failDate(kLineMonthDayDecode);
    if (previous != kNoPrevious) {
        day.month += repeat.interval;
        carryMonth(day);
        return dayOfMonthIn(repeat, day, date) ? QEL_OK : failDate(kLineMonthDayStepEncode);
    }
    do {
        if (!dayOfMonthIn(repeat, day, date)) return failDate(kLineMonthDayFirstEncode);
        toNextMonth(day);
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
        return dayOfMonthIn(repeat, day, date) ? QEL_OK : failDate(kLineYearDateStepEncode);
    }
    if (!decode(repeat.startDate, day)) return failDate(kLineYearDateFirstDecode);
    day.month = repeat.month;
    do {
        if (!dayOfMonthIn(repeat, day, date)) return failDate(kLineYearDateFirstEncode);
        ++day.year;
    } while (date < repeat.startDate);
    return QEL_OK;
}

int nextDayOfMonths(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate day{};
    if (!decode(baseDate(repeat, previous), day)) return failDate(kLineMonthsDecode);
    if (previous != kNoPrevious) toNextMonth(day);
    return dayOfMonthsFrom(repeat, day, repeat.startDate, date) ? QEL_OK
                                                                : failDate(kLineMonthsEncode);
}

}  // namespace qel::recurrence
