#include "recurrence/DayModel.h"

#include <algorithm>
#include <vector>

namespace qel::test {

namespace {

constexpr int kLastYear = 2085;

int lengthOf(int month, int year) {
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    if (month == 2) return leap ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Counts what can only be known at the end of a month or quarter, backwards.
void markLast(std::vector<ModelDay>& days) {
    int month = -1;
    int quarter = -1;
    bool seen[8] = {};
    bool seenInQuarter[8] = {};
    bool kinds[3] = {};
    for (auto day = days.rbegin(); day != days.rend(); ++day) {
        day->lastOfMonth = day->monthIndex != month;
        day->lastOfQuarter = day->quarter != quarter;
        if (day->lastOfMonth) std::fill(std::begin(seen), std::end(seen), false);
        if (day->lastOfMonth) std::fill(std::begin(kinds), std::end(kinds), false);
        if (day->lastOfQuarter)
            std::fill(std::begin(seenInQuarter), std::end(seenInQuarter), false);
        month = day->monthIndex;
        quarter = day->quarter;
        day->last = !seen[day->weekday];
        seen[day->weekday] = true;
        day->lastWeekdayOfQuarter = !seenInQuarter[day->weekday];
        seenInQuarter[day->weekday] = true;
        for (int kind = 0; kind < 3; ++kind) {
            day->kindLast[kind] = day->kindNth[kind] != 0 && !kinds[kind];
            kinds[kind] = kinds[kind] || day->kindNth[kind] != 0;
        }
    }
}

std::vector<ModelDay> calendar() {
    std::vector<ModelDay> days;
    int weekday = 2;  // 1 January 1900 was a Monday
    int week = 0;
    int quarterDay = 0;
    for (int year = 1900; year <= kLastYear; ++year)
        for (int month = 1; month <= 12; ++month) {
            int counts[8] = {};
            int kinds[3] = {};
            if (month % 3 == 1) quarterDay = 0;
            for (int day = 1; day <= lengthOf(month, year); ++day) {
                const bool weekend = weekday == 1 || weekday == 7;
                ModelDay made{};
                made.year = year;
                made.month = month;
                made.day = day;
                made.weekday = weekday;
                made.nth = ++counts[weekday];
                made.kindNth[0] = ++kinds[0];
                made.kindNth[weekend ? 2 : 1] = ++kinds[weekend ? 2 : 1];
                made.monthIndex = year * 12 + month - 1;
                made.week = week;
                made.quarter = year * 4 + (month - 1) / 3;
                made.quarterDay = ++quarterDay;
                days.push_back(made);
                if (weekday == 7) ++week;
                weekday = weekday % 7 + 1;
            }
        }
    markLast(days);
    return days;
}

const std::vector<ModelDay>& days() {
    static const std::vector<ModelDay> all = calendar();
    return all;
}

// A day that the month lacks is its last day.
bool isDayOfMonth(const ZQTR_REPEAT& repeat, const ModelDay& day) {
    return day.day == repeat.dayOfMonth || (day.lastOfMonth && day.day < repeat.dayOfMonth);
}

// The fifth weekday is the last one.
bool isNthWeekday(const ZQTR_REPEAT& repeat, const ModelDay& day) {
    return day.weekday == repeat.dayOfWeek &&
           (day.nth == repeat.weekOfMonth || (day.last && day.nth < repeat.weekOfMonth));
}

bool isNthOfKind(const ZQTR_REPEAT& repeat, const ModelDay& day) {
    const int kind = repeat.dayOfWeek - REPEAT_ANY_DAY;
    return repeat.dayOfMonth == 5 ? day.kindLast[kind] : day.kindNth[kind] == repeat.dayOfMonth;
}

// The flag of the last week counts the fifth, too; of the fourth only when it is 1.
bool isDayOfWeeks(const ZQTR_REPEAT& repeat, const ModelDay& day) {
    const bool week =
        repeat.weeks[day.nth - 1] != 0 || (day.nth == 4 && day.last && repeat.weeks[4] == 1);
    return week && repeat.days[day.weekday - 1] != 0;
}

// Whether `code` is the day of the quarter of type 14. The thirteenth weekday may be the first day
// of the next quarter.
bool isWeekdayOfQuarter(const ZQTR_REPEAT& repeat, int code, int quarter) {
    const ModelDay& day = modelDay(code);
    if (day.weekday != repeat.dayOfWeek) return false;
    if (repeat.weekOfMonth == 14) return day.quarter == quarter && day.lastWeekdayOfQuarter;
    int count = 0;
    int first = code;
    while (first >= 0 && modelDay(first).quarter >= quarter) {
        if (modelDay(first).weekday == repeat.dayOfWeek) ++count;
        --first;
    }
    return count == repeat.weekOfMonth;
}

// Whether a day is an occurrence after the day `base`: of its period, or, for the first one, of
// any.
bool isOccurrence(const ZQTR_REPEAT& repeat, int code, int base, bool first) {
    const ModelDay& day = modelDay(code);
    const ModelDay& from = modelDay(base);
    const bool month = first || day.monthIndex == from.monthIndex + repeat.interval;
    const bool year = first || day.year == from.year + repeat.interval;
    switch (repeat.type) {
        case REPEAT_DAILY:
            return first || code == base + repeat.interval;
        case REPEAT_WEEKLY:
            return day.weekday == repeat.dayOfWeek &&
                   (first || day.week == from.week + repeat.interval);
        case REPEAT_MONTHLY_DAY:
            return month && isDayOfMonth(repeat, day);
        case REPEAT_MONTHLY_WEEKDAY:
            return month && isNthWeekday(repeat, day);
        case REPEAT_YEARLY_DATE:
            return year && day.month == (first ? repeat.month : from.month) &&
                   isDayOfMonth(repeat, day);
        case REPEAT_YEARLY_WEEKDAY:
            return year && day.month == repeat.month && isNthWeekday(repeat, day);
        case REPEAT_DAY_OF_MONTHS:
            return (first || day.monthIndex > from.monthIndex) &&
                   (repeat.months[day.month - 1] != 0 || day.year >= 2080) &&
                   isDayOfMonth(repeat, day);
        case REPEAT_WEEKS_OF_MONTHS:
            return day.year > 2080 ||
                   (repeat.months[day.month - 1] != 0 && isDayOfWeeks(repeat, day));
        case REPEAT_MONTHLY_KIND:
            return month && isNthOfKind(repeat, day);
        case REPEAT_YEARLY_KIND:
            return year && day.month == repeat.month && isNthOfKind(repeat, day);
        case REPEAT_WEEKLY_DAYS:
            return repeat.days[day.weekday - 1] != 0 &&
                   (first || day.week == from.week || day.week == from.week + repeat.interval);
        case REPEAT_QUARTERLY_DAY:
            return (first || day.quarter == from.quarter + 1) &&
                   (day.quarterDay == repeat.dayOfMonth ||
                    (day.lastOfQuarter && day.quarterDay < repeat.dayOfMonth));
        case REPEAT_QUARTERLY_WEEKDAY:
            return (first && isWeekdayOfQuarter(repeat, code, from.quarter)) ||
                   isWeekdayOfQuarter(repeat, code, from.quarter + 1);
        default:
            return false;
    }
}

// Type 15 counts its months from the one that it is in; from December it goes to a month of the
// year after next. The first day past 2080 is an occurrence whatever it is; the first of a month
// that is reached over others is still looked at there, and the day after it is the occurrence.
int nextOfWeeksMonthly(const ZQTR_REPEAT& repeat, int code, int monthIndex) {
    bool leftOut = false;
    for (; code < static_cast<int>(days().size()); ++code) {
        const ModelDay& day = modelDay(code);
        if (day.monthIndex < monthIndex) {
            leftOut = true;
            continue;
        }
        const bool selected = isDayOfWeeks(repeat, day);
        if (day.year > 2080) return leftOut && !selected ? code + 1 : code;
        leftOut = false;
        if (day.monthIndex > monthIndex)
            monthIndex += repeat.interval + (monthIndex % 12 == 11 ? 12 : 0);
        if (day.monthIndex == monthIndex && selected) return code;
    }
    return -1;
}

}  // namespace

const ModelDay& modelDay(int code) {
    return days()[static_cast<std::size_t>(code)];
}

int modelNext(const ZQTR_REPEAT& repeat, int previous) {
    const bool first = previous == -1;
    const int base = previous < 0 ? repeat.startDate : previous;
    int code = previous < 0 ? base : base + 1;
    if (repeat.type == REPEAT_WEEKS_MONTHLY)
        return nextOfWeeksMonthly(repeat, code, modelDay(base).monthIndex);
    // The last weekday of the start's quarter may precede the start.
    if (repeat.type == REPEAT_QUARTERLY_WEEKDAY && repeat.weekOfMonth == 14 && first)
        code -= modelDay(base).quarterDay - 1;
    for (; code < static_cast<int>(days().size()); ++code)
        if (isOccurrence(repeat, code, base, first)) return code;
    return -1;
}

}  // namespace qel::test
