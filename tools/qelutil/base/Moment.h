// Dates, date-times and lengths of time as the command line writes them. Any thread.
//
// Days are code dates (0 = 1 January 1900), moments seconds since 1 January 1900; the years 1900 to
// 2499 are all there is.
#ifndef QELUTIL_BASE_MOMENT_H
#define QELUTIL_BASE_MOMENT_H

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::cli {

inline constexpr std::int64_t kDaySeconds = 86400;
inline constexpr std::int64_t kLastCodeDate = 219145;  // 31 December 2499
inline constexpr std::int64_t kUnixEpochDay = 25567;   // 1 January 1970
inline constexpr std::int64_t kEndOfTime = (kLastCodeDate + 1) * kDaySeconds;

struct Moment {
    std::int64_t seconds = 0;  // of a date: its midnight
    bool hasTime = false;
    bool utc = false;
};

// Reads "20050615", "20050615T083000", either with dashes and colons and with the seconds left out,
// a "Z" behind the time; "today"; "now" (in UTC). Throws InputError, which names what is wrong: no
// such day, no such hour.
[[nodiscard]] Moment readMoment(std::string_view text);

// The same moment `seconds` later; a date stays one when whole days are added. Throws InputError
// when it leaves the calendar.
[[nodiscard]] Moment later(const Moment& moment, std::int64_t seconds);

// "20050615T083000Z", or "20050615" for a date. REQUIRES: 0 <= seconds < kEndOfTime
[[nodiscard]] std::string momentText(const Moment& moment);

// "Wednesday, 15 June 2005, 08:30:00 UTC". REQUIRES: as momentText
[[nodiscard]] std::string momentWords(const Moment& moment);

// Reads an RFC 2445 (4.3.6) duration, "-PT15M" or "P1DT2H", in seconds. Throws InputError, which
// names the part that does not fit.
[[nodiscard]] std::int64_t readDuration(std::string_view text);

// "+P1DT2H"; "PT0S" for nothing.
[[nodiscard]] std::string durationText(std::int64_t seconds);

// "1 day 2 hours", "15 minutes earlier".
[[nodiscard]] std::string durationWords(std::int64_t seconds);

// "+02:00", with seconds where there are any.
[[nodiscard]] std::string offsetText(std::int64_t seconds);

}  // namespace qel::cli

#endif
