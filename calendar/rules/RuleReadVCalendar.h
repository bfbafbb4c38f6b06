// Part of readRules; see RuleReader.h.
#ifndef QEL_CALENDAR_RULES_RULEREADVCALENDAR_H
#define QEL_CALENDAR_RULES_RULEREADVCALENDAR_H

#include <optional>
#include <string_view>

#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

// Adds the rules of `text` to `reading`.
void readVCalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        CountMeans countMeans, RuleReading& reading);

}  // namespace qel::calendar

#endif
