#include "calendar/rules/RuleReader.h"

#include "calendar/base/Ascii.h"
#include "calendar/rules/RuleReadICalendar.h"
#include "calendar/rules/RuleReadVCalendar.h"

namespace qel::calendar {

RuleForm guessRuleForm(std::string_view text) {
    const std::string capitals = upper(text.substr(0, 4096));
    if (capitals.find("FREQ=") != std::string::npos) return RuleForm::ICalendar;
    return capitals.find(';') != std::string::npos ? RuleForm::Positional : RuleForm::VCalendar10;
}

RuleReading readRules(std::string_view text, RuleForm form, const std::optional<RuleStart>& start) {
    RuleReading reading;
    text = trimmed(text);
    if (text.empty()) {
        reading.notes.push_back({Severity::Note, "the rule is empty"});
        return reading;
    }
    // Files of one format carry rules of the other.
    if (form == RuleForm::VCalendar10 && guessRuleForm(text) == RuleForm::ICalendar) {
        form = RuleForm::ICalendar;
        reading.notes.push_back({Severity::Note, "the rule is an iCalendar rule"});
    } else if (form == RuleForm::ICalendar && guessRuleForm(text) == RuleForm::VCalendar10) {
        form = RuleForm::VCalendar10;
        reading.notes.push_back({Severity::Note, "the rule is read as a vCalendar 1.0 rule"});
    }
    switch (form) {
        case RuleForm::VCalendar10:
            readVCalendarRules(text, start, reading);
            break;
        case RuleForm::ICalendar:
            readICalendarRules(text, start, reading);
            break;
        case RuleForm::Positional:
            readPositionalRule(text, start, reading);
            break;
    }
    return reading;
}

}  // namespace qel::calendar
