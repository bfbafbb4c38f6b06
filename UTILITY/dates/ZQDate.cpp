// Code dates and code times, and their fixed-width texts.
#include "QelUtility/ZQDate.h"

#include <cstddef>
#include <cstring>

#include "dates/CivilDate.h"
#include "dates/DecimalField.h"
#include "dates/ZQDateInternal.h"
#include "platform/LocalClock.h"

namespace {

using qel::dates::CivilDate;

// The day numbers that callers and stored records rely on.
static_assert(qel::dates::encodeCivilDate({1900, 1, 1}) == 0);
static_assert(qel::dates::encodeCivilDate({1970, 1, 1}) == qel::dates::kUnixEpochCodeDate);
static_assert(qel::dates::encodeCivilDate({2000, 1, 1}) == 36524);
static_assert(qel::dates::encodeCivilDate({2499, 12, 31}) == qel::dates::kLastCodeDate);
static_assert(qel::dates::encodeCivilDate({1900, 2, 29}) ==
              qel::dates::encodeCivilDate({1900, 3, 1}));
static_assert(qel::dates::encodeCivilDate({2000, 2, 29}) + 1 ==
              qel::dates::encodeCivilDate({2000, 3, 1}));
static_assert(qel::dates::weekdayOf(0) == 2 && qel::dates::weekdayOf(6) == 1 &&
              qel::dates::weekdayOf(-1) == 1);

// Walks the calendar month by month and compares the closed formulas with plain counting.
constexpr bool formulasCountEveryMonth() {
    int code = 0;
    for (int year = qel::dates::kFirstYear; year <= qel::dates::kLastYear; ++year) {
        for (int month = 1; month <= 12; ++month) {
            const int length = qel::dates::daysInMonth(year, month);
            const CivilDate first{year, month, 1};
            const CivilDate last{year, month, length};
            if (qel::dates::encodeCivilDate(first) != code) return false;
            if (qel::dates::encodeCivilDate({year, month, 31}) != code + 30) return false;
            if (qel::dates::decodeCivilDate(code) != first) return false;
            code += length;
            if (qel::dates::decodeCivilDate(code - 1) != last) return false;
        }
    }
    return code == qel::dates::kLastCodeDate + 1;
}
static_assert(formulasCountEveryMonth());

template <typename T>
void store(T* target, T value) {
    if (target != nullptr) *target = value;
}

// The decimal field of `width` characters at `*cursor`, which moves past it but never past the
// terminator.
int takeField(const char** cursor, std::size_t width) {
    const int value = qel::dates::decimalField(*cursor, width);
    for (std::size_t i = 0; i < width && **cursor != '\0'; ++i) ++*cursor;
    return value;
}

void putTwoDigits(char* buffer, int value) {
    qel::dates::putPair(buffer, value < 0 || value > 99 ? 99 : static_cast<unsigned>(value));
}

}  // namespace

namespace qel::dates {

int ZQ_TimeEncode(int hour, int minute, int second, int* code) {
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) return -1;
    store(code, hour * 3600 + minute * 60 + second);
    return 0;
}

int ZQ_TimeDecode(int code, int* hour, int* minute, int* second) {
    store(hour, code / 3600);
    store(minute, code % 3600 / 60);
    store(second, code % 60);
    return 0;
}

void ZQ_AlphaToTime(const char* text, int* hour, int* minute, int* second) {
    const bool empty = text == nullptr || *text == '\0';
    const char* cursor = empty ? "" : text;
    store(hour, takeField(&cursor, 2));
    store(minute, takeField(&cursor, 2));
    if (!empty) store(second, takeField(&cursor, 2));
}

bool ZQ_IsValidAlphaDate(const char* text) {
    if (text == nullptr) return false;
    CivilDate date{};
    ZQ_AlphaToDate(text, &date.month, &date.day, &date.year);
    if (date.year < kFirstYear || date.month < 1 || date.month > 12) return false;
    return date.day >= 1 && date.day <= daysInMonth(date.year, date.month);
}

bool ZQ_IsValidAlphaTime(const char* text) {
    if (text == nullptr || std::strlen(text) != 4) return false;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int code = 0;
    ZQ_AlphaToTime(text, &hour, &minute, &second);
    return ZQ_TimeEncode(hour, minute, second, &code) == 0;
}

char* ZQ_DateToAlpha(int month, int day, int year, char* buffer) {
    if (buffer == nullptr) return nullptr;
    const int shownYear = year < 0 || year > 9999 ? 9999 : year;
    putTwoDigits(buffer, shownYear / 100);
    putTwoDigits(buffer + 2, shownYear % 100);
    putTwoDigits(buffer + 4, month);
    putTwoDigits(buffer + 6, day);
    buffer[8] = '\0';
    return buffer;
}

char* ZQ_TimeToAlpha(int hour, int minute, int second, char* buffer) {
    if (buffer == nullptr) return nullptr;
    putTwoDigits(buffer, hour);
    putTwoDigits(buffer + 2, minute);
    putTwoDigits(buffer + 4, second);
    buffer[6] = '\0';
    return buffer;
}

}  // namespace qel::dates

int QELUTILITY_CALL ZQ_DateEncode(int month, int day, int year, unsigned* code) {
    if (!qel::dates::isEncodable({year, month, day})) return -1;
    store(code, static_cast<unsigned>(qel::dates::encodeCivilDate({year, month, day})));
    return 0;
}

int QELUTILITY_CALL ZQ_DateDecode(int code, int* month, int* day, int* year) {
    if (!qel::dates::isCodeDate(code)) return -1;
    const CivilDate date = qel::dates::decodeCivilDate(code);
    store(month, date.month);
    store(day, date.day);
    store(year, date.year);
    return 0;
}

void QELUTILITY_CALL ZQ_AlphaToDate(const char* text, int* month, int* day, int* year) {
    const char* cursor = text == nullptr ? "" : text;
    store(year, takeField(&cursor, 4));
    store(month, takeField(&cursor, 2));
    store(day, takeField(&cursor, 2));
}

int QELUTILITY_CALL ZQ_AlphaToCodeDate(const char* text) {
    if (!qel::dates::ZQ_IsValidAlphaDate(text)) return 0;
    CivilDate date{};
    ZQ_AlphaToDate(text, &date.month, &date.day, &date.year);
    unsigned code = 0;
    // A year after 2499 is valid in a text but has no code date; it reads as 0.
    return ZQ_DateEncode(date.month, date.day, date.year, &code) == 0 ? static_cast<int>(code) : 0;
}

int QELUTILITY_CALL ZQ_AlphaToCodeTime(const char* text) {
    if (!qel::dates::ZQ_IsValidAlphaTime(text)) return 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int code = 0;
    qel::dates::ZQ_AlphaToTime(text, &hour, &minute, &second);
    qel::dates::ZQ_TimeEncode(hour, minute, second, &code);
    return code;
}

char* QELUTILITY_CALL ZQ_CodeDateToAlpha(int code, char* buffer) {
    CivilDate date{};
    // A code that does not decode leaves the zeros.
    ZQ_DateDecode(code, &date.month, &date.day, &date.year);
    return qel::dates::ZQ_DateToAlpha(date.month, date.day, date.year, buffer);
}

char* QELUTILITY_CALL ZQ_CodeTimeToAlpha(int code, char* buffer) {
    int hour = 0;
    int minute = 0;
    int second = 0;
    qel::dates::ZQ_TimeDecode(code, &hour, &minute, &second);
    return qel::dates::ZQ_TimeToAlpha(hour, minute, second, buffer);
}

int QELUTILITY_CALL ZQ_DayOfWeek(int code) {
    return qel::dates::weekdayOf(code);
}

int QELUTILITY_CALL ZQ_GetCurrentDate() {
    const qel::platform::LocalClock now = qel::platform::localClock();
    unsigned code = 0;
    return ZQ_DateEncode(now.month, now.day, now.year, &code) == 0 ? static_cast<int>(code) : 0;
}

int QELUTILITY_CALL ZQ_GetCurrentTime() {
    const qel::platform::LocalClock now = qel::platform::localClock();
    return now.hour * 3600 + now.minute * 60 + now.second;
}
