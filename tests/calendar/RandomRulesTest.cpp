// Random rules of the whole grammar: their dates beside those of a model that looks at every day by
// itself, and the dates of what each writer makes of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::test {
namespace {

using namespace qel::calendar;

constexpr int kYears = 12;
constexpr std::size_t kDates = 60;

bool names(const std::vector<int>& list, int place, int length) {
    return std::any_of(
        list.begin(), list.end(),
        [=](int each) { return each == place || each == place - length - 1; });
}

// RFC 5545 section 3.3.10, as filters on a single day.
class Model {
  public:
    Model(const Rule& rule, const RuleStart& start)
        : rule_(rule), first_(dayNumber(start.year, start.month, start.day)), start_(start) {}

    [[nodiscard]] std::vector<int> dates() const {
        std::vector<int> found{first_};
        const int last = std::min(dayNumber(start_.year + kYears, 12, 31), until());
        // A period may begin before the start and end after the last year.
        std::vector<int> period;
        std::int64_t number = periodOf(first_ - 380);
        for (int day = first_ - 380; day < dayNumber(start_.year + kYears + 2, 1, 1); ++day) {
            if (periodOf(day) != number) {
                takePeriod(number, period, last, found);
                number = periodOf(day);
                period.clear();
            }
            if (isNamed(day)) period.push_back(day);
        }
        return found;
    }

  private:
    [[nodiscard]] int until() const {
        const auto moment = parseMoment(rule_.until);
        return moment ? moment->day : dayNumber(2499, 12, 31);
    }

    void takePeriod(std::int64_t number, const std::vector<int>& days, int last,
                    std::vector<int>& found) const {
        // Years are counted from the start's, although its week may be of another one.
        const std::int64_t first =
            rule_.frequency == Frequency::Yearly ? start_.year : periodOf(first_);
        if (rule_.interval > 1 && (number < first || (number - first) % rule_.interval != 0))
            return;
        const int length = static_cast<int>(days.size());
        for (int each = 0; each < length; ++each) {
            const int day = days[static_cast<std::size_t>(each)];
            const bool isChosen =
                rule_.setPositions.empty() || names(rule_.setPositions, each + 1, length);
            const bool isOver = day > last || found.size() >= kDates ||
                                (rule_.count > 0 && static_cast<int>(found.size()) >= rule_.count);
            if (isChosen && day > first_ && !isOver) found.push_back(day);
        }
    }

    [[nodiscard]] int weekStart() const { return rule_.weekStart == 0 ? 2 : rule_.weekStart; }
    [[nodiscard]] int weekOf(int day) const { return day - (weekdayOf(day) - weekStart() + 7) % 7; }
    // The year that the week of `day` belongs to: that of its fourth day.
    [[nodiscard]] int weekYear(int day) const { return civilOf(weekOf(day) + 3).year; }

    [[nodiscard]] std::int64_t periodOf(int day) const {
        const Civil civil = civilOf(day);
        switch (rule_.frequency) {
            case Frequency::Daily:
                return day;
            case Frequency::Weekly:
                return weekOf(day) / 7;
            case Frequency::Monthly:
                return civil.year * 12 + civil.month;
            case Frequency::Yearly:
                return rule_.weekNumbers.empty() ? civil.year : weekYear(day);
        }
        return 0;
    }

    [[nodiscard]] bool inLists(int day) const {
        const Civil civil = civilOf(day);
        const int firstWeek = weekOf(dayNumber(weekYear(day), 1, 4));
        const int weeks = (weekOf(dayNumber(weekYear(day) + 1, 1, 4)) - firstWeek) / 7;
        const auto allows = [](const std::vector<int>& list, int place, int length) {
            return list.empty() || names(list, place, length);
        };
        return allows(rule_.months, civil.month, 99) &&
               allows(rule_.monthDays, civil.day, daysInMonth(civil.year, civil.month)) &&
               allows(rule_.yearDays, day - dayNumber(civil.year, 1, 1) + 1,
                      daysInYear(civil.year)) &&
               allows(rule_.weekNumbers, (day - firstWeek) / 7 + 1, weeks);
    }

    [[nodiscard]] bool isWeekdayNamed(int day) const {
        const Civil civil = civilOf(day);
        const bool inMonth = rule_.frequency == Frequency::Monthly || !rule_.months.empty();
        const int month = dayNumber(civil.year, civil.month, 1);
        const int place = inMonth ? day - month : day - dayNumber(civil.year, 1, 1);
        const int length = inMonth ? daysInMonth(civil.year, civil.month) : daysInYear(civil.year);
        return std::any_of(rule_.days.begin(), rule_.days.end(), [&](const RuleDay& each) {
            return each.weekday == weekdayOf(day) &&
                   (each.position == 0 || each.position == place / 7 + 1 ||
                    -each.position == (length - 1 - place) / 7 + 1);
        });
    }

    // What a rule leaves open comes from the start.
    [[nodiscard]] bool isLikeStart(int day) const {
        const Civil civil = civilOf(day);
        const bool byDate = !rule_.monthDays.empty() || !rule_.yearDays.empty();
        if (rule_.frequency == Frequency::Daily || byDate) return true;
        if (rule_.frequency == Frequency::Weekly || !rule_.weekNumbers.empty())
            return weekdayOf(day) == weekdayOf(first_);
        const bool anyMonth = rule_.frequency == Frequency::Monthly || !rule_.months.empty();
        return civil.day == start_.day && (anyMonth || civil.month == start_.month);
    }

    [[nodiscard]] bool isNamed(int day) const {
        return inLists(day) && (rule_.days.empty() ? isLikeStart(day) : isWeekdayNamed(day));
    }

    const Rule& rule_;
    int first_;
    const RuleStart& start_;
};

class Random {
  public:
    // Not a distribution of the library: its numbers differ between systems.
    int between(int low, int high) {
        return low + static_cast<int>(generator_() % static_cast<unsigned>(high - low + 1));
    }
    bool oneOf(int chances) { return between(1, chances) == 1; }
    // Up to `most` numbers of `low` to `high`, some of them counted from the end.
    std::vector<int> numbers(int most, int low, int high, bool fromEnd) {
        std::vector<int> list;
        for (int each = between(1, most); each > 0; --each) {
            const int number = between(low, high) * (fromEnd && oneOf(2) ? -1 : 1);
            if (std::find(list.begin(), list.end(), number) == list.end()) list.push_back(number);
        }
        return list;
    }

    RuleStart start() {
        const Civil civil = civilOf(between(36525, 47000));
        return {civil.year, civil.month, civil.day, 0, true};
    }

    // Of any time of day and clock.
    RuleStart timedStart() {
        RuleStart result = start();
        result.isDate = oneOf(4);
        if (result.isDate) return result;
        result.secondOfDay = oneOf(4) ? 0 : between(0, kDaySeconds - 1);
        if (oneOf(2)) result.utcOffset = between(-12, 12) * 3600;
        if (result.utcOffset == 0 && oneOf(2))
            result.onlyClock = oneOf(2) ? Clock::Utc : Clock::Floating;
        return result;
    }

    // Of the shapes that vCalendar 1.0 has, with any end.
    Rule shape(const RuleStart& start) {
        Rule rule;
        rule.frequency = static_cast<Frequency>(between(0, 3));
        rule.interval = between(1, 3);
        if (rule.frequency == Frequency::Weekly) addDays(rule);
        if (rule.frequency == Frequency::Monthly && oneOf(2)) addDays(rule);
        if (rule.frequency == Frequency::Monthly && rule.days.empty())
            rule.monthDays = numbers(4, 1, 31, true);
        if (rule.frequency == Frequency::Yearly && oneOf(2)) rule.months = numbers(4, 1, 12, false);
        if (rule.frequency == Frequency::Yearly && rule.months.empty())
            rule.yearDays = numbers(4, 1, 366, true);
        if (oneOf(3)) rule.weekStart = between(1, 7);
        if (oneOf(3)) rule.count = between(1, 20);
        if (rule.count == 0 && !oneOf(3)) rule.until = end(start);
        return rule;
    }

    // In any of the forms, some at the time of day of the start, at midnight or beside them.
    std::string end(const RuleStart& start) {
        Moment until{dayNumber(start.year, start.month, start.day), 0, oneOf(3), Clock::Floating};
        until.day += between(0, oneOf(2) ? 60 : 2000);
        if (until.isDate) return formatMoment(until);
        const int second = (start.secondOfDay - start.utcOffset * between(0, 1)) + between(-1, 1);
        until.second =
            oneOf(3) ? between(0, 1) * (kDaySeconds - 1) : (second + 2 * kDaySeconds) % kDaySeconds;
        if (oneOf(2)) until.clock = Clock::Utc;
        return formatMoment(until);
    }

    Rule rule() {
        Rule rule;
        rule.frequency = static_cast<Frequency>(between(0, 3));
        rule.interval = oneOf(3) ? between(2, 4) : 1;
        if (oneOf(4))
            rule.count = between(1, 20);
        else if (oneOf(4))
            rule.until = formatMoment({between(36525, 50000), 0, true, Clock::Floating});
        const bool yearly = rule.frequency == Frequency::Yearly;
        if (oneOf(3)) rule.months = numbers(4, 1, 12, false);
        if (yearly && oneOf(5)) rule.weekNumbers = numbers(4, 1, 53, true);
        if (yearly && oneOf(5)) rule.yearDays = numbers(12, 1, 366, true);
        if (rule.frequency != Frequency::Weekly && oneOf(4))
            rule.monthDays = numbers(8, 1, 31, true);
        if (!oneOf(3)) addDays(rule);
        if (oneOf(4)) rule.setPositions = numbers(3, 1, oneOf(4) ? 60 : 6, true);
        if (oneOf(3)) rule.weekStart = between(1, 7);
        return rule;
    }

  private:
    void addDays(Rule& rule) {
        const bool counted = rule.weekNumbers.empty() && (rule.frequency == Frequency::Monthly ||
                                                          rule.frequency == Frequency::Yearly);
        const bool inYear = rule.frequency == Frequency::Yearly && rule.months.empty();
        for (int each = between(1, 4); each > 0; --each) {
            RuleDay day{0, between(1, 7)};
            if (counted && oneOf(2)) day.position = numbers(1, 1, inYear ? 53 : 5, true)[0];
            if (std::find(rule.days.begin(), rule.days.end(), day) == rule.days.end())
                rule.days.push_back(day);
        }
    }

    std::mt19937 generator_{20050615};
};

std::string textOf(const std::vector<int>& days) {
    std::string text;
    for (const int day : days) text += " " + formatMoment({day, 0, true, Clock::Floating});
    return text;
}

std::string datesOf(const Rule& rule, const RuleStart& start) {
    RuleLimits limits;
    limits.most = kDates;
    limits.lastYear = start.year + kYears;
    return textOf(expandRule(rule, start, limits));
}

// The dates of several rules together.
std::string datesOf(const std::vector<std::string>& texts, RuleForm form, const RuleStart& start) {
    RuleLimits limits;
    limits.most = kDates;
    limits.lastYear = start.year + kYears;
    std::vector<int> days;
    for (const std::string& text : texts)
        for (const Rule& rule : readRules(text, form, start).rules)
            for (const int day : expandRule(rule, start, limits)) days.push_back(day);
    std::sort(days.begin(), days.end());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    days.resize(std::min(days.size(), kDates));
    return textOf(days);
}

TEST(RandomRules, HaveTheDatesOfTheModelInEachForm) {
    Random random;
    int inVCalendar = 0;
    int inRecords = 0;
    for (int round = 0; round < 1500; ++round) {
        const RuleStart start = random.start();
        const Rule rule = random.rule();
        const std::string text = iCalendarText(rule);
        SCOPED_TRACE(formatMoment({dayNumber(start.year, start.month, start.day), 0, true,
                                   Clock::Floating}) +
                     " " + text);
        const std::string dates = datesOf(rule, start);
        ASSERT_EQ(dates, textOf(Model(rule, start).dates()));
        ASSERT_EQ(datesOf({text}, RuleForm::ICalendar, start), dates);
        const std::vector<std::string> texts = vCalendarTexts(rule, start).texts;
        if (!texts.empty()) {
            ++inVCalendar;
            EXPECT_EQ(datesOf(texts, RuleForm::VCalendar10, start), dates) << texts[0];
        }
        std::vector<Note> losses;
        if (!rulePieces(rule, &losses).empty() && losses.empty()) {
            ++inRecords;
            EXPECT_EQ(datesOf(positionalTexts(rule), RuleForm::Positional, start), dates)
                << positionalTexts(rule)[0];
        }
    }
    EXPECT_GT(inVCalendar, 300);
    EXPECT_GT(inRecords, 1000);
}

// The writer knows of most of these, without reading them, that they are read as the same dates.
TEST(RandomRules, OfTheShapesOfVCalendarAreReadAgainWithTheirDates) {
    constexpr int kRounds = 20000;
    Random random;
    int written = 0;
    for (int round = 0; round < kRounds; ++round) {
        const RuleStart start = random.timedStart();
        const Rule rule = random.shape(start);
        const std::vector<std::string> texts = vCalendarTexts(rule, start).texts;
        if (texts.empty()) continue;
        ++written;
        const std::vector<Rule> again = readRules(texts[0], RuleForm::VCalendar10, start).rules;
        ASSERT_EQ(again.size(), 1U) << texts[0];
        ASSERT_EQ(again[0].endless(), rule.endless()) << texts[0];
        ASSERT_EQ(datesOf(again[0], start), datesOf(rule, start))
            << texts[0] << " of " << iCalendarText(rule);
    }
    EXPECT_GT(written, kRounds / 2);
}

}  // namespace
}  // namespace qel::test
