// A recurrence rule as a person means it: everything that an iCalendar RRULE of daily to yearly
// frequency or a vCalendar 1.0 rule of the basic grammar can say. Plain data; any thread.
#ifndef QEL_CALENDAR_RULES_RULE_H
#define QEL_CALENDAR_RULES_RULE_H

#include <optional>
#include <string>
#include <vector>

#include "calendar/base/Moment.h"

namespace qel::calendar {

enum class Frequency { Daily, Weekly, Monthly, Yearly };

// One item of BYDAY. position: 0 every such day, n the n-th of the month (of the year in a yearly
// rule without months), -n the n-th from its end. weekday: 1 Sunday .. 7 Saturday.
struct RuleDay {
    int position = 0;
    int weekday = 1;
    bool operator==(const RuleDay&) const = default;
};

// Lists hold each value once, in the order of arrival. Empty lists, 0 and "" mean that the part is
// absent.
struct Rule {
    Frequency frequency = Frequency::Daily;
    int interval = 1;               // 1 .. 2^31-1
    int count = 0;                  // at most one of count and until is given
    std::string until;              // YYYYMMDD, YYYYMMDDTHHMMSS or YYYYMMDDTHHMMSSZ
    std::vector<RuleDay> days;      // BYDAY
    std::vector<int> monthDays;     // -31..-1, 1..31
    std::vector<int> yearDays;      // -366..-1, 1..366
    std::vector<int> weekNumbers;   // -53..-1, 1..53
    std::vector<int> months;        // 1..12
    std::vector<int> setPositions;  // BYSETPOS, -366..-1, 1..366
    std::vector<int> hours;         // BYHOUR, 0..23
    std::vector<int> minutes;       // BYMINUTE, 0..59
    std::vector<int> seconds;       // BYSECOND, 0..59
    int weekStart = 0;              // WKST; 1 Sunday .. 7 Saturday, 0 not given (Monday, RFC 5545)
    bool operator==(const Rule&) const = default;

    [[nodiscard]] bool endless() const { return count == 0 && until.empty(); }
    // Its own times of day, in place of the start's.
    [[nodiscard]] bool hasTimes() const {
        return !hours.empty() || !minutes.empty() || !seconds.empty();
    }
};

// The date and time of day that a series starts on, on the clock of its rule.
struct RuleStart {
    int year = 1970;
    int month = 1;
    int day = 1;
    int secondOfDay = 0;
    bool isDate = false;  // an all-day entry: only the date counts
    int utcOffset = 0;    // seconds east of UTC at the start; moves an UNTIL with Z into this clock
    // The start's clock, UTC or floating, where no zone is known that could move an UNTIL on the
    // other one to it.
    std::optional<Clock> onlyClock = std::nullopt;
};

}  // namespace qel::calendar

#endif
