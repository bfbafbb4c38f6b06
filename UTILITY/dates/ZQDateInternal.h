// The date functions that the library keeps to itself: decoding, validity, weekdays, date-time
// texts and RFC 2445 durations. Without state; callable from any thread.
//
// A date-time text is an eight-digit date, the letter T, a six-digit time and, for UTC, the letter
// Z. Its value is a count of seconds since 1 January 1900 00:00:00, in 64 bits.
#ifndef QEL_DATES_ZQDATEINTERNAL_H
#define QEL_DATES_ZQDATEINTERNAL_H

#include <cstddef>
#include <cstdint>

#include "QelUtility/VStr.h"
#include "QelUtility/ZQDate.h"

// The inverse of ZQ_DateEncode: 0, or -1 with the results untouched for a code outside 0..219145.
// REQUIRES: no null pointer
int ZQ_DateDecode(int code, int* month, int* day, int* year);

// Whether the text splits into a day that exists, from 1900 on. There is no last year here.
bool ZQ_IsValidAlphaDate(const char* text);

// Whether the text is a time as it is accepted on input: four characters, hour and minute.
bool ZQ_IsValidAlphaTime(const char* text);

// The hour from characters 1-2, the minute from 3-4, the second from 5-6, as ZQ_AlphaToDate reads
// its fields. A null or empty text gives hour and minute 0 and leaves `second` alone.
void ZQ_AlphaToTime(const char* text, int* hour, int* minute, int* second);

// Writes hour * 3600 + minute * 60 + second and returns 0; -1 for a field out of its range.
int ZQ_TimeEncode(int hour, int minute, int second, int* code);

// Splits a code time and returns 0, always. Negative codes split towards zero.
int ZQ_TimeDecode(int code, int* hour, int* minute, int* second);

// The local wall clock as a code time.
int ZQ_GetCurrentTime();

// Writes eight digits, year, month, day, and a terminator; returns `buffer`. A year outside 0..9999
// is written as 9999, a month or day outside 0..99 as 99.
char* ZQ_DateToAlpha(int month, int day, int year, char* buffer);

// Writes six digits and a terminator; returns `buffer`. A field outside 0..99 is written as 99.
char* ZQ_TimeToAlpha(int hour, int minute, int second, char* buffer);

// The weekday of a day number, 1 = Sunday to 7 = Saturday.
int ZQ_DayOfWeek(int code);

// The value of a date-time text. The fields are read as scanf reads "%4d%2d%2dT%2d%2d%2d": blanks
// may stand before a field, and the fields from the first one that does not scan on are 0. A date
// that ZQ_DateEncode refuses counts as day 0; hour, minute and second are taken as they come. A
// trailing Z makes no difference. "20050615T083000Z" is 38516 * 86400 + 30600.
[[nodiscard]] std::int64_t ZQ_DateTimeToSeconds(VStr text);

// The same of a text that need not be a string of its own.
[[nodiscard]] std::int64_t ZQ_DateTimeToSeconds(const char* text);

// Writes the date-time text of a value, as ZQ_SecondsToDateTime appends it, and a terminator;
// returns its length. REQUIRES: room for kDateTimeRoom characters
inline constexpr std::size_t kDateTimeRoom = 17;
std::size_t ZQ_SecondsToAlpha(std::int64_t seconds, char* buffer, bool noUtc);

// Appends the date-time text of a value to `out`, with the letter Z unless `noUtc`. Day and time
// are split towards zero: -1 is "19000101T000099Z". A day after 2499 is written as "00000000".
void ZQ_SecondsToDateTime(std::int64_t seconds, VStr& out, bool noUtc);

// The value of a date-time text in seconds since 1 January 1970; 0 for a text before that, INT_MAX
// for one past what 32 bits hold.
[[nodiscard]] int ZQ_DateTimeToUnixTime(VStr text);

// Appends the date-time text of seconds since 1 January 1970 and returns the text of `out`, which
// is valid until `out` changes.
const char* ZQ_UnixTimeToDateTime(int seconds, VStr& out, bool noUtc);

// Writes the seconds from `start` to `end`, cut to their low 32 bits, and returns 0.
int ZQ_DateTimeDifference(VStr start, VStr end, int* seconds);

// Appends the date-time text that lies `seconds` after `text`, with the letter Z exactly when
// `text` contains one. Returns 0.
int ZQ_AddSeconds(VStr text, int seconds, VStr& out);

// Sets `out` to the RFC 2445 (4.3.6) duration of a number of seconds, its sign always written:
// 93600 is "+P1DT2H", -87300 is "-P1DT15M". Returns 0; -1 with `out` untouched for no seconds.
int ZQ_SecondsToDuration(int seconds, VStr& out);

// Reads a duration: an optional sign, the letter P, then numbers with the units W, D, H, M, S in
// any order; the letter T is not required. Returns 0, or -1 with `seconds` untouched when the P is
// missing. Digits after the last unit are ignored ("P5" is 0), a unit right after a unit ends the
// reading, and a unit without digits adds nothing. A total beyond 32 bits is held at their limits.
int ZQ_DurationToSeconds(VStr duration, int* seconds);

// Sets `out` to the duration from `start` to `end`. Returns 0, or -1 when they are the same.
int ZQ_DurationBetween(VStr start, VStr end, VStr& out);

// Sets `out` to the same duration in the form of ZQ_SecondsToDuration. Returns 0, or -1 when the
// duration does not read or is 0.
int ZQ_NormalizeDuration(VStr duration, VStr& out);

// Appends the date-time text that lies a duration after `text`, as ZQ_AddSeconds does. Returns 0,
// or -1 with `out` untouched when the duration does not read.
int ZQ_AddDuration(VStr text, VStr duration, VStr& out);

#endif
