#include "RuleTexts.h"

using namespace qel::fuzz;

static const char* write(const _rruleRepeat& rule, VStr& out, bool withTime) {
    _rruleRepeat copy = rule;
    return BxUtil_RRULEtoIETF(&copy, out, withTime);
}

QEL_FUZZ_TARGET(rule_icalendar) {
    _rruleRepeat first;
    _rruleRepeat second;
    if (!roundTrip(in.text(), BxUtil_PositionalV20toRRULE, write, first, second)) return;
    FUZZ_CHECK(sameRecord(first, second));
}
