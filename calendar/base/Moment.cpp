#include "calendar/base/Moment.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"

namespace qel::calendar {

namespace {

constexpr int kDaySeconds = 86400;
const std::int64_t kFirstSecond = std::int64_t{dayNumber(1, 1, 1)} * kDaySeconds;
const std::int64_t kLastSecond = std::int64_t{dayNumber(10000, 1, 1)} * kDaySeconds - 1;

// Takes `Count` digits off the front of `text`; -1 where they are not there.
template <std::size_t Count>
int takeDigits(std::string_view& text) {
    if (text.size() < Count) return -1;
    int number = 0;
    for (std::size_t at = 0; at < Count; ++at) {
        if (!isDigit(text[at])) return -1;
        number = number * 10 + (text[at] - '0');
    }
    text.remove_prefix(Count);
    return number;
}

void skip(std::string_view& text, char separator) {
    if (!text.empty() && text.front() == separator) text.remove_prefix(1);
}

std::optional<int> takeDate(std::string_view& text) {
    const int year = takeDigits<4>(text);
    if (year < 1) return std::nullopt;
    skip(text, '-');
    const int month = takeDigits<2>(text);
    if (month < 1 || month > 12) return std::nullopt;
    skip(text, '-');
    const int day = takeDigits<2>(text);
    if (day < 1 || (day > 28 && day > daysInMonth(year, month))) return std::nullopt;
    return dayNumber(year, month, day);
}

std::optional<int> takeTime(std::string_view& text) {
    const int hour = takeDigits<2>(text);
    if (hour < 0) return std::nullopt;
    skip(text, ':');
    const int minute = takeDigits<2>(text);
    if (minute < 0) return std::nullopt;
    skip(text, ':');
    int second = 0;
    if (!text.empty() && isDigit(text.front())) {
        second = takeDigits<2>(text);
        if (second < 0) return std::nullopt;
        if (second == 60) second = 59;
    }
    const bool endOfDay = hour == 24 && minute == 0 && second == 0;
    if ((hour > 23 && !endOfDay) || minute > 59 || second > 59) return std::nullopt;
    return hour * 3600 + minute * 60 + second;
}

// REQUIRES: 0..99.
void putTwo(char* text, int number) {
    text[0] = static_cast<char>('0' + number / 10);
    text[1] = static_cast<char>('0' + number % 10);
}

}  // namespace

Moment momentAt(const Moment& moment, std::int64_t seconds) {
    Moment result = moment;
    seconds = std::clamp(seconds, kFirstSecond, kLastSecond);
    std::int64_t day = seconds / kDaySeconds;
    if (seconds % kDaySeconds < 0) --day;
    result.day = static_cast<int>(day);
    result.second = static_cast<int>(seconds - day * kDaySeconds);
    if (result.second != 0) result.isDate = false;
    return result;
}

std::optional<Moment> parseMoment(std::string_view text) {
    text = trimmed(text);
    Moment moment;
    const auto day = takeDate(text);
    if (!day) return std::nullopt;
    moment.day = *day;
    if (text.empty()) {
        moment.isDate = true;
        return moment;
    }
    if (toUpper(text.front()) != 'T' && text.front() != ' ') return std::nullopt;
    text.remove_prefix(1);
    const auto time = takeTime(text);
    if (!time) return std::nullopt;
    std::int64_t seconds = moment.seconds() + *time;
    if (text.size() == 1 && toUpper(text.front()) == 'Z') {
        moment.clock = Clock::Utc;
    } else if (!text.empty()) {
        const auto offset =
            text.front() == '+' || text.front() == '-' ? parseUtcOffset(text) : std::nullopt;
        if (!offset) return std::nullopt;
        moment.clock = Clock::Utc;
        seconds -= *offset;
    }
    if (seconds < kFirstSecond || seconds > kLastSecond) return std::nullopt;
    return momentAt(moment, seconds);
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

std::optional<Duration> parseDuration(std::string_view text) {
    text = trimmed(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    if (text.size() < 2 || toUpper(text.front()) != 'P') return std::nullopt;
    text.remove_prefix(1);
    Duration result;
    bool inTime = false;
    while (!text.empty()) {
        if (toUpper(text.front()) == 'T' && !inTime) {
            inTime = true;
            text.remove_prefix(1);
            continue;
        }
        const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
        if (digits == 0 || digits == text.size()) return std::nullopt;
        const std::int64_t number = *parseInt(text.substr(0, digits));
        const char unit = toUpper(text[digits]);
        text.remove_prefix(digits + 1);
        if (unit == 'W' && !inTime)
            result.days += number * 7;
        else if (unit == 'D' && !inTime)
            result.days += number;
        else if (unit == 'H' && inTime)
            result.seconds += number * 3600;
        else if (unit == 'M' && inTime)
            result.seconds += number * 60;
        else if (unit == 'S' && inTime)
            result.seconds += number;
        else
            return std::nullopt;
        // Far beyond any calendar, and far from overflow.
        if (result.total() > 400LL * 366 * kDaySeconds) return std::nullopt;
    }
    if (negative) {
        result.days = -result.days;
        result.seconds = -result.seconds;
    }
    return result;
}

std::string formatDuration(std::int64_t seconds) {
    std::string result = seconds < 0 ? "-P" : "P";
    const std::int64_t total = seconds < 0 ? -seconds : seconds;
    if (total == 0) return "PT0S";
    if (total % (7 * kDaySeconds) == 0)
        return result + std::to_string(total / (7 * kDaySeconds)) + "W";
    if (total >= kDaySeconds) result += std::to_string(total / kDaySeconds) + "D";
    const std::int64_t rest = total % kDaySeconds;
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
    const int hours = takeDigits<2>(text);
    if (hours < 0) return std::nullopt;
    skip(text, ':');
    int minutes = 0;
    int seconds = 0;
    if (!text.empty()) {
        minutes = takeDigits<2>(text);
        if (minutes < 0) return std::nullopt;
        skip(text, ':');
    }
    if (!text.empty()) {
        seconds = takeDigits<2>(text);
        if (seconds < 0 || !text.empty()) return std::nullopt;
    }
    if (minutes > 59 || seconds > 59) return std::nullopt;
    const int total = hours * 3600 + minutes * 60 + seconds;
    if (total > 15 * 3600) return std::nullopt;
    return sign * total;
}

std::string formatUtcOffset(int seconds, bool colon) {
    const int total = std::abs(seconds);
    char text[40];
    std::snprintf(text, sizeof text, "%c%02d%s%02d", seconds < 0 ? '-' : '+', total / 3600,
                  colon ? ":" : "", total / 60 % 60);
    std::string result = text;
    if (total % 60 != 0) {
        std::snprintf(text, sizeof text, "%s%02d", colon ? ":" : "", total % 60);
        result += text;
    }
    return result;
}

}  // namespace qel::calendar
