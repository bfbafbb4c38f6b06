/// @file
/// Conversion between the two shapes of a recurrence, the packed repeat record that the engine
/// steps (RptNext.h) and the rule record that the rule texts are read into and written from
/// (RRule.h), with its exclusion dates as an EXDATE list (RFC 2445 section 4.8.5.1). What the other
/// shape cannot hold exactly is reported in a bit set of warnings; the conversion does not fail. No
/// state is kept: any thread may call, on records of its own.
#ifndef QELUTILITY_BXREPEAT_H
#define QELUTILITY_BXREPEAT_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/RRule.h"
#include "QelUtility/RptNext.h"
#include "QelUtility/VStr.h"

/// Warnings in the `flags` of the two conversions. 0x001 means one thing in each direction.
enum BxRepeatWarning {
    BXREPEAT_COUNT_UNKNOWN = 0x001,   ///< to rule: no COUNT could be derived from the end date
    BXREPEAT_END_FROM_COUNT = 0x001,  ///< to repeat: the end date was computed from COUNT
    BXREPEAT_SEVERAL_MONTH_DAYS =
        0x002,  ///< two or more BYMONTHDAY; the first positive one is kept
    BXREPEAT_SEVERAL_NEGATIVE_DAYS = 0x004,
    BXREPEAT_SEVERAL_MONTHS = 0x008,        ///< two or more BYMONTH; the first is kept
    BXREPEAT_POSITION_BEFORE_LAST = 0x010,  ///< BYSETPOS below -1, read as the last
    BXREPEAT_SECOND_POSITION = 0x020,       ///< a second BYSETPOS, not used
    BXREPEAT_POSITION_TOO_HIGH = 0x040,     ///< BYSETPOS 6 or more, not used
    BXREPEAT_WORKDAYS = 0x080,              ///< a weekly rule on Monday to Friday
    BXREPEAT_EXCLUSION_HAS_TIME = 0x200     ///< an exclusion carried a time, which was dropped
};

#ifdef __cplusplus
extern "C" {
#endif

/// Writes `repeat` as a rule. `exclusions` becomes its excluded dates, eight digits each, separated
/// by commas; `startText` its start date, eight digits. Unless `noCount` is set, an end date at
/// most 99 occurrences away becomes COUNT and UNTIL is dropped; otherwise UNTIL stays and
/// BXREPEAT_COUNT_UNKNOWN is set. `*flags`, which may be null, is set to 0 first.
///
/// Returns 0; 2001, reported, with the text at hand null, where memory is exhausted; or -1: for the
/// types 0, 9 and those outside 0 to 15 (nothing is reported), and, after
/// one reported error, when all five weeks of the month are selected, which is one more than a rule
/// holds. Type 12 sets both DAILY and WEEKLY; the writers then write WEEKLY. Type 14 is written
/// from `weeks` and `days`, not from the fields that the engine reads, and the day of the quarter
/// of type 13 as a day of the month.
///
/// Daily, interval 2, from 15 June 2005 to 25 June 2005: COUNT=6, no UNTIL.
QELUTILITY_API int QELUTILITY_CALL BxUtil_BxRepeatToRRule(ZQTR_REPEAT* repeat, _rruleRepeat* rule,
                                                          QELUTILITY_REF(VStr) exclusions,
                                                          QELUTILITY_REF(VStr) startText,
                                                          int noCount, int* flags);

/// Writes `rule` as a repeat record, which is cleared first: an array of exclusions that it owned
/// must have been freed. `startText` is the start date, eight digits; `exclusions`, null or a list
/// separated by commas, becomes an array allocated with malloc, which the record's owner frees with
/// free, also after a failure. At most 32,767 of them are kept; more are a reported error that does
/// not fail the call. `*endFromRule` becomes 0 when the end date was computed from COUNT, otherwise
/// 1; it and `flags` may be null.
///
/// Returns 0, or a code after one reported error; `repeat` may then be partly filled:
/// - -1: no start text, or a null record
/// - 2001: no memory for the exclusions
/// - 2105: negative month days only, and several of them; or no weekday where one is needed: a
///   weekly rule needs BYDAY (RFC 2445 section 4.3.10 would take the start's weekday)
/// - 2106: an unknown frequency, or week numbers
/// - 4008: COUNT occurrences do not exist
///
/// A single negative month day falls back to the start's day, and a daily or weekly rule with
/// positions loses its weekdays.
///
/// "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1" becomes type 10: the last workday of the month.
QELUTILITY_API int QELUTILITY_CALL BxUtil_RRuleToBxRepeat(_rruleRepeat* rule,
                                                          const char* exclusions,
                                                          const char* startText, int* endFromRule,
                                                          ZQTR_REPEAT* repeat, int* flags);

/// A code date as seconds since 1 January 1900; -1 stays -1.
QELUTILITY_API __int64 QELUTILITY_CALL ConvertZQTRDateTimeToRRule(int codeDate);

/// A code date as seconds since 1 January 1970; -1 stays -1. Dates beyond 32 bits (from 19 January
/// 2038 on) give the greatest or least number.
QELUTILITY_API int QELUTILITY_CALL ZQTRDateTimeToRRule(int codeDate);

/// Seconds since 1 January 1900 as a code date, the time of day dropped; -1 stays -1, any other
/// negative number is divided towards zero. A quotient beyond 32 bits gives the greatest or least
/// number.
QELUTILITY_API int QELUTILITY_CALL RRuleToZQTRDateTime(__int64 seconds);

/// Replaces `out` by the eight digits of a code date, "00000000" for a code that names none.
/// Returns 0.
QELUTILITY_API int QELUTILITY_CALL ZQTRDateTimeToUTCDate(int codeDate, QELUTILITY_REF(VStr) out);

/// The code date of an eight-digit date, a time after it ignored ("20050615T083000Z" is 38516); 0
/// for a text that names no date, or null. Returns 0.
QELUTILITY_API int QELUTILITY_CALL UTCDateToZQTRDateTime(const char* text, int* codeDate);

#ifdef __cplusplus
}
#endif

#endif
