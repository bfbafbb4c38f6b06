// Date-time texts: reading, writing and moving them.
#include "QelUtility/ZQDateTime.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include "QelUtility/ZQDate.h"
#include "dates/CivilDate.h"
#include "dates/DateTimeFields.h"
#include "dates/DecimalField.h"
#include "dates/ZQDateTimeInternal.h"
#include "platform/AsciiText.h"
#include "strings/VStrInternal.h"

namespace {

using qel::dates::DateTimeFields;
using qel::dates::takeDateTime;

// Reads one number as scanf's "%<width>d" does: blanks, which do not count against the width, then
// at most `width` characters of an optional sign and digits. False, with `value` untouched, when no
// digit is found; `cursor` is then of no further use.
bool scanNumber(const char*& cursor, std::size_t width, int& value) {
    while (qel::platform::isAsciiSpace(*cursor)) ++cursor;
    const bool negative = *cursor == '-';
    if (*cursor == '-' || *cursor == '+') {
        ++cursor;
        --width;
    }
    if (!qel::platform::isAsciiDigit(*cursor)) return false;
    const auto number = qel::platform::takeDecimal<int>(cursor, width);
    value = negative ? -number : number;
    return true;
}

// The fields that scanf's "%4d%2d%2dT%2d%2d%2d" fills; those from the first mismatch on stay 0. The
// T must follow the day at once, blanks may precede any number.
DateTimeFields scanDateTime(const char* text) {
    DateTimeFields fields;
    if (takeDateTime(text, fields)) return fields;
    fields = {};
    const bool dated = scanNumber(text, 4, fields.year) && scanNumber(text, 2, fields.month) &&
                       scanNumber(text, 2, fields.day);
    if (!dated || *text != 'T') return fields;
    ++text;
    // The first field that does not scan ends the reading.
    static_cast<void>(scanNumber(text, 2, fields.hour) && scanNumber(text, 2, fields.minute) &&
                      scanNumber(text, 2, fields.second));
    return fields;
}

// Eight digits, the letter T, six digits, the letter Z on request and a terminator; returns the
// length.
std::size_t writeDateTime(std::int64_t codeDate, std::int64_t codeTime, char* text, bool noUtc) {
    if (qel::dates::isCodeDate(codeDate) && codeTime >= 0) {
        const qel::dates::CivilDate date = qel::dates::decodeCivilDate(static_cast<int>(codeDate));
        const auto time = static_cast<int>(codeTime);  // [0, 86399]
        qel::dates::putDateTime(
            text, {date.year, date.month, date.day, time / 3600, time / 60 % 60, time % 60},
            noUtc ? '\0' : 'Z');
    } else {
        // A day number outside the calendar, however large, is written as the day that does not
        // decode.
        ZQ_CodeDateToAlpha(qel::dates::isCodeDate(codeDate) ? static_cast<int>(codeDate) : -1,
                           text);
        ZQ_CodeTimeToAlpha(static_cast<int>(codeTime), text + 9);
        text[8] = 'T';
        text[15] = noUtc ? '\0' : 'Z';
    }
    text[16] = '\0';
    return noUtc ? 15 : 16;
}

}  // namespace

std::size_t qel::dates::secondsToAlpha(std::int64_t seconds, char* buffer, bool noUtc) {
    return writeDateTime(seconds / kSecondsPerDay, seconds % kSecondsPerDay, buffer, noUtc);
}

__int64 QELUTILITY_CALL ZQ_DateTimeToSeconds(const char* text) {
    const DateTimeFields fields = scanDateTime(text == nullptr ? "" : text);
    unsigned code = 0;
    // A date that is refused counts as day 0; the time still counts.
    ZQ_DateEncode(fields.month, fields.day, fields.year, &code);
    return std::int64_t{code} * qel::dates::kSecondsPerDay + std::int64_t{fields.hour} * 3600 +
           std::int64_t{fields.minute} * 60 + fields.second;
}

void QELUTILITY_CALL ZQ_SecondsToDateTime(__int64 seconds, VStr& out, int noUtc) {
    char text[qel::dates::kDateTimeRoom];
    const std::size_t length = qel::dates::secondsToAlpha(seconds, text, noUtc != 0);
    qel::strings::Writer::append(out, text, static_cast<int>(length));
}

int QELUTILITY_CALL ZQ_DateTimeToUnixTime(const char* text) {
    const std::int64_t seconds =
        ZQ_DateTimeToSeconds(text) -
        std::int64_t{qel::dates::kUnixEpochCodeDate} * qel::dates::kSecondsPerDay;
    if (seconds < 1) return 0;
    return seconds > INT_MAX ? INT_MAX : static_cast<int>(seconds);
}

const char* QELUTILITY_CALL ZQ_UnixTimeToDateTime(int seconds, VStr& out, int noUtc) {
    char text[qel::dates::kDateTimeRoom];
    const std::size_t length =
        writeDateTime(seconds / qel::dates::kSecondsPerDay + qel::dates::kUnixEpochCodeDate,
                      seconds % qel::dates::kSecondsPerDay, text, noUtc != 0);
    qel::strings::Writer::append(out, text, static_cast<int>(length));
    return out;
}

int QELUTILITY_CALL ZQ_DateTimeDifference(const char* start, const char* end, int* seconds) {
    const std::int64_t difference = ZQ_DateTimeToSeconds(end) - ZQ_DateTimeToSeconds(start);
    if (seconds != nullptr) *seconds = static_cast<int>(difference);
    return 0;
}

int QELUTILITY_CALL ZQ_AddSeconds(const char* text, int seconds, VStr& out) {
    const bool isUtc = text != nullptr && std::strchr(text, 'Z') != nullptr;
    ZQ_SecondsToDateTime(ZQ_DateTimeToSeconds(text) + seconds, out, isUtc ? 0 : 1);
    return 0;
}
