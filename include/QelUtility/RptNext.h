/// @file
/// The packed repeat record of a recurring entry and the engine that steps it from one occurrence
/// to the next. Every date is a code date: days since 1 January 1900. The engine keeps no state of
/// its own, so calls on different records may run at the same time on any threads; one record
/// belongs to one thread at a time.
#ifndef QELUTILITY_RPTNEXT_H
#define QELUTILITY_RPTNEXT_H

#include <assert.h>
#include <stddef.h>

#include "QelUtility/QelTypes.h"

/// _repeat::type, with the fields that each type reads and the unit of its interval.
enum RepeatType {
    REPEAT_NONE = 0,             ///< no series
    REPEAT_DAILY = 1,            ///< every `interval` days
    REPEAT_WEEKLY = 2,           ///< dayOfWeek, every `interval` weeks
    REPEAT_MONTHLY_DAY = 3,      ///< dayOfMonth, every `interval` months
    REPEAT_MONTHLY_WEEKDAY = 4,  ///< the weekOfMonth-th dayOfWeek, every `interval` months
    REPEAT_YEARLY_DATE = 5,      ///< month and dayOfMonth, every `interval` years
    REPEAT_YEARLY_WEEKDAY = 6,   ///< type 4 in `month`, every `interval` years
    REPEAT_DAY_OF_MONTHS = 7,    ///< dayOfMonth in the selected months
    REPEAT_WEEKS_OF_MONTHS = 8,  ///< days, in the selected weeks of the selected months
    REPEAT_MONTHLY_KIND = 10,  ///< the dayOfMonth-th of the kind dayOfWeek, every `interval` months
    REPEAT_YEARLY_KIND = 11,   ///< type 10 in `month`, every `interval` years
    REPEAT_WEEKLY_DAYS = 12,   ///< days, every `interval` weeks
    REPEAT_QUARTERLY_DAY = 13,      ///< dayOfMonth counted from the quarter's first day
    REPEAT_QUARTERLY_WEEKDAY = 14,  ///< the weekOfMonth-th dayOfWeek of the quarter, 14 = the last
    REPEAT_WEEKS_MONTHLY = 15       ///< days, in the selected weeks, every `interval` months
};

/// Kinds of day in _repeat::dayOfWeek of the types 10 and 11.
enum RepeatDayKind {
    REPEAT_ANY_DAY = 8,      ///< every day
    REPEAT_WORKDAY = 9,      ///< Monday to Friday
    REPEAT_WEEKEND_DAY = 10  ///< Saturday and Sunday
};

#pragma pack(push, 1)
/// A series in fixed size, shared with other modules and therefore packed without gaps. Flags count
/// as set when they are not 0.
struct _repeat {
    short type;            ///< RepeatType
    int startDate;         ///< the series' start; no occurrence is earlier
    int endDate;           ///< the last possible day, or -1 for a series without end
    short interval;        ///< the step in the type's unit, at least 1
    short unitCount;       ///< at least 1 (the days that one occurrence covers)
    char text1[31];        ///< not read by this library
    char text2[31];        ///< not read by this library
    short dayOfMonth;      ///< day of the month (3, 5, 7); position 1 .. 5, 5 = last (10, 11);
                           ///< day of the quarter (13)
    short month;           ///< 1 .. 12 (5, 6, 11)
    short dayOfWeek;       ///< 1 Sunday .. 7 Saturday (2, 4, 6, 14); RepeatDayKind (10, 11)
    short weekOfMonth;     ///< 1 .. 5, 5 = last (4, 6); week of the quarter 1 .. 13, 14 = last (14)
    short days[7];         ///< weekdays, Sunday first (8, 12, 15)
    short months[12];      ///< months, January first (7, 8)
    short weeks[5];        ///< first, second, third, fourth, last week of the month (8, 15)
    short exclusionCount;  ///< entries of `exclusions`
    unsigned int exclusionFlags;  ///< not read by this library
    int* exclusions;              ///< excluded dates; owned by whoever filled the record
    short exclusionExtra;         ///< not read by this library
};
#pragma pack(pop)

/// The record's name in C.
typedef struct _repeat ZQTR_REPEAT;

static_assert(sizeof(ZQTR_REPEAT) == 140 + sizeof(int*), "the repeat record is packed");
static_assert(offsetof(ZQTR_REPEAT, type) == 0 && offsetof(ZQTR_REPEAT, startDate) == 2 &&
                  offsetof(ZQTR_REPEAT, endDate) == 6 && offsetof(ZQTR_REPEAT, interval) == 10 &&
                  offsetof(ZQTR_REPEAT, unitCount) == 12 && offsetof(ZQTR_REPEAT, text1) == 14 &&
                  offsetof(ZQTR_REPEAT, text2) == 45 && offsetof(ZQTR_REPEAT, dayOfMonth) == 76 &&
                  offsetof(ZQTR_REPEAT, month) == 78 && offsetof(ZQTR_REPEAT, dayOfWeek) == 80 &&
                  offsetof(ZQTR_REPEAT, weekOfMonth) == 82 && offsetof(ZQTR_REPEAT, days) == 84 &&
                  offsetof(ZQTR_REPEAT, months) == 98 && offsetof(ZQTR_REPEAT, weeks) == 122 &&
                  offsetof(ZQTR_REPEAT, exclusionCount) == 132 &&
                  offsetof(ZQTR_REPEAT, exclusionFlags) == 134 &&
                  offsetof(ZQTR_REPEAT, exclusions) == 138 &&
                  offsetof(ZQTR_REPEAT, exclusionExtra) == 138 + sizeof(int*),
              "the repeat record is packed");

#ifdef __cplusplus
extern "C" {
#endif

/// Empties `repeat`: all fields 0, null or empty texts (of text1 and text2 only the first character
/// is written). The exclusion array is dropped, not freed: a record that owns one must free it
/// first. Returns 0; a null record is ignored.
QELUTILITY_API int QELUTILITY_CALL ClearZQTR(ZQTR_REPEAT* repeat);

/// Computes one occurrence of `repeat`. On entry `*previous` is the occurrence of the last call, or
/// -1 to ask for the first one; on success the new occurrence is in `*next` and in `*previous`,
/// so that the caller simply calls again, and the result is 0. endDate and exclusions are
/// ignored.
///
/// Fails with 4008 (QEL_REPEAT_ENGINE) after one reported error: a start below 0, an end below -1,
/// an interval or unit count below 1, an unknown type, fields that yield no date, or an occurrence
/// past 31 December 2499; the types 1, 2 and 12 only add days, and fail past 32 bits alone. A
/// failing call may already have changed `*next` and `*previous`. A record of type 0 only copies
/// `*next` into `*previous`. The types 8 and 15 never fail: past 2080 they return the day they have
/// reached.
///
/// The types 3, 4, 6, 7, 10 and 11 read a `*previous` of -2 as "one step after the start's period".
/// Weeks of type 12 run from Sunday to Saturday. A day that a month lacks is its last day: day 31
/// from 31 January 2005 goes on to 28 February and 31 March 2005. Type 5 keeps the month of
/// `*previous`, type 15 goes from December to January of the year after next, and the last weekday
/// of the start's quarter (type 14) may precede the start. A series whose fields are outside their
/// ranges may yield a date that is not later than the previous one; a caller that loops must stop
/// there.
QELUTILITY_API int QELUTILITY_CALL ZQRepeatNextDate(ZQTR_REPEAT* repeat, int* next, int* previous);

/// Finds the first occurrence at or after the code date `date` without the occurrences before it:
/// the one that ZQRepeatNextDate reaches when it steps from the series' first one, where every
/// step up to it succeeds and advances. The time does not grow with the distance. Returns 0 with
/// the occurrence in `*found`; as `*previous` of ZQRepeatNextDate it leads on to the next one.
/// endDate and exclusions are ignored.
///
/// Returns -1, with `*found` unchanged and nothing reported, where the caller has to step: for a
/// date not after the start or past 31 December 2499, a record that the engine refuses or of type
/// 0, fields that may take an occurrence out of its month or quarter, a `date` past the last
/// occurrence, and a null argument.
QELUTILITY_API int QELUTILITY_CALL ZQRepeatJump(const ZQTR_REPEAT* repeat, int date, int* found);

#ifdef __cplusplus
}
#endif

#endif
