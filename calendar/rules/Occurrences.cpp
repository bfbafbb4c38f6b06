#include "calendar/rules/Occurrences.h"

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <optional>

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"

namespace qel::calendar {

namespace {

// A list of numbers as a set of bits, so that a look-up takes the same time whatever its length.
class Members {
  public:
    explicit Members(const std::vector<int>& list) : any_(!list.empty()) {
        for (const int each : list)
            if (each >= -kMost && each <= kMost) set_.set(placeOf(each));
    }

    [[nodiscard]] bool any() const { return any_; }
    [[nodiscard]] bool holds(int value) const { return set_.test(placeOf(value)); }
    // Negative members count from the end: does the list name day `day` of `length` days?
    [[nodiscard]] bool names(int day, int length) const {
        return holds(day) || holds(day - length - 1);
    }

  private:
    static constexpr int kMost = 366;  // days of a leap year
    static std::size_t placeOf(int value) {
        const int place = value + kMost;
        return static_cast<std::size_t>(place);
    }

    std::bitset<2 * kMost + 1> set_;
    bool any_;
};

class Expander {
  public:
    Expander(const Rule& rule, const RuleStart& start, const RuleLimits& limits)
        : rule_(rule),
          start_(start),
          limits_(limits),
          months_(rule.months),
          monthDays_(rule.monthDays),
          yearDays_(rule.yearDays),
          weekNumbers_(rule.weekNumbers),
          setPositions_(rule.setPositions),
          first_(dayNumber(start.year, start.month, start.day)),
          last_(dayNumber(std::min(limits.lastYear, 2499), 12, 31)) {
        for (const RuleDay& each : rule.days)
            weekdays_ |= 1U << static_cast<unsigned>(each.weekday);
        readUntil();
    }

    std::vector<int> run() {
        if (limits_.most == 0) return {};
        found_.push_back(first_);
        if (rule_.frequency == Frequency::Daily)
            takeDays();
        else
            takePeriods();
        return std::move(found_);
    }

    bool yieldsStart() {
        if (first_ > last_) return false;
        std::vector<int> days;
        const std::int64_t before = firstPeriod();
        for (std::int64_t period = before; period <= -before && daysOf(period, days); ++period)
            if (std::binary_search(days.begin(), days.end(), first_)) return true;
        return false;
    }

  private:
    // The start's own is 0, but its week may be numbered in the year before it or after it.
    [[nodiscard]] std::int64_t firstPeriod() const {
        const bool byWeek = rule_.frequency == Frequency::Yearly && weekNumbers_.any();
        return byWeek && rule_.interval <= 1 ? -1 : 0;
    }

    void takePeriods() {
        const std::int64_t step = std::max(rule_.interval, 1);
        std::vector<int> days;
        std::size_t periods = 0;
        std::int64_t lastHit = 0;
        for (std::int64_t period = firstPeriod(); !done_; period += step) {
            if (!daysOf(period, days)) break;
            const std::size_t before = found_.size();
            for (const int day : days) take(day);
            if (period <= 0 || found_.size() > before) {
                ++periods;
                lastHit = period;
            }
            if (periods == limits_.periods || period - lastHit > longestGap() + step) break;
        }
    }

    // A daily rule, whose periods are single days.
    void takeDays() {
        if (setPositions_.any() && !setPositions_.names(1, 1)) return;
        const std::int64_t step = std::max(rule_.interval, 1);
        for (std::int64_t next = first_ + step; !done_ && next <= last_; next += step) {
            const int day = static_cast<int>(next);
            const Civil civil = civilOf(day);
            if (months_.any() && !months_.holds(civil.month)) {
                // To the last day of the series in this month.
                const int rest = daysInMonth(civil.year, civil.month) - civil.day;
                next += rest / step * step;
            } else if ((rule_.days.empty() || weekdayNamed(day)) && isAllowed(day)) {
                take(day);
            }
            if (next - found_.back() > longestGap() + step) break;
        }
    }

    // A rule without an occurrence in so many periods has none at all: 100 years, or 50 where the
    // periods are days or weeks.
    [[nodiscard]] int longestGap() const {
        switch (rule_.frequency) {
            case Frequency::Daily:
                return 50 * 366;
            case Frequency::Weekly:
                return 50 * 53;
            case Frequency::Monthly:
                return 1200;
            case Frequency::Yearly:
                return 100;
        }
        return 0;
    }

    // The occurrences of the period that begins `period` units after the start's, ascending. False
    // past the end.
    bool daysOf(std::int64_t period, std::vector<int>& days) {
        days.clear();
        if (!candidates(period, days)) return false;
        std::erase_if(days, [this](int day) { return !isAllowed(day); });
        std::sort(days.begin(), days.end());
        days.erase(std::unique(days.begin(), days.end()), days.end());
        if (setPositions_.any()) days = chosen(days);
        return true;
    }

    void readUntil() {
        const auto moment = parseMoment(rule_.until);
        if (!moment) return;
        std::int64_t until = moment->seconds();
        if (moment->clock == Clock::Utc) until += start_.utcOffset;
        if (!moment->isDate && !start_.isDate) until -= start_.secondOfDay;
        // The last day on which the start's time of day is not after the end.
        const std::int64_t day =
            until >= 0 ? until / kDaySeconds : (until - kDaySeconds + 1) / kDaySeconds;
        last_ = static_cast<int>(std::min<std::int64_t>(last_, day));
    }

    void take(int day) {
        if (done_ || day <= first_) return;
        if (day > last_ || found_.size() >= limits_.most ||
            (rule_.count > 0 && found_.size() >= static_cast<std::size_t>(rule_.count))) {
            done_ = true;
            return;
        }
        found_.push_back(day);
    }

    bool candidates(std::int64_t period, std::vector<int>& days) {
        switch (rule_.frequency) {
            case Frequency::Daily:
                return daily(period, days);
            case Frequency::Weekly:
                return weekly(period, days);
            case Frequency::Monthly:
                return monthly(period, days);
            case Frequency::Yearly:
                return yearly(period, days);
        }
        return false;
    }

    bool daily(std::int64_t period, std::vector<int>& days) {
        const std::int64_t day = first_ + period;
        if (day > last_) return false;
        if (rule_.days.empty() || weekdayNamed(static_cast<int>(day)))
            days.push_back(static_cast<int>(day));
        return true;
    }

    bool weekly(std::int64_t period, std::vector<int>& days) {
        const int weekStart = rule_.weekStart == 0 ? 2 : rule_.weekStart;
        const std::int64_t week = first_ - (weekdayOf(first_) - weekStart + 7) % 7 + period * 7;
        if (week > last_) return false;
        const bool byDate = monthDays_.any() || yearDays_.any();
        unsigned wanted = weekdays_;
        if (rule_.days.empty())
            wanted = byDate ? ~0U : 1U << static_cast<unsigned>(weekdayOf(first_));
        for (int each = 0; each < 7; ++each)
            if ((wanted >> static_cast<unsigned>((weekStart - 1 + each) % 7 + 1) & 1U) != 0)
                days.push_back(static_cast<int>(week) + each);
        return true;
    }

    bool monthly(std::int64_t period, std::vector<int>& days) {
        const std::int64_t month = std::int64_t{start_.year} * 12 + start_.month - 1 + period;
        if (month / 12 > 2499) return false;
        const int year = static_cast<int>(month / 12);
        const int number = static_cast<int>(month % 12) + 1;
        if (dayNumber(year, number, 1) > last_) return false;
        if (!months_.any() || months_.holds(number)) addMonth(year, number, days);
        return true;
    }

    bool yearly(std::int64_t period, std::vector<int>& days) {
        if (start_.year + period > 2499) return false;
        const int year = static_cast<int>(start_.year + period);
        if (dayNumber(year, 1, 1) > last_) return false;
        if (weekNumbers_.any()) {
            addWeeks(year, days);
        } else if (months_.any()) {
            for (int month = 1; month <= 12; ++month)
                if (months_.holds(month)) addMonth(year, month, days);
        } else if (!rule_.days.empty()) {
            // Without months a position counts in the year, whatever else limits the days.
            addPositions(dayNumber(year, 1, 1), dayNumber(year, 12, 31), days);
        } else if (monthDays_.any()) {
            for (int month = 1; month <= 12; ++month) addMonth(year, month, days);
        } else if (yearDays_.any()) {
            addYearDays(year, days);
        } else if (start_.day <= daysInMonth(year, start_.month)) {
            days.push_back(dayNumber(year, start_.month, start_.day));
        }
        return true;
    }

    void addMonth(int year, int month, std::vector<int>& days) {
        const int length = daysInMonth(year, month);
        const int first = dayNumber(year, month, 1);
        if (!rule_.days.empty())
            addPositions(first, first + length - 1, days);
        else if (monthDays_.any() || yearDays_.any())
            addNamed(first, length, days);
        else if (weekNumbers_.any())
            addPosition({0, weekdayOf(first_)}, first, first + length - 1, days);
        else if (start_.day <= length)
            days.push_back(first + start_.day - 1);
    }

    // BYMONTHDAY, or all days, for isAllowed to choose from.
    void addNamed(int first, int length, std::vector<int>& days) const {
        if (!monthDays_.any())
            for (int each = 0; each < length; ++each) days.push_back(first + each);
        for (const int each : rule_.monthDays) {
            const int day = each < 0 ? each + length + 1 : each;
            if (day >= 1 && day <= length) days.push_back(first + day - 1);
        }
    }

    void addYearDays(int year, std::vector<int>& days) const {
        const int length = daysInYear(year);
        const int first = dayNumber(year, 1, 1);
        for (int each = 1; each <= length; ++each)
            if (yearDays_.names(each, length)) days.push_back(first + each - 1);
    }

    // BYDAY within the days from `first` to `last`.
    void addPositions(int first, int last, std::vector<int>& days) {
        for (const RuleDay& each : rule_.days) addPosition(each, first, last, days);
    }

    static void addPosition(const RuleDay& which, int first, int last, std::vector<int>& days) {
        const int head = first + (which.weekday - weekdayOf(first) + 7) % 7;
        const int tail = last - (weekdayOf(last) - which.weekday + 7) % 7;
        if (which.position == 0) {
            for (int day = head; day <= last; day += 7) days.push_back(day);
            return;
        }
        const int day =
            which.position > 0 ? head + (which.position - 1) * 7 : tail + (which.position + 1) * 7;
        if (day >= first && day <= last) days.push_back(day);
    }

    // BYWEEKNO: week 1 is the first with at least four days in the year.
    void addWeeks(int year, std::vector<int>& days) {
        const int weekStart = rule_.weekStart == 0 ? 2 : rule_.weekStart;
        const int first = firstWeek(year, weekStart);
        const int weeks = (firstWeek(year + 1, weekStart) - first) / 7;
        for (int week = 1; week <= weeks; ++week) {
            if (!weekNumbers_.names(week, weeks)) continue;
            for (int each = 0; each < 7; ++each) {
                const int day = first + (week - 1) * 7 + each;
                const bool byDate = monthDays_.any() || yearDays_.any();
                if (rule_.days.empty() ? byDate || weekdayOf(day) == weekdayOf(first_)
                                       : weekdayNamed(day))
                    days.push_back(day);
            }
        }
    }

    static int firstWeek(int year, int weekStart) {
        const int newYear = dayNumber(year, 1, 1);
        const int offset = (weekdayOf(newYear) - weekStart + 7) % 7;
        return offset <= 3 ? newYear - offset : newYear + 7 - offset;
    }

    // Whatever the frequency, a list of dates excludes all other dates.
    [[nodiscard]] bool isAllowed(int day) const {
        if (!months_.any() && !monthDays_.any() && !yearDays_.any() && !weekNumbers_.any())
            return true;
        const Civil civil = civilOf(day);
        if (months_.any() && !months_.holds(civil.month)) return false;
        if (monthDays_.any() && !monthDays_.names(civil.day, daysInMonth(civil.year, civil.month)))
            return false;
        if (yearDays_.any() &&
            !yearDays_.names(day - dayNumber(civil.year, 1, 1) + 1, daysInYear(civil.year)))
            return false;
        return !weekNumbers_.any() || isInWeek(day, civil.year);
    }

    [[nodiscard]] bool isInWeek(int day, int year) const {
        const int weekStart = rule_.weekStart == 0 ? 2 : rule_.weekStart;
        int weekYear = year + 1;
        while (firstWeek(weekYear, weekStart) > day) --weekYear;
        const int first = firstWeek(weekYear, weekStart);
        return weekNumbers_.names((day - first) / 7 + 1,
                                  (firstWeek(weekYear + 1, weekStart) - first) / 7);
    }

    bool weekdayNamed(int day) const {
        return (weekdays_ >> static_cast<unsigned>(weekdayOf(day)) & 1U) != 0;
    }

    std::vector<int> chosen(const std::vector<int>& days) const {
        std::vector<int> result;
        const int length = static_cast<int>(days.size());
        for (int each = 1; each <= length; ++each)
            if (setPositions_.names(each, length))
                result.push_back(days[static_cast<std::size_t>(each - 1)]);
        return result;
    }

    const Rule& rule_;
    const RuleStart& start_;
    const RuleLimits& limits_;
    Members months_;
    Members monthDays_;
    Members yearDays_;
    Members weekNumbers_;
    Members setPositions_;
    int first_;
    int last_;
    unsigned weekdays_ = 0;  // of the rule's days, a bit each
    bool done_ = false;
    std::vector<int> found_;
};

}  // namespace

namespace {

// The same as yieldsStart of a rule that has at most weekdays to choose from, as most have; nothing
// for any other rule.
std::optional<bool> yieldsWeekday(const Rule& rule, const RuleStart& start) {
    const bool daily = rule.frequency == Frequency::Daily || rule.frequency == Frequency::Weekly;
    if (!daily || !rule.until.empty() || start.year > 2499) return std::nullopt;
    for (const auto* list :
         {&rule.months, &rule.monthDays, &rule.yearDays, &rule.weekNumbers, &rule.setPositions})
        if (!list->empty()) return std::nullopt;
    const int weekday = weekdayOf(dayNumber(start.year, start.month, start.day));
    return rule.days.empty() ||
           std::any_of(rule.days.begin(), rule.days.end(),
                       [&](const RuleDay& each) { return each.weekday == weekday; });
}

}  // namespace

std::vector<int> expandRule(const Rule& rule, const RuleStart& start, const RuleLimits& limits) {
    return Expander(rule, start, limits).run();
}

bool yieldsStart(const Rule& rule, const RuleStart& start) {
    if (const auto weekday = yieldsWeekday(rule, start)) return *weekday;
    const RuleLimits limits;
    return Expander(rule, start, limits).yieldsStart();
}

bool recursAt(const Rule& rule, const RuleStart& start, int second) {
    if (start.isDate) return true;
    const auto has = [](const std::vector<int>& own, int wanted, int ofStart) {
        return own.empty() ? wanted == ofStart
                           : std::find(own.begin(), own.end(), wanted) != own.end();
    };
    const int own = start.secondOfDay;
    return has(rule.hours, second / 3600, own / 3600) &&
           has(rule.minutes, second / 60 % 60, own / 60 % 60) &&
           has(rule.seconds, second % 60, own % 60);
}

}  // namespace qel::calendar
