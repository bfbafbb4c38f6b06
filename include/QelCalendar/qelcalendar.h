/** @file
 * The calendar library in plain C (C99): calendars of old phones (vCalendar 1.0) and iCalendar
 * read, converted both ways and explained. Everything that the library does is here; the C++
 * headers beside this one are thin wrappers over these functions.
 *
 * Conventions, which hold for every function unless it says otherwise:
 * - Texts are UTF-8 and end in a NUL. A text that the library returns is never null, belongs to the
 *   object that it was asked of and lasts as long as that object, or until the same function is
 *   called on it again. Where a text may be absent, null says so.
 * - A function that can fail returns a qelcal_result, 0 for success. qelcal_last_error() then says
 *   in one sentence what was wrong. No exception leaves the library.
 * - Null handles and indices out of range give QELCAL_INVALID_ARGUMENT, 0, null or an empty
 *   text; nothing is read or written through them.
 * - Different objects may be used by different threads at the same time; one object belongs to one
 *   thread at a time. The library keeps no settings of its own.
 * - Callbacks return 0 to go on; any other value ends the call that they belong to, which returns
 *   QELCAL_STOPPED. They must not call functions on the object that is calling them.
 *
 * Standards: RFC 5545 (iCalendar), vCalendar 1.0 of 18 September 1996.
 */
#ifndef QELCALENDAR_QELCALENDAR_H
#define QELCALENDAR_QELCALENDAR_H

#include <stddef.h>
#include <stdint.h>

#include "QelCalendar/qelcalnotes.h"

/** @def QELCALENDAR_API
 * Marks what the shared library exports. QELCALENDAR_BUILDING is defined while the library itself
 * is compiled, QELCALENDAR_STATIC by programs that link it as a static library. */
/** @def QELCALENDAR_CALL
 * The calling convention of every function and callback: `__cdecl` on Windows. */
#if defined(_WIN32)
#define QELCALENDAR_CALL __cdecl
#if defined(QELCALENDAR_BUILDING)
#define QELCALENDAR_API __declspec(dllexport)
#elif defined(QELCALENDAR_STATIC)
#define QELCALENDAR_API
#else
#define QELCALENDAR_API __declspec(dllimport)
#endif
#else
#define QELCALENDAR_CALL
#define QELCALENDAR_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* --- Results -----------------------------------------------------------------------------------
 */

/** What a call came to. Numbers are stable. */
typedef enum qelcal_result {
    QELCAL_OK = 0,
    QELCAL_END = 1,              /**< nothing more will come; no failure */
    QELCAL_NEED_INPUT = 2,       /**< the next piece of input is needed first; no failure */
    QELCAL_INVALID_ARGUMENT = 3, /**< a null handle, an index or a number out of range */
    QELCAL_OUT_OF_MEMORY = 4,
    QELCAL_STOPPED = 5,       /**< a callback asked to stop */
    QELCAL_WRONG_ORDER = 6,   /**< the call does not fit here, as write() without begin_file() */
    QELCAL_INVALID_TEXT = 7,  /**< the text is not what it should be: no date, rule, duration */
    QELCAL_ABSENT = 8,        /**< the entry does not have that; no failure */
    QELCAL_INEXPRESSIBLE = 9, /**< a record cannot hold the rule */
    QELCAL_UNKNOWN_NAME = 10, /**< no zone or character set has that name */
    QELCAL_INTERNAL = 11      /**< a fault of the library; please report it */
} qelcal_result;

/** The library's version, "1.0.0". */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_version(void);

/** A result in words, "a callback asked to stop". An empty text for an unknown number. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_result_text(int result);

/** What was wrong with this thread's last call that failed, in one sentence without a full stop.
 * Lasts until this thread's next call that fails. Empty when none has failed. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_last_error(void);

/* --- Notes -------------------------------------------------------------------------------------
 */

/** What the library reports about a calendar: something was changed, kept elsewhere or lost, or the
 * input was invalid. Its code (qelcalnotes.h) is stable; its sentence may change. */
typedef struct qelcal_note qelcal_note;

/** How serious a note is. */
typedef enum qelcal_severity {
    QELCAL_NOTE = 0,    /**< read in one of several possible ways, or corrected */
    QELCAL_WARNING = 1, /**< the target format cannot express it */
    QELCAL_ERROR = 2    /**< the input itself is invalid */
} qelcal_severity;

/** What became of the data that a note is about. */
typedef enum qelcal_fate {
    QELCAL_UNCHANGED = 0, /**< nothing is lost: at most read or written in another way */
    QELCAL_KEPT = 1,      /**< kept in another place, mostly an X- property */
    QELCAL_LOST = 2       /**< missing from the result */
} qelcal_fate;

/** A qelcal_note_code. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_note_code_of(const qelcal_note* note);
/** The code's name, "rule-part-unknown". */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_note_name(const qelcal_note* note);
/** A qelcal_severity. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_note_severity(const qelcal_note* note);
/** A qelcal_fate. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_note_fate(const qelcal_note* note);
/** The file as the caller named it, empty where no file is meant. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_note_file(const qelcal_note* note);
/** The line of the input, 1 for the first; 0 when no line is meant. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_note_line(const qelcal_note* note);
/** One English sentence without a full stop. It may contain bytes of the input, control characters
 * included; escape it before showing it on a terminal. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_note_text(const qelcal_note* note);
/** The values that the sentence mentions. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_note_value_count(const qelcal_note* note);
/** One of them, unchanged from the input. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_note_value(const qelcal_note* note,
                                                               size_t index);

/** A row of the catalogue of notes. The texts last as long as the process. */
typedef struct qelcal_note_kind {
    int code;             /**< a qelcal_note_code */
    int severity;         /**< a qelcal_severity */
    int fate;             /**< a qelcal_fate */
    const char* name;     /**< "rule-part-unknown" */
    const char* sentence; /**< with {0}, {1} for its values, {q0} for one in quotes */
    const char* meaning;  /**< what it means for the person whose calendar it is */
    const char* advice;   /**< what to do */
} qelcal_note_kind;

/** The number of rows. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_note_kind_count(void);
/** One row, ascending by code. QELCAL_INVALID_ARGUMENT past the last one. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_note_kind_at(size_t index, qelcal_note_kind* kind);

/** Receives a note, which lasts until the callback returns. */
typedef int(QELCALENDAR_CALL* qelcal_note_fn)(void* context, const qelcal_note* note);

/* --- Times -------------------------------------------------------------------------------------
 */

/** The clock that a time is read on. */
typedef enum qelcal_clock {
    QELCAL_FLOATING = 0, /**< whatever the reader's own clock shows */
    QELCAL_UTC = 1,
    QELCAL_ZONED = 2 /**< the wall clock of the entry's zone */
} qelcal_clock;

/** A date or a date-time of the years 1 to 9999. */
typedef struct qelcal_time {
    int year;    /**< 1..9999 */
    int month;   /**< 1..12 */
    int day;     /**< 1..31 */
    int hour;    /**< 0..23; 0 for a date */
    int minute;  /**< 0..59; 0 for a date */
    int second;  /**< 0..59; 0 for a date */
    int is_date; /**< 1 for a date without a time of day, else 0 */
    int clock;   /**< a qelcal_clock */
} qelcal_time;

/** Bytes that hold any text of qelcal_time_write or qelcal_duration_write. */
#define QELCAL_TIME_SIZE 32

/** Reads YYYYMMDD, YYYYMMDDTHHMM and YYYYMMDDTHHMMSS, also with "-" and ":" as separators, with "Z"
 * or an offset (+HHMM; gives UTC) at the end, in either case. 24:00:00 is midnight of the next day.
 * QELCAL_INVALID_TEXT says in qelcal_last_error() what is wrong: "June 2005 has no day 31". */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_time_read(const char* text, qelcal_time* time);
/** Writes YYYYMMDD, YYYYMMDDTHHMMSS or, in UTC, YYYYMMDDTHHMMSSZ and a NUL to `text`, which holds
 * QELCAL_TIME_SIZE bytes. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_time_write(const qelcal_time* time, char* text);
/** `time` `seconds` later (earlier when negative), on its own clock. A date stays a date when whole
 * days are added. QELCAL_INVALID_ARGUMENT when it leaves the years 1 to 9999. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_time_add(const qelcal_time* time, int64_t seconds,
                                                     qelcal_time* result);
/** Seconds since 1 January 1900 00:00 of the time's own clock; 0 for an invalid time. */
QELCALENDAR_API int64_t QELCALENDAR_CALL qelcal_time_seconds(const qelcal_time* time);
/** 1 Sunday .. 7 Saturday; 0 for an invalid time. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_time_weekday(const qelcal_time* time);
/** "January" of 1 to "December" of 12; an empty text for any other number. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_month_name(int month);
/** "Sunday" of 1 to "Saturday" of 7; an empty text for any other number. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_weekday_name(int weekday);
/** Reads an RFC 5545 duration, "-P1DT2H", "PT15M", "P2W", into seconds. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_duration_read(const char* text, int64_t* seconds);
/** Writes "-PT15M", "P1DT2H", "PT0S" and a NUL to `text`, which holds QELCAL_TIME_SIZE bytes. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_duration_write(int64_t seconds, char* text);

/** Receives a time, which lasts until the callback returns. */
typedef int(QELCALENDAR_CALL* qelcal_time_fn)(void* context, const qelcal_time* time);

/* --- Rules -------------------------------------------------------------------------------------
 */

/** The three texts of a recurrence rule. */
typedef enum qelcal_form {
    QELCAL_FORM_ANY = 0,       /**< detected from the text */
    QELCAL_FORM_VCALENDAR = 1, /**< "W2 MO WE FR #10" */
    QELCAL_FORM_ICALENDAR = 2, /**< "FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR" */
    QELCAL_FORM_POSITIONAL = 3 /**< "WEEKLY;;10;2;;;;MO,WE,FR;;;;;;;", QelUtility's own */
} qelcal_form;

struct _rruleRepeat;

/** What was read from one rule text: mostly one rule, several where the text has several. */
typedef struct qelcal_rules qelcal_rules;

/** Reads a rule text, however untidy; a leading "RRULE:" is ignored. `start`, which may
 * be null, is the date or time that the series starts on: it fills in what a rule leaves to it (the
 * day of "MD1 #0") and decides between a count and an end date; words and dates need it.
 * QELCAL_INVALID_TEXT when the text is not a rule; what was wrong is in qelcal_last_error().
 * On success `*rules` belongs to the caller, who frees it by qelcal_rules_free(). */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_read(const char* text, int form,
                                                       const qelcal_time* start,
                                                       qelcal_rules** rules);
/** The same with a choice of what the number after # of a vCalendar 1.0 rule counts: a value of
 * QELCAL_CHOOSE_COUNT_MEANS, null for the default. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_read_counting(const char* text, int form,
                                                                const qelcal_time* start,
                                                                const char* count_means,
                                                                qelcal_rules** rules);
/** Frees what qelcal_rules_read returned; null is ignored. */
QELCALENDAR_API void QELCALENDAR_CALL qelcal_rules_free(qelcal_rules* rules);
/** The qelcal_form that the text was read as; QELCAL_FORM_ANY for the rules of an entry. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_form(const qelcal_rules* rules);
/** The number of rules. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_rules_count(const qelcal_rules* rules);
/** 1 when all of the text was understood; 0 when a part that affects the dates was not. Always 1
 * for the rules of an entry, whose notes say what was not understood. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_complete(const qelcal_rules* rules);
/** How the text was understood. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_rules_note_count(const qelcal_rules* rules);
/** One of these notes; it lasts as long as `rules`. Null past the last one. */
QELCALENDAR_API const qelcal_note* QELCALENDAR_CALL qelcal_rules_note(const qelcal_rules* rules,
                                                                      size_t index);
/** How many texts of `form` rule number `rule` takes: mostly one, several where the form needs
 * several ("MD1 13 #0" twice), 0 where the form cannot express it. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_rules_text_count(const qelcal_rules* rules,
                                                                size_t rule, int form);
/** One of these texts. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_rules_text(const qelcal_rules* rules,
                                                               size_t rule, int form, size_t index);
/** What `form` cannot express of the rule, in words; empty when it can express all of it. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_rules_reason(const qelcal_rules* rules,
                                                                 size_t rule, int form);
/** The rule as QelUtility's records (QelUtility/RRule.h): how many it takes together, 0 when no
 * record can hold it. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_rules_record_count(const qelcal_rules* rules,
                                                                  size_t rule);
/** One of these records; QELCAL_INEXPRESSIBLE when there are none. `ordinals`, which may be null,
 * is set to 1 when the record's positions belong to its weekday ("the second Tuesday"), to 0 when
 * they select from each period (BYSETPOS).
 */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_record(const qelcal_rules* rules, size_t rule,
                                                         size_t index, struct _rruleRepeat* record,
                                                         int* ordinals);
/** What the records cannot express, as notes. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_rules_record_note_count(const qelcal_rules* rules,
                                                                       size_t rule);
/** One of these notes; it lasts as long as `rules`. Null past the last one. */
QELCALENDAR_API const qelcal_note* QELCALENDAR_CALL
qelcal_rules_record_note(const qelcal_rules* rules, size_t rule, size_t index);
/** The rule in plain English, "every 2 weeks on Monday, Wednesday and Friday, 10 times". Empty when
 * the rules were read without a start. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_rules_words(const qelcal_rules* rules,
                                                                size_t rule);
/** 1 when the rule by itself has an occurrence on the start: "every Monday" from a Wednesday has
 * none, and calendars count the start as the first date all the same. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_yields_start(const qelcal_rules* rules,
                                                               size_t rule);
/** Hands the dates of one rule to `date`, ascending: those from `since` (null: the start) through
 * `through` (null: 31 December 2499, the last day on which rules have dates), at most `most` of
 * them (0: no limit). Both are read on the start's clock; a date means the whole day. As in RFC
 * 5545 the start is always the first date and counts as one. The times have the start's time of day
 * and clock. QELCAL_WRONG_ORDER when the rules were read without a start. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_rules_dates(const qelcal_rules* rules, size_t rule,
                                                        const qelcal_time* since,
                                                        const qelcal_time* through, size_t most,
                                                        qelcal_time_fn date, void* context);

/* --- Entries -----------------------------------------------------------------------------------
 */

/** An event, a to-do or a note of a calendar. */
typedef struct qelcal_entry qelcal_entry;

/** What an entry is. */
typedef enum qelcal_entry_kind {
    QELCAL_EVENT = 1,
    QELCAL_TODO = 2,
    QELCAL_JOURNAL = 3 /**< a note or journal entry */
} qelcal_entry_kind;

/** The times that an entry can have. */
typedef enum qelcal_which_time {
    QELCAL_START = 1,
    QELCAL_END_TIME = 2, /**< of an event; for an all-day entry the day after the last */
    QELCAL_DUE = 3,
    QELCAL_COMPLETED = 4,
    QELCAL_CREATED = 5,
    QELCAL_MODIFIED = 6,
    QELCAL_STAMP = 7,
    QELCAL_RECURRENCE_ID = 8 /**< the occurrence that this entry replaces */
} qelcal_which_time;

/** A qelcal_entry_kind; 0 for a null entry. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_kind_of(const qelcal_entry* entry);
/** The line of the file on which it begins. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_line(const qelcal_entry* entry);
/** Its UID, empty where it has none. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_uid(const qelcal_entry* entry);
/** The value of the first property of that name, as plain text: "SUMMARY", "DESCRIPTION",
 * "LOCATION", "X-EPOCAGENDAENTRYTYPE". Of a list (CATEGORIES) its first item. Null where there is
 * none. The name is in capitals. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_text(const qelcal_entry* entry,
                                                               const char* name);
/** The properties that are neither a time, a rule, a UID nor an alarm, in the order of the file. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_property_count(const qelcal_entry* entry);
/** The name of one of them, in capitals and in iCalendar's words. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_property_name(const qelcal_entry* entry,
                                                                        size_t property);
/** The number of its values: one, or the length of a list (CATEGORIES, RESOURCES). */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_value_count(const qelcal_entry* entry,
                                                                 size_t property);
/** One of its values as plain text. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_value(const qelcal_entry* entry,
                                                                size_t property, size_t index);
/** The number of its parameters. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_parameter_count(const qelcal_entry* entry,
                                                                     size_t property);
/** The name of one of its parameters, in capitals. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_parameter_name(const qelcal_entry* entry,
                                                                         size_t property,
                                                                         size_t index);
/** The value of one of its parameters. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_parameter_value(const qelcal_entry* entry,
                                                                          size_t property,
                                                                          size_t index);
/** One of its times. QELCAL_ABSENT where it has none. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_time(const qelcal_entry* entry, int which,
                                                       qelcal_time* time);
/** Its length in seconds where the file gives a DURATION; QELCAL_ABSENT where not. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_duration(const qelcal_entry* entry,
                                                           int64_t* seconds);
/** 1 for an all-day entry, by its times or by a phone's flag. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_all_day(const qelcal_entry* entry);
/** The name of the zone of its zoned times, null where it has none. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_entry_zone(const qelcal_entry* entry);
/** `time`, a zoned time of this entry, in UTC. QELCAL_ABSENT where that cannot be known. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_to_utc(const qelcal_entry* entry,
                                                         const qelcal_time* time, qelcal_time* utc);

/** The number of its rule texts (RRULE and EXRULE). Those that cannot be used, such as those of an
 * entry without a start, are properties (X-ICAL-RRULE, X-VCAL-RRULE) instead. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_rule_count(const qelcal_entry* entry);
/** One of them as rules with the entry's start; owned by the entry. Null past the last one. */
QELCALENDAR_API const qelcal_rules* QELCALENDAR_CALL qelcal_entry_rules(const qelcal_entry* entry,
                                                                        size_t index);
/** 1 when that rule takes dates out (EXRULE). */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_rule_excludes(const qelcal_entry* entry,
                                                                size_t index);
/** The number of single dates that are added (RDATE, `excluded` 0) or taken out (EXDATE, 1). */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_date_count(const qelcal_entry* entry,
                                                                int excluded);
/** One of them. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_date(const qelcal_entry* entry, int excluded,
                                                       size_t index, qelcal_time* time);
/** Hands the occurrences of the entry to `date`, ascending, those from `since` (null: from the
 * first on) through `through` (null: 31 December 2499), at most `most` (0: no limit): the dates of
 * its rules and lists without those that are taken out; of an entry that does not recur, its start.
 */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_occurrences(const qelcal_entry* entry,
                                                              const qelcal_time* since,
                                                              const qelcal_time* through,
                                                              size_t most, qelcal_time_fn date,
                                                              void* context);

/** An alarm. The texts last as long as the entry. */
typedef struct qelcal_alarm {
    const char* action; /**< "AUDIO", "DISPLAY", "EMAIL", "PROCEDURE" or the file's own word */
    int has_time;       /**< 1: it rings at `time`; 0: `offset` seconds after the start or end */
    qelcal_time time;   /**< when it rings, with has_time */
    int64_t offset;     /**< negative for an alarm before the start */
    int from_end;       /**< 1: the offset counts from the end (of a to-do: the due time) */
    int64_t snooze;     /**< seconds between repetitions, 0 without */
    int repeat;         /**< further times, 0 without */
    const char* text;   /**< what it shows or says, may be empty */
} qelcal_alarm;

/** The number of its alarms. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_alarm_count(const qelcal_entry* entry);
/** One of them. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_entry_alarm(const qelcal_entry* entry, size_t index,
                                                        qelcal_alarm* alarm);
/** The number of notes about this entry; the first 1000 are kept. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_entry_note_count(const qelcal_entry* entry);
/** One of them; it lasts as long as the entry. Null past the last one. */
QELCALENDAR_API const qelcal_note* QELCALENDAR_CALL qelcal_entry_note(const qelcal_entry* entry,
                                                                      size_t index);

/* --- Choices -----------------------------------------------------------------------------------
 */

/** What a person may choose about how files are read. Each has a value that is a text in UTF-8; the
 * empty text and null mean the default. */
typedef enum qelcal_choice {
    /** The zone of local times that name none and of series in UTC in a file that has no zone: an
     * IANA name ("Europe/Berlin"). By default they stay local and in UTC. */
    QELCAL_CHOOSE_ZONE = 1,
    /** The character set of text that names none: a name of the WHATWG Encoding Standard
     * ("Shift_JIS"), QELCAL_UNKNOWN_NAME for any other. By default text that is not UTF-8 is
     * read in the set that all such text of the file is like, if the file was scanned, else as
     * windows-1252. */
    QELCAL_CHOOSE_CHARSET = 2,
    /** What the number after # means in a vCalendar 1.0 rule with several days in a period:
     * "dates", the default, or "periods". */
    QELCAL_CHOOSE_COUNT_MEANS = 3,
    /** "yes": an entry whose UID an earlier one with other content has is given another UID. By
     * default ("no") both keep it. */
    QELCAL_CHOOSE_DISTINCT_UIDS = 4,
    /** The kinds of entries that are read, "events", "todos", "notes" or several of them with
     * commas between; a note counts those that are left out. By default all. */
    QELCAL_CHOOSE_ONLY = 5
} qelcal_choice;

/* --- What a file is ----------------------------------------------------------------------------
 */

/** What a file seems to be. */
typedef enum qelcal_kind {
    QELCAL_KIND_TEXT = 0,     /**< text of another kind */
    QELCAL_KIND_CALENDAR = 1, /**< a line begins a calendar or an entry */
    QELCAL_KIND_CONTACT = 2,  /**< vCard */
    QELCAL_KIND_EMPTY = 3,    /**< nothing, or nothing but blanks */
    QELCAL_KIND_ZIP = 4,
    QELCAL_KIND_HTML = 5,
    QELCAL_KIND_XML = 6,
    QELCAL_KIND_UTF16 = 7, /**< without the mark that a reader needs */
    QELCAL_KIND_BINARY = 8
} qelcal_kind;

/** A qelcal_kind, from the first bytes of a file: some thousand of them, or all. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_recognise(const void* bytes, size_t size);
/** A kind in words that follow "it is", with what a person can do: "a contact (vCard); address
 * books import it as it is". An empty text for an unknown number. */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_kind_text(int kind);

/* --- Reading -----------------------------------------------------------------------------------
 */

/** Reads the entries of one file, one at a time. It keeps in memory one entry (at most 64 MB), the
 * zones of the file and the input that has not been read yet. */
typedef struct qelcal_reader qelcal_reader;

/** A reader; null when memory is exhausted. Free it by qelcal_reader_free(). */
QELCALENDAR_API qelcal_reader* QELCALENDAR_CALL qelcal_reader_new(void);
/** Frees the reader and the entry that it returned last; null is ignored. */
QELCALENDAR_API void QELCALENDAR_CALL qelcal_reader_free(qelcal_reader* reader);
/** Chooses before the first byte of the file; `choice` is a qelcal_choice. QELCAL_INVALID_ARGUMENT
 * when the value is not one that it can have. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_reader_choose(qelcal_reader* reader, int choice,
                                                          const char* value);
/** The same bytes as later for qelcal_reader_write, in a pass of their own before it, so that zones
 * which are described after the entries that use them are found. Optional. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_reader_scan(qelcal_reader* reader, const void* bytes,
                                                        size_t size);
/** The next bytes of the file, a piece of any size, which are copied. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_reader_write(qelcal_reader* reader, const void* bytes,
                                                         size_t size);
/** There are no more bytes. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_reader_end(qelcal_reader* reader);
/** The next entry, which lasts until the next call on the reader. QELCAL_NEED_INPUT asks for
 * qelcal_reader_write or qelcal_reader_end, QELCAL_END follows the last entry. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_reader_next(qelcal_reader* reader,
                                                        const qelcal_entry** entry);
/** Notes that belong to no entry, so far; the first 10000 are kept. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_reader_note_count(const qelcal_reader* reader);
/** One of them; it lasts as long as the reader. Null past the last one. */
QELCALENDAR_API const qelcal_note* QELCALENDAR_CALL qelcal_reader_note(const qelcal_reader* reader,
                                                                       size_t index);

/* --- Converting --------------------------------------------------------------------------------
 */

/** Converts any number of files into one calendar. The same input gives the same output, always,
 * whatever the size of its pieces. When a call fails by anything but QELCAL_INVALID_ARGUMENT or
 * QELCAL_WRONG_ORDER, the calendar is incomplete, and all later calls that would add to it return
 * QELCAL_WRONG_ORDER. */
typedef struct qelcal_converter qelcal_converter;

/** A calendar format. */
typedef enum qelcal_format {
    QELCAL_OTHER = 0,     /**< the other one than that of the first file; iCalendar if unknown */
    QELCAL_ICALENDAR = 1, /**< iCalendar 2.0 (RFC 5545), .ics */
    QELCAL_VCALENDAR = 2  /**< vCalendar 1.0, .vcs */
} qelcal_format;

/** Counts of a conversion. */
typedef struct qelcal_counts {
    uint64_t calendars; /**< that began; an entry outside any calendar has one of its own */
    uint64_t entries;   /**< events, to-dos and notes that were read */
    uint64_t alarms;    /**< of these entries */
    uint64_t changed;   /**< of the entries, those with a note */
    uint64_t warnings;  /**< notes of that severity */
    uint64_t errors;    /**< notes of that severity */
    uint64_t lost;      /**< notes whose fate is QELCAL_LOST */
} qelcal_counts;

/** Receives output. The bytes last until the callback returns. */
typedef int(QELCALENDAR_CALL* qelcal_write_fn)(void* context, const char* bytes, size_t size);

/** One entry after its conversion. Everything lasts until the callback returns. `source` and
 * `written` do not end in a NUL. */
typedef struct qelcal_converted {
    const qelcal_entry* entry; /**< as it was read, with its notes */
    int target;                /**< a qelcal_format: what it was written as */
    const char* source;        /**< its bytes in the file; empty unless lines are wanted */
    size_t source_size;        /**< of `source`, in bytes */
    int source_cut;            /**< 1: the entry has more lines than `source` */
    const char* written;       /**< its lines in the result; empty unless lines are wanted */
    size_t written_size;       /**< of `written`, in bytes */
} qelcal_converted;

/** Receives an entry after its conversion. */
typedef int(QELCALENDAR_CALL* qelcal_converted_fn)(void* context,
                                                   const qelcal_converted* converted);

/** A converter to `target`, a qelcal_format. `output` receives the calendar, in pieces; null: it is
 * dropped (a dry run). Null when memory is exhausted or `target` is not a qelcal_format. Free it by
 * qelcal_converter_free(). */
QELCALENDAR_API qelcal_converter* QELCALENDAR_CALL qelcal_converter_new(int target,
                                                                        qelcal_write_fn output,
                                                                        void* context);
/** Frees it, finished or not; null is ignored. */
QELCALENDAR_API void QELCALENDAR_CALL qelcal_converter_free(qelcal_converter* converter);
/** From now on `note` (null: nobody) receives every note at once. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_on_note(qelcal_converter* converter,
                                                              qelcal_note_fn note, void* context);
/** From the next file on `converted` (null: nobody) receives every entry; `lines`: 1 when its
 * source and written lines are wanted. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_on_entry(qelcal_converter* converter,
                                                               qelcal_converted_fn converted,
                                                               void* context, int lines);
/** Chooses for the files that begin after it; `choice` is a qelcal_choice. QELCAL_INVALID_ARGUMENT
 * when the value is not one that it can have. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_choose(qelcal_converter* converter,
                                                             int choice, const char* value);
/** The most threads of qelcal_converter_threads(). */
#define QELCAL_MOST_THREADS 64
/** From the next file on so many threads work on it, at most, the caller's among them; 1 at first.
 * They begin and end within a call of qelcal_converter_write() that is given 256 KB or more: give
 * it megabytes. Output, notes and entries come as with one thread: the same, in the same order, on
 * the caller's thread, before the call returns. Memory stays bounded. Where the system has no more
 * threads to give, those that there are do it. A child process that is forked within a callback
 * must not return to the converter. QELCAL_INVALID_ARGUMENT unless `most` is 1 to
 * QELCAL_MOST_THREADS. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_threads(qelcal_converter* converter,
                                                              int most);
/** Begins a file; its notes have `name`, which may be empty. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_begin_file(qelcal_converter* converter,
                                                                 const char* name);
/** The same bytes as later for qelcal_converter_write, in a pass of their own between begin_file
 * and write, so that zones which are described after the entries that use them are found.
 * Optional; vCalendar 1.0 has no such zones. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_scan(qelcal_converter* converter,
                                                           const void* bytes, size_t size);
/** The next bytes of the file, a piece of any size. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_write(qelcal_converter* converter,
                                                            const void* bytes, size_t size);
/** The file ends here. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_end_file(qelcal_converter* converter);
/** Ends the calendar and passes on what is left of it. A result without any entry is a calendar all
 * the same; look at the counts before. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_finish(qelcal_converter* converter);
/** A part of `converter`, to be freed as a converter: with it another thread may read the next
 * files while `converter` is used. It reads them (begin_file, scan, write, end_file) as `converter`
 * would with what is chosen for it now, and holds in memory what it has read until
 * qelcal_converter_join(); it writes and calls nothing, and its other functions return
 * QELCAL_INVALID_ARGUMENT. Any thread may call it, while nothing is being chosen for `converter`.
 * Null when memory is exhausted, or `converter` is null or itself a part. */
QELCALENDAR_API qelcal_converter* QELCALENDAR_CALL
qelcal_converter_part(const qelcal_converter* converter);
/** Converts the files that `part` has read since the last call, as if `converter` had read them one
 * after the other. QELCAL_INVALID_ARGUMENT when it is no part, QELCAL_WRONG_ORDER while a file of
 * either has begun. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_join(qelcal_converter* converter,
                                                           qelcal_converter* part);
/** The qelcal_format that is written; QELCAL_OTHER before the first file has shown it. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_target(const qelcal_converter* converter);
/** The counts of all files so far. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_counts(const qelcal_converter* converter,
                                                             qelcal_counts* counts);

/* --- The report --------------------------------------------------------------------------------
 */

/** A page (HTML, nothing from outside, no script but that of its own search box) about every entry
 * of one or several conversions. It is written in two streams, because its top is known only at the
 * end and memory stays bounded: the page is the head followed by the body. */
typedef struct qelcal_report qelcal_report;

/** A report whose body goes to `body` as it comes. Without `body` it is a part of a report, which
 * is held in memory until qelcal_report_join(). Null when memory is exhausted. */
QELCALENDAR_API qelcal_report* QELCALENDAR_CALL qelcal_report_new(qelcal_write_fn body,
                                                                  void* context);
/** Frees it; null is ignored. */
QELCALENDAR_API void QELCALENDAR_CALL qelcal_report_free(qelcal_report* report);
/** The day on which weeks begin in the report's months, 1 Sunday to 7 Saturday; Monday by default.
 */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_report_week_start(qelcal_report* report, int weekday);
/** From the next file on `report` (null: none) receives all that `converter` converts. The report
 * must outlive the converter or be taken off it. Several converters may share one report while only
 * one of them is within a file: write() and end_file() of another return QELCAL_WRONG_ORDER. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_converter_report(qelcal_converter* converter,
                                                             qelcal_report* report);
/** Adds a file that no converter reads, as one that cannot be opened; qelcal_report_result says
 * why. Files are numbered in the order in which they were added or converted. QELCAL_WRONG_ORDER
 * while a converter is within a file. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_report_add_file(qelcal_report* report,
                                                            const char* name);
/** A part of `report`, to be freed as a report: with it another thread may convert the next files
 * while this report is used. It holds in memory what it is given, until qelcal_report_join(). Its
 * weeks begin on the day chosen for `report` before. Any thread may call it. Null when memory is
 * exhausted, or `report` is null or itself a part. */
QELCALENDAR_API qelcal_report* QELCALENDAR_CALL qelcal_report_part(const qelcal_report* report);
/** Adds the files of `part`, as if they had been converted for `report` one after the other. The
 * part is of no further use. QELCAL_INVALID_ARGUMENT when it is no part, QELCAL_WRONG_ORDER while a
 * converter is within a file of either. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_report_join(qelcal_report* report, qelcal_report* part);
/** Says what became of a file, 0 for the first one that was converted: the name of its result, and,
 * where it has no part in any result, the reason why. Both may be empty. Possible until
 * qelcal_report_finish(), and more than once. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_report_result(qelcal_report* report, size_t file,
                                                          const char* output, const char* reason);
/** Ends the body and hands the head to `head`; nothing may follow. `remark` is a sentence about the
 * whole run, or empty. QELCAL_WRONG_ORDER while a converter is within a file. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_report_finish(qelcal_report* report, const char* remark,
                                                          qelcal_write_fn head, void* context);

/* --- Zones --------------------------------------------------------------------------------------
 * Those of QelUtility's table, the computer's own, and those of the IANA time zone database, which
 * is compiled into the library.
 */

/** What a wall-clock time is on its zone's clock. */
typedef enum qelcal_occurs {
    QELCAL_ONCE = 0,
    QELCAL_SKIPPED = 1, /**< clocks skip it; it is taken as if they had run on */
    QELCAL_REPEATED = 2 /**< clocks show it twice; the first one is meant */
} qelcal_occurs;

/** A change of a zone's offset. Times in seconds since 1 January 1900. */
typedef struct qelcal_offset_change {
    int64_t local;  /**< the wall-clock time that ends */
    int64_t before; /**< offset before it: local time minus UTC, in seconds */
    int64_t after;  /**< and after it */
} qelcal_offset_change;

/** The number of the database's first zone; the others follow in the order of the alphabet. Their
 * numbers are those of one version of the database. */
#define QELCAL_FIRST_WORLD_ZONE 1001
/** The version of the IANA time zone database: "2025b". */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_zone_data_version(void);
/** The number of its zones, each by all of its names. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_zone_data_count(void);
/** The number of zones of the table; their numbers are 1 to that. 0 is the computer's own zone. A
 * count of 0 means that memory is exhausted. */
QELCALENDAR_API size_t QELCALENDAR_CALL qelcal_zone_count(void);
/** The zone's name, "Europe/Berlin". "" for a number that has none. Lasts as long as the process.
 */
QELCALENDAR_API const char* QELCALENDAR_CALL qelcal_zone_name(int zone);
/** The number of the zone of that name, in either case; also a part of the name that no other zone
 * of the table has, a number as text, "utc" and "local". A zone of the database is found by its
 * whole name, where the table has none. QELCAL_UNKNOWN_NAME otherwise; qelcal_last_error() lists
 * what it fits when it fits several. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_zone_find(const char* name, int* zone);
/** 1 when the zone's changes in `year` are known: the table's years are 1990 to 2010, outside them
 * the offset of the nearest change is used. UTC, the computer's own zone and those of the database
 * are known from 1900 to 2499. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_zone_knows(int zone, int year);
/** UTC of a wall-clock time of the years 1900 to 2499, both in seconds since 1 January 1900;
 * `occurs`, which may be null, is set to a qelcal_occurs. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_zone_to_utc(int zone, int64_t local, int64_t* utc,
                                                        int* occurs);
/** The offset at a moment of UTC in the years 1900 to 2499: local time minus UTC, in seconds. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_zone_offset(int zone, int64_t utc, int64_t* offset);
/** The changes of one year, 1900 to 2499, ascending: writes at most `room` of them to `changes`
 * (which may be null when room is 0) and their number to `count`. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_zone_changes(int zone, int year,
                                                         qelcal_offset_change* changes, size_t room,
                                                         size_t* count);

/* --- Character sets ----------------------------------------------------------------------------
 */

/** 1 when qelcal_text_to_utf8 knows the character set; names are those of MIME, in either case. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_charset_known(const char* name);
/** Hands `bytes`, a whole text in the character set `name`, to `text` in UTF-8. A byte sequence
 * that is invalid in the set becomes U+FFFD; `replaced`, which may be null, is set to 1 when the
 * result contains that character, else to 0. QELCAL_UNKNOWN_NAME for an unknown set. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_text_to_utf8(const char* name, const void* bytes,
                                                         size_t size, qelcal_write_fn text,
                                                         void* context, int* replaced);
/** 1 when the bytes are UTF-8 as RFC 3629 defines it. */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_is_utf8(const void* bytes, size_t size);
/** Hands the text to `text` in a form that is safe to show: control characters, those that turn the
 * direction of text (U+202A to U+202E, U+2066 to U+2069, U+200E, U+200F, U+061C) and bytes that are
 * not UTF-8 become \\n, \\r, \\t or \\xNN; a text longer than `longest` bytes (0: no limit) is cut
 * and ends in "...". */
QELCALENDAR_API int QELCALENDAR_CALL qelcal_printable(const void* bytes, size_t size,
                                                      size_t longest, qelcal_write_fn text,
                                                      void* context);

#ifdef __cplusplus
}
#endif

#endif
