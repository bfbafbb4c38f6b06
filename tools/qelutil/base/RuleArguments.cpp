#include "base/RuleArguments.h"

#include <CLI/CLI.hpp>

#include "base/Text.h"

namespace qel::cli {

const char* nameOfForm(qelcal_form form) {
    switch (form) {
        case QELCAL_FORM_ICALENDAR:
            return "ical";
        case QELCAL_FORM_POSITIONAL:
            return "positional";
        default:
            return "v10";
    }
}

qelcal_form formOfName(const std::string& name) {
    if (name == "ical") return QELCAL_FORM_ICALENDAR;
    return name == "positional" ? QELCAL_FORM_POSITIONAL : QELCAL_FORM_VCALENDAR;
}

void RuleArguments::addTo(CLI::App& command) {
    command.add_option("TEXT", text, "The rule, as in the calendar file")->required();
    command
        .add_option("--start", start,
                    "The date of the series' first entry, as 2005-06-15, today or tomorrow")
        ->required()
        ->type_name("DATE");
    command.add_option("--from", from, "The form of TEXT; detected if not given")
        ->type_name("FORM")
        ->check(CLI::IsMember({"v10", "ical", "positional"}));
    command
        .add_option("--count-means", countMeans,
                    "What #10 means in a vCalendar 1.0 rule with several days in a week, month or\n"
                    "year: 10 dates, which is the default, or 10 weeks, months or years")
        ->option_text("dates|periods")
        ->check(CLI::IsMember({"dates", "periods"}));
}

ReadRules readRuleArguments(const RuleArguments& arguments) {
    const Time start = readMomentOf("--start", arguments.start);
    const qelcal_form form = arguments.from.empty() ? QELCAL_FORM_ANY : formOfName(arguments.from);
    try {
        return {start, qelcal::Rules(arguments.text, start, form, arguments.countMeans)};
    } catch (const qelcal::Error& problem) {
        throw InputError("\"" + printable(arguments.text, 200) + "\": " + problem.what());
    }
}

}  // namespace qel::cli
