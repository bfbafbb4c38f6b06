// A rule as the library's repeat record: how it is made, what it says, the dates that the engine
// gives for it. Any thread.
#ifndef QELUTIL_BASE_REPEATTEXT_H
#define QELUTIL_BASE_REPEATTEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include "QelCalendar/Rules.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "base/Moment.h"

namespace qel::cli {

struct Repeat {
    int code = 0;          // not 0: there is no record, `problem` says why
    std::string problem;   // one sentence without a full stop
    ZQTR_REPEAT record{};  // without exclusions; owns nothing
    int warningBits = 0;   // as the library gave them
    std::vector<std::string>
        warnings;  // what of the rule the record does not hold, one sentence each
};

// The repeat record of a rule's record, made by the library.
[[nodiscard]] Repeat repeatOf(const _rruleRepeat& record, const Time& start);
// Those of rule number `rule`.
[[nodiscard]] std::vector<Repeat> repeatsOf(const qelcal::Rules& rules, std::size_t rule,
                                            const Time& start);

// "weekly on the selected weekdays"
[[nodiscard]] std::string repeatTypeName(int type);

// "every 2 weeks, on MO WE FR, from 2005-06-15 to 2005-07-06": the fields that the type reads.
[[nodiscard]] std::string repeatFields(const ZQTR_REPEAT& record);

// The rule that the library makes of the record on the way back, as an iCalendar text.
[[nodiscard]] std::string ruleBack(const ZQTR_REPEAT& record);

// The first `most` code dates that the engine gives for the record, none later than its end and
// `lastDay`, ascending.
[[nodiscard]] std::vector<int> repeatDates(const ZQTR_REPEAT& record, std::size_t most,
                                           int lastDay);

// The same for several records that are one rule together: their dates merged, each once.
[[nodiscard]] std::vector<int> repeatDates(const std::vector<Repeat>& repeats, std::size_t most,
                                           int lastDay);

}  // namespace qel::cli

#endif
