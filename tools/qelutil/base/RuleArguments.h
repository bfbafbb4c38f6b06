// What `qelutil rule` and `qelutil expand` have in common: the rule's text, its form, the date on
// which its series starts. One thread.
#ifndef QELUTIL_BASE_RULEARGUMENTS_H
#define QELUTIL_BASE_RULEARGUMENTS_H

#include <string>
#include <string_view>

#include "base/Command.h"
#include "calendar/rules/RuleReader.h"

namespace qel::cli {

// The last code date that dates of the library reach: 31 December 2499.
inline constexpr int kLastDay = 219145;

// Reads YYYYMMDD or YYYY-MM-DD, "today", and either with THHMMSS or THH:MM:SS (and Z) behind it.
// Throws UsageError, naming `option`, for anything else and for years outside 1900 to 2499.
[[nodiscard]] calendar::RuleStart dateArgument(const std::string& option, std::string_view text);

[[nodiscard]] int codeDateOf(const calendar::RuleStart& date);

// "v10", "ical", "positional".
[[nodiscard]] const char* nameOfForm(calendar::RuleForm form);
[[nodiscard]] calendar::RuleForm formOfName(const std::string& name);

struct RuleArguments {
    std::string text;
    std::string start;
    std::string from;

    // Adds TEXT, --start and --from to the command.
    void addTo(CLI::App& command);
};

// A rule text as it was understood.
struct ReadRules {
    calendar::RuleForm form = calendar::RuleForm::VCalendar10;
    calendar::RuleStart start;
    calendar::RuleReading reading;
};

// Throws UsageError for a bad start and InputError for a text without a rule, naming the reason.
[[nodiscard]] ReadRules readRuleArguments(const RuleArguments& arguments);

}  // namespace qel::cli

#endif
