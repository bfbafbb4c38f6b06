#include "calendar/rules/RuleParts.h"

#include "calendar/base/Ascii.h"
#include "calendar/base/Moment.h"

namespace qel::calendar {

int weekdayOfCode(std::string_view code) {
    for (int weekday = 1; weekday <= 7; ++weekday)
        if (equalsIgnoreCase(code, kDayCodes[static_cast<std::size_t>(weekday)])) return weekday;
    return 0;
}

std::string joined(const std::vector<int>& numbers, char separator) {
    std::string text;
    for (const int number : numbers) {
        if (!text.empty()) text += separator;
        text += std::to_string(number);
    }
    return text;
}

void Strays::report(std::vector<Note>& notes, Severity severity, std::string_view what) const {
    if (count_ == 0) return;
    std::string text = std::string(what) + " " + quoted(first_);
    if (count_ > 1) text += " and " + std::to_string(count_ - 1) + " more";
    notes.push_back({severity, text});
}

bool readUntil(std::string_view text, RuleEnd& end) {
    const auto moment = parseMoment(text);
    if (!moment) return false;
    end.until = formatMoment(*moment);
    return true;
}

namespace {

// The last second of the day of `until`, in until's own clock.
std::string endOfDay(const std::string& until) {
    return until.substr(0, 8) + "T235959" + (until.back() == 'Z' ? "Z" : "");
}

std::string adjustedUntil(const std::string& until, const RuleStart& start, bool midnightIsDay) {
    if (start.isDate) return until;
    if (until.size() == 8) return endOfDay(until);
    const int offset = until.back() == 'Z' ? start.utcOffset : 0;
    const int startSecond = ((start.secondOfDay - offset) % 86400 + 86400) % 86400;
    if (midnightIsDay && startSecond != 0 && until.substr(9, 6) == "000000") return endOfDay(until);
    return until;
}

}  // namespace

void applyEnd(const RuleEnd& end, const std::optional<RuleStart>& start, bool midnightIsDay,
              Rule& rule, std::vector<Note>& notes) {
    rule.until = end.until;
    if (!rule.until.empty() && start) {
        rule.until = adjustedUntil(rule.until, *start, midnightIsDay);
        if (rule.until.size() > 8 && end.until.size() > 8 && rule.until != end.until)
            notes.push_back({Severity::Note, "the end at midnight of " + end.until.substr(0, 8) +
                                                 " is read as the whole of that day"});
    }
    if (!end.count || *end.count == 0) return;
    if (rule.until.empty()) {
        rule.count = *end.count;
        return;
    }
    if (!start) {
        notes.push_back({Severity::Warning,
                         "both a count and an end date are given, and no start to tell which comes "
                         "first; the end date is kept"});
        return;
    }
    RuleLimits limits;
    limits.most = static_cast<std::size_t>(*end.count);
    if (expandRule(rule, *start, limits).size() == limits.most) {
        rule.count = *end.count;
        rule.until.clear();
        notes.push_back({Severity::Note, "the count comes before the end date and is kept"});
    } else {
        notes.push_back({Severity::Note, "the end date comes before the count and is kept"});
    }
}

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
