#include "RuleTexts.h"

using namespace qel::fuzz;

static const char* write(const _rruleRepeat& rule, VStr& out, bool withTime) {
    _rruleRepeat copy = rule;
    return BxUtil_RRULEtoPositional(&copy, out, withTime);
}

QEL_FUZZ_TARGET(rule_positional) {
    _rruleRepeat first;
    _rruleRepeat second;
    if (!roundTrip(in.text(), BxUtil_PositionaltoRRULE, write, first, second)) return;
    FUZZ_CHECK(sameRecord(first, second));
}
