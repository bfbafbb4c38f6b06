// The dates of a recurrence rule. Any thread.
#ifndef QEL_CALENDAR_RULES_OCCURRENCES_H
#define QEL_CALENDAR_RULES_OCCURRENCES_H

#include <cstddef>
#include <vector>

#include "calendar/rules/Rule.h"

namespace qel::calendar {

// What expandRule stops at.
struct RuleLimits {
    std::size_t most = 100;  // occurrences
    int lastYear = 2499;     // no occurrence later than this year; at most 2499
    // No more than this many periods that have occurrences: weeks in a weekly rule. 0: no limit.
    std::size_t periods = 0;
};

// The code dates (days since 1 January 1900) of the occurrences of `rule` for a series that starts
// on `start`, ascending. An UNTIL with a time of day is compared with the start's time of day, in
// the start's clock. As in RFC 5545 the start is always the first occurrence and counts as one. Of
// the parts BYHOUR, BYMINUTE and BYSECOND only the day's existence is looked at. A rule that has no
// occurrence for a hundred years (daily and weekly ones: fifty) has ended. Time is bounded by the
// years between the start and the end, for any rule.
[[nodiscard]] std::vector<int> expandRule(const Rule& rule, const RuleStart& start,
                                          const RuleLimits& limits);

// False when the rule by itself has no occurrence on the start: MO for a start of Wednesday, 15
// June 2005, or an end before it.
[[nodiscard]] bool yieldsStart(const Rule& rule, const RuleStart& start);

// True where the rule, on its days, has an occurrence at that second of the day.
[[nodiscard]] bool recursAt(const Rule& rule, const RuleStart& start, int second);

}  // namespace qel::calendar

#endif
