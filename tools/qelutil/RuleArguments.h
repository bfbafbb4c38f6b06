// What `qelutil rule` and `qelutil expand` have in common: the rule's text, its form, the date on
// which its series starts. One thread.
#ifndef QELUTIL_RULEARGUMENTS_H
#define QELUTIL_RULEARGUMENTS_H

#include <string>
#include <string_view>

#include "commands/Command.h"
#include "convert/RuleText.h"

namespace qel::cli {

// The last code date that dates of the library reach: 31 December 2499.
inline constexpr int kLastDay = 219145;

// Reads YYYYMMDD or YYYY-MM-DD, "today", and either with THHMMSS or THH:MM:SS (and Z) behind it.
// Throws UsageError, naming `option`, for anything else and for years outside 1900 to 2499.
[[nodiscard]] convert::RuleStart dateArgument(const std::string& option, std::string_view text);

[[nodiscard]] int codeDateOf(const convert::RuleStart& date);

// "v10", "ical", "positional".
[[nodiscard]] const char* nameOfForm(convert::RuleForm form);
[[nodiscard]] convert::RuleForm formOfName(const std::string& name);

struct RuleArguments {
    std::string text;
    std::string start;
    std::string from;

    // Adds TEXT, --start and --from to the command.
    void addTo(CLI::App& command);
};

// A rule text as it was understood.
struct ReadRules {
    convert::RuleForm form = convert::RuleForm::VCalendar10;
    convert::RuleStart start;
    convert::RuleReading reading;
};

// Throws UsageError for a bad start and InputError for a text without a rule, naming the reason.
[[nodiscard]] ReadRules readRuleArguments(const RuleArguments& arguments);

}  // namespace qel::cli

#endif
