// The parts of a rule in one table, for the readers and the writers of its forms. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEPARTS_H
#define QEL_CALENDAR_RULES_RULEPARTS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/rules/Rule.h"

namespace qel::calendar {

struct RulePart {
    enum class Kind { Frequency, Until, Count, Interval, Days, Numbers, WeekStart };

    std::string_view name;  // in iCalendar
    std::size_t field;      // its place in the positional form, 0 for the first
    Kind kind;

    // For Kind::Numbers: the list, its range, and whether negative numbers count from the end.
    std::vector<int> Rule::*numbers = nullptr;
    int least = 0;
    int most = 0;
    bool fromEnd = false;
    // The order of the numbers has no meaning: iCalendar text has them in calendar order. All other
    // lists are written as they arrived.
    bool isSet = false;
};

// In the order in which iCalendar text is written.
inline constexpr std::array<RulePart, 14> kRuleParts = {{
    {"FREQ", 0, RulePart::Kind::Frequency},
    {"UNTIL", 1, RulePart::Kind::Until},
    {"COUNT", 2, RulePart::Kind::Count},
    {"INTERVAL", 3, RulePart::Kind::Interval},
    {"BYDAY", 7, RulePart::Kind::Days},
    {"BYMONTHDAY", 8, RulePart::Kind::Numbers, &Rule::monthDays, 1, 31, true, true},
    {"BYYEARDAY", 9, RulePart::Kind::Numbers, &Rule::yearDays, 1, 366, true, true},
    {"BYWEEKNO", 10, RulePart::Kind::Numbers, &Rule::weekNumbers, 1, 53, true, true},
    {"BYMONTH", 11, RulePart::Kind::Numbers, &Rule::months, 1, 12, false, true},
    {"BYSETPOS", 12, RulePart::Kind::Numbers, &Rule::setPositions, 1, 366, true, false},
    {"BYHOUR", 6, RulePart::Kind::Numbers, &Rule::hours, 0, 23, false, false},
    {"BYMINUTE", 5, RulePart::Kind::Numbers, &Rule::minutes, 0, 59, false, false},
    {"BYSECOND", 4, RulePart::Kind::Numbers, &Rule::seconds, 0, 59, false, false},
    {"WKST", 13, RulePart::Kind::WeekStart},
}};

// The part at that place of the positional form. REQUIRES: field < kRuleParts.size()
[[nodiscard]] const RulePart& partOfField(std::size_t field);

inline constexpr std::array<std::string_view, 4> kFrequencyNames = {"DAILY", "WEEKLY", "MONTHLY",
                                                                    "YEARLY"};

// True if the rule has the part.
[[nodiscard]] inline bool hasPart(const RulePart& part, const Rule& rule) {
    switch (part.kind) {
        case RulePart::Kind::Frequency:
        case RulePart::Kind::Interval:
            return true;
        case RulePart::Kind::Until:
            return !rule.until.empty();
        case RulePart::Kind::Count:
            return rule.count > 0;
        case RulePart::Kind::Days:
            return !rule.days.empty();
        case RulePart::Kind::Numbers:
            return !(rule.*part.numbers).empty();
        case RulePart::Kind::WeekStart:
            return rule.weekStart != 0;
    }
    return false;
}
// Adds what a part of `rule` is in text: "WEEKLY", "1MO,-1FR"; nothing if the rule has no such
// part. Sets are in calendar order if `ordered`, else as they arrived.
void addPartText(std::string& text, const RulePart& part, const Rule& rule, bool ordered);

// From the period's start on, then those that count from its end, the last one first: 1, 15, -1,
// -2. Weekdays without a position come first, Sunday to Saturday, then the others as they arrived.
[[nodiscard]] std::vector<int> inCalendarOrder(std::vector<int> numbers);
[[nodiscard]] std::vector<RuleDay> inCalendarOrder(std::vector<RuleDay> days);

[[nodiscard]] bool anyPosition(const std::vector<RuleDay>& days);

template <class Item>
void addOnce(std::vector<Item>& list, const Item& item) {
    if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}

}  // namespace qel::calendar

#endif
