// The end of a rule: a count, a date, or the earlier one of both. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEEND_H
#define QEL_CALENDAR_RULES_RULEEND_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar {

// What a text says about its end, in any order and number.
struct RuleEnd {
    std::optional<int> count;  // 0: without end
    std::string until;         // as Rule::until, "" when none was given
};

// Reads an end date. False when `text` is not a date.
[[nodiscard]] bool readUntil(std::string_view text, RuleEnd& end);

// Puts an end into `rule`. Of a count and a date it takes the earlier one if the start is known,
// else the date. An end date without a time becomes the last second of that day in a series with a
// time of day; `midnightIsDay` does the same to an end at midnight of a series that is not at
// midnight. An end in UTC of a local series, or the reverse, where no zone relates the two, is the
// last occurrence where that may be the same instant, else the whole of its day.
void applyEnd(const RuleEnd& end, const std::optional<RuleStart>& start, bool midnightIsDay,
              Rule& rule, std::vector<Note>& notes);

}  // namespace qel::calendar

#endif
