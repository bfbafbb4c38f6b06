// The jump to a date: by division where a series is a progression of days or weeks, else by the
// period that the date lies in, since a series by months, quarters or years has one occurrence in
// each of its periods.
#include "recurrence/RptNextJump.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "recurrence/RptNextKind.h"
#include "recurrence/RptNextMonthDay.h"
#include "recurrence/RptNextQuarter.h"
#include "recurrence/RptNextSteps.h"
#include "recurrence/RptNextWeekday.h"
#include "recurrence/RptNextWeekly.h"
#include "recurrence/RptNextWeeks.h"

namespace qel::recurrence {

namespace {

// The last day on which the types 8 and 15 search; after it they give every day.
constexpr int kLastSearchedDay = dates::encodeCivilDate({kLastSearchedYear, 12, 31});
// The last weekday of the start's quarter is tried three years on, which must be in the range.
constexpr int kLatestQuarterStart = dates::encodeCivilDate({dates::kLastYear - 4, 12, 31});
// A day of the quarter up to this one stays in its quarter's year.
constexpr int kDaysOfYear = 365;

constexpr bool isBetween(int low, int value, int high) {
    return low <= value && value <= high;
}

constexpr int roundUp(int value, int unit) {
    return (value + unit - 1) / unit * unit;
}

// --- Days and weeks ------------------------------------------------------------------------------

// REQUIRES: first >= 0
bool jumpDays(int first, int step, int date, int& found) {
    found = first + roundUp(std::max(date - first, 0), step);
    return true;
}

// Weeks run from Sunday to Saturday; the first occurrence is in the start's week or the next one.
bool jumpWeeklyDays(const ZQTR_REPEAT& repeat, int date, int& found) {
    unsigned selected = 0;  // bit 0 = Sunday
    for (int i = 0; i < 7; ++i) selected |= unsigned{repeat.days[i] != 0} << i;
    if (selected == 0) return false;
    const int start = repeat.startDate + 1;  // day 0 of this count is a Sunday, in week 0
    const int from = date + 1;
    const int first = start / 7 + (selected >> start % 7 == 0 ? 1 : 0);
    int week = first + roundUp(std::max(from / 7 - first, 0), repeat.interval);
    unsigned inWeek = selected;
    if (week == from / 7) {
        inWeek &= ~0U << from % 7;
        if (inWeek == 0) {
            week += repeat.interval;
            inWeek = selected;
        }
    }
    found = week * 7 + std::countr_zero(inWeek) - 1;
    return true;
}

// --- Months, quarters and years ------------------------------------------------------------------

// How a series by months falls into periods. Months are counted from January of the year 0.
struct Periods {
    int length;  // months of a period
    int step;    // months from one period of the series to the next
    bool (*occurrenceIn)(const ZQTR_REPEAT& repeat, const CivilDate& month, int& date);
};

constexpr CivilDate monthOf(int count) {
    return {count / 12, count % 12 + 1, 1};
}

// The month that identifies the period of a date.
int periodOf(const ZQTR_REPEAT& repeat, const Periods& periods, const CivilDate& date) {
    const int year = date.year * 12;
    if (periods.length == 12) return year + repeat.month - 1;
    return year + (date.month - 1) / periods.length * periods.length;
}

// REQUIRES: each period's occurrence lies in it
bool jumpPeriods(const ZQTR_REPEAT& repeat, const Periods& periods, int date, int& found) {
    int period = periodOf(repeat, periods, dates::decodeCivilDate(date));
    if (periods.step != periods.length) {
        // The series skips periods: count them from the first occurrence's.
        int first = periodOf(repeat, periods, dates::decodeCivilDate(repeat.startDate));
        if (!periods.occurrenceIn(repeat, monthOf(first), found)) return false;
        if (found < repeat.startDate) first += periods.length;
        period = first + roundUp(std::max(period - first, 0), periods.step);
    }
    if (!periods.occurrenceIn(repeat, monthOf(period), found)) return false;
    return found >= date || periods.occurrenceIn(repeat, monthOf(period + periods.step), found);
}

// --- Selected weeks ------------------------------------------------------------------------------

// The month that type 15 looks at after `month`: from December it goes a year further.
constexpr int monthAfter(int month, int interval) {
    return month + interval + (month % 12 == 11 ? 12 : 0);
}

// The last month up to `until` that type 15 looks at, from `month` on. The months of the year come
// again after at most twelve, so that whole rounds are skipped by a division.
int lastMonthUntil(int month, int interval, int until) {
    const int divisor = std::gcd(interval, 12);
    const bool meetsDecember = (11 - month % 12) % divisor == 0;
    const int round = interval * (12 / divisor) + (meetsDecember ? 12 : 0);
    month += (until - month) / round * round;
    while (monthAfter(month, interval) <= until) month = monthAfter(month, interval);
    return month;
}

// A step from the day before `date`, or from the end of the last month examined before it: a step
// depends on the month that it starts in.
bool jumpWeeksMonthly(const ZQTR_REPEAT& repeat, int date, int& found) {
    if (repeat.startDate > kLastSearchedDay) {
        found = date;
        return true;
    }
    const int searched = std::min(date, kLastSearchedDay);
    const int before = std::max(searched - 1, +repeat.startDate);
    const CivilDate start = dates::decodeCivilDate(repeat.startDate);
    const CivilDate until = dates::decodeCivilDate(before);
    const CivilDate month = monthOf(lastMonthUntil(
        start.year * 12 + start.month - 1, repeat.interval, until.year * 12 + until.month - 1));
    const int monthEnd = dates::encodeCivilDate(
        {month.year, month.month, dates::daysInMonth(month.year, month.month)});
    if (nextInWeeks(repeat, std::min(before, monthEnd), found) != QEL_OK) return false;
    if (date == searched) return true;
    if (found <= kLastSearchedDay && nextInWeeks(repeat, found, found) != QEL_OK) return false;
    found = std::max(found, date);
    return true;
}

}  // namespace

bool jump(const ZQTR_REPEAT& repeat, int date, int& found) {
    if (!isValid(repeat) || date <= repeat.startDate || date > dates::kLastCodeDate) return false;
    const int interval = repeat.interval;
    const bool hasMonth = isBetween(1, repeat.month, 12);
    const bool hasWeekday = isBetween(1, repeat.dayOfWeek, 7);
    switch (repeat.type) {
        case REPEAT_DAILY:
            return jumpDays(repeat.startDate, interval, date, found);
        case REPEAT_WEEKLY: {
            int first = 0;
            return hasWeekday && nextWeekly(repeat, kNoPrevious, first) == QEL_OK &&
                   jumpDays(first, 7 * interval, date, found);
        }
        case REPEAT_WEEKLY_DAYS:
            return jumpWeeklyDays(repeat, date, found);
        case REPEAT_MONTHLY_DAY:
            return repeat.dayOfMonth >= 1 &&
                   jumpPeriods(repeat, {1, interval, dayOfMonthIn}, date, found);
        case REPEAT_YEARLY_DATE:
            return repeat.dayOfMonth >= 1 && hasMonth &&
                   jumpPeriods(repeat, {12, 12 * interval, dayOfMonthIn}, date, found);
        case REPEAT_DAY_OF_MONTHS:
            return repeat.dayOfMonth >= 1 &&
                   dayOfMonthsFrom(repeat, dates::decodeCivilDate(date), date, found);
        case REPEAT_MONTHLY_WEEKDAY:
            return hasWeekday && repeat.weekOfMonth >= 1 &&
                   jumpPeriods(repeat, {1, interval, weekdayOfMonthIn}, date, found);
        case REPEAT_YEARLY_WEEKDAY:
            return hasWeekday && repeat.weekOfMonth >= 1 && hasMonth &&
                   jumpPeriods(repeat, {12, 12 * interval, weekdayOfMonthIn}, date, found);
        case REPEAT_MONTHLY_KIND:
            return isKindOfDay(repeat) &&
                   jumpPeriods(repeat, {1, interval, kindOfDayIn}, date, found);
        case REPEAT_YEARLY_KIND:
            return isKindOfDay(repeat) && hasMonth &&
                   jumpPeriods(repeat, {12, 12 * interval, kindOfDayIn}, date, found);
        case REPEAT_QUARTERLY_DAY:
            return isBetween(1, repeat.dayOfMonth, kDaysOfYear) &&
                   jumpPeriods(repeat, {3, 3, dayOfQuarterIn}, date, found);
        case REPEAT_QUARTERLY_WEEKDAY:
            // The thirteenth weekday may lie in the next quarter.
            return hasWeekday && repeat.startDate <= kLatestQuarterStart &&
                   (isBetween(1, repeat.weekOfMonth, 12) ||
                    repeat.weekOfMonth == kLastWeekOfQuarter) &&
                   jumpPeriods(repeat, {3, 3, weekdayOfQuarterIn}, date, found);
        case REPEAT_WEEKS_OF_MONTHS:
            return nextInWeeks(repeat, date - 1, found) == QEL_OK;
        case REPEAT_WEEKS_MONTHLY:
            return jumpWeeksMonthly(repeat, date, found);
        default:
            return false;
    }
}

}  // namespace qel::recurrence
