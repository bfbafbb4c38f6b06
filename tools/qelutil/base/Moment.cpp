#include "base/Moment.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>

#include "QelUtility/ZQDate.h"
#include "base/Command.h"
#include "base/Text.h"

namespace qel::cli {

namespace {

[[noreturn]] void refuse(const std::string& text, const std::string& why) {
    throw InputError("\"" + text + "\": " + why);
}

struct Unit {
    std::int64_t seconds;
    const char* name;
};
constexpr std::array<Unit, 5> kUnits = {{{7 * kDaySeconds, "week"},
                                         {kDaySeconds, "day"},
                                         {3600, "hour"},
                                         {60, "minute"},
                                         {1, "second"}}};

}  // namespace

Time readMoment(const std::string& text) {
    constexpr struct {
        const char* word;
        int after;
    } kDays[] = {{"today", 0}, {"tomorrow", 1}, {"yesterday", -1}};
    for (const auto& [word, after] : kDays)
        if (text == word) return dateOf(ZQ_GetCurrentDate() + after);
    if (text == "now") {
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
        return momentAt(kUnixEpochDay * kDaySeconds + seconds, true);
    }
    Time time;
    try {
        time = Time::read(text);
    } catch (const qelcal::Error& problem) {
        // What does not begin with a year is nothing that is read, not a date with an error in it.
        constexpr std::string_view kDigits = "0123456789";
        const std::size_t digits = std::min(text.find_first_not_of(kDigits), text.size());
        if (digits >= 4) refuse(text, problem.what());
        refuse(text,
               "is no date; write 2005-06-15, 20050615, with a time 2005-06-15T08:30, or today, "
               "tomorrow, yesterday");
    }
    if (time.year < 1900 || time.year > 2499) refuse(text, "the year must be from 1900 to 2499");
    return time;
}

Time readMomentOf(const std::string& option, const std::string& text) {
    try {
        return readMoment(text);
    } catch (const InputError& problem) {
        throw UsageError(option + ": " + printable(problem.what()));
    }
}

std::int64_t readDuration(const std::string& text) {
    try {
        return qelcal::readDuration(text);
    } catch (const qelcal::Error& problem) {
        refuse(text, problem.what());
    }
}

Time momentAt(std::int64_t seconds, bool utc) {
    Time start;
    start.is_date = 0;
    start.clock = utc ? QELCAL_UTC : QELCAL_FLOATING;
    return start.plus(seconds);
}

Time dateOf(int codeDate) {
    return Time().plus(codeDate * kDaySeconds);
}

int codeDateOf(const Time& time) {
    return static_cast<int>(time.seconds() / kDaySeconds);
}

Time later(const Time& time, std::int64_t seconds) {
    // Both are far from the ends of 64 bits, whatever was read.
    const std::int64_t sum = time.seconds() + seconds;
    if (sum < 0 || sum >= kEndOfTime)
        refuse(time.text(), "the result is outside the years 1900 to 2499");
    return time.plus(seconds);
}

std::string isoDate(const Time& time) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", time.year, time.month, time.day);
    return text.data();
}

std::string momentWords(const Time& time) {
    std::string words = qelcal::weekdayName(time.weekday()) + ", " + std::to_string(time.day) +
                        " " + qelcal::monthName(time.month) + " " + std::to_string(time.year);
    if (time.is_date != 0) return words;
    std::array<char, 48> clock{};
    std::snprintf(clock.data(), clock.size(), ", %02d:%02d:%02d", time.hour, time.minute,
                  time.second);
    return words + clock.data() + (isUtc(time) ? " UTC" : "");
}

std::string durationText(std::int64_t seconds) {
    return (seconds > 0 ? "+" : "") + qelcal::durationText(seconds);
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
