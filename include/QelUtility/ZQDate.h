/// @file
/// Code dates and code times: the two small integers that all date arithmetic is done on, and their
/// text forms. Plain C functions without state; callable from any thread.
///
/// A code date counts days from 1 January 1900, which is day 0, to 31 December 2499, day 219145, in
/// the Gregorian calendar. A code time counts seconds since midnight, 0 to 86399. A weekday is
/// 1 = Sunday to 7 = Saturday.
#ifndef QELUTILITY_ZQDATE_H
#define QELUTILITY_ZQDATE_H

#include "QelUtility/QelTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Writes the code date of a calendar date to `code` and returns 0. Returns -1, with `code`
/// untouched, for a year outside 1900..2499, a month outside 1..12 or a day outside 1..31. The day
/// is not compared with the month's length: 31 February 2005 is 3 March 2005, code 38412.
QELUTILITY_API int QELUTILITY_CALL ZQ_DateEncode(int month, int day, int year, unsigned* code);

/// The inverse of ZQ_DateEncode: writes the calendar date of a code date and returns 0. Returns -1,
/// with the results untouched, for a code outside 0..219145. A null result is left out.
QELUTILITY_API int QELUTILITY_CALL ZQ_DateDecode(int code, int* month, int* day, int* year);

/// The weekday of a day number, 1 = Sunday to 7 = Saturday; one before 1900 or after 2499 has its
/// weekday too. 0 is a Monday, 2.
QELUTILITY_API int QELUTILITY_CALL ZQ_DayOfWeek(int code);

/// Splits an eight-digit date (RFC 2445 section 4.3.4): the year from characters 1-4, the month
/// from 5-6, the day from 7-8. Each field reads leading blanks, a sign and digits, and stops at the
/// first other character; what lies past the end of a short text is 0. A null or empty text gives
/// 0, 0, 0.
QELUTILITY_API void QELUTILITY_CALL ZQ_AlphaToDate(const char* text, int* month, int* day,
                                                   int* year);

/// The code date of an eight-digit date, or 0 for a text that names no day of 1900..2499:
/// "20050615" is 38516, "20050230" is 0.
QELUTILITY_API int QELUTILITY_CALL ZQ_AlphaToCodeDate(const char* text);

/// The code time of a time text (less than RFC 2445 section 4.3.12 allows), which is exactly four
/// digits, hour and minute; 0 for any other text. "0930" is 34200; the six digits "093000" are 0,
/// the same as midnight.
QELUTILITY_API int QELUTILITY_CALL ZQ_AlphaToCodeTime(const char* text);

/// Writes the eight-digit date of a code date and its terminator, 9 bytes, and returns `buffer`. A
/// code outside 0..219145 is written as "00000000".
QELUTILITY_API char* QELUTILITY_CALL ZQ_CodeDateToAlpha(int code, char* buffer);

/// Writes the six-digit time of a code time and its terminator, 7 bytes, and returns `buffer`:
/// 86340 is "235900". A field outside 0..99 (of a code past 99 hours, or a negative one) is written
/// as 99.
QELUTILITY_API char* QELUTILITY_CALL ZQ_CodeTimeToAlpha(int code, char* buffer);

/// Today's code date in local time; 0 when the system's clock is outside 1900..2499.
QELUTILITY_API int QELUTILITY_CALL ZQ_GetCurrentDate(void);

/// The code time of the local wall clock; 0 when the system does not know the time.
QELUTILITY_API int QELUTILITY_CALL ZQ_GetCurrentTime(void);

#ifdef __cplusplus
}
#endif

#endif
