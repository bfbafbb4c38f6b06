// Everything about rule texts, for sources that still include this name. To be removed with the
// last of them.
#ifndef QEL_CALENDAR_RULES_RULETEXT_H
#define QEL_CALENDAR_RULES_RULETEXT_H

#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

#endif
