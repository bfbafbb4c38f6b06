#include "calendar/rules/RuleParts.h"

#include <array>
#include <cassert>
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

template <class Item, class Add>
std::string listText(const std::vector<Item>& items, Add add) {
    std::string text;
    for (const Item& item : items) {
        if (!text.empty()) text += ',';
        add(text, item);
    }
    return text;
}

std::string numbersText(const std::vector<int>& numbers) {
    return listText(
        numbers, [](std::string& text, int number) { text += std::to_string(number); });
}

std::string daysText(const std::vector<RuleDay>& days) {
    return listText(
        days,
        [](std::string& text, const RuleDay& day) {
            if (day.position != 0) text += std::to_string(day.position);
            text += weekdayCode(day.weekday);
        });
}

}  // namespace

const RulePart& partOfField(std::size_t field) {
    assert(field < kByField.size());
    return *kByField[field];
}

std::string partText(const RulePart& part, const Rule& rule, bool ordered) {
    switch (part.kind) {
        case RulePart::Kind::Frequency:
            return std::string(kFrequencyNames[static_cast<std::size_t>(rule.frequency)]);
        case RulePart::Kind::Until:
            return rule.until;
        case RulePart::Kind::Count:
            return rule.count > 0 ? std::to_string(rule.count) : std::string();
        case RulePart::Kind::Interval:
            return std::to_string(rule.interval);
        case RulePart::Kind::Days:
            return daysText(ordered ? inCalendarOrder(rule.days) : rule.days);
        case RulePart::Kind::Numbers: {
            const std::vector<int>& numbers = rule.*part.numbers;
            return numbersText(ordered && part.isSet ? inCalendarOrder(numbers) : numbers);
        }
        case RulePart::Kind::WeekStart:
            return std::string(rule.weekStart != 0 ? weekdayCode(rule.weekStart) : "");
    }
    return "";
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
