// A rule record as one line of text, for tables of expected values: the frequency, then every field
// that does not hold its default, sets as the numbers of their bits.
#ifndef QEL_TESTS_RULERECORDTEXT_H
#define QEL_TESTS_RULERECORDTEXT_H

#include <string>

#include "QelUtility/RRule.h"

namespace qel::test {

// "WEEKLY interval=2 count=10 parts=BYDAY days=2,4,6"
std::string describe(const _rruleRepeat& rule);

}  // namespace qel::test

#endif
