// The defaults of the rule record.
#include "QelUtility/RRule.h"

#include <cstring>

int BxUtil_InitializeRRULE(_rruleRepeat* rule) {
    if (rule == nullptr) return 0;
    std::memset(rule, 0, sizeof *rule);
    rule->until = -1;
    rule->count = -1;
    rule->interval = 1;
    rule->wkst |= RRULE_DAY_SU;
    return 0;
}
