// Part of readRules; see RuleReader.h.
#ifndef QEL_CALENDAR_RULES_RULEREADICALENDAR_H
#define QEL_CALENDAR_RULES_RULEREADICALENDAR_H

#include <optional>
#include <string_view>

#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

// Adds the rules of `text` to `reading`.
void readICalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading);
void readPositionalRule(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading);

}  // namespace qel::calendar

#endif
