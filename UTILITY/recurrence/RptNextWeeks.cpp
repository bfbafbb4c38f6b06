// Types of the repeat engine that select weekdays in selected weeks of the month: 8 (in the
// selected months) and 15 (every n months). A month's selected days are computed at once, as bits,
// so that neither type walks from day to day.
#include "recurrence/RptNextWeeks.h"

#include <bit>
#include <optional>

#include "recurrence/RptNextSteps.h"

namespace qel::recurrence {

namespace {

constexpr int kFourthWeek = 3;
constexpr int kLastWeek = 4;

// The weekdays and weeks of one record as bits.
class Selection {
  public:
    explicit Selection(const ZQTR_REPEAT& repeat) {
        for (int i = 0; i < 7; ++i)
            if (repeat.days[i] != 0) weekdays_ |= std::uint64_t{1} << i;
        for (int i = 0; i < 5; ++i)
            if (repeat.weeks[i] != 0) weekDays_ |= kWeek << (7 * i);
        // Days of the fourth week that are the last of their weekday count as the last week, when
        // its flag is exactly 1.
        fourthMayBeLast_ = repeat.weeks[kFourthWeek] == 0 && repeat.weeks[kLastWeek] == 1;
    }

    // Bit n - 1 is set when day n of the month is selected.
    // REQUIRES: a month that encodes
    [[nodiscard]] std::uint32_t daysOf(int year, int month) const {
        const int length = dates::daysInMonth(year, month);
        const int firstWeekday =
            dates::weekdayOfCode(dates::encodeCivilDate({year, month, 1})) - 1;  // [0, 6]
        const std::uint64_t fromFirst = ((weekdays_ | weekdays_ << 7) >> firstWeekday) & kWeek;
        std::uint64_t weeks = weekDays_;
        if (fourthMayBeLast_)
            weeks |= (kWeek << (7 * kFourthWeek)) & ~std::uint64_t{0} << (length - 7);
        const std::uint64_t inMonth = (std::uint64_t{1} << length) - 1;
        return static_cast<std::uint32_t>(fromFirst * kEveryWeek & weeks & inMonth);
    }

  private:
    static constexpr std::uint64_t kWeek = 0x7F;
    static constexpr std::uint64_t kEveryWeek = 0x10204081;  // a bit for the first day of each of 5

    std::uint64_t weekdays_ = 0;  // bit 0 = Sunday
    std::uint64_t weekDays_ = 0;  // the days 1 to 35 of the selected weeks
    bool fourthMayBeLast_ = false;
};

// Moves `day`, when it has left the anchor's month, to the first of the month that the interval
// comes to next. True when it jumped.
bool jumpByInterval(const ZQTR_REPEAT& repeat, CivilDate& day, int& anchor) {
    if (day.month == anchor) return false;
    anchor += repeat.interval;
    if (anchor == day.month) return false;
    // The year is the candidate's, not the anchor's: from December the series goes to January of
    // the year after next.
    day = {day.year, anchor, 1};
    carryMonth(day);
    anchor = day.month;
    return true;
}

// The code date of the first selected day of the month from `day` on; nothing when there is none.
std::optional<int> firstSelected(const Selection& selection, const CivilDate& day, bool hasJumped) {
    if (day.year > dates::kLastYear) return dates::kLastCodeDate + 1;
    const std::uint32_t days = selection.daysOf(day.year, day.month) >> (day.day - 1);
    // The first day after a jump is still examined; the one after it is past the end.
    if (hasJumped && day.year > kLastSearchedYear)
        return dates::encodeCivilDate(day) + ((days & 1) != 0 ? 0 : 1);
    if (days == 0) return std::nullopt;
    return dates::encodeCivilDate({day.year, day.month, day.day + std::countr_zero(days)});
}

}  // namespace

int nextInWeeks(const ZQTR_REPEAT& repeat, int previous, int& date) {
    const bool isFirst = previous == kNoPrevious;
    int candidate = 0;
    if (const int result =
            narrow(isFirst ? repeat.startDate : std::int64_t{previous} + 1, candidate);
        result != QEL_OK)
        return result;
    // What lies past kLastSearchedYear, or has no date at all, is returned unchanged.
    date = candidate;
    CivilDate day{};
    if (!decode(candidate, day) || day.year > kLastSearchedYear) return QEL_OK;

    const bool byInterval = repeat.type == REPEAT_WEEKS_MONTHLY;
    const Selection selection(repeat);
    int anchor = isFirst ? day.month : dates::decodeCivilDate(previous).month;
    for (;;) {
        const bool hasJumped = byInterval && jumpByInterval(repeat, day, anchor);
        if (byInterval || repeat.months[day.month - 1] != 0)
            if (const auto found = firstSelected(selection, day, hasJumped)) {
                date = *found;
                return QEL_OK;
            }
        day = {day.year, day.month + 1, 1};
        carryMonth(day);
        if (day.year > kLastSearchedYear) {
            date = dates::encodeCivilDate(day);
            return QEL_OK;
        }
    }
}

}  // namespace qel::recurrence
