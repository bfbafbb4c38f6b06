#include "RuleTexts.h"

using namespace qel::fuzz;

static const char* write(const _rruleRepeat& rule, VStr& out, bool withTime) {
    _rruleRepeat copy = rule;
    return BxUtil_RRULEtoV10IETF(&copy, out, withTime);
}

// The form writes several lists back to back, so what comes back may be another rule: reading and
// writing must be steady all the same.
QEL_FUZZ_TARGET(rule_vcalendar) {
    const std::string text = in.text();
    _rruleRepeat rule;
    int flags = 0;
    if (BxUtil_PositionalV10toRRULE(text.c_str(), &rule, &flags) != 0) return;
    VStr written;
    FUZZ_CHECK(write(rule, written, true) != nullptr);
    _rruleRepeat second;
    FUZZ_CHECK(BxUtil_PositionalV10toRRULE(written, &second, &flags) == 0);
    FUZZ_CHECK(rule.freq == second.freq);
}
