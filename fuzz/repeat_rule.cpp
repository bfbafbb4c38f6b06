// A rule record of arbitrary bytes to a repeat record, back, and there again.
#include "Fuzz.h"
#include "QelUtility/BxRepeat.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/VStr.h"

using namespace qel::fuzz;

namespace {

void fromRepeat(ZQTR_REPEAT& repeat) {
    _rruleRepeat rule;
    BxUtil_InitializeRRULE(&rule);
    VStr exclusions;
    VStr start;
    int flags = 0;
    const int result = BxUtil_BxRepeatToRRule(&repeat, &rule, exclusions, start, 0, &flags);
    FUZZ_CHECK(result == 0 || result == -1);
    if (result != 0) return;
    VStr text;
    BxUtil_RRULEtoIETF(&rule, text, true);
    BxUtil_RRULEtoV10IETF(&rule, text, true);
    ZQTR_REPEAT again;
    int endFromRule = 0;
    if (BxUtil_RRuleToBxRepeat(&rule, exclusions, start, &endFromRule, &again, &flags) == 0) {
        FUZZ_CHECK(again.type >= REPEAT_NONE && again.type <= REPEAT_WEEKS_MONTHLY);
        FUZZ_CHECK(again.interval == rule.interval);
    }
    std::free(again.exclusions);
}

}  // namespace

QEL_FUZZ_TARGET(repeat_rule) {
    if (in.flag()) {
        auto repeat = in.take<ZQTR_REPEAT>();
        int exclusions[4] = {in.take<int>(), in.take<int>(), in.take<int>(), in.take<int>()};
        repeat.exclusions = exclusions;
        repeat.exclusionCount = 4;
        fromRepeat(repeat);
        return;
    }
    auto rule = in.take<_rruleRepeat>();
    const std::string start = in.line();
    const std::string exclusions = in.text();
    ZQTR_REPEAT repeat;
    int endFromRule = -1;
    int flags = -1;
    const int result = BxUtil_RRuleToBxRepeat(&rule, exclusions.c_str(), start.c_str(),
                                              &endFromRule, &repeat, &flags);
    FUZZ_CHECK(result == 0 || result == -1 || result == 2105 || result == 2106 || result == 4008);
    FUZZ_CHECK(repeat.exclusionCount >= 0);
    FUZZ_CHECK(repeat.exclusionCount == 0 || repeat.exclusions != nullptr);
    int* const owned = repeat.exclusions;
    if (result == 0) fromRepeat(repeat);
    std::free(owned);
}
