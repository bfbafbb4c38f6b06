/// @file
/// The recurrence rule record and its texts. Every rule that passes through the library is held in
/// one flat record, _rruleRepeat; three readers fill it (positional, iCalendar and vCalendar 1.0
/// text) and two writers turn it back into text. All functions are stateless and re-entrant: any
/// thread may call them, on records and strings of its own.
#ifndef QELUTILITY_RRULE_H
#define QELUTILITY_RRULE_H

#include <assert.h>
#include <stddef.h>

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

/// _rruleRepeat::freq. Readers set exactly one bit; where several are set, YEARLY wins over
/// MONTHLY, MONTHLY over WEEKLY, WEEKLY over DAILY.
enum RRuleFrequency {
    RRULE_FREQ_DAILY = 0x10,
    RRULE_FREQ_WEEKLY = 0x20,
    RRULE_FREQ_MONTHLY = 0x40,
    RRULE_FREQ_YEARLY = 0x80
};

/// _rruleRepeat::type: the BY-parts that are present, whatever their own sets hold. BYSECOND,
/// BYMINUTE and BYHOUR have no representation (bits 0x01 and 0x02 are never set).
enum RRulePart {
    RRULE_TYPE_BYDAY = 0x04,
    RRULE_TYPE_BYMONTHDAY = 0x08,
    RRULE_TYPE_BYYEARDAY = 0x10,
    RRULE_TYPE_BYWEEKNO = 0x20,
    RRULE_TYPE_BYMONTH = 0x40,
    RRULE_TYPE_BYSETPOS = 0x80
};

/// Weekday bits of _rruleRepeat::byDay and _rruleRepeat::wkst: bit (1 << d) for weekday d, 1
/// (Sunday) to 7.
enum RRuleWeekday {
    RRULE_DAY_SU = 0x02,
    RRULE_DAY_MO = 0x04,
    RRULE_DAY_TU = 0x08,
    RRULE_DAY_WE = 0x10,
    RRULE_DAY_TH = 0x20,
    RRULE_DAY_FR = 0x40,
    RRULE_DAY_SA = 0x80
};

/// Set in a reader's flags when the end date carried a time of day, not only a date.
enum RRuleFlag { RRULE_UNTIL_HAS_TIME = 0x100 };

#pragma pack(push, 1)
/// A recurrence rule (RFC 2445 section 4.3.10) as plain data: no constructor, nothing owned, copied
/// byte by byte. Packed in exactly this order on every platform. An all-zero record is a valid
/// empty state; BxUtil_InitializeRRULE gives the defaults that the readers start from.
struct _rruleRepeat {
    unsigned char reserved;              ///< used by nothing; stays 0
    unsigned char freq;                  ///< RRULE_FREQ_*
    unsigned char byDay;                 ///< RRULE_DAY_*
    unsigned char wkst;                  ///< RRULE_DAY_*; SU by default, readers only add to it
    short count;                         ///< COUNT; below 1 = none, -1 by default
    short interval;                      ///< INTERVAL; 1 by default, below 1 = absent
    short type;                          ///< RRULE_TYPE_*
    unsigned short byMonth;              ///< bit m for month m, 1 .. 12
    short setPos[4];                     ///< BYSETPOS in order of arrival; 0 = a free slot
    __int64 until;                       ///< seconds since 1 January 1900 00:00:00; negative = none
    unsigned int byMonthDayNeg;          ///< bit n for day -n, n = 1 .. 31 (-1 is the last day)
    unsigned int byMonthDay;             ///< bit n for day n, 1 .. 31
    unsigned long long byYearDay[6];     ///< day n, 1 .. 366, is bit (n mod 64) of word (n div 64)
    unsigned long long byWeekNo;         ///< bit n for week n, 1 .. 53
    unsigned long long byYearDayNeg[6];  ///< as byYearDay, for day -n
    unsigned long long byWeekNoNeg;      ///< bit n for week -n
};
#pragma pack(pop)

/// The record's name in C.
typedef struct _rruleRepeat _rruleRepeat;

static_assert(sizeof(_rruleRepeat) == 148, "the rule record is packed");
static_assert(offsetof(_rruleRepeat, freq) == 1 && offsetof(_rruleRepeat, byDay) == 2 &&
                  offsetof(_rruleRepeat, wkst) == 3 && offsetof(_rruleRepeat, count) == 4 &&
                  offsetof(_rruleRepeat, interval) == 6 && offsetof(_rruleRepeat, type) == 8 &&
                  offsetof(_rruleRepeat, byMonth) == 10 && offsetof(_rruleRepeat, setPos) == 12 &&
                  offsetof(_rruleRepeat, until) == 20 &&
                  offsetof(_rruleRepeat, byMonthDayNeg) == 28 &&
                  offsetof(_rruleRepeat, byMonthDay) == 32 &&
                  offsetof(_rruleRepeat, byYearDay) == 36 &&
                  offsetof(_rruleRepeat, byWeekNo) == 84 &&
                  offsetof(_rruleRepeat, byYearDayNeg) == 92 &&
                  offsetof(_rruleRepeat, byWeekNoNeg) == 140,
              "the rule record is packed");

#ifdef __cplusplus

/// Gives `rule` its defaults: everything 0, no UNTIL and no COUNT (-1), INTERVAL 1, weeks that
/// start on Sunday. Returns 0; a null rule is ignored.
QELUTILITY_API int BxUtil_InitializeRRULE(_rruleRepeat* rule);

/// @name Writers
/// Where memory is exhausted they return null and `out` is a null string.
/// @{

/// Writes `rule` as an RRULE value (RFC 2445 section 4.8.5.4) into `out` (emptied first) and
/// returns out's text, or null when no frequency bit is set (`out` then holds "FREQ=") or `rule` is
/// null. UNTIL wins over COUNT; INTERVAL is written even when it is 1; positions go out as BYSETPOS
/// alone, never as prefixes of BYDAY; WKST is never written. `withTime` keeps the time of day of
/// UNTIL and its "Z", otherwise only the eight-digit date is written.
///
/// Every 2 weeks on MO, WE and FR until 31 December 2005, without time:
/// "FREQ=WEEKLY;UNTIL=20051231;INTERVAL=2;BYDAY=MO,WE,FR".
QELUTILITY_API const char* BxUtil_RRULEtoIETF(_rruleRepeat* rule, VStr& out, bool withTime);

/// Writes `rule` as a vCalendar 1.0 RRULE value into `out` (emptied first) and returns out's text,
/// or null when no frequency bit is set or `rule` is null. Only the first position is written, week
/// numbers never; a rule without end ends in "#0". The lists of one rule follow each other
/// directly: month day 15 and month 6 of a yearly rule give "YM1 156 #0". `withTime` as above.
///
/// Every 2 weeks on MO, WE and FR, 10 times: "W2 MO WE FR #10".
QELUTILITY_API const char* BxUtil_RRULEtoV10IETF(_rruleRepeat* rule, VStr& out, bool withTime);

/// Writes `rule` in the form that BxUtil_PositionaltoRRULE reads into `out` (emptied first) and
/// returns out's text, or null when no frequency bit is set or `rule` is null. With `withTime`,
/// what a reader yields for values in range is read back to the same record: INTERVAL is always
/// written, COUNT whenever there is no UNTIL and it is not the default, WKST as the first weekday
/// of `wkst` that is not the default Sunday. Without it UNTIL keeps its date alone.
QELUTILITY_API const char* BxUtil_RRULEtoPositional(_rruleRepeat* rule, VStr& out, bool withTime);

/// @}

/// @name Readers
/// Each resets `rule` to the defaults, sets `*flags` (which may be null) to 0, and
/// reads `text` (null counts as empty) leniently: what is unknown or malformed is ignored or read
/// as 0. They return 0, or -1 for an unknown frequency, which is reported ("Bad FREQ" and the
/// offending text) and leaves the defaults in `rule`. `*flags` becomes RRULE_UNTIL_HAS_TIME when
/// the end date is longer than 8 characters. Numbers beyond 32 bits saturate. Time is linear in the
/// text's length.
/// @{

/// Reads the positional form: the values of
/// FREQ;UNTIL;COUNT;INTERVAL;BYSECOND;BYMINUTE;BYHOUR;BYDAY;
/// BYMONTHDAY;BYYEARDAY;BYWEEKNO;BYMONTH;BYSETPOS;WKST in that order, each ended by ";". Empty
/// fields count, missing ones at the end are empty, further ones are ignored; the three times of
/// day are not read, COUNT only where UNTIL is empty. "WEEKLY;;10;2;;;;MO,WE;;;;;;;" is weekly, 10
/// times, interval 2, Monday and Wednesday.
QELUTILITY_API int BxUtil_PositionaltoRRULE(const char* text, _rruleRepeat* rule, int* flags);

/// Reads an iCalendar RRULE value (RFC 2445 section 4.8.5.4), ";"-separated NAME=VALUE parts; of a
/// name given twice the first counts. BYMONTHDAY and WKST are not read: the month days are taken
/// from BYMONTH as well as the months ("FREQ=YEARLY;BYMONTH=6;BYMONTHDAY=15" gives month day 6 and
/// June), and the week start is read from a part named BYWEEKST. The positional form loses neither.
/// The ordinals of BYDAY are kept as positions ("BYDAY=-1FR" gives FR and position -1).
QELUTILITY_API int BxUtil_PositionalV20toRRULE(const char* text, _rruleRepeat* rule, int* flags);

/// Reads a vCalendar 1.0 RRULE value (its Basic Recurrence Rule Grammar): a frequency code with its
/// interval (D, W, MP, MD, YM, YD), modifiers, and "#count" or an end date of at least 8 characters
/// as the last token; tokens are separated by single spaces, letters matched with regard to case.
/// Of several positions the last one is kept; "1-" in an MD rule reads as day 1; the modifiers of a
/// daily rule are ignored.
QELUTILITY_API int BxUtil_PositionalV10toRRULE(const char* text, _rruleRepeat* rule, int* flags);
/// @}

#endif  // __cplusplus

#endif
