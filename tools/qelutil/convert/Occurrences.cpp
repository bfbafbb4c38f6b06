#include <algorithm>
#include <cstdint>

#include "convert/Days.h"
#include "convert/Moment.h"
#include "convert/Rule.h"

namespace qel::convert {

namespace {

constexpr std::int64_t kDaySeconds = 86400;

bool holds(const std::vector<int>& list, int value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

// A list with negative members counted from the end: of `length` days, does it name day `day`?
bool names(const std::vector<int>& list, int day, int length) {
    return holds(list, day) || holds(list, day - length - 1);
}

class Expander {
  public:
    Expander(const Rule& rule, const RuleStart& start, const RuleLimits& limits)
        : rule_(rule),
          start_(start),
          limits_(limits),
          first_(dayNumber(start.year, start.month, start.day)),
          last_(dayNumber(std::min(limits.lastYear, 2499), 12, 31)) {
        readUntil();
    }

    std::vector<int> run() {
        if (limits_.most == 0) return {};
        found_.push_back(first_);
        const std::int64_t step = std::max(rule_.interval, 1);
        std::vector<int> days;
        for (std::int64_t period = 0; !done_; period += step) {
            days.clear();
            if (!candidates(period, days)) break;
            std::sort(days.begin(), days.end());
            days.erase(std::unique(days.begin(), days.end()), days.end());
            for (const int day : chosen(days)) take(day);
        }
        return std::move(found_);
    }

  private:
    void readUntil() {
        const auto moment = parseMoment(rule_.until);
        if (!moment) return;
        std::int64_t until = moment->seconds();
        if (moment->isDate || start_.isDate) {
            until = std::int64_t{moment->day} * kDaySeconds;
        } else {
            if (moment->clock == Clock::Utc) until += start_.utcOffset;
            until -= start_.secondOfDay;
        }
        // The last day on which the start's time of day is not past the end.
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

    // The days of the period that begins `period` units after the start's. False past the end.
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
        addIfAllowed(static_cast<int>(day), days);
        return true;
    }

    bool weekly(std::int64_t period, std::vector<int>& days) {
        const int weekStart = rule_.weekStart == 0 ? 2 : rule_.weekStart;
        const std::int64_t week = first_ - (weekdayOf(first_) - weekStart + 7) % 7 + period * 7;
        if (week > last_) return false;
        for (int each = 0; each < 7; ++each) {
            const int day = static_cast<int>(week) + each;
            if (rule_.days.empty() ? weekdayOf(day) == weekdayOf(first_) : weekdayNamed(day))
                addIfAllowed(day, days);
        }
        return true;
    }

    bool monthly(std::int64_t period, std::vector<int>& days) {
        const std::int64_t month = std::int64_t{start_.year} * 12 + start_.month - 1 + period;
        if (month / 12 > 2499) return false;
        const int year = static_cast<int>(month / 12);
        const int number = static_cast<int>(month % 12) + 1;
        if (dayNumber(year, number, 1) > last_) return false;
        if (rule_.months.empty() || holds(rule_.months, number)) addMonth(year, number, days);
        return true;
    }

    bool yearly(std::int64_t period, std::vector<int>& days) {
        if (start_.year + period > 2499) return false;
        const int year = static_cast<int>(start_.year + period);
        if (dayNumber(year, 1, 1) > last_) return false;
        if (!rule_.weekNumbers.empty()) {
            addWeeks(year, days);
        } else if (!rule_.yearDays.empty()) {
            addYearDays(year, days);
        } else if (!rule_.months.empty()) {
            for (int month = 1; month <= 12; ++month)
                if (holds(rule_.months, month)) addMonth(year, month, days);
        } else if (!rule_.monthDays.empty()) {
            for (int month = 1; month <= 12; ++month) addMonth(year, month, days);
        } else if (!rule_.days.empty()) {
            addPositions(dayNumber(year, 1, 1), dayNumber(year, 12, 31), days);
        } else if (start_.day <= daysInMonth(year, start_.month)) {
            days.push_back(dayNumber(year, start_.month, start_.day));
        }
        return true;
    }

    void addMonth(int year, int month, std::vector<int>& days) {
        const int length = daysInMonth(year, month);
        const int first = dayNumber(year, month, 1);
        if (rule_.monthDays.empty() && rule_.days.empty()) {
            if (start_.day <= length) days.push_back(first + start_.day - 1);
            return;
        }
        std::vector<int> byDay;
        if (!rule_.days.empty()) addPositions(first, first + length - 1, byDay);
        for (int each = 1; each <= length; ++each) {
            const int day = first + each - 1;
            if (!rule_.monthDays.empty() && !names(rule_.monthDays, each, length)) continue;
            if (!rule_.days.empty() && !holds(byDay, day)) continue;
            days.push_back(day);
        }
    }

    // BYDAY within the days from `first` to `last`.
    void addPositions(int first, int last, std::vector<int>& days) {
        for (const RuleDay& each : rule_.days) {
            const int head = first + (each.weekday - weekdayOf(first) + 7) % 7;
            const int tail = last - (weekdayOf(last) - each.weekday + 7) % 7;
            if (each.position == 0) {
                for (int day = head; day <= last; day += 7) days.push_back(day);
            } else {
                const int day = each.position > 0 ? head + (each.position - 1) * 7
                                                  : tail + (each.position + 1) * 7;
                if (day >= first && day <= last) days.push_back(day);
            }
        }
    }

    void addYearDays(int year, std::vector<int>& days) {
        const int length = daysInYear(year);
        const int first = dayNumber(year, 1, 1);
        for (int each = 1; each <= length; ++each) {
            const int day = first + each - 1;
            if (!names(rule_.yearDays, each, length)) continue;
            if (!rule_.days.empty() && !weekdayNamed(day)) continue;
            if (!rule_.months.empty() && !holds(rule_.months, civilOf(day).month)) continue;
            days.push_back(day);
        }
    }

    // BYWEEKNO: week 1 is the first with at least four days in the year.
    void addWeeks(int year, std::vector<int>& days) {
        const int weekStart = rule_.weekStart == 0 ? 2 : rule_.weekStart;
        const int first = firstWeek(year, weekStart);
        const int weeks = (firstWeek(year + 1, weekStart) - first) / 7;
        for (int week = 1; week <= weeks; ++week) {
            if (!names(rule_.weekNumbers, week, weeks)) continue;
            for (int each = 0; each < 7; ++each) {
                const int day = first + (week - 1) * 7 + each;
                if (rule_.days.empty() ? weekdayOf(day) != weekdayOf(first_) : !weekdayNamed(day))
                    continue;
                if (!rule_.months.empty() && !holds(rule_.months, civilOf(day).month)) continue;
                days.push_back(day);
            }
        }
    }

    static int firstWeek(int year, int weekStart) {
        const int newYear = dayNumber(year, 1, 1);
        const int offset = (weekdayOf(newYear) - weekStart + 7) % 7;
        return offset <= 3 ? newYear - offset : newYear + 7 - offset;
    }

    void addIfAllowed(int day, std::vector<int>& days) {
        const Civil civil = civilOf(day);
        if (!rule_.months.empty() && !holds(rule_.months, civil.month)) return;
        if (!rule_.monthDays.empty() &&
            !names(rule_.monthDays, civil.day, daysInMonth(civil.year, civil.month)))
            return;
        if (!rule_.days.empty() && !weekdayNamed(day)) return;
        days.push_back(day);
    }

    bool weekdayNamed(int day) const {
        const int weekday = weekdayOf(day);
        return std::any_of(rule_.days.begin(), rule_.days.end(),
                           [&](const RuleDay& each) { return each.weekday == weekday; });
    }

    std::vector<int> chosen(const std::vector<int>& days) const {
        if (rule_.setPositions.empty()) return days;
        std::vector<int> result;
        const int length = static_cast<int>(days.size());
        for (int each = 1; each <= length; ++each)
            if (names(rule_.setPositions, each, length))
                result.push_back(days[static_cast<std::size_t>(each - 1)]);
        return result;
    }

    const Rule& rule_;
    const RuleStart& start_;
    const RuleLimits& limits_;
    int first_;
    int last_;
    bool done_ = false;
    std::vector<int> found_;
};

}  // namespace

std::vector<int> expandRule(const Rule& rule, const RuleStart& start, const RuleLimits& limits) {
    return Expander(rule, start, limits).run();
}

}  // namespace qel::convert
