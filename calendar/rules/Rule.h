// A recurrence rule as a person means it: everything that an iCalendar RRULE of daily to yearly
// frequency or a vCalendar 1.0 rule of the basic grammar can say. Plain data; any thread.
#ifndef QEL_CALENDAR_RULES_RULE_H
#define QEL_CALENDAR_RULES_RULE_H

#include <cstddef>
#include <string>
#include <vector>

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
};

// The date and time of day that a series starts on, in the clock in which its rule is meant.
struct RuleStart {
    int year = 1970;
    int month = 1;
    int day = 1;
    int secondOfDay = 0;
    bool isDate = false;  // an all-day entry: only the date counts
    int utcOffset = 0;    // seconds east of UTC at the start; moves an UNTIL with Z into this clock
};

// What expandRule stops at.
struct RuleLimits {
    std::size_t most = 100;  // occurrences
    int lastYear = 2499;     // no occurrence later than this year; at most 2499
};

// The code dates (days since 1 January 1900) of the occurrences of `rule` for a series that starts
// on `start`, ascending. An UNTIL with a time of day is compared with the start's time of day, in
// the start's clock. As in RFC 5545 the start is always the first occurrence and counts as one. Of
// the parts BYHOUR, BYMINUTE and BYSECOND only the day's existence is looked at. Time is bounded by
// the years between the start and the end, whatever the rule says.
[[nodiscard]] std::vector<int> expandRule(const Rule& rule, const RuleStart& start,
                                          const RuleLimits& limits);

// False when the rule by itself has no occurrence on the start: MO for a start of Wednesday, 15
// June 2005, or an end before it.
[[nodiscard]] bool yieldsStart(const Rule& rule, const RuleStart& start);

}  // namespace qel::calendar

#endif
