// The calendar arithmetic under the date codes: constexpr functions over small unsigned integers,
// without loops. For the library's own use, from any thread.
#ifndef QEL_DATES_CIVILDATE_H
#define QEL_DATES_CIVILDATE_H

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel::dates {

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
[[nodiscard]] constexpr int daysInMonth(int year, int month) noexcept {
    if (month == 2) return isLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

[[nodiscard]] constexpr bool isCodeDate(std::int64_t code) noexcept {
    return code >= 0 && code <= kLastCodeDate;
}

// Whether a date has a code date: its fields are in their ranges; the month's length does not
// count.
[[nodiscard]] constexpr bool isEncodable(const CivilDate& date) noexcept {
    return static_cast<unsigned>(date.year) - kFirstYear <= kLastYear - kFirstYear &&
           static_cast<unsigned>(date.month) - 1 < 12 && static_cast<unsigned>(date.day) - 1 < 31;
}

namespace detail {

// The day number of 1 January 1900 in a count whose day 0 is 1 March of the year 0: years that
// begin in March have their leap day last.
constexpr std::uint32_t kMarchDayOfEpoch = 693901;
// The same day counted from 1 March 1600, the last 400-year boundary before the range. Counting
// from there keeps every intermediate value of the decoder inside 32 bits.
constexpr std::uint32_t kMarchDayFrom1600 = kMarchDayOfEpoch - 4 * 146097;

// The days of a year that begins in March: the day of the month, the month << 8, and 1 << 15 when
// it is January or February, which belong to the calendar's next year.
constexpr auto kDaysOfMarchYear = [] {
    std::array<std::uint16_t, 366> days{};
    std::size_t next = 0;
    for (int i = 0; i < 12; ++i) {
        const int month = i < 10 ? i + 3 : i - 9;
        for (int day = 1; day <= daysInMonth(2000, month); ++day) {
            days[next++] =
                static_cast<std::uint16_t>(day | month << 8 | (month <= 2 ? 1 << 15 : 0));
        }
    }
    return days;
}();

// The days from 1 March to the first of a month, of January and February in the next year.
constexpr std::array<std::uint16_t, 13> kDaysToMonth = {0,   306, 337, 0,   31,  61, 92,
                                                        122, 153, 184, 214, 245, 275};

}  // namespace detail

// The code date of a date; a day past its month's end counts on into the next month.
// REQUIRES: isEncodable(date)
[[nodiscard]] constexpr int encodeCivilDate(const CivilDate& date) noexcept {
    const auto month = static_cast<std::size_t>(date.month);
    const std::uint32_t year = static_cast<std::uint32_t>(date.year) - (date.month <= 2);
    const std::uint32_t century = year / 100;                                // [18, 24]
    const std::uint32_t yearDays = year * 1461 / 4 - century + century / 4;  // from 1 March of 0
    return static_cast<int>(yearDays + detail::kDaysToMonth[month] +
                            static_cast<std::uint32_t>(date.day) - 1 - detail::kMarchDayOfEpoch);
}

// The date of a code date. The division by the length of a year is a multiplication by a
// fixed-point reciprocal that is exact over the range.
// REQUIRES: code in [0, 219145]
[[nodiscard]] constexpr CivilDate decodeCivilDate(int code) noexcept {
    // The day as it would be counted if every fourth year were a leap year.
    const std::uint32_t day1600 = static_cast<std::uint32_t>(code) + detail::kMarchDayFrom1600;
    const std::uint32_t century = (4 * day1600 + 3) / 146097;       // [2, 8]
    const std::uint32_t evenDay = day1600 + century - century / 4;  // < 2^19
    // Year and day of the year, both from March: 2939745 is 2^32 / 1461, rounded up.
    const std::uint64_t scaledYear = std::uint64_t{2939745} * (4 * evenDay + 3);
    const auto year1600 = static_cast<std::uint32_t>(scaledYear >> 32);  // [299, 899]
    const std::uint32_t yearDay = static_cast<std::uint32_t>(scaledYear) / 2939745 / 4;  // [0, 365]
    const std::uint16_t packed = detail::kDaysOfMarchYear[yearDay];
    return {static_cast<int>(1600 + year1600 + static_cast<std::uint32_t>(packed >> 15)),
            packed >> 8 & 15, packed & 31};
}

// The weekday of a day number, 1 = Sunday to 7 = Saturday; day 0 is a Monday. Any day number has
// one, also before 1900.
[[nodiscard]] constexpr int weekdayOf(std::int64_t code) noexcept {
    const std::int64_t remainder = (code % 7 + 8) % 7;
    return static_cast<int>(remainder) + 1;
}

// The same of a code date, or of the day before the first one, at half the cost.
// REQUIRES: code in [-1, INT_MAX - 1]
[[nodiscard]] constexpr int weekdayOfCode(int code) noexcept {
    return static_cast<int>((static_cast<std::uint32_t>(code) + 1) % 7) + 1;
}

}  // namespace qel::dates

#endif
