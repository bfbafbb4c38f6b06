// Daily and weekly types of the repeat engine: 1, 2 and 12. They need no calendar, only weekdays.
#include "recurrence/RptNextWeekly.h"

#include <algorithm>

#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

// 1 = Sunday to 7 = Saturday; a date before 1900 has the remainder that C gives a negative number,
// which may be 0 or below.
constexpr int weekdayByRemainder(std::int64_t code) {
    return static_cast<int>((code + 1) % 7) + 1;
}

}  // namespace

int nextDaily(const ZQTR_REPEAT& repeat, int previous, int& date) {
    if (previous == kNoPrevious) return narrow(repeat.startDate, date);
    return narrow(std::int64_t{previous} + repeat.interval, date);
}

int nextWeekly(const ZQTR_REPEAT& repeat, int previous, int& date) {
    if (previous != kNoPrevious) return narrow(std::int64_t{previous} + 7 * repeat.interval, date);
    const int weekday = weekdayByRemainder(repeat.startDate);
    const int forward = repeat.dayOfWeek - weekday + (weekday > repeat.dayOfWeek ? 7 : 0);
    return narrow(std::int64_t{repeat.startDate} + forward, date);
}

int nextWeeklyDays(const ZQTR_REPEAT& repeat, int previous, int& date) {
    const bool isFirst = previous == kNoPrevious;
    const std::int64_t from = isFirst ? std::int64_t{repeat.startDate} - 1 : previous;
    const int weekday = weekdayByRemainder(from);
    int found = std::max(weekday, 0);
    for (int tried = 0; tried < 7; ++tried) {
        found = found == 7 ? 1 : found + 1;
        if (repeat.days[found - 1] == 0) continue;
        // Not later in this week, which ends on Saturday: in the next one of the series.
        const int weeks = found > weekday ? 0 : isFirst ? 1 : repeat.interval;
        return narrow(from + (found - weekday) + 7 * weeks, date);
    }
    return fail(kLineNoWeekday, QEL_REPEAT_ENGINE);
}

}  // namespace qel::recurrence
