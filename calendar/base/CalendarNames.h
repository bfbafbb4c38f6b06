// The names of months and weekdays, and the two-letter codes of weekdays. Any thread.
#ifndef QEL_CALENDAR_BASE_CALENDARNAMES_H
#define QEL_CALENDAR_BASE_CALENDARNAMES_H

#include <array>
#include <cassert>
#include <cstddef>
#include <string_view>

#include "calendar/base/Ascii.h"

namespace qel::calendar {

inline constexpr std::array<std::string_view, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

inline constexpr std::array<std::string_view, 7> kWeekdayNames = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

inline constexpr std::array<std::string_view, 7> kWeekdayCodes = {"SU", "MO", "TU", "WE",
                                                                  "TH", "FR", "SA"};

// REQUIRES: month 1..12
[[nodiscard]] constexpr std::string_view monthName(int month) {
    assert(month >= 1 && month <= 12);
    return kMonthNames[static_cast<std::size_t>(month - 1)];
}

// "Wednesday" of 1 Sunday .. 7 Saturday. REQUIRES: weekday 1..7
[[nodiscard]] constexpr std::string_view weekdayName(int weekday) {
    assert(weekday >= 1 && weekday <= 7);
    return kWeekdayNames[static_cast<std::size_t>(weekday - 1)];
}

// "WE". REQUIRES: weekday 1..7
[[nodiscard]] constexpr std::string_view weekdayCode(int weekday) {
    assert(weekday >= 1 && weekday <= 7);
    return kWeekdayCodes[static_cast<std::size_t>(weekday - 1)];
}

// 1 Sunday .. 7 Saturday for a two-letter code in upper or lower case, else 0.
[[nodiscard]] inline int weekdayOfCode(std::string_view code) {
    for (int weekday = 1; weekday <= 7; ++weekday)
        if (equalsIgnoreCase(code, weekdayCode(weekday))) return weekday;
    return 0;
}

}  // namespace qel::calendar

#endif
