// What `qelutil rule` and `qelutil expand` have in common: the rule's text, its form, the date on
// which its series starts. One thread.
#ifndef QELUTIL_BASE_RULEARGUMENTS_H
#define QELUTIL_BASE_RULEARGUMENTS_H

#include <string>

#include "QelCalendar/Rules.h"
#include "base/Command.h"
#include "base/Moment.h"

namespace qel::cli {

// "v10", "ical", "positional".
[[nodiscard]] const char* nameOfForm(qelcal_form form);
[[nodiscard]] qelcal_form formOfName(const std::string& name);

struct RuleArguments {
    std::string text;
    std::string start;
    std::string from;
    std::string countMeans;

    // Adds TEXT, --start, --from and --count-means to the command.
    void addTo(CLI::App& command);
};

// A rule text as it was understood.
struct ReadRules {
    Time start;
    qelcal::Rules rules;
};

// Throws UsageError for an invalid start and InputError for a text without a rule, with the reason.
[[nodiscard]] ReadRules readRuleArguments(const RuleArguments& arguments);

}  // namespace qel::cli

#endif
