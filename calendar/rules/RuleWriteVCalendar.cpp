#include "calendar/rules/RuleWriteVCalendar.h"

#include <algorithm>
#include <cstdlib>

#include "calendar/base/CalendarNames.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleParts.h"
#include "calendar/rules/RuleReader.h"

namespace qel::calendar {

namespace {

constexpr char kNoTimes[] = "times of day in a rule";
constexpr char kNoMix[] = "this combination of days";
constexpr char kNoSetPositions[] = "a choice from the days of a period";

// Of a weekday in a month.
constexpr int kMostPosition = 5;

std::vector<RuleDay> atEveryPosition(const std::vector<RuleDay>& days) {
    std::vector<RuleDay> result;
    for (int position = 1; position <= kMostPosition; ++position)
        for (const RuleDay& day : days)
            if (day.position == 0) addOnce(result, {position, day.weekday});
    for (const RuleDay& day : days)
        if (day.position != 0) addOnce(result, day);
    return result;
}

// A rule in the shapes that vCalendar 1.0 has: D, W + days, MP, MD, YM, YD.
class Reshaper {
  public:
    Reshaper(Rule rule, const std::optional<RuleStart>& start)
        : rule_(std::move(rule)), start_(start) {}

    // Nothing when there is no such shape; reason() then says why.
    std::optional<Rule> run() {
        if (!dropTimes() || !dropSetPositions()) return std::nullopt;
        switch (rule_.frequency) {
            case Frequency::Daily:
                return daily();
            case Frequency::Weekly:
                return weekly();
            case Frequency::Monthly:
                return monthly();
            case Frequency::Yearly:
                return yearly();
        }
        return std::nullopt;
    }

    [[nodiscard]] const std::string& reason() const { return reason_; }

  private:
    std::optional<Rule> refuse(const char* reason) {
        reason_ = reason;
        return std::nullopt;
    }

    // A time of day equal to the start's adds nothing.
    bool dropTimes() {
        const int second = start_ ? start_->secondOfDay : -1;
        const auto same = [&](const std::vector<int>& list, int value) {
            return list.empty() || (second >= 0 && list.size() == 1 && list.front() == value);
        };
        if (!same(rule_.hours, second / 3600) || !same(rule_.minutes, second / 60 % 60) ||
            !same(rule_.seconds, second % 60)) {
            reason_ = kNoTimes;
            return false;
        }
        rule_.hours.clear();
        rule_.minutes.clear();
        rule_.seconds.clear();
        return true;
    }

    // BYSETPOS selecting from one weekday of a month is a position, from all seven a day of the
    // month.
    bool dropSetPositions() {
        if (rule_.setPositions.empty()) return true;
        const bool inMonth = rule_.frequency == Frequency::Monthly ||
                             (rule_.frequency == Frequency::Yearly && rule_.months.size() == 1);
        if (inMonth && rule_.monthDays.empty() && rule_.yearDays.empty() &&
            rule_.weekNumbers.empty() && !anyPosition(rule_.days)) {
            const bool oneDay = rule_.days.size() == 1;
            if (oneDay || rule_.days.size() == 7) {
                const int weekday = rule_.days.front().weekday;
                if (oneDay) rule_.days.clear();
                for (const int position : rule_.setPositions)
                    if (oneDay)
                        addOnce(rule_.days, {position, weekday});
                    else if (std::abs(position) <= 31)
                        addOnce(rule_.monthDays, position);
                if (!oneDay) rule_.days.clear();
                rule_.setPositions.clear();
                return true;
            }
        }
        reason_ = kNoSetPositions;
        return false;
    }

    [[nodiscard]] bool onlyDays() const {
        return rule_.months.empty() && rule_.monthDays.empty() && rule_.yearDays.empty() &&
               rule_.weekNumbers.empty();
    }

    std::optional<Rule> daily() {
        if (onlyDays() && rule_.days.empty()) return rule_;
        if (rule_.interval != 1) return refuse(kNoMix);
        if (onlyDays()) {
            rule_.frequency = Frequency::Weekly;
            return rule_;
        }
        rule_.frequency = Frequency::Monthly;
        if (!rule_.months.empty() && rule_.monthDays.empty() && rule_.days.empty())
            return refuse(kNoMix);
        return monthly();
    }

    std::optional<Rule> weekly() {
        if (!onlyDays()) return refuse(kNoMix);
        return rule_;
    }

    std::optional<Rule> monthly() {
        if (!rule_.yearDays.empty() || !rule_.weekNumbers.empty()) return refuse(kNoMix);
        if (!rule_.months.empty()) {
            if (rule_.interval != 1) return refuse(kNoMix);
            rule_.frequency = Frequency::Yearly;
            return yearly();
        }
        if (!rule_.monthDays.empty() && !rule_.days.empty()) return refuse(kNoMix);
        if (rule_.days.empty()) {
            if (rule_.monthDays.empty() && start_) rule_.monthDays.push_back(start_->day);
            return rule_;
        }
        if (rule_.interval == 1 && !anyPosition(rule_.days)) {
            rule_.frequency = Frequency::Weekly;
            return rule_;
        }
        rule_.days = atEveryPosition(rule_.days);
        return rule_;
    }

    std::optional<Rule> yearly() {
        if (!rule_.weekNumbers.empty()) return refuse("week numbers");
        if (!rule_.yearDays.empty()) {
            if (!rule_.months.empty() || !rule_.monthDays.empty() || !rule_.days.empty())
                return refuse(kNoMix);
            return rule_;
        }
        if (!rule_.monthDays.empty() && !rule_.days.empty()) return refuse(kNoMix);
        if (rule_.months.empty()) {
            if (rule_.monthDays.empty() && rule_.days.empty()) {
                if (start_) rule_.months.push_back(start_->month);
                return rule_;
            }
            if (rule_.interval != 1 || anyPosition(rule_.days)) return refuse(kNoMix);
            rule_.frequency = Frequency::Monthly;
            return monthly();
        }
        const bool startDay =
            start_ && rule_.monthDays.size() == 1 && rule_.monthDays.front() == start_->day;
        if (rule_.days.empty() && (rule_.monthDays.empty() || startDay)) {
            rule_.monthDays.clear();
            return rule_;
        }
        return monthsAsInterval();
    }

    // Months at equal distances around the year that include the start's are every n-th month:
    // "MP12 2+ SU" is the second Sunday of the start's month, each year.
    std::optional<Rule> monthsAsInterval() {
        std::vector<int> months = rule_.months;
        std::sort(months.begin(), months.end());
        const int count = static_cast<int>(months.size());
        const int step = 12 / count;
        bool even = step * count == 12 && (count == 1 || rule_.interval == 1);
        for (std::size_t each = 1; each < months.size(); ++each)
            even = even && months[each] - months[each - 1] == step;
        if (!even || !start_ ||
            std::find(months.begin(), months.end(), start_->month) == months.end() ||
            rule_.interval > 1000)
            return refuse("certain days of certain months");
        rule_.frequency = Frequency::Monthly;
        rule_.interval *= step;
        rule_.months.clear();
        if (!rule_.days.empty()) rule_.days = atEveryPosition(rule_.days);
        return rule_;
    }

    Rule rule_;
    const std::optional<RuleStart>& start_;
    std::string reason_;
};

std::string_view codeOf(const Rule& shape) {
    switch (shape.frequency) {
        case Frequency::Daily:
            return "D";
        case Frequency::Weekly:
            return "W";
        case Frequency::Monthly:
            return shape.days.empty() ? "MD" : "MP";
        case Frequency::Yearly:
            return shape.months.empty() ? "YD" : "YM";
    }
    return "";
}

// " 3", " 1+", " 1-": with the sign after the number, a plus only where `plus` asks for it.
void addNumber(std::string& text, int number, bool plus = false) {
    text += ' ';
    text += std::to_string(std::abs(number));
    if (number < 0)
        text += '-';
    else if (plus)
        text += '+';
}

// " MO TU": those with the position, from Sunday to Saturday.
void addWeekdays(std::string& text, const std::vector<RuleDay>& days, int position) {
    for (int weekday = 1; weekday <= 7; ++weekday) {
        if (std::find(days.begin(), days.end(), RuleDay{position, weekday}) == days.end()) continue;
        text += ' ';
        text += weekdayCode(weekday);
    }
}

// " 1+ MO TU 2- SU": each position once, with its weekdays.
void addDays(std::string& text, const std::vector<RuleDay>& days) {
    if (!anyPosition(days)) return addWeekdays(text, days, 0);
    std::vector<int> positions;
    for (const RuleDay& day : days) addOnce(positions, day.position);
    for (const int position : positions) {
        if (position != 0) addNumber(text, position, true);
        addWeekdays(text, days, position);
    }
}

// A rule that has one of the format's shapes: at most one of its lists has items.
std::string writeShape(const Rule& shape, const std::optional<RuleStart>& start) {
    std::string text(codeOf(shape));
    text += std::to_string(shape.interval);
    addDays(text, shape.days);
    for (const auto list : {&Rule::monthDays, &Rule::yearDays, &Rule::months}) {
        if ((shape.*list).empty()) continue;
        for (const int number : inCalendarOrder(shape.*list)) addNumber(text, number);
    }
    if (shape.until.empty()) {
        text += " #";
        text += std::to_string(shape.count);
        return text;
    }
    text += ' ';
    // Phones expect a date-time even where the series has no time of day.
    if (shape.until.size() == 8 || (start && start->isDate))
        text.append(shape.until, 0, 8).append("T000000");
    else
        text += shape.until;
    return text;
}

// True where no list of the rule has items but `list`; without one, its weekdays may.
bool hasOnly(const Rule& rule, std::vector<int> Rule::*list) {
    for (const auto each : {&Rule::monthDays, &Rule::yearDays, &Rule::weekNumbers, &Rule::months,
                            &Rule::setPositions, &Rule::hours, &Rule::minutes, &Rule::seconds})
        if (each != list && !(rule.*each).empty()) return false;
    return rule.days.empty() || list == nullptr;
}

// True for a rule that has one of the format's shapes as it is.
bool hasShape(const Rule& rule) {
    const auto isPosition = [](const RuleDay& day) {
        return day.position != 0 && std::abs(day.position) <= kMostPosition;
    };
    switch (rule.frequency) {
        case Frequency::Daily:
            return hasOnly(rule, nullptr) && rule.days.empty();
        case Frequency::Weekly:
            return hasOnly(rule, nullptr) && !anyPosition(rule.days);
        case Frequency::Monthly:
            if (rule.days.empty())
                return !rule.monthDays.empty() && hasOnly(rule, &Rule::monthDays);
            return hasOnly(rule, nullptr) &&
                   std::all_of(rule.days.begin(), rule.days.end(), isPosition);
        case Frequency::Yearly:
            return rule.months.empty() ? !rule.yearDays.empty() && hasOnly(rule, &Rule::yearDays)
                                       : hasOnly(rule, &Rule::months);
    }
    return false;
}

// True where weeks begin on the day that is assumed when the text is read, or where that does not
// matter.
bool hasUsualWeeks(const Rule& rule) {
    if (rule.frequency != Frequency::Weekly || rule.interval == 1) return true;
    const bool sunday =
        rule.days.size() > 1 && std::any_of(rule.days.begin(), rule.days.end(),
                                            [](const RuleDay& day) { return day.weekday == 1; });
    return rule.weekStart == (sunday ? 1 : 2) || (rule.weekStart == 0 && !sunday);
}

// True where the end, when it is read, means the same last day.
bool hasUsualEnd(const Rule& rule, const RuleStart& start) {
    if (rule.until.empty()) return true;
    const bool utc = rule.until.back() == 'Z';
    if (start.isDate) return !utc && start.onlyClock != Clock::Utc;
    if (start.onlyClock && utc != (*start.onlyClock == Clock::Utc)) return false;
    // Midnight is read as the whole of that day.
    return rule.until.size() == 8 || rule.until.substr(9, 6) != "000000";
}

// True for a rule that can be written as it is and is surely read as the same dates: most are.
bool isPlain(const Rule& rule, const std::optional<RuleStart>& start) {
    return hasShape(rule) && hasUsualWeeks(rule) && (!start || hasUsualEnd(rule, *start));
}

// Compares 400 dates or 60 years.
bool sameDates(const Rule& one, const Rule& other, const RuleStart& start) {
    if (one == other) return true;
    RuleLimits limits;
    limits.most = 400;
    limits.lastYear = std::min(start.year + 60, 2499);
    return one.count == other.count && one.endless() == other.endless() &&
           expandRule(one, start, limits) == expandRule(other, start, limits);
}

}  // namespace

VCalendarRule vCalendarTexts(const Rule& rule, const std::optional<RuleStart>& start) {
    VCalendarRule result;
    if (isPlain(rule, start)) {
        result.texts.push_back(writeShape(rule, start));
        return result;
    }
    Reshaper reshaper(rule, start);
    const auto shape = reshaper.run();
    if (!shape) {
        result.reason = reshaper.reason();
        return result;
    }
    const std::string text = writeShape(*shape, start);
    if (start) {
        const RuleReading again = readRules(text, RuleForm::VCalendar10, start);
        if (again.rules.size() != 1 || !sameDates(rule, again.rules.front(), *start)) {
            result.reason = rule.weekStart != 1 && rule.frequency == Frequency::Weekly
                                ? "weeks that do not begin on Sunday"
                                : "this rule";
            return result;
        }
    }
    result.texts.push_back(text);
    return result;
}

}  // namespace qel::calendar
