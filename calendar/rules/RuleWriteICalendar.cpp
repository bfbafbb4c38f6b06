#include "calendar/rules/RuleWriteICalendar.h"

#include <limits>

#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

// WKST affects the dates where weeks are numbered or counted, and where a position selects from
// the days of a week.
bool weekStartMatters(const Rule& rule) {
    const bool severalDays =
        !rule.days.empty() || !rule.monthDays.empty() || !rule.yearDays.empty();
    return !rule.weekNumbers.empty() || (rule.frequency == Frequency::Weekly && severalDays &&
                                         (rule.interval > 1 || !rule.setPositions.empty()));
}

bool isWritten(const RulePart& part, const Rule& rule) {
    switch (part.kind) {
        case RulePart::Kind::Count:
            return rule.until.empty();
        case RulePart::Kind::WeekStart:
            return weekStartMatters(rule);
        default:
            return true;
    }
}

// REQUIRES: hasPart(part, rule)
void addPart(std::string& text, const RulePart& part, const Rule& rule) {
    if (!isWritten(part, rule)) return;
    if (!text.empty()) text += ';';
    text += part.name;
    text += '=';
    addPartText(text, part, rule, true);
}

}  // namespace

std::string iCalendarText(const Rule& rule) {
    // A count above 16 bits comes after BYSETPOS, where earlier versions put it.
    const bool isCountLate = rule.count > std::numeric_limits<short>::max();
    const RulePart& count = partOfField(2);
    std::string text;
    text.reserve(80);
    for (const RulePart& part : kRuleParts) {
        if (isCountLate && &part == &count) continue;
        if (hasPart(part, rule)) addPart(text, part, rule);
        if (isCountLate && part.numbers == &Rule::setPositions) addPart(text, count, rule);
    }
    return text;
}

}  // namespace qel::calendar
