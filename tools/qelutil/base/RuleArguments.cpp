#include "base/RuleArguments.h"

#include <CLI/CLI.hpp>
#include <optional>

#include "QelUtility/ZQDate.h"
#include "calendar/base/Days.h"
#include "calendar/base/Text.h"

namespace qel::cli {

namespace {

using calendar::RuleForm;
using calendar::RuleStart;

// Reads `count` digits off the front of `text`; nothing where they are not.
std::optional<int> digits(std::string_view& text, std::size_t count) {
    if (text.size() < count) return std::nullopt;
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (text[i] < '0' || text[i] > '9') return std::nullopt;
        value = value * 10 + (text[i] - '0');
    }
    text.remove_prefix(count);
    return value;
}

void skip(std::string_view& text, char separator) {
    if (!text.empty() && text.front() == separator) text.remove_prefix(1);
}

bool readTime(std::string_view text, RuleStart& date) {
    const auto hour = digits(text, 2);
    skip(text, ':');
    const auto minute = digits(text, 2);
    skip(text, ':');
    const auto second = text.empty() || text == "Z" ? std::optional(0) : digits(text, 2);
    skip(text, 'Z');
    if (!hour || !minute || !second || !text.empty()) return false;
    if (*hour > 23 || *minute > 59 || *second > 59) return false;
    date.secondOfDay = *hour * 3600 + *minute * 60 + *second;
    date.isDate = false;
    return true;
}

bool readDate(std::string_view text, RuleStart& date) {
    const auto year = digits(text, 4);
    skip(text, '-');
    const auto month = digits(text, 2);
    skip(text, '-');
    const auto day = digits(text, 2);
    if (!year || !month || !day || *year < 1900 || *year > 2499) return false;
    if (*month < 1 || *month > 12 || *day < 1 || *day > calendar::daysInMonth(*year, *month))
        return false;
    date.year = *year;
    date.month = *month;
    date.day = *day;
    date.isDate = true;
    if (text.empty()) return true;
    if (text.front() != 'T' && text.front() != ' ') return false;
    return readTime(text.substr(1), date);
}

// Drops "RRULE:" or "EXRULE:", with its parameters, from a line that was taken over whole.
std::string_view withoutProperty(std::string_view text) {
    for (const std::string_view name : {"RRULE", "EXRULE"}) {
        if (text.substr(0, name.size()) != name) continue;
        const std::size_t colon = text.find(':');
        if (colon != std::string_view::npos) return text.substr(colon + 1);
    }
    return text;
}

}  // namespace

RuleStart dateArgument(const std::string& option, std::string_view text) {
    RuleStart date;
    if (text == "today") {
        const calendar::Civil today = calendar::civilOf(ZQ_GetCurrentDate());
        date.year = today.year;
        date.month = today.month;
        date.day = today.day;
        date.isDate = true;
        return date;
    }
    if (!readDate(text, date)) {
        throw UsageError(option + ": \"" + calendar::printable(text) +
                         "\" is no date of the years 1900 to 2499; write 20050615 or 2005-06-15, "
                         "with T083000 behind it for a time of day, or \"today\"");
    }
    return date;
}

int codeDateOf(const RuleStart& date) {
    return calendar::dayNumber(date.year, date.month, date.day);
}

const char* nameOfForm(RuleForm form) {
    switch (form) {
        case RuleForm::ICalendar:
            return "ical";
        case RuleForm::Positional:
            return "positional";
        default:
            return "v10";
    }
}

RuleForm formOfName(const std::string& name) {
    if (name == "ical") return RuleForm::ICalendar;
    return name == "positional" ? RuleForm::Positional : RuleForm::VCalendar10;
}

void RuleArguments::addTo(CLI::App& command) {
    command.add_option("TEXT", text, "The rule, as it stands in the calendar file")->required();
    command.add_option("--start", start, "The date of the series' first entry, or \"today\"")
        ->required()
        ->type_name("DATE");
    command.add_option("--from", from, "The form of TEXT; found out from it otherwise")
        ->type_name("FORM")
        ->check(CLI::IsMember({"v10", "ical", "positional"}));
}

ReadRules readRuleArguments(const RuleArguments& arguments) {
    ReadRules read;
    read.start = dateArgument("--start", arguments.start);
    const std::string_view text = withoutProperty(arguments.text);
    read.form = arguments.from.empty() ? calendar::guessRuleForm(text) : formOfName(arguments.from);
    read.reading = calendar::readRules(text, read.form, read.start);
    if (read.reading.rules.empty()) {
        const std::string why = read.reading.notes.empty() ? std::string("no rule was found in it")
                                                           : read.reading.notes.front().text();
        throw InputError("\"" + calendar::printable(arguments.text, 200) + "\": " + why);
    }
    return read;
}

}  // namespace qel::cli
