// RFC 2445 durations, "+P1DT2H", as signed seconds and back.
#include "QelUtility/ZQDuration.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstring>

#include "QelUtility/ZQDateTime.h"
#include "platform/AsciiText.h"

namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kWeek = 7 * kDay;

// Room for a sign, "P", "T" and five parts of a number and a letter each.
constexpr std::size_t kDurationRoom = 50;

std::int64_t secondsPerUnit(char unit) {
    switch (unit) {
        case 'W':
            return kWeek;
        case 'D':
            return kDay;
        case 'H':
            return kHour;
        case 'M':
            return kMinute;
        default:
            return 1;
    }
}

// Where numbers and their sum are held, so that no later sum overflows.
constexpr std::int64_t kCeiling = std::int64_t{INT_MAX} + 1;

}  // namespace

int QELUTILITY_CALL ZQ_SecondsToDuration(int seconds, VStr& out) {
    if (seconds == 0) return -1;
    char text[kDurationRoom] = {};
    char* end = text;
    // In 64 bits the most negative number has its opposite too.
    std::int64_t rest = seconds < 0 ? -std::int64_t{seconds} : std::int64_t{seconds};
    const auto part = [&](std::int64_t unit, char letter) {
        const std::int64_t number = rest / unit;
        rest %= unit;
        if (number == 0) return;
        end = std::to_chars(end, text + kDurationRoom - 2, number).ptr;
        *end++ = letter;
    };
    *end++ = seconds < 0 ? '-' : '+';
    *end++ = 'P';
    part(kWeek, 'W');
    part(kDay, 'D');
    if (rest != 0) *end++ = 'T';
    part(kHour, 'H');
    part(kMinute, 'M');
    part(1, 'S');
    out = text;
    return 0;
}

int QELUTILITY_CALL ZQ_DurationToSeconds(const char* duration, int* seconds) {
    const char* cursor = duration == nullptr ? "" : duration;
    const bool negative = *cursor == '-';
    if (*cursor == '-' || *cursor == '+') ++cursor;
    if (*cursor != 'P') return -1;
    ++cursor;
    std::int64_t total = 0;
    for (;;) {
        const std::size_t span = std::strcspn(cursor, "WDHMS");
        const char* const unit = cursor + span;
        // What follows the last unit is ignored, and a unit right after a unit ends the reading.
        if (span == 0 || *unit == '\0') break;
        const char* digits = unit;
        while (digits != cursor && qel::platform::isAsciiDigit(digits[-1])) --digits;
        const auto number = qel::platform::takeDecimal<std::int64_t, kCeiling>(
            digits, static_cast<std::size_t>(unit - digits));
        total = std::min(total + number * secondsPerUnit(*unit), kCeiling);
        cursor = unit + 1;
    }
    const std::int64_t result = negative ? -total : std::min<std::int64_t>(total, INT_MAX);
    if (seconds != nullptr) *seconds = static_cast<int>(result);
    return 0;
}

int QELUTILITY_CALL ZQ_DurationBetween(const char* start, const char* end, VStr& out) {
    int seconds = 0;
    ZQ_DateTimeDifference(start, end, &seconds);
    return ZQ_SecondsToDuration(seconds, out);
}

int QELUTILITY_CALL ZQ_NormalizeDuration(const char* duration, VStr& out) {
    int seconds = 0;
    if (ZQ_DurationToSeconds(duration, &seconds) != 0) return -1;
    return ZQ_SecondsToDuration(seconds, out);
}

int QELUTILITY_CALL ZQ_AddDuration(const char* text, const char* duration, VStr& out) {
    int seconds = 0;
    if (ZQ_DurationToSeconds(duration, &seconds) != 0) return -1;
    return ZQ_AddSeconds(text, seconds, out);
}
