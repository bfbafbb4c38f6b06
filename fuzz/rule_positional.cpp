#include "RuleTexts.h"
#include "recurrence/RRuleInternal.h"

using namespace qel::fuzz;

QEL_FUZZ_TARGET(rule_positional) {
    _rruleRepeat first;
    _rruleRepeat second;
    if (!roundTrip(in.text(), BxUtil_PositionaltoRRULE, qel::recurrence::RRule_ToPositional, first,
                   second))
        return;
    FUZZ_CHECK(sameRecord(first, second));
}
