// A date or a date-time as calendar files write it, and its arithmetic. Plain data; any thread.
#ifndef QEL_CALENDAR_BASE_MOMENT_H
#define QEL_CALENDAR_BASE_MOMENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qel::calendar {

enum class Clock {
    Floating,  // whatever the reader's own clock shows
    Utc,
    Zoned  // the wall clock of a zone that is named beside the moment
};

struct Moment {
    int day = 0;     // days since 1 January 1900; negative before it
    int second = 0;  // of the day, 0..86399; 0 for a date
    bool isDate = false;
    Clock clock = Clock::Floating;
    bool operator==(const Moment&) const = default;

    // Seconds since 1 January 1900 00:00 of the moment's own clock.
    [[nodiscard]] std::int64_t seconds() const { return std::int64_t{day} * 86400 + second; }
};

// `moment` with its day and second of day replaced; it is a date-time afterwards unless it was a
// date and `seconds` is midnight.
[[nodiscard]] Moment momentAt(const Moment& moment, std::int64_t seconds);

// Reads YYYYMMDD, YYYYMMDDTHHMM and YYYYMMDDTHHMMSS, also with "-" and ":" as separators, with "Z"
// or an offset (+HH, +HHMM, +HH:MM; gives UTC) at the end, in either case, with blanks around it.
// 24:00:00 is midnight of the next day and second 60 is 59. Nothing when it is not a moment of the
// years 1 to 9999; `*problem`, which may be null, then says why for a person: "there is no month
// 13", "June 2005 has no day 31".
[[nodiscard]] std::optional<Moment> parseMoment(std::string_view text,
                                                std::string* problem = nullptr);

// Reads HHMM, HHMMSS and the same with ":" into seconds since midnight, 86400 for 24:00:00. Second
// 60 is 59.
[[nodiscard]] std::optional<int> parseTimeOfDay(std::string_view text);

// YYYYMMDD, YYYYMMDDTHHMMSS or, in UTC, YYYYMMDDTHHMMSSZ. Years outside 1..9999 become the
// first or the last moment of that range.
class MomentText {
  public:
    explicit MomentText(const Moment& moment);
    operator std::string_view() const { return {text_.data(), size_}; }

  private:
    std::array<char, 16> text_;
    std::size_t size_;
};
[[nodiscard]] std::string formatMoment(const Moment& moment);

// A length of time. Its days are counted separately because a day is not always 86400 seconds long.
struct Duration {
    std::int64_t days = 0;  // with the sign of the whole
    std::int64_t seconds = 0;
    [[nodiscard]] std::int64_t total() const { return days * 86400 + seconds; }
};

// Reads an RFC 5545 duration: "-P1DT2H", "PT15M", "P2W". Units may come in any order and repeat.
// Nothing when it is not a duration or longer than 10,000 years; `*problem` as in parseMoment: "a
// unit is missing after \"15\"".
[[nodiscard]] std::optional<Duration> parseDuration(std::string_view text,
                                                    std::string* problem = nullptr);

// The same, but a "T" that is missing before H, M or S does no harm; `withoutT` then becomes true.
[[nodiscard]] std::optional<Duration> parseUntidyDuration(std::string_view text, bool& withoutT);

// "-PT15M", "P1DT2H", "P2W" only for whole weeks, "PT0S".
[[nodiscard]] std::string formatDuration(std::int64_t seconds);
// The same, but days that were not given as days stay hours: "PT24H".
[[nodiscard]] std::string formatDuration(const Duration& duration);

// Reads +HH, +HHMM, +HH:MM, +HHMMSS, also with one digit for the hour, the sign optional, up to 15
// hours either way, into seconds east of UTC.
[[nodiscard]] std::optional<int> parseUtcOffset(std::string_view text);

// "+0530"; with seconds only where they are not 0. `colon` gives "+05:30".
[[nodiscard]] std::string formatUtcOffset(int seconds, bool colon = false);

}  // namespace qel::calendar

#endif
