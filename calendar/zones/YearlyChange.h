// A change of offset that comes every year: the same weekday of the same week of a month, at the
// same time. Plain data; any thread.
#ifndef QEL_CALENDAR_ZONES_YEARLYCHANGE_H
#define QEL_CALENDAR_ZONES_YEARLYCHANGE_H

#include <cstdint>

#include "calendar/base/Days.h"

namespace qel::calendar {

struct YearlyChange {
    int month = 0;
    int week = 0;     // 1..4, -1 the last
    int weekday = 0;  // 1 Sunday .. 7 Saturday
    int second = 0;   // from the beginning of that day on the clock before the change

    // In seconds since 1 January 1900.
    [[nodiscard]] constexpr std::int64_t inYear(int year) const {
        const int first = dayNumber(year, month, 1);
        int day = 0;
        if (week > 0) {
            day = first + (weekday - weekdayOf(first) + 7) % 7 + (week - 1) * 7;
        } else {
            const int last = first + daysInMonth(year, month) - 1;
            day = last - (weekdayOf(last) - weekday + 7) % 7;
        }
        return std::int64_t{day} * kDaySeconds + second;
    }
};

}  // namespace qel::calendar

#endif
