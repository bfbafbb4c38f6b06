#include "calendar/rules/RuleReadVCalendar.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/base/Strays.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleEnd.h"
#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

// Some programs write "W1.MO.TU" or "W1 MO,TU".
bool separates(char c) {
    return isBlank(c) || c == '.' || c == ',';
}

// Takes the next token off `rest`; "" at its end.
std::string_view nextToken(std::string_view& rest) {
    std::string_view token;
    while (token.empty() && !rest.empty()) {
        std::size_t begin = 0;
        while (begin < rest.size() && separates(rest[begin])) ++begin;
        std::size_t end = begin;
        while (end < rest.size() && !separates(rest[end])) ++end;
        token = rest.substr(begin, end - begin);
        rest.remove_prefix(end);
        while (!token.empty() && token.back() == ';') token.remove_suffix(1);
    }
    return token;
}

enum class Kind { Daily, Weekly, ByPosition, ByMonthDay, ByMonth, ByYearDay };

struct Head {
    Kind kind;
    int interval;
    bool bareMonth;  // "M1": neither MP nor MD
};

// Of one or two letters, "W" or "MP"; nothing for those that begin no rule.
std::optional<Kind> kindOf(std::string_view letters) {
    const char second = letters.size() == 2 ? toUpper(letters[1]) : '\0';
    switch (toUpper(letters[0])) {
        case 'D':
            return second == '\0' ? std::optional(Kind::Daily) : std::nullopt;
        case 'W':
            return second == '\0' ? std::optional(Kind::Weekly) : std::nullopt;
        case 'M':
            if (second == 'P') return Kind::ByPosition;
            return second == 'D' || second == '\0' ? std::optional(Kind::ByMonthDay) : std::nullopt;
        case 'Y':
            if (second == 'D') return Kind::ByYearDay;
            return second == 'M' || second == '\0' ? std::optional(Kind::ByMonth) : std::nullopt;
        default:
            return std::nullopt;
    }
}

// "W2", "MP", "D1"; nothing for a token that does not begin a rule.
std::optional<Head> readHead(std::string_view token) {
    constexpr std::size_t kLongestCode = 2;
    std::size_t digits = 0;
    while (digits < token.size() && !isDigit(token[digits])) ++digits;
    if (digits == 0 || digits > kLongestCode) return std::nullopt;
    const auto kind = kindOf(token.substr(0, digits));
    const std::string_view number = token.substr(digits);
    if (!kind || (!number.empty() && !allDigits(number))) return std::nullopt;
    return Head{*kind, number.empty() ? 1 : std::max(*parseInt(number), 1),
                digits == 1 && toUpper(token[0]) == 'M'};
}

// "3", "3+", "+3", "3-", "-3"; "LD" is -1.
std::optional<int> readSigned(std::string_view token) {
    if (equalsIgnoreCase(token, "LD")) return -1;
    if (token.size() > 1 && (token.back() == '+' || token.back() == '-')) {
        const auto number = parseInt(token.substr(0, token.size() - 1));
        if (!number) return std::nullopt;
        return token.back() == '-' ? -std::abs(*number) : *number;
    }
    return parseInt(token);
}

// "MO", and days written out: "MON", "Monday".
int readWeekday(std::string_view token) {
    if (token.size() < 2 || !std::all_of(token.begin(), token.end(), isAlpha)) return 0;
    for (int weekday = 1; weekday <= 7; ++weekday)
        if (startsWithIgnoreCase(weekdayName(weekday), token)) return weekday;
    return 0;
}

// "0600" and "0600$": seconds since midnight.
std::optional<int> readTime(std::string_view token) {
    if (!token.empty() && token.back() == '$') token.remove_suffix(1);
    const auto time = token.size() == 4 ? parseTimeOfDay(token) : std::nullopt;
    return time == kDaySeconds ? std::nullopt : time;
}

// A number after # for which the dates are counted out both ways, and the years that they may take.
constexpr std::size_t kMostCounted = 366;
constexpr int kYearsCounted = 100;

// Reads one rule, token by token.
class RuleParser {
  public:
    RuleParser(const Head& head, const std::optional<RuleStart>& start, RuleReading& reading)
        : head_(head), start_(start), reading_(reading) {
        rule_.interval = head.interval;
        switch (head.kind) {
            case Kind::Daily:
                rule_.frequency = Frequency::Daily;
                break;
            case Kind::Weekly:
                rule_.frequency = Frequency::Weekly;
                break;
            case Kind::ByPosition:
            case Kind::ByMonthDay:
                rule_.frequency = Frequency::Monthly;
                break;
            case Kind::ByMonth:
            case Kind::ByYearDay:
                rule_.frequency = Frequency::Yearly;
                break;
        }
    }

    // True if the token is an end mark of this rule: "#5" or a date.
    bool takeEnd(std::string_view token) {
        if (token.front() == '#') {
            const auto number = parseInt(token.substr(1));
            if (number && *number >= 0)
                end_.count = *number;
            else
                strays_.add(token);
            return true;
        }
        const bool separated = token.size() >= 10 && token[4] == '-' && token[7] == '-';
        if (token.size() < 8 || !allDigits(token.substr(0, separated ? 4 : 8))) return false;
        if (!readUntil(token, end_)) badEnd_ = token.substr(0, kLongestExcerpt);
        return true;
    }

    void takeModifier(std::string_view token) {
        // QelUtility's vCalendar writer puts this keyword before year days.
        constexpr std::string_view kOwnYearDays = "BYYEARDAY=";
        if (head_.kind == Kind::ByYearDay && startsWithIgnoreCase(token, kOwnYearDays))
            token.remove_prefix(kOwnYearDays.size());
        if (const auto time = readTime(token)) {
            times_.push_back(*time);
            lastWasDay_ = true;
            return;
        }
        if (token.size() > 1 && token.back() == '$') token.remove_suffix(1);
        if (const int weekday = readWeekday(token))
            takeWeekday(weekday, token);
        else if (const auto number = readSigned(token))
            takeNumber(*number, token);
        else
            strays_.add(token);
    }

    void finish(CountMeans countMeans) {
        strays_.report(reading_.notes, NoteCode::RuleItemUnknown);
        outside_.report(reading_.notes, NoteCode::RuleValueOutside);
        if (!badEnd_.empty()) {
            reading_.notes.push_back(Note(NoteCode::RuleEndInvalid, 0, {badEnd_}));
            reading_.complete = false;
            return;
        }
        if (outside_.any() && nothingLeft()) {
            reading_.notes.emplace_back(NoteCode::RuleNothingLeft);
            reading_.complete = false;
            return;
        }
        if (head_.bareMonth) reading_.notes.emplace_back(NoteCode::RuleMonthlyByDate);
        applyTimes();
        fillFromStart();
        if (!end_.count && end_.until.empty()) {
            end_.count = 2;
            reading_.notes.emplace_back(NoteCode::RuleWithoutEnd);
        }
        // Weeks begin on Sunday in QelUtility and on phones, on Monday in iCalendar.
        const bool sunday = std::any_of(rule_.days.begin(), rule_.days.end(),
                                        [](const RuleDay& day) { return day.weekday == 1; });
        if (rule_.frequency == Frequency::Weekly && rule_.interval > 1 && sunday &&
            rule_.days.size() > 1)
            rule_.weekStart = 1;
        if (start_ && end_.count && *end_.count > 0 && hasSeveralDays()) settleCount(countMeans);
        applyEnd(end_, start_, true, rule_, reading_.notes);
        reading_.rules.push_back(std::move(rule_));
    }

  private:
    void takeWeekday(int weekday, std::string_view token) {
        switch (head_.kind) {
            case Kind::Daily:
            case Kind::Weekly:
                addOnce(rule_.days, {0, weekday});
                break;
            case Kind::ByPosition:
                for (const int position : positions_) addOnce(rule_.days, {position, weekday});
                if (positions_.empty()) addOnce(rule_.days, {0, weekday});
                lastWasDay_ = true;
                break;
            default:
                strays_.add(token);
        }
    }

    void takeNumber(int number, std::string_view token) {
        switch (head_.kind) {
            case Kind::ByPosition:
                if (lastWasDay_) positions_.clear();
                lastWasDay_ = false;
                takeInRange(positions_, number, 5, token);
                break;
            case Kind::ByMonthDay:
                takeInRange(rule_.monthDays, number, 31, token);
                break;
            case Kind::ByMonth:
                takeInRange(rule_.months, std::abs(number), 12, token);
                break;
            case Kind::ByYearDay:
                takeInRange(rule_.yearDays, number, 366, token);
                break;
            default:
                strays_.add(token);
        }
    }

    void takeInRange(std::vector<int>& list, int number, int most, std::string_view token) {
        if (number == 0 || std::abs(number) > most)
            outside_.add(token);
        else
            addOnce(list, number);
    }

    [[nodiscard]] bool nothingLeft() const {
        switch (head_.kind) {
            case Kind::ByPosition:
                return rule_.days.empty() && positions_.empty();
            case Kind::ByMonthDay:
                return rule_.monthDays.empty();
            case Kind::ByMonth:
                return rule_.months.empty();
            case Kind::ByYearDay:
                return rule_.yearDays.empty();
            default:
                return false;
        }
    }

    // One rule can express times of day that share their minute: "0600 1200 1500".
    void applyTimes() {
        std::sort(times_.begin(), times_.end());
        times_.erase(std::unique(times_.begin(), times_.end()), times_.end());
        if (times_.empty()) return;
        if (start_ && times_.size() == 1 && times_.front() == start_->secondOfDay) return;
        const int minute = times_.front() / 60 % 60;
        const bool oneMinute = std::all_of(times_.begin(), times_.end(),
                                           [&](int time) { return time / 60 % 60 == minute; });
        if (!oneMinute) {
            reading_.notes.emplace_back(NoteCode::RuleTimesIgnored);
            reading_.complete = false;
            return;
        }
        for (const int time : times_) rule_.hours.push_back(time / 3600);
        rule_.minutes.push_back(minute);
    }

    [[nodiscard]] bool hasSeveralDays() const {
        return std::max({rule_.days.size(), rule_.monthDays.size(), rule_.months.size(),
                         rule_.yearDays.size()}) > 1 &&
               rule_.frequency != Frequency::Daily;
    }

    // Where a number of dates and the same number of periods are not the same series.
    void settleCount(CountMeans countMeans) {
        const auto number = static_cast<std::size_t>(*end_.count);
        if (countMeans == CountMeans::Dates && number > kMostCounted) return;
        Rule rule = rule_;
        rule.until = end_.until;
        if (rule.frequency == Frequency::Weekly) rule.weekStart = 1;
        const RuleLimits limits{std::numeric_limits<std::size_t>::max(),
                                start_->year + kYearsCounted, number};
        // As many dates as that are the first of them.
        const std::vector<int> ofPeriods = expandRule(rule, *start_, limits);
        if (ofPeriods.size() <= number) return;
        const int lastOfDates = ofPeriods[number - 1];
        const auto text = [](int day) { return formatMoment({day, 0, true, Clock::Floating}); };
        static constexpr std::string_view kPeriods[] = {"days", "weeks", "months", "years"};
        std::string periods;
        if (rule.interval > 1) periods = "times " + std::to_string(rule.interval) + " ";
        periods += kPeriods[static_cast<std::size_t>(rule.frequency)];
        const bool asDates = countMeans == CountMeans::Dates;
        const int taken = asDates ? lastOfDates : ofPeriods.back();
        const int other = asDates ? ofPeriods.back() : lastOfDates;
        reading_.notes.push_back(
            Note(asDates ? NoteCode::RuleCountOfDates : NoteCode::RuleCountOfPeriods, 0,
                 {std::to_string(number), text(taken), periods, text(other)}));
        if (!asDates) end_.count = static_cast<int>(ofPeriods.size());
    }

    void fillFromStart() {
        if (head_.kind == Kind::ByPosition && rule_.days.empty()) {
            if (!start_) {
                reading_.notes.emplace_back(NoteCode::RuleWeekdayUnknown);
                return;
            }
            const int weekday = weekdayOf(dayNumber(start_->year, start_->month, start_->day));
            if (positions_.empty()) positions_.push_back((start_->day - 1) / 7 + 1);
            for (const int position : positions_) addOnce(rule_.days, {position, weekday});
        }
        if (!start_) return;
        if (head_.kind == Kind::Weekly && rule_.days.empty())
            rule_.days.push_back(
                {0, weekdayOf(dayNumber(start_->year, start_->month, start_->day))});
        if (head_.kind == Kind::ByMonthDay && rule_.monthDays.empty())
            rule_.monthDays.push_back(start_->day);
        if (head_.kind == Kind::ByMonth && rule_.months.empty())
            rule_.months.push_back(start_->month);
    }

    Head head_;
    const std::optional<RuleStart>& start_;
    RuleReading& reading_;
    Rule rule_;
    RuleEnd end_;
    std::string badEnd_;
    std::vector<int> positions_;
    bool lastWasDay_ = false;
    std::vector<int> times_;
    Strays strays_;
    Strays outside_;
};

}  // namespace

void readVCalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        CountMeans countMeans, RuleReading& reading) {
    std::string_view rest = text;
    std::string_view token = nextToken(rest);
    if (token.empty()) return;
    const bool dots = hasAny<'.', ','>(text);
    std::optional<Head> head = readHead(token);
    if (!head) {
        reading.notes.emplace_back(NoteCode::RuleNotRecognised);
        reading.complete = false;
        return;
    }
    std::size_t rules = 0;
    while (!token.empty()) {
        if (++rules > kMostRulesInText) {
            reading.notes.push_back(
                Note(NoteCode::RuleTooMany, 0, {std::to_string(kMostRulesInText)}));
            reading.complete = false;
            return;
        }
        RuleParser parser(*head, start, reading);
        for (token = nextToken(rest); !token.empty(); token = nextToken(rest)) {
            head = readHead(token);
            if (head) break;
            if (!parser.takeEnd(token)) parser.takeModifier(token);
        }
        parser.finish(countMeans);
    }
    if (dots) reading.notes.emplace_back(NoteCode::RuleDots);
    if (rules > 1) reading.notes.push_back(Note(NoteCode::RuleSeveral, 0, {std::to_string(rules)}));
}

}  // namespace qel::calendar
