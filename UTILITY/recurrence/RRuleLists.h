// The writers of a rule's lists. Stateless; any thread may call.
#ifndef QEL_RECURRENCE_RRULELISTS_H
#define QEL_RECURRENCE_RRULELISTS_H

#include "QelUtility/RRule.h"
#include "recurrence/RRuleOutput.h"

namespace qel::recurrence {

// Each appends one set of `rule` to `out`, its items separated by `separator`.

// "SU" .. "SA" for each bit of byDay.
void RRule_AppendDays(const _rruleRepeat& rule, RRuleOutput& out, char separator);
// The positive days ascending, then the negative ones by ascending magnitude: "-1", but "1-" when
// the items are separated by spaces (vCalendar's form of the last day).
void RRule_AppendMonthDays(const _rruleRepeat& rule, RRuleOutput& out, char separator);
// 1 .. 366, then -1 .. -366.
void RRule_AppendYearDays(const _rruleRepeat& rule, RRuleOutput& out, char separator);
// 1 .. 53, then -1 .. -53, separated by commas.
void RRule_AppendWeekNumbers(const _rruleRepeat& rule, RRuleOutput& out);
// "1" .. "12" for each bit of byMonth.
void RRule_AppendMonths(const _rruleRepeat& rule, RRuleOutput& out, char separator);
// Every slot of setPos that is not free, in slot order, separated by commas.
void RRule_AppendSetPositions(const _rruleRepeat& rule, RRuleOutput& out);

}  // namespace qel::recurrence

#endif
