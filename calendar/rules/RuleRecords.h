// Rules as QelUtility's records, and the positional texts that it reads records from. Any thread.
#ifndef QEL_CALENDAR_RULES_RULERECORDS_H
#define QEL_CALENDAR_RULES_RULERECORDS_H

#include <string>
#include <vector>

#include "QelUtility/RRule.h"
#include "calendar/base/Notes.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar {

// A record that is a rule or a part of one: a rule that does not fit one record becomes several,
// which together mean the same.
struct RulePiece {
    _rruleRepeat record;
    // True: the record's position belongs to its only weekday ("2TU"). False: the positions select
    // from each period (BYSETPOS).
    bool positionsAreOrdinals = false;
};

// The records of `rule`, read by QelUtility from its positional texts. Empty if QelUtility rejects
// one. BYHOUR, BYMINUTE, BYSECOND and an interval or a count above 32767 do not fit a record; each
// such loss is added to `notes`, which may be null.
[[nodiscard]] std::vector<RulePiece> rulePieces(const Rule& rule, std::vector<Note>* notes);

// The rule in the positional form, one text for each record: "WEEKLY;;10;2;;;;MO,WE;;;;;;;".
[[nodiscard]] std::vector<std::string> positionalTexts(const Rule& rule);

}  // namespace qel::calendar

#endif
