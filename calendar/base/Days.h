// Day arithmetic on code dates: days since 1 January 1900 (day 0, a Monday), here also before it,
// in the Gregorian calendar. Any thread.
#ifndef QEL_CALENDAR_BASE_DAYS_H
#define QEL_CALENDAR_BASE_DAYS_H

#include <chrono>
#include <cstdint>

namespace qel::calendar {

struct Civil {
    int year;
    int month;  // 1..12
    int day;    // 1..31
    bool operator==(const Civil&) const = default;
};

inline constexpr int kDaySeconds = 86400;

inline constexpr std::chrono::sys_days kDayZero =
    std::chrono::year{1900} / std::chrono::January / 1;

// REQUIRES: month 1..12. A day past the month's end is a day of the next month.
[[nodiscard]] constexpr int dayNumber(int year, int month, int day) {
    const std::chrono::sys_days first =
        std::chrono::year{year} / std::chrono::month{static_cast<unsigned>(month)} / 1;
    return static_cast<int>((first - kDayZero).count()) + day - 1;
}

[[nodiscard]] constexpr Civil civilOf(int day) {
    const std::chrono::year_month_day date{kDayZero + std::chrono::days{day}};
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day()))};
}

// 1 Sunday .. 7 Saturday.
[[nodiscard]] constexpr int weekdayOf(int day) {
    return ((day + 1) % 7 + 7) % 7 + 1;
}

[[nodiscard]] constexpr int daysInMonth(int year, int month) {
    return month == 12 ? 31 : dayNumber(year, month + 1, 1) - dayNumber(year, month, 1);
}

[[nodiscard]] constexpr int daysInYear(int year) {
    return dayNumber(year + 1, 1, 1) - dayNumber(year, 1, 1);
}

// In seconds since 1 January 1900.
[[nodiscard]] constexpr std::int64_t yearBegin(int year) {
    return std::int64_t{dayNumber(year, 1, 1)} * kDaySeconds;
}

static_assert(dayNumber(1900, 1, 1) == 0 && dayNumber(2005, 6, 15) == 38516);
static_assert(weekdayOf(0) == 2 && weekdayOf(6) == 1 && weekdayOf(-1) == 1);
static_assert(daysInMonth(2000, 2) == 29 && daysInMonth(1900, 2) == 28 && daysInYear(2004) == 366);
static_assert(civilOf(38516) == Civil{2005, 6, 15});

}  // namespace qel::calendar

#endif
