// The calendar arithmetic under the date codes: constexpr functions over small unsigned integers,
// without tables of years and without loops. For the library's own use, from any thread.
#ifndef QEL_DATES_CIVILDATE_H
#define QEL_DATES_CIVILDATE_H

#include <cstdint>

namespace qel {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2499;
constexpr int kLastCodeDate = 219145;      // 31 December 2499
constexpr int kUnixEpochCodeDate = 25567;  // 1 January 1970
constexpr int kSecondsPerDay = 86400;

struct CivilDate {
    int year;
    int month;  // [1, 12]
    int day;    // [1, 31]
    friend constexpr bool operator==(const CivilDate&, const CivilDate&) = default;
};

[[nodiscard]] constexpr bool isLeapYear(int year) noexcept {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

// REQUIRES: month in [1, 12]
[[nodiscard]] constexpr int daysInMonth(int month, int year) noexcept {
    if (month == 2) return isLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

[[nodiscard]] constexpr bool isCodeDate(std::int64_t code) noexcept {
    return code >= 0 && code <= kLastCodeDate;
}

namespace detail {

// The day number of 1 January 1900 in a count whose day 0 is 1 March of the year 0: years that
// begin in March have their leap day last, so that neither it nor the months need a table.
constexpr std::uint32_t kMarchDayOfEpoch = 693901;
// The same day counted from 1 March 1600, the last 400-year boundary before the range. Counting
// from there keeps every intermediate value of the decoder inside 32 bits.
constexpr std::uint32_t kMarchDayFrom1600 = kMarchDayOfEpoch - 4 * 146097;

}  // namespace detail

// The code date of a date; a day past its month's end counts on into the next month.
// REQUIRES: year in [1900, 2499], month in [1, 12], day in [1, 31]
[[nodiscard]] constexpr int encodeCivilDate(const CivilDate& date) noexcept {
    const bool beforeMarch = date.month <= 2;
    const std::uint32_t year = static_cast<std::uint32_t>(date.year) - beforeMarch;
    const std::uint32_t month = static_cast<std::uint32_t>(date.month) + (beforeMarch ? 12U : 0U);
    const std::uint32_t century = year / 100;                                // [18, 24]
    const std::uint32_t yearDays = year * 1461 / 4 - century + century / 4;  // from 1 March of 0
    const std::uint32_t monthDays = (979 * month - 2919) / 32;               // [0, 337]
    return static_cast<int>(yearDays + monthDays + static_cast<std::uint32_t>(date.day) - 1 -
                            detail::kMarchDayOfEpoch);
}

// The date of a code date. The divisions by the lengths of a year and a month are multiplications
// by fixed-point reciprocals that are exact over the range.
// REQUIRES: code in [0, 219145]
[[nodiscard]] constexpr CivilDate decodeCivilDate(int code) noexcept {
    // Century and day of the century, both of years that begin in March.
    const std::uint32_t quarterDays =
        4 * (static_cast<std::uint32_t>(code) + detail::kMarchDayFrom1600) + 3;  // < 2^21
    const std::uint32_t century = quarterDays / 146097;                          // [2, 8]
    const std::uint32_t centuryDay = quarterDays % 146097 / 4;                   // [0, 36524]
    // Year of the century and day of the year: 2939745 is 2^32 / 1461, rounded up.
    const std::uint64_t scaledYear = std::uint64_t{2939745} * (4 * centuryDay + 3);
    const std::uint32_t yearOfCentury = static_cast<std::uint32_t>(scaledYear >> 32);    // [0, 99]
    const std::uint32_t yearDay = static_cast<std::uint32_t>(scaledYear) / 2939745 / 4;  // [0, 365]
    // Month and day: a month of such a year begins every 2^16 / 2141 = 30.61 days.
    const std::uint32_t scaledMonth = 2141 * yearDay + 197913;
    const std::uint32_t month = scaledMonth >> 16;            // [3, 14]
    const std::uint32_t day = (scaledMonth & 0xFFFF) / 2141;  // [0, 30]
    const bool nextYear = yearDay >= 306;                     // January or February
    return {static_cast<int>(1600 + 100 * century + yearOfCentury + nextYear),
            static_cast<int>(nextYear ? month - 12 : month), static_cast<int>(day + 1)};
}

// The weekday of a day number, 1 = Sunday to 7 = Saturday; day 0 is a Monday. Any day number has
// one, also before 1900.
[[nodiscard]] constexpr int weekdayOf(std::int64_t code) noexcept {
    const std::int64_t remainder = (code % 7 + 8) % 7;
    return static_cast<int>(remainder) + 1;
}

}  // namespace qel

#endif
