// Types of the repeat engine that name the n-th day, workday or weekend day of a month: 10
// (monthly) and 11 (yearly).
#include "recurrence/RptNextKind.h"

#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

// Days from the first of the month to the n-th workday or weekend day, by the weekday of the first
// (Sunday to Saturday).
constexpr int kWorkdayOffsets[4][7] = {
    {1, 0, 0, 0, 0, 0, 2}, {2, 1, 1, 1, 1, 3, 3}, {3, 2, 2, 2, 4, 4, 4}, {4, 3, 3, 5, 5, 5, 5}};
constexpr int kWeekendOffsets[4][7] = {{0, 5, 4, 3, 2, 1, 0},
                                       {6, 6, 5, 4, 3, 2, 1},
                                       {7, 12, 11, 10, 9, 8, 7},
                                       {13, 13, 12, 11, 10, 9, 8}};

// Days back from the month's last day to the last workday or weekend day, by its weekday.
constexpr int kLastWorkday[7] = {2, 0, 0, 0, 0, 0, 1};
constexpr int kLastWeekendDay[7] = {0, 1, 2, 3, 4, 5, 0};

constexpr bool isWeekend(int weekdayIndex) {
    return weekdayIndex % 7 == 0 || weekdayIndex % 7 == 6;
}

// Counts the days out and compares them with the tables.
constexpr bool tablesCountDays() {
    for (int weekday = 0; weekday < 7; ++weekday) {
        int workdays = 0;
        int weekendDays = 0;
        for (int offset = 0; offset < 14; ++offset) {
            if (isWeekend(weekday + offset)) {
                if (weekendDays < 4 && kWeekendOffsets[weekendDays++][weekday] != offset)
                    return false;
            } else if (workdays < 4 && kWorkdayOffsets[workdays++][weekday] != offset) {
                return false;
            }
        }
        if (isWeekend(weekday + 7 - kLastWorkday[weekday])) return false;
        if (!isWeekend(weekday + 7 - kLastWeekendDay[weekday])) return false;
    }
    return true;
}
static_assert(tablesCountDays());

int daysFromFirst(int position, int kind, int weekday) {
    if (kind == REPEAT_ANY_DAY) return position - 1;
    return (kind == REPEAT_WORKDAY ? kWorkdayOffsets : kWeekendOffsets)[position - 1][weekday - 1];
}

int daysBeforeLast(int kind, int weekday) {
    if (kind == REPEAT_ANY_DAY) return 0;
    return (kind == REPEAT_WORKDAY ? kLastWorkday : kLastWeekendDay)[weekday - 1];
}

}  // namespace

bool kindOfDayIn(const ZQTR_REPEAT& repeat, const CivilDate& month, int& date) {
    const bool isLast = repeat.dayOfMonth == kLastPosition;
    const int day = isLast ? clampDay(31, month.month, month.year) : 1;
    int edge = 0;
    if (!encode({month.year, month.month, day}, edge)) return false;
    const int weekday = dates::weekdayOfCode(edge);
    date = isLast ? edge - daysBeforeLast(repeat.dayOfWeek, weekday)
                  : edge + daysFromFirst(repeat.dayOfMonth, repeat.dayOfWeek, weekday);
    return true;
}

int nextKindOfDay(const ZQTR_REPEAT& repeat, int previous, int& date) {
    if (repeat.dayOfMonth < 1 || repeat.dayOfMonth > kLastPosition)
        return fail(kLineKindPosition, repeat.dayOfMonth);
    if (repeat.dayOfWeek < REPEAT_ANY_DAY || repeat.dayOfWeek > REPEAT_WEEKEND_DAY)
        return fail(kLineKindOfDay, repeat.dayOfWeek);
    const bool isMonthly = repeat.type == REPEAT_MONTHLY_KIND;
    CivilDate month{};
    if (!decode(baseDate(repeat, previous), month)) return failDate(__LINE__);
    if (previous != kNoPrevious) (isMonthly ? month.month : month.year) += repeat.interval;
    carryMonth(month);
    if (!isMonthly) month.month = repeat.month;
    do {
        if (!kindOfDayIn(repeat, month, date)) return failDate(__LINE__);
        ++(isMonthly ? month.month : month.year);
        carryMonth(month);
    } while (date < repeat.startDate);
    return QEL_OK;
}

}  // namespace qel::recurrence
