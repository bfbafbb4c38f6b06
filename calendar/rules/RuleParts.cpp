#include "calendar/rules/RuleParts.h"

#include <array>
#include <cassert>
#include <charconv>
#include <utility>

#include "calendar/base/CalendarNames.h"

namespace qel::calendar {

namespace {

constexpr auto kByField = [] {
    std::array<const RulePart*, kRuleParts.size()> parts{};
    for (const RulePart& part : kRuleParts) parts[part.field] = &part;
    return parts;
}();
// Looks at no pointer: with sanitizers g++ 12 compares none in a constant expression.
static_assert(
    [] {
        std::array<bool, kRuleParts.size()> seen{};
        for (const RulePart& part : kRuleParts)
            if (std::exchange(seen[part.field], true)) return false;
        return true;
    }(),
    "each part has its own field");

void addNumber(std::string& text, int number) {
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), end.ptr);
}

void addNumbers(std::string& text, const std::vector<int>& numbers) {
    for (std::size_t each = 0; each < numbers.size(); ++each) {
        if (each != 0) text += ',';
        addNumber(text, numbers[each]);
    }
}

void addDays(std::string& text, const std::vector<RuleDay>& days) {
    for (std::size_t each = 0; each < days.size(); ++each) {
        if (each != 0) text += ',';
        if (days[each].position != 0) addNumber(text, days[each].position);
        text += weekdayCode(days[each].weekday);
    }
}

}  // namespace

const RulePart& partOfField(std::size_t field) {
    assert(field < kByField.size());
    return *kByField[field];
}

void addPartText(std::string& text, const RulePart& part, const Rule& rule, bool ordered) {
    if (!hasPart(part, rule)) return;
    switch (part.kind) {
        case RulePart::Kind::Frequency:
            text += kFrequencyNames[static_cast<std::size_t>(rule.frequency)];
            break;
        case RulePart::Kind::Until:
            text += rule.until;
            break;
        case RulePart::Kind::Count:
            addNumber(text, rule.count);
            break;
        case RulePart::Kind::Interval:
            addNumber(text, rule.interval);
            break;
        case RulePart::Kind::Days:
            if (ordered && rule.days.size() > 1)
                addDays(text, inCalendarOrder(rule.days));
            else
                addDays(text, rule.days);
            break;
        case RulePart::Kind::Numbers: {
            const std::vector<int>& numbers = rule.*part.numbers;
            if (ordered && part.isSet && numbers.size() > 1)
                addNumbers(text, inCalendarOrder(numbers));
            else
                addNumbers(text, numbers);
            break;
        }
        case RulePart::Kind::WeekStart:
            text += weekdayCode(rule.weekStart);
            break;
    }
}

std::vector<int> inCalendarOrder(std::vector<int> numbers) {
    std::sort(numbers.begin(), numbers.end(), [](int one, int other) {
        if ((one < 0) != (other < 0)) return other < 0;
        return one < 0 ? one > other : one < other;
    });
    return numbers;
}

std::vector<RuleDay> inCalendarOrder(std::vector<RuleDay> days) {
    const auto rank = [](const RuleDay& day) { return day.position == 0 ? day.weekday : 8; };
    std::stable_sort(days.begin(), days.end(), [&](const RuleDay& one, const RuleDay& other) {
        return rank(one) < rank(other);
    });
    return days;
}

bool anyPosition(const std::vector<RuleDay>& days) {
    return std::any_of(
        days.begin(), days.end(), [](const RuleDay& day) { return day.position != 0; });
}

}  // namespace qel::calendar
