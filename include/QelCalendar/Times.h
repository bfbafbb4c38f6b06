/// @file
/// Dates, date-times and durations as calendars write them. Values; usable from any thread.
#ifndef QELCALENDAR_TIMES_H
#define QELCALENDAR_TIMES_H

#include <cstdint>
#include <string>

#include "QelCalendar/Error.h"

namespace qelcal {

/// A date or a date-time of the years 1 to 9999, with the fields of qelcal_time.
struct Time : qelcal_time {
    /// 1 January 1900, a date.
    Time() : qelcal_time{1900, 1, 1, 0, 0, 0, 1, QELCAL_FLOATING} {}
    /// Takes the fields over as they are.
    Time(const qelcal_time& fields) : qelcal_time(fields) {}  // NOLINT: values of one kind

    /// Reads a text as qelcal_time_read does: Time::read("2005-06-15T08:30"). Throws Error.
    static Time read(const std::string& text) {
        Time time;
        detail::check(qelcal_time_read(text.c_str(), &time));
        return time;
    }
    /// "20050615", "20050615T083000" or, in UTC, "20050615T083000Z". Throws Error for fields out of
    /// their ranges.
    std::string text() const {
        char buffer[QELCAL_TIME_SIZE];
        detail::check(qelcal_time_write(this, buffer));
        return buffer;
    }
    /// The same time `seconds` later, on its own clock. Throws Error outside the years 1 to 9999.
    Time plus(std::int64_t seconds) const {
        Time later;
        detail::check(qelcal_time_add(this, seconds, &later));
        return later;
    }
    /// Seconds since 1 January 1900 00:00 of the time's own clock.
    std::int64_t seconds() const { return qelcal_time_seconds(this); }
    /// 1 Sunday .. 7 Saturday.
    int weekday() const { return qelcal_time_weekday(this); }
};

/// "January" of 1 to "December" of 12; empty for any other number.
inline std::string monthName(int month) {
    return qelcal_month_name(month);
}

/// "Sunday" of 1 to "Saturday" of 7, as Time::weekday counts; empty for any other number.
inline std::string weekdayName(int weekday) {
    return qelcal_weekday_name(weekday);
}

/// Reads an RFC 5545 duration, "-PT15M", into seconds. Throws Error.
inline std::int64_t readDuration(const std::string& text) {
    std::int64_t seconds = 0;
    detail::check(qelcal_duration_read(text.c_str(), &seconds));
    return seconds;
}

/// "-PT15M", "P1DT2H", "PT0S".
inline std::string durationText(std::int64_t seconds) {
    char buffer[QELCAL_TIME_SIZE];
    detail::check(qelcal_duration_write(seconds, buffer));
    return buffer;
}

}  // namespace qelcal

#endif
