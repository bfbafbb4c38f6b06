// Dates, date-times and lengths of time as the command line writes them, in the years 1900 to 2499.
// Days are code dates (0 is 1 January 1900). Any thread.
#ifndef QELUTIL_BASE_MOMENT_H
#define QELUTIL_BASE_MOMENT_H

#include <cstdint>
#include <string>

#include "QelCalendar/Times.h"

namespace qel::cli {

using qelcal::Time;

inline constexpr std::int64_t kDaySeconds = 86400;
inline constexpr int kLastDay = 219145;               // 31 December 2499
inline constexpr std::int64_t kUnixEpochDay = 25567;  // 1 January 1970
inline constexpr std::int64_t kEndOfTime = (kLastDay + std::int64_t{1}) * kDaySeconds;

// Reads what qelcal::Time::read does; "today", "tomorrow", "yesterday"; "now" (in UTC). Throws
// InputError, which says what is wrong: no such day, no such hour.
[[nodiscard]] Time readMoment(const std::string& text);

// The same for the value of a command-line option; throws UsageError, naming the option.
[[nodiscard]] Time readMomentOf(const std::string& option, const std::string& text);

// Reads an RFC 5545 duration, "-PT15M" or "P1DT2H", in seconds. Throws InputError, which names the
// part that does not fit.
[[nodiscard]] std::int64_t readDuration(const std::string& text);

// Seconds since 1900 as a date-time. REQUIRES: 0 <= seconds < kEndOfTime
[[nodiscard]] Time momentAt(std::int64_t seconds, bool utc);

// REQUIRES: 0 <= codeDate <= kLastDay
[[nodiscard]] Time dateOf(int codeDate);
[[nodiscard]] int codeDateOf(const Time& time);

// The same time `seconds` later; a date remains one when whole days are added. Throws InputError
// when it leaves the years 1900 to 2499.
[[nodiscard]] Time later(const Time& time, std::int64_t seconds);

[[nodiscard]] inline bool isUtc(const Time& time) {
    return time.clock == QELCAL_UTC;
}

// "2005-06-15", of the date alone.
[[nodiscard]] std::string isoDate(const Time& time);
[[nodiscard]] inline std::string isoDate(int codeDate) {
    return isoDate(dateOf(codeDate));
}

// "Wednesday, 15 June 2005, 08:30:00 UTC"
[[nodiscard]] std::string momentWords(const Time& time);

// "+P1DT2H"; "PT0S" for nothing.
[[nodiscard]] std::string durationText(std::int64_t seconds);

// "1 day 2 hours", "15 minutes earlier".
[[nodiscard]] std::string durationWords(std::int64_t seconds);

// "+02:00", with seconds where there are any.
[[nodiscard]] std::string offsetText(std::int64_t seconds);

}  // namespace qel::cli

#endif
