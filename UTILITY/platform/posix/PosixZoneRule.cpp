#include "platform/posix/PosixZoneRule.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

#include "platform/AsciiText.h"

namespace qel::platform {

namespace {

namespace chr = std::chrono;

constexpr int kSecondsPerDay = 86400;
constexpr int kMaxHours = 167;  // a week less an hour, RFC 8536 3.3.1

// When in a year a change happens: a weekday of a month, or a day of the year.
struct YearlyRule {
    enum class Kind { WeekdayOfMonth, DayWithoutLeapDay, DayOfYear };
    Kind kind = Kind::WeekdayOfMonth;
    int month = 0;           // [1, 12]
    int week = 0;            // [1, 5]
    int weekday = 0;         // [0, 6]
    int day = 0;             // [1, 365] without the leap day, [0, 365] with it
    int seconds = 2 * 3600;  // from midnight of that day, in the time that ends
};

class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] bool at(char c) const { return !rest_.empty() && rest_.front() == c; }

    bool take(char c) {
        if (!at(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // A zone's name: three or more letters, or anything in angle brackets.
    bool takeName() {
        if (take('<')) {
            const std::size_t end = rest_.find('>');
            if (end == std::string_view::npos) return false;
            rest_.remove_prefix(end + 1);
            return true;
        }
        std::size_t length = 0;
        while (length < rest_.size() && isAsciiLetter(rest_[length])) ++length;
        rest_.remove_prefix(length);
        return length >= 3;
    }

    bool takeNumber(int low, int high, int& number) {
        const char* end = rest_.data();
        constexpr int kTooHigh = 1000;  // no field of a rule goes that far
        number = takeDecimal<int, kTooHigh>(end, rest_.size());
        const auto digits = static_cast<std::size_t>(end - rest_.data());
        rest_.remove_prefix(digits);
        return digits > 0 && number >= low && number <= high;
    }

    // [+|-]hh[:mm[:ss]] in seconds.
    bool takeTime(int& seconds) {
        const bool negative = at('-');
        if (negative || at('+')) rest_.remove_prefix(1);
        int hours = 0;
        int minutes = 0;
        int rest = 0;
        if (!takeNumber(0, kMaxHours, hours)) return false;
        if (take(':')) {
            if (!takeNumber(0, 59, minutes)) return false;
            if (take(':') && !takeNumber(0, 59, rest)) return false;
        }
        seconds = hours * 3600 + minutes * 60 + rest;
        if (negative) seconds = -seconds;
        return true;
    }

    bool takeRule(YearlyRule& rule) {
        if (take('M')) {
            rule.kind = YearlyRule::Kind::WeekdayOfMonth;
            if (!takeNumber(1, 12, rule.month) || !take('.') || !takeNumber(1, 5, rule.week) ||
                !take('.') || !takeNumber(0, 6, rule.weekday))
                return false;
        } else if (take('J')) {
            rule.kind = YearlyRule::Kind::DayWithoutLeapDay;
            if (!takeNumber(1, 365, rule.day)) return false;
        } else {
            rule.kind = YearlyRule::Kind::DayOfYear;
            if (!takeNumber(0, 365, rule.day)) return false;
        }
        return !take('/') || takeTime(rule.seconds);
    }

  private:
    std::string_view rest_;
};

bool isExpressible(const YearlyRule& rule) {
    return rule.kind == YearlyRule::Kind::WeekdayOfMonth && rule.seconds >= 0 &&
           rule.seconds <= kSecondsPerDay;
}

void setTimeOfDay(int seconds, ZoneChangeMoment& moment) {
    // Midnight at the end of the day has no notation of its own; the last millisecond before it
    // stands for it, as nothing here counts finer than seconds.
    const bool endOfDay = seconds >= kSecondsPerDay;
    const int shown = endOfDay ? kSecondsPerDay - 1 : seconds;
    moment.hour = shown / 3600;
    moment.minute = shown % 3600 / 60;
    moment.second = shown % 60;
    moment.millisecond = endOfDay ? 999 : 0;
}

ZoneChangeMoment asWeekday(const YearlyRule& rule) {
    ZoneChangeMoment moment;
    moment.month = rule.month;
    moment.dayOfWeek = rule.weekday;
    moment.day = rule.week;
    setTimeOfDay(rule.seconds, moment);
    return moment;
}

chr::local_days dayOf(const YearlyRule& rule, chr::year year) {
    if (rule.kind == YearlyRule::Kind::WeekdayOfMonth) {
        const chr::year_month month = year / chr::month(static_cast<unsigned>(rule.month));
        const chr::weekday weekday(static_cast<unsigned>(rule.weekday));
        if (rule.week == 5) return chr::local_days(month / weekday[chr::last]);
        return chr::local_days(month / weekday[static_cast<unsigned>(rule.week)]);
    }
    const chr::local_days newYear(year / chr::January / 1);
    if (rule.kind == YearlyRule::Kind::DayOfYear) return newYear + chr::days(rule.day);
    // Day 60 is 1 March in every year.
    return newYear + chr::days(rule.day - 1 + (year.is_leap() && rule.day >= 60 ? 1 : 0));
}

ZoneChangeMoment asDate(const YearlyRule& rule, int year) {
    const chr::year wanted(std::clamp(year, 1601, 30827));
    const chr::local_seconds exact = dayOf(rule, wanted) + chr::seconds(rule.seconds);
    // A moment that its hours push out of the year is held at the year's edge.
    const chr::local_seconds first = chr::local_days(wanted / chr::January / 1);
    const chr::local_seconds end = chr::local_days((wanted + chr::years(1)) / chr::January / 1);
    const chr::local_seconds moment = std::clamp(exact, first, end);
    const chr::local_days day =
        std::min(chr::floor<chr::days>(moment), chr::floor<chr::days>(end) - chr::days(1));
    const chr::year_month_day date(day);
    ZoneChangeMoment result;
    result.year = static_cast<int>(wanted);
    result.month = static_cast<int>(static_cast<unsigned>(date.month()));
    result.day = static_cast<int>(static_cast<unsigned>(date.day()));
    setTimeOfDay(static_cast<int>((moment - day).count()), result);
    return result;
}

}  // namespace

bool parsePosixZoneRule(std::string_view text, int year, TimeZoneDescription& zone) {
    Reader reader(text);
    int standardOffset = 0;  // seconds, UTC = local + offset, as the text has it
    if (!reader.takeName() || !reader.takeTime(standardOffset)) return false;
    TimeZoneDescription result;
    if (reader.atEnd()) {
        result.bias = standardOffset / 60;
        zone = result;
        return true;
    }
    int daylightOffset = standardOffset - 3600;
    if (!reader.takeName()) return false;
    if (!reader.atEnd() && !reader.at(',') && !reader.takeTime(daylightOffset)) return false;
    YearlyRule begin;
    YearlyRule end;
    // A text without rules leaves them to the system; these are the usual ones.
    if (reader.atEnd()) reader = Reader(",M3.2.0,M11.1.0");
    if (!reader.take(',') || !reader.takeRule(begin)) return false;
    if (!reader.take(',') || !reader.takeRule(end) || !reader.atEnd()) return false;

    if (daylightOffset > standardOffset) {
        std::swap(daylightOffset, standardOffset);
        std::swap(begin, end);
    }
    result.bias = standardOffset / 60;
    result.daylightBias = (daylightOffset - standardOffset) / 60;
    const bool weekdays = isExpressible(begin) && isExpressible(end);
    result.daylightDate = weekdays ? asWeekday(begin) : asDate(begin, year);
    result.standardDate = weekdays ? asWeekday(end) : asDate(end, year);
    zone = result;
    return true;
}

}  // namespace qel::platform
