// A recurrence rule in one plain English sentence. Any thread.
#ifndef QEL_CALENDAR_RULES_RULESENTENCE_H
#define QEL_CALENDAR_RULES_RULESENTENCE_H

#include <string>

#include "calendar/rules/Rule.h"

namespace qel::calendar {

// "every 2 weeks on Monday, Wednesday and Friday, 10 times", "every month on the last workday,
// until 31 December 2005", "every year on 15 June, without end". `start`
// supplies what the rule takes from its series' start. No full stop, no capital at the start.
[[nodiscard]] std::string ruleSentence(const Rule& rule, const RuleStart& start);

}  // namespace qel::calendar

#endif
