#include "calendar/rules/RuleSentence.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

using Words = std::vector<std::string>;

std::string weekday(int number) {
    return std::string(weekdayName(number));
}

std::string month(int number) {
    return std::string(monthName(number));
}

// "a", "a and b", "a, b and c".
std::string list(const Words& words, const char* last = " and ") {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) text += i + 1 == words.size() ? last : ", ";
        text += words[i];
    }
    return text;
}

// "21st"; from the end "last", "2nd to last".
std::string ordinal(int number) {
    if (number == -1) return "last";
    if (number < 0) return ordinal(-number) + " to last";
    const int tens = number / 10 % 10;
    const int ones = number % 10;
    const char* ending = "th";
    if (tens != 1 && ones >= 1 && ones <= 3) ending = ones == 1 ? "st" : ones == 2 ? "nd" : "rd";
    return std::to_string(number) + ending;
}

// "first" to "fifth" for the small positions that people name.
std::string position(int number) {
    constexpr std::array kNames = {"", "first", "second", "third", "fourth", "fifth"};
    const int magnitude = number < 0 ? -number : number;
    if (number == -1 || magnitude > 5) return ordinal(number);
    return std::string(kNames.at(static_cast<std::size_t>(magnitude))) +
           (number < 0 ? " to last" : "");
}

template <typename Value, typename Name>
std::string listOf(const std::vector<Value>& values, Name name, const char* last = " and ") {
    Words words;
    for (const Value& value : values) words.push_back(name(value));
    return list(words, last);
}

// The weekdays as bits, whatever their positions.
unsigned weekdayBits(const std::vector<RuleDay>& days) {
    unsigned bits = 0;
    for (const RuleDay& day : days) bits |= 1U << day.weekday;
    return bits;
}

constexpr unsigned kWorkdays = 0x7c;
constexpr unsigned kWeekend = 0x82;
constexpr unsigned kEveryDay = 0xfe;

// "Monday, Wednesday and Friday", "Monday to Friday".
std::string weekdays(const std::vector<RuleDay>& days) {
    if (weekdayBits(days) == kWorkdays) return "Monday to Friday";
    if (weekdayBits(days) == kEveryDay) return "every day of the week";
    return listOf(days, [](const RuleDay& day) { return weekday(day.weekday); });
}

// From the period's start, then those that count from its end.
std::vector<int> inOrder(std::vector<int> numbers) {
    std::sort(numbers.begin(), numbers.end(),
              [](int a, int b) { return std::pair(a < 0, a) < std::pair(b < 0, b); });
    return numbers;
}

// "the 1st, the 15th and the last day"
std::string monthDays(const std::vector<int>& days, const char* last = " and ") {
    return listOf(
        inOrder(days), [](int day) { return "the " + ordinal(day) + (day < 0 ? " day" : ""); },
        last);
}

// "the first Monday and every Friday"
std::string positionedDays(const std::vector<RuleDay>& days, const char* last = " and ") {
    return listOf(
        days,
        [](const RuleDay& day) {
            return (day.position == 0 ? "every " : "the " + position(day.position) + " ") +
                   weekday(day.weekday);
        },
        last);
}

// What BYSETPOS selects from, if it has a name: "Tuesday", "workday", "weekend day", "day".
std::string nameOfSet(const Rule& rule) {
    if (!rule.monthDays.empty() || !rule.yearDays.empty() || !rule.weekNumbers.empty() ||
        anyPosition(rule.days))
        return {};
    switch (weekdayBits(rule.days)) {
        case kWorkdays:
            return "workday";
        case kWeekend:
            return "weekend day";
        case kEveryDay:
            return "day";
        default:
            return rule.days.size() == 1 ? weekday(rule.days[0].weekday) : std::string();
    }
}

std::string positions(const std::vector<int>& numbers) {
    return listOf(
        numbers, [](int number) { return position(number); });
}

std::string dayOfStart(const RuleStart& start) {
    return "the " + ordinal(start.day);
}

int weekdayOfStart(const RuleStart& start) {
    return weekdayOf(dayNumber(start.year, start.month, start.day));
}

// " on ..." for the days of a month (or of a year without months); empty if the rule has none.
std::string daysOfMonth(const Rule& rule) {
    if (!rule.setPositions.empty()) {
        const std::string name = nameOfSet(rule);
        if (!name.empty()) return " on the " + positions(rule.setPositions) + " " + name;
    }
    if (!rule.days.empty() && !rule.monthDays.empty()) {
        return " on " + positionedDays(rule.days, " or ") + " that is " +
               monthDays(rule.monthDays, " or ");
    }
    if (!rule.days.empty()) return " on " + positionedDays(rule.days);
    if (!rule.monthDays.empty()) return " on " + monthDays(rule.monthDays);
    return {};
}

// ", only the first of these in each month" after a set that has no name of its own.
std::string selection(const Rule& rule, const char* period) {
    const bool named = rule.frequency != Frequency::Weekly && rule.frequency != Frequency::Daily &&
                       !nameOfSet(rule).empty();
    if (rule.setPositions.empty() || named) return {};
    return ", only the " + positions(rule.setPositions) + " of these in each " + period;
}

std::string monthNames(const Rule& rule) {
    return listOf(inOrder(rule.months), month);
}

// ", only on the 13th, only in June": what a daily or weekly rule excludes.
std::string limits(const Rule& rule) {
    std::string text;
    if (rule.frequency == Frequency::Daily && !rule.days.empty() &&
        weekdayBits(rule.days) != kEveryDay)
        text += ", only on " + weekdays(rule.days);
    if (!rule.monthDays.empty()) text += ", only on " + monthDays(rule.monthDays);
    if (!rule.months.empty()) text += ", only in " + monthNames(rule);
    return text;
}

// What the days and weeks of the year exclude in a rule that is not yearly.
std::string yearLimits(const Rule& rule) {
    std::string text;
    if (!rule.yearDays.empty())
        text += ", only on the " + listOf(inOrder(rule.yearDays), ordinal) + " day of the year";
    if (!rule.weekNumbers.empty())
        text += ", only in the " + listOf(inOrder(rule.weekNumbers), ordinal) + " week of the year";
    return text;
}

std::string monthly(const Rule& rule, const RuleStart& start) {
    std::string text = daysOfMonth(rule);
    if (text.empty() && rule.yearDays.empty()) {
        text = rule.weekNumbers.empty() ? " on " + dayOfStart(start)
                                        : " on every " + weekday(weekdayOfStart(start));
    }
    if (!rule.months.empty()) text += ", only in " + monthNames(rule);
    return text + yearLimits(rule) + selection(rule, "month");
}

std::string yearly(const Rule& rule, const RuleStart& start) {
    std::string text;
    if (!rule.yearDays.empty()) {
        text = " on the " + listOf(inOrder(rule.yearDays), ordinal) + " day of the year";
        if (!rule.weekNumbers.empty())
            text += ", only in the " + listOf(inOrder(rule.weekNumbers), ordinal) + " week";
        if (!rule.days.empty()) text += ", only on " + weekdays(rule.days);
        text += limits(rule);
    } else if (!rule.weekNumbers.empty()) {
        std::string days = "a day";
        if (!rule.days.empty())
            days = weekdays(rule.days);
        else if (rule.monthDays.empty())
            days = weekday(weekdayOfStart(start));
        text = " on " + days + " of the " + listOf(inOrder(rule.weekNumbers), ordinal) +
               " week of the year" + limits(rule);
    } else if (rule.months.size() == 1 && rule.days.empty() && rule.setPositions.empty() &&
               rule.monthDays.size() < 2 && (rule.monthDays.empty() || rule.monthDays[0] > 0)) {
        const int day = rule.monthDays.empty() ? start.day : rule.monthDays[0];
        text = " on " + std::to_string(day) + " " + month(rule.months[0]);
    } else if (!rule.months.empty()) {
        text = daysOfMonth(rule);
        if (text.empty()) text = " on " + dayOfStart(start);
        text += " of " + monthNames(rule);
    } else if (!rule.monthDays.empty()) {
        text = daysOfMonth(rule) + (rule.days.empty() ? " of every month" : " of a month");
    } else if (!rule.days.empty()) {
        text = daysOfMonth(rule) + " of the year";
    } else {
        text = " on " + std::to_string(start.day) + " " + month(start.month);
    }
    return text + selection(rule, "year");
}

std::string weekly(const Rule& rule, const RuleStart& start) {
    std::string text;
    if (!rule.days.empty())
        text = " on " + weekdays(rule.days);
    else if (rule.monthDays.empty() && rule.yearDays.empty())
        text = " on " + weekday(weekdayOfStart(start));
    return text + limits(rule) + yearLimits(rule) + selection(rule, "week");
}

std::string clock(int hour, int minute, int second, bool withSecond) {
    char text[48];
    std::snprintf(text, sizeof text, withSecond ? "%02d:%02d:%02d" : "%02d:%02d", hour, minute,
                  second);
    return text;
}

// " at 09:00 and 10:00" for a few times, else hours, minutes and seconds separately. Parts that the
// rule does not have are the start's.
std::string times(const Rule& rule, const RuleStart& start) {
    if (rule.hours.empty() && rule.minutes.empty() && rule.seconds.empty()) return {};
    constexpr std::size_t kMostTimes = 12;
    const auto orStart = [](std::vector<int> given, int value) {
        return given.empty() ? std::vector<int>{value} : inOrder(std::move(given));
    };
    const int startSecond = start.isDate ? 0 : start.secondOfDay;
    const std::vector<int> hours = orStart(rule.hours, startSecond / 3600);
    const std::vector<int> minutes = orStart(rule.minutes, startSecond / 60 % 60);
    const std::vector<int> seconds = orStart(rule.seconds, startSecond % 60);
    if (hours.size() * minutes.size() * seconds.size() <= kMostTimes) {
        Words words;
        const bool withSecond = seconds != std::vector<int>{0};
        for (const int hour : hours) {
            for (const int minute : minutes)
                for (const int second : seconds)
                    words.push_back(clock(hour, minute, second, withSecond));
        }
        return " at " + list(words);
    }
    const auto part = [](const char* name, const std::vector<int>& values) {
        const std::string numbers = listOf(values, [](int value) { return std::to_string(value); });
        return std::string(name) + (values.size() == 1 ? " " : "s ") + numbers;
    };
    return " at " + part("hour", hours) + ", " + part("minute", minutes) + ", " +
           part("second", seconds);
}

// "31 December 2005", with the time of day where there is one.
std::string untilDate(const std::string& until) {
    const auto moment = parseMoment(until);
    if (!moment) return until;
    const Civil date = civilOf(moment->day);
    std::string text =
        std::to_string(date.day) + " " + month(date.month) + " " + std::to_string(date.year);
    if (moment->isDate) return text;
    text +=
        ", " + clock(moment->second / 3600, moment->second / 60 % 60, moment->second % 60, true);
    return text + (moment->clock == Clock::Utc ? " UTC" : "");
}

std::string end(const Rule& rule) {
    if (!rule.until.empty()) return ", until " + untilDate(rule.until);
    if (rule.count == 1) return ", once";
    if (rule.count == 2) return ", twice";
    if (rule.count > 0) return ", " + std::to_string(rule.count) + " times";
    return ", without end";
}

// The day on which weeks start, if it can change a date.
std::string weekStart(const Rule& rule) {
    const bool counts =
        (rule.frequency == Frequency::Weekly && rule.interval > 1 && rule.days.size() > 1) ||
        !rule.weekNumbers.empty();
    if (rule.weekStart == 0 || !counts) return {};
    return ", weeks counted from " + weekday(rule.weekStart);
}

}  // namespace

std::string ruleSentence(const Rule& rule, const RuleStart& start) {
    constexpr std::array kUnits = {"day", "week", "month", "year"};
    const char* unit = kUnits.at(static_cast<std::size_t>(rule.frequency));
    std::string text = std::string("every ") + unit;
    if (rule.interval != 1) text = "every " + std::to_string(rule.interval) + " " + unit + "s";
    switch (rule.frequency) {
        case Frequency::Daily:
            text += limits(rule) + yearLimits(rule) + selection(rule, "day");
            break;
        case Frequency::Weekly:
            text += weekly(rule, start);
            break;
        case Frequency::Monthly:
            text += monthly(rule, start);
            break;
        case Frequency::Yearly:
            text += yearly(rule, start);
            break;
    }
    return text + times(rule, start) + weekStart(rule) + end(rule);
}

}  // namespace qel::calendar
