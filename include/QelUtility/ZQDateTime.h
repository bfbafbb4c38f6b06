/// @file
/// Date-time texts and their values in seconds. Plain C functions without state; callable
/// from any thread.
///
/// A date-time text is an eight-digit date, the letter T, a six-digit time and, for UTC, the letter
/// Z: "20050615T083000Z" (RFC 2445 section 4.3.5). Its value is a count of seconds since 1 January
/// 1900 00:00:00. A null text counts as an empty one.
#ifndef QELUTILITY_ZQDATETIME_H
#define QELUTILITY_ZQDATETIME_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The value of a date-time text. The fields are read as scanf reads "%4d%2d%2dT%2d%2d%2d": blanks
/// may precede a field, and from the first field that cannot be read on all are 0. A date that
/// ZQ_DateEncode refuses counts as day 0; hour, minute and second are taken as they come. A
/// trailing Z makes no difference. "20050615T083000Z" is 38516 * 86400 + 30600.
QELUTILITY_API __int64 QELUTILITY_CALL ZQ_DateTimeToSeconds(const char* text);

/// Appends the date-time text of a value to `out`, with the letter Z unless `noUtc` is set. Day and
/// time are split towards zero: -1 is "19000101T000099Z". A day after 2499 is written as
/// "00000000". Where memory is exhausted `out` becomes null.
QELUTILITY_API void QELUTILITY_CALL ZQ_SecondsToDateTime(__int64 seconds, QELUTILITY_REF(VStr) out,
                                                         int noUtc);

/// The value of a date-time text in seconds since 1 January 1970; 0 for a text before that, and the
/// greatest `int` for one past what 32 bits hold.
QELUTILITY_API int QELUTILITY_CALL ZQ_DateTimeToUnixTime(const char* text);

/// Appends the date-time text of seconds since 1 January 1970 to `out`, as ZQ_SecondsToDateTime
/// does, and returns the text of `out`, which is valid until `out` changes. The time of a negative
/// number is shown as 99 in each field below 0.
QELUTILITY_API const char* QELUTILITY_CALL ZQ_UnixTimeToDateTime(int seconds,
                                                                 QELUTILITY_REF(VStr) out,
                                                                 int noUtc);

/// Writes the seconds from `start` to `end`, cut to their low 32 bits, to `*seconds`, which may be
/// null. Returns 0.
QELUTILITY_API int QELUTILITY_CALL ZQ_DateTimeDifference(const char* start, const char* end,
                                                         int* seconds);

/// Appends the date-time text that lies `seconds` after `text` to `out`, with the letter Z exactly
/// when `text` contains one. Returns 0.
QELUTILITY_API int QELUTILITY_CALL ZQ_AddSeconds(const char* text, int seconds,
                                                 QELUTILITY_REF(VStr) out);

#ifdef __cplusplus
}
#endif

#endif
