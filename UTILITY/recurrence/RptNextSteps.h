// What the repeat engine's files share: the error lines and the calendar steps. For the library's
// own use, from any thread; nothing here keeps state.
#ifndef QEL_RECURRENCE_RPTNEXTSTEPS_H
#define QEL_RECURRENCE_RPTNEXTSTEPS_H

#include <algorithm>
#include <cstdint>
#include <limits>

#include "QelUtility/BxTrace.h"
#include "QelUtility/RptNext.h"
#include "dates/CivilDate.h"

namespace qel::recurrence {

using dates::CivilDate;

inline constexpr char kEngineSourceName[] = "RptNext";

// The lines that the engine's failures are reported with, whichever file they now come from.
enum EngineLine {
    kLineBadRecord = 100,
    kLineUnknownType = 131,
    kLineNoWeekday = 219,
    kLineMonthDayDecode = 266,
    kLineMonthDayFirstEncode = 278,
    kLineMonthDayStepEncode = 293,
    kLineWeekdayDecode = 323,
    kLineWeekdayEncode = 357,
    kLineYearDateFirstDecode = 402,
    kLineYearDateFirstEncode = 414,
    kLineYearDateStepDecode = 423,
    kLineYearDateStepEncode = 429,
    kLineMonthsDecode = 459,
    kLineMonthsEncode = 491,
    kLineKindPosition = 653,
    kLineKindOfDay = 659,
    kLineQuarterDay = 798,
    kLineQuarterDecode = 822,
    kLineQuarterFirstLastEncode = 841,
    kLineQuarterFirstEncode = 853,
    kLineQuarterLastEncode = 882,
    kLineQuarterEncode = 894
};

// As *previous: there is no previous occurrence.
inline constexpr int kNoPrevious = -1;
// As *previous, for the types that have a base date: step from the start date.
inline constexpr int kStepFromStart = -2;

// The searches by month give up after this year: a record that selects no month ends there.
inline constexpr int kLastSearchedYear = 2080;

// dayOfMonth of the types 10 and 11: the last day of its kind.
inline constexpr int kLastPosition = 5;
// weekOfMonth of type 14: the last of its weekday.
inline constexpr int kLastWeekOfQuarter = 14;

// Reports a failure with its detail; the result is 4008.
inline int fail(int line, int detail) {
    return BxTrace_Error(kEngineSourceName, line, detail, QEL_REPEAT_ENGINE);
}

// Reports that a date could not be encoded or decoded; the detail is the date functions' -1.
inline int failDate(int line) {
    return fail(line, -1);
}

// The code date of `date`, which may lie outside every range: false then. A day past its month's
// end counts on into the next month.
[[nodiscard]] constexpr bool encode(const CivilDate& date, int& code) noexcept {
    if (!dates::isEncodable(date)) return false;
    code = dates::encodeCivilDate(date);
    return true;
}

[[nodiscard]] constexpr bool decode(int code, CivilDate& date) noexcept {
    if (!dates::isCodeDate(code)) return false;
    date = dates::decodeCivilDate(code);
    return true;
}

// A month past December becomes a month of a later year.
constexpr void carryMonth(CivilDate& date) noexcept {
    if (date.month <= 12) return;
    date.year += (date.month - 1) / 12;
    date.month = (date.month - 1) % 12 + 1;
}

// `dayOfMonth`, or the month's last day where the month is too short. A month that does not exist
// has no last day; encoding it fails.
[[nodiscard]] constexpr int clampDay(int dayOfMonth, int month, int year) noexcept {
    if (month < 1 || month > 12) return dayOfMonth;
    return std::min(dayOfMonth, dates::daysInMonth(year, month));
}

// The date that the types 3, 4, 6, 7, 10 and 11 compute from.
[[nodiscard]] constexpr int baseDate(const ZQTR_REPEAT& repeat, int previous) noexcept {
    return previous == kNoPrevious || previous == kStepFromStart ? repeat.startDate : previous;
}

// A date that was computed beyond 32 bits is a failure, never a wrapped date.
inline int narrow(std::int64_t value, int& date) {
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
        return BxTrace_Error_S(kEngineSourceName, __LINE__, "Date out of range", QEL_REPEAT_ENGINE);
    date = static_cast<int>(value);
    return QEL_OK;
}

// Whether the engine takes the record at all.
[[nodiscard]] inline bool isValid(const ZQTR_REPEAT& repeat) noexcept {
    return repeat.startDate >= 0 && repeat.endDate >= -1 && repeat.interval >= 1 &&
           repeat.unitCount >= 1;
}

// The position and the kind of day of the types 10 and 11.
[[nodiscard]] inline bool isKindOfDay(const ZQTR_REPEAT& repeat) noexcept {
    return repeat.dayOfMonth >= 1 && repeat.dayOfMonth <= kLastPosition &&
           repeat.dayOfWeek >= REPEAT_ANY_DAY && repeat.dayOfWeek <= REPEAT_WEEKEND_DAY;
}

// Types 3 and 5, whose steps have little else to do.
inline bool dayOfMonthIn(const ZQTR_REPEAT& repeat, const CivilDate& month, int& date) {
    return encode({month.year, month.month, clampDay(repeat.dayOfMonth, month.month, month.year)},
                  date);
}

}  // namespace qel::recurrence

#endif
