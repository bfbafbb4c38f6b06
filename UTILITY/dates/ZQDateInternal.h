// The parts of the exported date functions: validity, fields and texts of dates and times. Without
// state; callable from any thread.
#ifndef QEL_DATES_ZQDATEINTERNAL_H
#define QEL_DATES_ZQDATEINTERNAL_H

#include "QelUtility/ZQDate.h"

namespace qel::dates {

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

// Writes eight digits, year, month, day, and a terminator; returns `buffer`. A year outside 0..9999
// is written as 9999, a month or day outside 0..99 as 99.
char* ZQ_DateToAlpha(int month, int day, int year, char* buffer);

// Writes six digits and a terminator; returns `buffer`. A field outside 0..99 is written as 99.
char* ZQ_TimeToAlpha(int hour, int minute, int second, char* buffer);

}  // namespace qel::dates

#endif
