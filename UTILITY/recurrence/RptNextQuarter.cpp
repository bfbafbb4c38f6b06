// Types of the repeat engine that count inside a quarter: 13 (a day) and 14 (the n-th or last
// weekday).
#include "recurrence/RptNextQuarter.h"

#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

constexpr int kMonths = 3;  // of a quarter

// Moves to the first day of the quarter that lies `quarters` quarters on.
void toQuarter(CivilDate& date, int quarters) {
    date = {date.year, (date.month - 1) / kMonths * kMonths + 1 + quarters * kMonths, 1};
    carryMonth(date);
}

int failQuarterDay() {
    return BxTrace_Error_S(kEngineSourceName, kLineQuarterDay, "Quarterly", QEL_REPEAT_ENGINE);
}

// The first of the record's weekday on or after `first`, then whole weeks on.
int weekdayFrom(const ZQTR_REPEAT& repeat, int first) {
    const int forward = repeat.dayOfWeek - dates::weekdayOfCode(first);
    return first + (forward >= 0 ? forward : forward + 7) + (repeat.weekOfMonth - 1) * 7;
}

// The last of the record's weekday before `end`.
int weekdayBefore(const ZQTR_REPEAT& repeat, int end) {
    const int back = dates::weekdayOfCode(end - 1) - repeat.dayOfWeek;
    return end - 1 - (back >= 0 ? back : back + 7);
}

}  // namespace

// The record's day of the quarter that begins on `first`. A day outside the quarter's months is
// taken back to the last day inside them; only the month's number counts. False when a date
// leaves the range.
bool dayOfQuarterIn(const ZQTR_REPEAT& repeat, const CivilDate& first, int& date) {
    CivilDate day{};
    if (!encode(first, date)) return false;
    date += repeat.dayOfMonth - 1;
    if (!decode(date, day)) return false;
    const int lastMonth = first.month + kMonths - 1;
    if (day.month >= first.month && day.month <= lastMonth) return true;
    const int year = day.month > lastMonth ? day.year : day.year - 1;
    return encode({year, lastMonth, dates::daysInMonth(year, lastMonth)}, date);
}

bool weekdayOfQuarterIn(const ZQTR_REPEAT& repeat, const CivilDate& first, int& date) {
    CivilDate edge = first;
    const bool isLast = repeat.weekOfMonth == kLastWeekOfQuarter;
    if (isLast) toQuarter(edge, 1);
    if (!encode(edge, date)) return false;
    date = isLast ? weekdayBefore(repeat, date) : weekdayFrom(repeat, date);
    return true;
}

int nextDayOfQuarter(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate quarter{};
    const bool isFirst = previous == kNoPrevious;
    if (!decode(isFirst ? repeat.startDate : previous, quarter)) return failQuarterDay();
    toQuarter(quarter, isFirst ? 0 : 1);
    if (!dayOfQuarterIn(repeat, quarter, date)) return failQuarterDay();
    while (isFirst && date < repeat.startDate) {
        toQuarter(quarter, 1);
        if (!dayOfQuarterIn(repeat, quarter, date)) return failQuarterDay();
    }
    return QEL_OK;
}

int nextWeekdayOfQuarter(const ZQTR_REPEAT& repeat, int previous, int& date) {
    CivilDate quarter{};
    const bool isFirst = previous == kNoPrevious;
    const bool isLast = repeat.weekOfMonth == kLastWeekOfQuarter;
    if (!decode(isFirst ? repeat.startDate : previous, quarter))
        return failDate(kLineQuarterDecode);
    toQuarter(quarter, isFirst ? 0 : 1);

    int edge = 0;
    if (isFirst) {
        // The start's own quarter, unless its occurrence is before the start. For the last weekday
        // the test is made three years on, where it always holds: the first occurrence may precede
        // the start.
        CivilDate probe = quarter;
        if (isLast) {
            toQuarter(probe, 1);
            probe.year += 3;
        }
        if (!encode(probe, edge))
            return failDate(isLast ? kLineQuarterFirstLastEncode : kLineQuarterFirstEncode);
        const int candidate = isLast ? weekdayBefore(repeat, edge) : weekdayFrom(repeat, edge);
        if (candidate < repeat.startDate) toQuarter(quarter, 1);
    }
    if (weekdayOfQuarterIn(repeat, quarter, date)) return QEL_OK;
    return failDate(isLast ? kLineQuarterLastEncode : kLineQuarterEncode);
}

}  // namespace qel::recurrence
