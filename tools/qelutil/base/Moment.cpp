#include "base/Moment.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "QelUtility/ZQDate.h"
#include "base/Command.h"

namespace qel::cli {

namespace {

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> kWeekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};

// A thousand years: no moment can be moved by more, and no sum of parts overflows.
constexpr std::int64_t kLongestDuration = 1000 * 366 * kDaySeconds;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

[[noreturn]] void refuse(std::string_view text, const std::string& why) {
    throw InputError("\"" + std::string(text) + "\": " + why);
}

// Takes pieces from the front of a text.
class Reader {
  public:
    explicit Reader(std::string_view text) : whole_(text), rest_(text) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }
    [[nodiscard]] bool at(char c) const { return !rest_.empty() && rest_.front() == c; }

    bool take(char c) {
        if (!at(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // Exactly so many digits.
    int digits(int count, const char* what) {
        int number = 0;
        for (int i = 0; i < count; ++i) {
            if (rest_.empty() || !isDigit(rest_.front())) {
                refuse(whole_, std::string("the ") + what + " must have " + std::to_string(count) +
                                   " digits; write 20050615, or 20050615T083000Z");
            }
            number = number * 10 + (rest_.front() - '0');
            rest_.remove_prefix(1);
        }
        return number;
    }

  private:
    std::string_view whole_;
    std::string_view rest_;
};

std::string dayText(std::int64_t day) {
    char text[9];
    return ZQ_CodeDateToAlpha(static_cast<int>(day), text);
}

std::int64_t readDay(std::string_view text, Reader& reader) {
    const int year = reader.digits(4, "year");
    const bool dashes = reader.take('-');
    const int month = reader.digits(2, "month");
    if (dashes && !reader.take('-')) refuse(text, "a \"-\" is missing after the month");
    const int day = reader.digits(2, "day");
    if (year < 1900 || year > 2499) refuse(text, "the year must be from 1900 to 2499");
    if (month < 1 || month > 12) refuse(text, "there is no month " + std::to_string(month));
    unsigned code = 0;
    ZQ_DateEncode(month, day == 0 ? 1 : day, year, &code);
    char plain[9];
    std::snprintf(plain, sizeof plain, "%04d%02d%02d", year, month, day);
    // A day past the end of its month has a code date all the same, of the month that follows.
    if (dayText(code) != plain) {
        refuse(text, std::string(kMonths[static_cast<std::size_t>(month) - 1]) + " " +
                         std::to_string(year) + " has no day " + std::to_string(day));
    }
    return code;
}

std::int64_t readTime(std::string_view text, Reader& reader) {
    const int hour = reader.digits(2, "hour");
    const bool colons = reader.take(':');
    const int minute = reader.digits(2, "minute");
    int second = 0;
    if (colons ? reader.take(':') : !reader.atEnd() && !reader.at('Z'))
        second = reader.digits(2, "second");
    if (hour > 23) refuse(text, "there is no hour " + std::to_string(hour));
    if (minute > 59) refuse(text, "there is no minute " + std::to_string(minute));
    if (second > 59) refuse(text, "there is no second " + std::to_string(second));
    return hour * 3600 + minute * 60 + second;
}

std::string timeText(std::int64_t second) {
    char text[7];
    return ZQ_CodeTimeToAlpha(static_cast<int>(second), text);
}

struct Unit {
    char letter;
    std::int64_t seconds;
    const char* name;
};
constexpr std::array<Unit, 5> kUnits = {{{'W', 7 * kDaySeconds, "week"},
                                         {'D', kDaySeconds, "day"},
                                         {'H', 3600, "hour"},
                                         {'M', 60, "minute"},
                                         {'S', 1, "second"}}};
constexpr std::size_t kFirstTimeUnit = 2;

}  // namespace

Moment readMoment(std::string_view text) {
    if (text == "today") return {ZQ_GetCurrentDate() * kDaySeconds, false, false};
    if (text == "now") {
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
        return later({kUnixEpochDay * kDaySeconds, true, true}, seconds);
    }
    Reader reader(text);
    Moment moment;
    moment.seconds = readDay(text, reader) * kDaySeconds;
    if (reader.atEnd()) return moment;
    if (!reader.take('T') && !reader.take(' ')) refuse(text, "a \"T\" must follow the date");
    moment.hasTime = true;
    moment.seconds += readTime(text, reader);
    moment.utc = reader.take('Z');
    if (!reader.atEnd()) refuse(text, "only a \"Z\" may follow the time");
    return moment;
}

Moment later(const Moment& moment, std::int64_t seconds) {
    // Both are far from the ends of 64 bits, whatever was read.
    const std::int64_t sum = moment.seconds + seconds;
    if (sum < 0 || sum >= kEndOfTime)
        refuse(momentText(moment), "what it becomes lies outside the years 1900 to 2499");
    return {sum, moment.hasTime || seconds % kDaySeconds != 0, moment.utc};
}

std::string momentText(const Moment& moment) {
    std::string day = dayText(moment.seconds / kDaySeconds);
    if (!moment.hasTime) return day;
    return day + "T" + timeText(moment.seconds % kDaySeconds) + (moment.utc ? "Z" : "");
}

std::string momentWords(const Moment& moment) {
    const std::int64_t day = moment.seconds / kDaySeconds;
    const std::string date = dayText(day);
    // Day 0 is a Monday.
    std::string words = std::string(kWeekdays[static_cast<std::size_t>((day + 1) % 7)]) + ", " +
                        std::to_string(std::atoi(date.c_str() + 6)) + " " +
                        kMonths[static_cast<std::size_t>(std::stoi(date.substr(4, 2))) - 1] + " " +
                        date.substr(0, 4);
    if (!moment.hasTime) return words;
    const std::string time = timeText(moment.seconds % kDaySeconds);
    words += ", " + time.substr(0, 2) + ":" + time.substr(2, 2) + ":" + time.substr(4, 2);
    return words + (moment.utc ? " UTC" : "");
}

std::int64_t readDuration(std::string_view text) {
    std::string_view rest = text;
    const bool negative = !rest.empty() && rest.front() == '-';
    if (negative || (!rest.empty() && rest.front() == '+')) rest.remove_prefix(1);
    if (rest.empty() || rest.front() != 'P')
        refuse(text, "a duration begins with a \"P\", as in P1DT2H");
    rest.remove_prefix(1);
    std::int64_t total = 0;
    std::size_t next = 0;  // the first unit that may still come
    bool inTime = false;
    bool partRead = false;
    while (!rest.empty()) {
        if (rest.front() == 'T' && !inTime) {
            inTime = true;
            next = kFirstTimeUnit;
            partRead = false;
            rest.remove_prefix(1);
            continue;
        }
        std::int64_t number = 0;
        std::size_t length = 0;
        for (; length < rest.size() && isDigit(rest[length]); ++length) {
            number = number * 10 + (rest[length] - '0');
            if (number > kLongestDuration) refuse(text, "is too long");
        }
        if (length == 0) refuse(text, "a number is missing before \"" + std::string(rest) + "\"");
        if (length == rest.size())
            refuse(text, "a unit is missing after \"" + std::string(rest) + "\"");
        const char letter = rest[length];
        const std::size_t end = inTime ? kUnits.size() : kFirstTimeUnit;
        while (next < end && kUnits[next].letter != letter) ++next;
        if (next >= end) {
            refuse(text, std::string("\"") + letter +
                             "\" is not a unit that may come there; the order is W D T H M S");
        }
        total += number * kUnits[next].seconds;
        if (total > kLongestDuration) refuse(text, "is too long");
        ++next;
        partRead = true;
        rest.remove_prefix(length + 1);
    }
    if (!partRead) refuse(text, "a number with a unit is missing at the end");
    return negative ? -total : total;
}

std::string durationText(std::int64_t seconds) {
    if (seconds == 0) return "PT0S";
    std::string text = seconds < 0 ? "-P" : "+P";
    std::int64_t rest = seconds < 0 ? -seconds : seconds;
    for (std::size_t i = 0; i < kUnits.size() && rest != 0; ++i) {
        if (i == kFirstTimeUnit) text += 'T';
        const std::int64_t number = rest / kUnits[i].seconds;
        rest %= kUnits[i].seconds;
        if (number != 0) text += std::to_string(number) + kUnits[i].letter;
    }
    return text;
}

std::string durationWords(std::int64_t seconds) {
    if (seconds == 0) return "no time";
    std::string words;
    std::int64_t rest = seconds < 0 ? -seconds : seconds;
    for (const Unit& unit : kUnits) {
        const std::int64_t number = rest / unit.seconds;
        rest %= unit.seconds;
        if (number == 0) continue;
        words += (words.empty() ? "" : " ") + std::to_string(number) + " " + unit.name +
                 (number == 1 ? "" : "s");
    }
    return words + (seconds < 0 ? " earlier" : "");
}

std::string offsetText(std::int64_t seconds) {
    const std::int64_t size = seconds < 0 ? -seconds : seconds;
    char text[48];
    std::snprintf(text, sizeof text, "%c%02d:%02d", seconds < 0 ? '-' : '+',
                  static_cast<int>(size / 3600), static_cast<int>(size % 3600 / 60));
    std::string result = text;
    if (size % 60 != 0) {
        std::snprintf(text, sizeof text, ":%02d", static_cast<int>(size % 60));
        result += text;
    }
    return result;
}

}  // namespace qel::cli
