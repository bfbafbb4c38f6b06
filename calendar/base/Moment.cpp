#include "calendar/base/Moment.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "calendar/base/Ascii.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"

namespace qel::calendar {

namespace {

constexpr int kFirstDay = dayNumber(1, 1, 1);
constexpr int kLastDay = dayNumber(10000, 1, 1) - 1;
constexpr std::int64_t kFirstSecond = std::int64_t{kFirstDay} * kDaySeconds;
constexpr std::int64_t kLastSecond = std::int64_t{kLastDay + 1} * kDaySeconds - 1;

// Says what is wrong, if anybody asks, and is what a failed reader returns.
template <class... Parts>
std::nullopt_t failed(std::string* problem, const Parts&... parts) {
    if (problem != nullptr) {
        problem->clear();
        (problem->append(parts), ...);
    }
    return std::nullopt;
}

std::nullopt_t missingDigits(std::string* problem, std::string_view what, std::size_t count) {
    return failed(problem, "the ", what, " must have ", std::to_string(count),
                  " digits; write 20050615 or 20050615T083000Z");
}

std::nullopt_t noSuch(std::string* problem, std::string_view what, int number) {
    return failed(problem, "there is no ", what, " ", std::to_string(number));
}

void skip(std::string_view& text, char separator) {
    if (!text.empty() && text.front() == separator) text.remove_prefix(1);
}

std::optional<int> takeDate(std::string_view& text, std::string* problem) {
    const auto year = takeDigits(text, 4);
    if (!year) return missingDigits(problem, "year", 4);
    if (*year < 1) return noSuch(problem, "year", *year);
    skip(text, '-');
    const auto month = takeDigits(text, 2);
    if (!month) return missingDigits(problem, "month", 2);
    if (*month < 1 || *month > 12) return noSuch(problem, "month", *month);
    skip(text, '-');
    const auto day = takeDigits(text, 2);
    if (!day) return missingDigits(problem, "day", 2);
    if (*day < 1 || (*day > 28 && *day > daysInMonth(*year, *month)))
        return failed(problem, monthName(*month), " ", std::to_string(*year), " has no day ",
                      std::to_string(*day));
    return dayNumber(*year, *month, *day);
}

std::optional<int> takeTime(std::string_view& text, std::string* problem) {
    const auto hour = takeDigits(text, 2);
    if (!hour) return missingDigits(problem, "hour", 2);
    skip(text, ':');
    const auto minute = takeDigits(text, 2);
    if (!minute) return missingDigits(problem, "minute", 2);
    skip(text, ':');
    int second = 0;
    if (!text.empty() && isDigit(text.front())) {
        const auto seconds = takeDigits(text, 2);
        if (!seconds) return missingDigits(problem, "second", 2);
        second = *seconds == 60 ? 59 : *seconds;
    }
    const bool endOfDay = *hour == 24 && *minute == 0 && second == 0;
    if (*hour > 23 && !endOfDay) return noSuch(problem, "hour", *hour);
    if (*minute > 59) return noSuch(problem, "minute", *minute);
    if (second > 59) return noSuch(problem, "second", second);
    return *hour * 3600 + *minute * 60 + second;
}

// One of a unit; nothing for a letter that may not come there.
std::optional<Duration> unitOf(char letter, bool inTime) {
    switch (toUpper(letter)) {
        case 'W':
            return inTime ? std::nullopt : std::optional(Duration{7, 0});
        case 'D':
            return inTime ? std::nullopt : std::optional(Duration{1, 0});
        case 'H':
            return inTime ? std::optional(Duration{0, 3600}) : std::nullopt;
        case 'M':
            return inTime ? std::optional(Duration{0, 60}) : std::nullopt;
        case 'S':
            return inTime ? std::optional(Duration{0, 1}) : std::nullopt;
        default:
            return std::nullopt;
    }
}

// Takes a number with its unit off the front of `text`. REQUIRES: !text.empty()
std::optional<Duration> takeDurationPart(std::string_view& text, bool inTime,
                                         std::string* problem) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0) return failed(problem, "a number is missing before ", quoted(text));
    if (digits == text.size()) return failed(problem, "a unit is missing after ", quoted(text));
    // Far beyond any calendar, and far from overflow in any unit.
    constexpr std::int64_t kMost = 1'000'000'000'000;
    std::int64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + digits, number);
    if (read.ec != std::errc() || number > kMost)
        return failed(problem, text.substr(0, std::min<std::size_t>(digits, 40)),
                      " is too large a number");
    const auto unit = unitOf(text[digits], inTime);
    if (!unit)
        return failed(problem, quoted(text.substr(digits, 1)),
                      inTime ? " is not a unit of time; they are H, M and S"
                             : " is not a unit of days; they are W and D, and \"T\" must come "
                               "before H, M and S");
    text.remove_prefix(digits + 1);
    return Duration{number * unit->days, number * unit->seconds};
}

// The number of two digits; 100 or more when one is not a digit.
unsigned twoDigits(const char* text) {
    const unsigned tens = static_cast<unsigned char>(text[0]) - unsigned{'0'};
    const unsigned ones = static_cast<unsigned char>(text[1]) - unsigned{'0'};
    return tens > 9 || ones > 9 ? 100 : tens * 10 + ones;
}

// YYYYMMDDTHHMMSS with or without a Z, as nearly all moments are written. Nothing for any other
// form, and for a moment that has to be looked at more closely.
std::optional<Moment> parseUsual(std::string_view text) {
    constexpr std::size_t kLocal = 15;
    const bool utc = text.size() == kLocal + 1 && text.back() == 'Z';
    if ((text.size() != kLocal && !utc) || text[8] != 'T') return std::nullopt;
    const unsigned century = twoDigits(text.data());
    const unsigned year = twoDigits(text.data() + 2);
    const unsigned month = twoDigits(text.data() + 4);
    const unsigned day = twoDigits(text.data() + 6);
    const unsigned hour = twoDigits(text.data() + 9);
    const unsigned minute = twoDigits(text.data() + 11);
    const unsigned second = twoDigits(text.data() + 13);
    if (century - 1 > 98 || year > 99 || month - 1 > 11 || day - 1 > 27 || hour > 23 ||
        minute > 59 || second > 59)
        return std::nullopt;
    Moment moment;
    moment.day = dayNumber(static_cast<int>(century * 100 + year), static_cast<int>(month),
                           static_cast<int>(day));
    moment.second = static_cast<int>(hour * 3600 + minute * 60 + second);
    moment.clock = utc ? Clock::Utc : Clock::Floating;
    return moment;
}

// REQUIRES: 0..99.
void putTwo(char* text, int number) {
    static constexpr auto kPairs = [] {
        std::array<char, 200> pairs{};
        for (std::size_t each = 0; each < 100; ++each) {
            pairs[2 * each] = static_cast<char>('0' + each / 10);
            pairs[2 * each + 1] = static_cast<char>('0' + each % 10);
        }
        return pairs;
    }();
    std::memcpy(text, kPairs.data() + 2 * static_cast<std::size_t>(number), 2);
}

}  // namespace

Moment momentAt(const Moment& moment, std::int64_t seconds) {
    Moment result = moment;
    // Nothing to carry, as of nearly all.
    const std::int64_t second = seconds - std::int64_t{moment.day} * kDaySeconds;
    if (second >= 0 && second < kDaySeconds && moment.day >= kFirstDay && moment.day <= kLastDay) {
        result.second = static_cast<int>(second);
        if (second != 0) result.isDate = false;
        return result;
    }
    seconds = std::clamp(seconds, kFirstSecond, kLastSecond);
    std::int64_t day = seconds / kDaySeconds;
    if (seconds % kDaySeconds < 0) --day;
    result.day = static_cast<int>(day);
    result.second = static_cast<int>(seconds - day * kDaySeconds);
    if (result.second != 0) result.isDate = false;
    return result;
}

std::optional<Moment> parseMoment(std::string_view text, std::string* problem) {
    if (const auto usual = parseUsual(text)) return usual;
    text = trimmed(text);
    Moment moment;
    const auto day = takeDate(text, problem);
    if (!day) return std::nullopt;
    moment.day = *day;
    if (text.empty()) {
        moment.isDate = true;
        return moment;
    }
    if (toUpper(text.front()) != 'T' && text.front() != ' ')
        return failed(problem, "a \"T\" must come between the date and the time");
    text.remove_prefix(1);
    const auto time = takeTime(text, problem);
    if (!time) return std::nullopt;
    std::int64_t seconds = moment.seconds() + *time;
    if (text.size() == 1 && toUpper(text.front()) == 'Z') {
        moment.clock = Clock::Utc;
    } else if (!text.empty()) {
        const auto offset =
            text.front() == '+' || text.front() == '-' ? parseUtcOffset(text) : std::nullopt;
        if (!offset)
            return failed(problem, "only a \"Z\" or an offset such as +0200 may follow the time");
        moment.clock = Clock::Utc;
        seconds -= *offset;
    }
    if (seconds < kFirstSecond || seconds > kLastSecond)
        return failed(problem, "it is outside the years 1 to 9999");
    return momentAt(moment, seconds);
}

std::optional<int> parseTimeOfDay(std::string_view text) {
    const auto time = takeTime(text, nullptr);
    return text.empty() ? time : std::nullopt;
}

MomentText::MomentText(const Moment& moment) {
    const Moment held = momentAt(moment, moment.seconds());
    const Civil civil = civilOf(held.day);
    char* const text = text_.data();
    putTwo(text, civil.year / 100);
    putTwo(text + 2, civil.year % 100);
    putTwo(text + 4, civil.month);
    putTwo(text + 6, civil.day);
    size_ = 8;
    if (moment.isDate) return;
    text[8] = 'T';
    putTwo(text + 9, held.second / 3600);
    putTwo(text + 11, held.second / 60 % 60);
    putTwo(text + 13, held.second % 60);
    size_ = 15;
    if (moment.clock == Clock::Utc) text[size_++] = 'Z';
}

std::string formatMoment(const Moment& moment) {
    return std::string(MomentText(moment));
}

std::optional<Duration> parseDuration(std::string_view text, std::string* problem) {
    text = trimmed(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    if (text.empty() || toUpper(text.front()) != 'P')
        return failed(problem, "a duration begins with \"P\", as in P1DT2H");
    text.remove_prefix(1);
    if (text.empty()) return failed(problem, "a number with a unit is missing after \"P\"");
    Duration result;
    bool inTime = false;
    while (!text.empty()) {
        if (toUpper(text.front()) == 'T' && !inTime) {
            inTime = true;
            text.remove_prefix(1);
            continue;
        }
        const auto part = takeDurationPart(text, inTime, problem);
        if (!part) return std::nullopt;
        result.days += part->days;
        result.seconds += part->seconds;
        // The time between any two dates is a duration: an alarm may have it.
        if (result.total() > 10'000LL * 366 * kDaySeconds)
            return failed(problem, "it is longer than 10,000 years");
    }
    if (negative) {
        result.days = -result.days;
        result.seconds = -result.seconds;
    }
    return result;
}

std::optional<Duration> parseUntidyDuration(std::string_view text, bool& withoutT) {
    auto result = parseDuration(text);
    if (result || text.find_first_of("Tt") != std::string_view::npos) return result;
    std::size_t at = std::min(text.find_first_of("HhMmSs"), text.size());
    while (at > 0 && isDigit(text[at - 1])) --at;
    result = parseDuration(std::string(text.substr(0, at)) + "T" + std::string(text.substr(at)));
    withoutT = withoutT || result;
    return result;
}

std::string formatDuration(std::int64_t seconds) {
    std::string result = seconds < 0 ? "-P" : "P";
    // The least number has no positive counterpart of its own type.
    const std::uint64_t total =
        seconds < 0 ? 0 - static_cast<std::uint64_t>(seconds) : static_cast<std::uint64_t>(seconds);
    if (total == 0) return "PT0S";
    if (total % (7 * kDaySeconds) == 0)
        return result + std::to_string(total / (7 * kDaySeconds)) + "W";
    if (total >= kDaySeconds) result += std::to_string(total / kDaySeconds) + "D";
    const std::uint64_t rest = total % kDaySeconds;
    if (rest != 0) result += "T";
    if (rest >= 3600) result += std::to_string(rest / 3600) + "H";
    // RFC 5545 does not let hours and seconds stand without the minutes between them.
    if (rest / 60 % 60 != 0 || (rest >= 3600 && rest % 60 != 0))
        result += std::to_string(rest / 60 % 60) + "M";
    if (rest % 60 != 0) result += std::to_string(rest % 60) + "S";
    return result;
}

std::string formatDuration(const Duration& duration) {
    const std::int64_t size = duration.seconds < 0 ? -duration.seconds : duration.seconds;
    if (duration.days != 0 || size < kDaySeconds) return formatDuration(duration.total());
    std::string result = (duration.seconds < 0 ? "-PT" : "PT") + std::to_string(size / 3600) + "H";
    if (size % 3600 != 0) result += std::to_string(size / 60 % 60) + "M";
    if (size % 60 != 0) result += std::to_string(size % 60) + "S";
    return result;
}

std::optional<int> parseUtcOffset(std::string_view text) {
    text = trimmed(text);
    const int sign = !text.empty() && text.front() == '-' ? -1 : 1;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    // "+1" and "+530" have no zero before the hour.
    const auto digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const auto hours = takeDigits(text, digits == 1 || digits == 3 ? 1 : 2);
    if (!hours) return std::nullopt;
    skip(text, ':');
    std::optional<int> minutes = 0;
    std::optional<int> seconds = 0;
    if (!text.empty()) {
        minutes = takeDigits(text, 2);
        skip(text, ':');
    }
    if (!text.empty()) seconds = takeDigits(text, 2);
    if (!minutes || !seconds || !text.empty()) return std::nullopt;
    if (*minutes > 59 || *seconds > 59) return std::nullopt;
    const int total = *hours * 3600 + *minutes * 60 + *seconds;
    if (total > 15 * 3600) return std::nullopt;
    return sign * total;
}

std::string formatUtcOffset(int seconds, bool colon) {
    const int total = std::abs(seconds);
    std::string text(1, seconds < 0 ? '-' : '+');
    const auto add = [&text](int number) {
        if (number < 10) text += '0';
        text += std::to_string(number);
    };
    add(total / 3600);
    if (colon) text += ':';
    add(total / 60 % 60);
    if (total % 60 == 0) return text;
    if (colon) text += ':';
    add(total % 60);
    return text;
}

}  // namespace qel::calendar
