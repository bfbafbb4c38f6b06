// Writes rules for vCalendar 1.0. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEWRITEVCALENDAR_H
#define QEL_CALENDAR_RULES_RULEWRITEVCALENDAR_H

#include <optional>
#include <string>
#include <vector>

#include "calendar/rules/Rule.h"

namespace qel::calendar {

struct VCalendarRule {
    // One text, or several if the format needs several ("MD1 13 #0"). Empty if it cannot express
    // the rule.
    std::vector<std::string> texts;
    // What the format lacks; empty unless `texts` is.
    std::string reason;
};

// The rule in vCalendar 1.0: "MP2 1+ SU 1- SU #10". Read again with the same start, the texts give
// the same occurrences: this is verified, and a rule that fails counts as one that the format
// cannot express.
[[nodiscard]] VCalendarRule vCalendarTexts(const Rule& rule, const std::optional<RuleStart>& start);

}  // namespace qel::calendar

#endif
