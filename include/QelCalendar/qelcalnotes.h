/** @file
 * The codes of the calendar library's notes; "./dev pages" makes this file from its catalogue. A
 * number is never used again. C99.
 */
#ifndef QELCALENDAR_QELCALNOTES_H
#define QELCALENDAR_QELCALNOTES_H

/* clang-format off */

/** What a note is about; docs/notes.md explains each. */
typedef enum qelcal_note_code {
    QELCAL_NOTE_NONE = 0,
    /**< No note. */
    QELCAL_NOTE_LINE_NOT_PROPERTY = 101,
    /**< A line of the file does not have the form NAME:VALUE that every line of a calendar has, so
     * its meaning is unknown. Often a long text was broken into lines wrongly. */
    QELCAL_NOTE_LINE_TOO_LONG = 102,
    /**< A single line is larger than any real calendar's. Its beginning is converted. */
    QELCAL_NOTE_QUOTED_PRINTABLE_BREAKS_OFF = 103,
    /**< The text stops in the middle, as the file itself has it. What is there is converted. */
    QELCAL_NOTE_TEXT_BEFORE_CALENDAR = 104,
    /**< The file has lines before BEGIN:VCALENDAR that are not part of any calendar. */
    QELCAL_NOTE_TEXT_AFTER_CALENDAR = 105,
    /**< The file has lines after END:VCALENDAR that are not part of any calendar. */
    QELCAL_NOTE_ENTRY_OUTSIDE_CALENDAR = 106,
    /**< BEGIN:VCALENDAR is missing before this entry. It is converted all the same. */
    QELCAL_NOTE_NO_CALENDAR = 107,
    /**< The file is empty, or it is another kind of file. */
    QELCAL_NOTE_CALENDAR_NOT_CLOSED = 108,
    /**< The file may have been cut off. All that is there is converted. */
    QELCAL_NOTE_CALENDAR_IN_CALENDAR = 109,
    /**< END:VCALENDAR is missing before the next calendar. */
    QELCAL_NOTE_END_WITHOUT_BEGIN = 110,
    /**< The file closes a part that it has not begun. Nothing is missing because of that alone. */
    QELCAL_NOTE_COMPONENT_TOO_DEEP = 111,
    /**< Parts of the entry are nested more deeply than in any real calendar. */
    QELCAL_NOTE_COMPONENT_NOT_CLOSED = 112,
    /**< A part of an entry has no end. It is taken to end with the entry. */
    QELCAL_NOTE_COMPONENT_NOT_CLOSED_IN_FILE = 113,
    /**< The file may have been cut off. What there is of the entry is converted. */
    QELCAL_NOTE_COMPONENT_NOT_CLOSED_BEFORE_NEXT = 114,
    /**< An entry has no end before the next one begins. Both are converted. */
    QELCAL_NOTE_COMPONENT_NOT_CLOSED_IN_CALENDAR = 115,
    /**< The last entry has no end. What there is of it is converted. */
    QELCAL_NOTE_ENTRY_TOO_LARGE = 116,
    /**< A single entry is larger than any real one. Its beginning is converted. */
    QELCAL_NOTE_TEXT_WRAPPED_BY_WORDS = 140,
    /**< The lines of the text end between words, as a typewriter's do, although the format would
     * join them without a blank. */
    QELCAL_NOTE_LINES_NOT_FOLDED = 141,
    /**< A long text was broken into lines, or has line breaks of its own, without the sign that the
     * format requires. Its lines were joined again. */
    QELCAL_NOTE_COMPONENT_NAME_UNTIDY = 142,
    /**< A line that begins or ends a part of the calendar has a colon or a semicolon too many. */
    QELCAL_NOTE_BLANKS_AROUND_NAME = 143,
    /**< The line has blanks before or after the name of the property, which the format does not
     * allow. */
    QELCAL_NOTE_CALENDAR_INDENTED = 144,
    /**< The lines of the calendar begin with blanks, which usually join a line to the one before
     * it. Here they only show which part a line belongs to. */
    QELCAL_NOTE_CONTACTS_LEFT_OUT = 146,
    /**< The file has contacts beside its calendars. Only calendars are converted. */
    QELCAL_NOTE_TEXT_SWALLOWS_PROPERTY = 147,
    /**< The last line of a quoted-printable text says that another line follows, and the line that
     * follows looks like a property. It was read as the rest of the text. */
    QELCAL_NOTE_GROUP_LEFT_OUT = 148,
    /**< The name of a property is preceded by that of a group and a dot, as in contacts. Calendars
     * have no groups today. */
    QELCAL_NOTE_TEXT_IS_UTF8 = 150,
    /**< The file names a character set for this text in which it would be nonsense, and its bytes
     * are valid UTF-8, which does not happen by chance. */
    QELCAL_NOTE_TEXT_HAS_ESCAPES = 151,
    /**< The file does not say which character set this text is in, but its bytes tell. */
    QELCAL_NOTE_TEXT_BYTES_INVALID = 201,
    /**< The file names a character set for this text, and some of the text's bytes mean nothing in
     * it. Each of them became the replacement character. */
    QELCAL_NOTE_CHARACTER_SET_UNKNOWN = 203,
    /**< The file names a character set that does not exist, or that this library does not know. */
    QELCAL_NOTE_TEXT_NOT_UTF8 = 204,
    /**< The file says that this text is UTF-8, but its bytes are not. It was read in the character
     * set of the file's other texts, or of Western European Windows. */
    QELCAL_NOTE_CHARACTER_SET_MISSING = 205,
    /**< The file does not say which character set this text is in. Most such texts are in the
     * character set of Western European Windows. */
    QELCAL_NOTE_CONTROL_CHARACTERS_REMOVED = 206,
    /**< The text contained bytes that do not belong in a text, such as NUL or ESC. They are left
     * out. */
    QELCAL_NOTE_BASE64_INVALID = 207,
    /**< The file says that this value is Base64, a code for binary data, but it is not. It may have
     * been cut off or changed on its way. */
    QELCAL_NOTE_CHARACTER_SET_GUESSED = 240,
    /**< The file does not say which character set its texts are in, and they are not UTF-8. All of
     * them together are far more like a language in this set than in any other. */
    QELCAL_NOTE_TEXT_IS_BINARY = 241,
    /**< The file has data such as a picture in a property that should be a text. */
    QELCAL_NOTE_RULE_EMPTY = 301,
    /**< The entry has an empty line for a recurrence rule. It occurs once. */
    QELCAL_NOTE_RULE_IS_ICALENDAR = 302,
    /**< A file of one format contains a rule in the other format's spelling. It was read as what it
     * is. */
    QELCAL_NOTE_RULE_IS_VCALENDAR = 303,
    /**< A file of one format contains a rule in the other format's spelling. It was read as what it
     * is. */
    QELCAL_NOTE_RULE_MONTHLY_BY_DATE = 304,
    /**< The rule says "M" without saying whether it repeats by date or by weekday. By date is what
     * phones mean. */
    QELCAL_NOTE_RULE_WITHOUT_END = 305,
    /**< The rule does not say how often the entry repeats. The format defines two occurrences for
     * that. */
    QELCAL_NOTE_RULE_END_WHOLE_DAY = 306,
    /**< The series ends at midnight although the entry is at another time of day. Phones mean that
     * day to be included. */
    QELCAL_NOTE_RULE_COUNT_FIRST = 307,
    /**< The rule gives two ends, and only one can be written. The earlier one was kept, so no date
     * changes. */
    QELCAL_NOTE_RULE_END_FIRST = 308,
    /**< The rule gives two ends, and only one can be written. The earlier one was kept, so no date
     * changes. */
    QELCAL_NOTE_RULE_WEEK_AS_POSITION = 309,
    /**< The rule names a weekday and the seven days it may fall on, for instance 8 to 14. That is
     * the second one of the month. */
    QELCAL_NOTE_RULE_SEVERAL = 310,
    /**< One line contains several rules. They were read as rules that apply side by side. */
    QELCAL_NOTE_RULE_COUNT_IGNORED = 311,
    /**< The rule gives two ends, and the entry has no start to tell which is earlier. The series
     * may have more dates than were meant. */
    QELCAL_NOTE_RULE_ITEM_UNKNOWN = 312,
    /**< The rule contains something that is not part of any recurrence rule. The rest of the rule
     * was read. */
    QELCAL_NOTE_RULE_VALUE_OUTSIDE = 313,
    /**< The rule names, for instance, a day 39 or a month 13. The rest of the rule was read. */
    QELCAL_NOTE_RULE_PART_UNKNOWN = 314,
    /**< The rule contains a part that iCalendar does not define. The series may have more dates
     * than were meant. */
    QELCAL_NOTE_RULE_POSITIONS_IGNORED = 315,
    /**< The rule asks for, say, the second Monday of a day, a week or a numbered week; only a month
     * or a year can have one. Every such weekday counts. */
    QELCAL_NOTE_RULE_TIMES_IGNORED = 316,
    /**< The rule repeats the entry at several times of a day with different minutes. Only the
     * start's time of day remains. */
    QELCAL_NOTE_RULE_WEEKDAY_UNKNOWN = 317,
    /**< The rule says which week of the month but not which day. That comes from the entry's start,
     * and there is none. */
    QELCAL_NOTE_RULE_TOO_MANY = 318,
    /**< One line contains more rules than any calendar uses. The file is probably damaged. */
    QELCAL_NOTE_RULE_WITHIN_DAY = 319,
    /**< The entry repeats every so many hours, minutes or seconds. That cannot be expressed
     * here. */
    QELCAL_NOTE_RULE_NOT_RECOGNISED = 320,
    /**< The text where a recurrence rule belongs is something else. The entry occurs once. */
    QELCAL_NOTE_RULE_END_INVALID = 321,
    /**< The date on which the series should end does not exist. The entry occurs once. */
    QELCAL_NOTE_RULE_FREQUENCY_UNKNOWN = 322,
    /**< The rule does not say daily, weekly, monthly or yearly. The entry occurs once. */
    QELCAL_NOTE_RULE_FREQUENCY_MISSING = 323,
    /**< The rule does not say daily, weekly, monthly or yearly. The entry occurs once. */
    QELCAL_NOTE_RULE_NOTHING_LEFT = 324,
    /**< Everything that the rule repeats on lies outside any calendar. The entry occurs once. */
    QELCAL_NOTE_RULE_OF_SEVERAL_INVALID = 325,
    /**< One line contains several rules, and one of them is invalid. The others were read. */
    QELCAL_NOTE_RULE_OF_SEVERAL_WITHIN_DAY = 326,
    /**< One line contains several rules, and one of them repeats within a day. The others were
     * read. */
    QELCAL_NOTE_RECORD_NUMBER_LIMIT = 340,
    /**< QelUtility's record of the rule has a smaller interval, or no count. */
    QELCAL_NOTE_RECORD_END_LIMIT = 341,
    /**< The rule ends after the last day of QelUtility's calendar. */
    QELCAL_NOTE_RECORD_TIMES_IGNORED = 342,
    /**< QelUtility's record of the rule has no times of day. */
    QELCAL_NOTE_RECORD_POSITION_LIMIT = 343,
    /**< QelUtility's record of the rule has its first four positions only. */
    QELCAL_NOTE_RECORD_POSITIONS_TOGETHER = 344,
    /**< QelUtility's record of the rule has the positions of its weekdays only. */
    QELCAL_NOTE_RECORD_SEVERAL = 345,
    /**< One record cannot express the rule. Each of them has the whole rule's count. */
    QELCAL_NOTE_RULE_DOTS = 346,
    /**< Some programs separate the parts of a rule by dots or commas. The format has blanks
     * there. */
    QELCAL_NOTE_RULE_END_OTHER_CLOCK = 347,
    /**< The file names no zone that relates the two clocks. The end is taken for the last date of
     * the series where some usual zone makes it that, else for a whole day. */
    QELCAL_NOTE_RULE_COUNT_OF_DATES = 348,
    /**< The rule has several days in each of its periods and a number after #. Some phones count
     * dates by it, others weeks, months or years. It was read as dates. */
    QELCAL_NOTE_RULE_COUNT_OF_PERIODS = 349,
    /**< The rule has several days in each of its periods and a number after #. As you chose, the
     * number counts weeks, months or years. */
    QELCAL_NOTE_EXCEPTION_RULE_AS_DATES = 350,
    /**< The entry has a rule for dates on which it does not take place. Such a rule is no longer
     * part of iCalendar, so its dates are listed one by one. */
    QELCAL_NOTE_EXCEPTION_RULE_CUT = 351,
    /**< The entry has a rule for dates on which it does not take place, which today's calendar
     * programs ignore. Its dates are listed one by one, but there are too many for that. */
    QELCAL_NOTE_RULE_END_BEFORE_TIME = 352,
    /**< The rule ends at a time of day at which the last date has not begun yet. Most phones mean
     * the whole of the last day, but they write midnight or the entry's own time then. */
    QELCAL_NOTE_SERIES_DAYS_OF_UTC = 353,
    /**< The entry is given in UTC and is on another day on the clock of the file's zone. Its rule
     * names the day of UTC. Read on the zone's clock, it would be on the wrong days. */
    QELCAL_NOTE_EXCEPTION_OUTSIDE_SERIES = 354,
    /**< The file takes a day out of the series on which the series does not take place. */
    QELCAL_NOTE_REPLACED_DATE_UNCERTAIN = 355,
    /**< The entry stands for one date of a series and names that date by its day alone. Which time
     * the series has on that day is unknown here, so a calendar program may show both. */
    QELCAL_NOTE_TIME_WITHOUT_START = 356,
    /**< The entry's end has a time of day and its start has none. iCalendar allows only both or
     * neither. */
    QELCAL_NOTE_RULE_NUMBER_LARGE = 357,
    /**< The rule contains a number that is too large to be kept as it is. The series has the same
     * dates with the number that was taken. */
    QELCAL_NOTE_PARAMETERS_LEFT_OUT = 358,
    /**< The line says more about a date, a rule, an identifier or an alarm than calendars have room
     * for. Its value is converted. */
    QELCAL_NOTE_EXCEPTION_TIMES_MISSING = 359,
    /**< The series is at several times of a day, and a rule takes some of them out. The dates at
     * the start's time of day are taken out one by one, the others are not. */
    QELCAL_NOTE_TEXT_NOT_ASCII = 360,
    /**< The file says that this text has nothing but plain letters, digits and signs, but it has
     * other bytes too. Most such texts are in the character set of Western European Windows. */
    QELCAL_NOTE_UTC_OFFSET_INVALID = 401,
    /**< The file gives its distance from UTC in a form that cannot be read. Its times are kept as
     * local times, without a time zone. */
    QELCAL_NOTE_DAYLIGHT_INVALID = 402,
    /**< The file describes a period of daylight saving time in a form that cannot be read. The line
     * is kept, but times in that period may be an hour off. */
    QELCAL_NOTE_DAYLIGHT_OVERLAPS = 403,
    /**< Two lines of the file describe daylight saving time for the same days. The earlier one is
     * used; the other one is kept, but ignored. */
    QELCAL_NOTE_ZONE_WITHOUT_ID = 411,
    /**< The file describes a time zone without a name, so no entry can refer to it. */
    QELCAL_NOTE_ZONE_WITHOUT_OFFSET = 412,
    /**< The file names a time zone but does not say how far it is from UTC. Its times are kept as
     * local times. */
    QELCAL_NOTE_ZONE_PROPERTY_UNKNOWN = 413,
    /**< The description of a time zone contains a property that has no meaning there. */
    QELCAL_NOTE_ZONE_PROPERTY_REPEATED = 414,
    /**< The description of a time zone gives the same fact twice. The first one is used. */
    QELCAL_NOTE_ZONE_COMPONENT_UNKNOWN = 415,
    /**< The description of a time zone contains a part that has no meaning there. */
    QELCAL_NOTE_ZONE_PART_INCOMPLETE = 416,
    /**< One of the zone's changes of offset cannot be read. Times after it may be an hour off. */
    QELCAL_NOTE_ZONE_OF_DATABASE = 440,
    /**< The entry's times name a time zone that the file does not describe, but whose name is
     * known. They are read as times of that zone, as the IANA time zone database describes it.
     * Reported once for each zone. */
    QELCAL_NOTE_ZONE_RECOGNISED = 441,
    /**< The file describes its time zone by offsets and dates. They are those of a zone of the IANA
     * time zone database, whose name calendar programs know, so it is written. */
    QELCAL_NOTE_CHOSEN_ZONE_DIFFERS = 442,
    /**< A zone was chosen for times that have none, but this file describes its own zone, whose
     * clocks show other times. The file's own zone is used. */
    QELCAL_NOTE_DAYLIGHT_CONTINUED = 443,
    /**< The file describes daylight saving time for some years only, and an entry lasts longer. The
     * same weekday of the same week of the month is taken for the other years, as is usual;
     * countries sometimes change that. */
    QELCAL_NOTE_DAYLIGHT_ENDS = 444,
    /**< The file describes daylight saving time for some years only, by dates that follow no rule,
     * and an entry lasts longer. */
    QELCAL_NOTE_UTC_SERIES_SHIFTS = 445,
    /**< The entries repeat at a time of UTC. Where clocks are changed in summer, a meeting at nine
     * o'clock is at ten then, or the other way round. */
    QELCAL_NOTE_DAYLIGHT_LINES_END = 446,
    /**< The entry repeats for a long time, and vCalendar 1.0 describes daylight saving time year by
     * year. Reported once for each calendar. */
    QELCAL_NOTE_ZONE_NAMED_BY_TZ = 447,
    /**< The file gives its time zone by a name that is known. Its times are read as times of that
     * zone, as the IANA time zone database describes it. */
    QELCAL_NOTE_DAYLIGHT_WITHOUT_CHANGE = 448,
    /**< The file describes daylight saving time, but its clocks are the same in summer and in
     * winter. Some programs write the offset of the day of the export as that of the zone. */
    QELCAL_NOTE_ZONE_DIFFERS_FROM_NAME = 449,
    /**< The entry's zone has a name that calendar programs know, but the file gives it other
     * clocks: often those of other years, or without summer time. The description is used here;
     * many programs go by the name. Reported once for each zone. */
    QELCAL_NOTE_ENTRY_COMPONENT_UNKNOWN = 501,
    /**< The file contains something other than events, to-dos and notes, for example free and busy
     * times. Only those three are converted. */
    QELCAL_NOTE_ENTRY_PART_UNKNOWN = 502,
    /**< The entry contains a component that is not an alarm. */
    QELCAL_NOTE_ENTRY_RULE_WITHOUT_START = 503,
    /**< The entry has a recurrence rule or a list of dates, but no start from which they count.
     * They are kept under another name that calendar programs ignore. */
    QELCAL_NOTE_ENTRY_DATE_INVALID = 504,
    /**< One of the entry's dates cannot be read. Its text is kept under another name that calendar
     * programs ignore. */
    QELCAL_NOTE_ENTRY_DATE_TWICE = 505,
    /**< The entry gives the same date twice. The second one is kept under another name that
     * calendar programs ignore. */
    QELCAL_NOTE_ENTRY_DURATION_INVALID = 506,
    /**< How long the entry lasts cannot be read. The text is kept under another name that calendar
     * programs ignore. */
    QELCAL_NOTE_ENTRY_RULES_TOO_MANY = 507,
    /**< The entry has more recurrence rules than are read for one entry. The rest are kept under
     * another name that calendar programs ignore. */
    QELCAL_NOTE_ENTRY_ZONE_UNKNOWN = 508,
    /**< The entry's times name a time zone that the file does not describe. They are read as local
     * times, without a zone. Reported once for each zone. */
    QELCAL_NOTE_ENTRY_DATES_INVALID = 509,
    /**< A list of additional or excepted dates has items that are not dates. */
    QELCAL_NOTE_ENTRY_PERIOD_LENGTHS = 510,
    /**< Some additional dates of the entry have a length of their own. They get the length of the
     * entry. */
    QELCAL_NOTE_ALARM_TRIGGER_INVALID = 511,
    /**< When the alarm should ring cannot be read. */
    QELCAL_NOTE_ALARM_WITHOUT_TRIGGER = 512,
    /**< The alarm does not say when it should ring. */
    QELCAL_NOTE_ALARM_TIME_INVALID = 513,
    /**< When the alarm should ring cannot be read. It is kept under another name that calendar
     * programs ignore. */
    QELCAL_NOTE_ALARM_WITHOUT_TIME = 514,
    /**< The alarm does not say when it should ring. It is kept under another name that calendar
     * programs ignore. */
    QELCAL_NOTE_ALARM_EMPTY = 515,
    /**< Some phones write an empty alarm for an entry without one. */
    QELCAL_NOTE_ATTACHMENT_INVALID = 516,
    /**< A file that is attached to the entry is damaged. Its text is kept under another name that
     * calendar programs ignore. */
    QELCAL_NOTE_ENTRY_CLASS_UNKNOWN = 517,
    /**< Who may see the entry is given in a word that iCalendar lacks. The word is kept under
     * another name that calendar programs ignore. */
    QELCAL_NOTE_ENTRY_PROPERTY_UNKNOWN = 518,
    /**< The entry has a property that neither format knows. It is kept under another name that
     * calendar programs ignore. */
    QELCAL_NOTE_ENTRY_TRANSPARENCY_INVALID = 519,
    /**< Whether the entry blocks its time cannot be read. The text is kept under another name that
     * calendar programs ignore. */
    QELCAL_NOTE_ENTRY_POSITION_INVALID = 520,
    /**< The entry's geographical position cannot be read. Its text is kept under another name that
     * calendar programs ignore. */
    QELCAL_NOTE_EXCEPTION_MEANS_DAY = 540,
    /**< The file names a date of the series by its day alone, by midnight, or on a clock that
     * cannot be compared with the start's. The date on that day is meant. */
    QELCAL_NOTE_EXCEPTION_MATCHES_NOTHING = 541,
    /**< The file takes a date out of the series, but gives a time of day at which the series has no
     * date. */
    QELCAL_NOTE_ADDITIONAL_DATE_OTHER_CLOCK = 542,
    /**< The file names no zone that relates the two clocks. When the date takes place depends on
     * where it is read. */
    QELCAL_NOTE_TODO_SERIES_AT_DUE = 543,
    /**< The to-do repeats, but has a due time alone. Calendar programs count a series from its
     * start, so the to-do gets a start at the same time. */
    QELCAL_NOTE_TODO_DUE_AT_END = 544,
    /**< The to-do has an end, which only events have, and no due time. */
    QELCAL_NOTE_DURATION_WITHOUT_T = 545,
    /**< A length of time needs a "T" before its hours, minutes and seconds. Without it M could only
     * mean months, which no calendar has. */
    QELCAL_NOTE_ENTRY_NUMBER_INVALID = 546,
    /**< The property should be a number within narrow bounds, such as a priority from 0 to 9. */
    QELCAL_NOTE_ALL_DAY_BY_SIGN = 550,
    /**< A phone marks the event as an all-day one and gives its days as times from midnight on. */
    QELCAL_NOTE_ALL_DAY_WITHOUT_TIMES = 551,
    /**< A phone marks the event as an all-day one, but gives times of day too. Such a phone does
     * not show them. */
    QELCAL_NOTE_ALL_DAY_BY_TIMES = 552,
    /**< The old format cannot say that an event is an all-day one, so phones write 0:00 to
     * 24:00. */
    QELCAL_NOTE_ALL_DAY_IN_UTC = 553,
    /**< An all-day event begins at midnight, and the file does not say whose. The nearest midnight
     * is taken. */
    QELCAL_NOTE_POSITION_LATITUDE_FIRST = 554,
    /**< The old format's own text puts the longitude first, but the programs that write positions
     * put the latitude first. Reported once for each file. */
    QELCAL_NOTE_POSITION_LONGITUDE_FIRST = 555,
    /**< A latitude beyond 90 degrees does not exist, so the two numbers stand in the other order.
     * Reported once for each file. */
    QELCAL_NOTE_ENTRY_UID_TWICE = 556,
    /**< The entry has two identifiers. The second one is kept under another name that calendar
     * programs ignore. */
    QELCAL_NOTE_METHOD_WITHOUT_ORGANIZER = 557,
    /**< The calendar says that it is an invitation or an answer to one, which needs an organizer.
     * Calendar programs would refuse it. */
    QELCAL_NOTE_CALENDAR_PROPERTY_LATE = 558,
    /**< What is said about the calendar as a whole has to come before its entries. */
    QELCAL_NOTE_VERSION_MISSING = 559,
    /**< The file does not say in which format it is. Its entries have what only iCalendar has. */
    QELCAL_NOTE_EVENT_STARTS_AT_ITS_END = 601,
    /**< The event has an end but no start, which iCalendar does not allow. The end is written as
     * its start. */
    QELCAL_NOTE_EVENT_BECOMES_TODO = 602,
    /**< The event has neither a start nor an end, which iCalendar does not allow. It is written as
     * a to-do; converted back it is an event again. */
    QELCAL_NOTE_START_AND_END_ON_TWO_CLOCKS = 603,
    /**< The start of the event is a local time without a zone and its end a time in UTC, or the
     * reverse. How long the event lasts depends on where it is read. */
    QELCAL_NOTE_END_BEFORE_START = 604,
    /**< The event ends before it starts, which iCalendar does not allow. The end is kept under
     * another name that calendar programs ignore. */
    QELCAL_NOTE_DUE_BEFORE_START = 605,
    /**< The to-do is due before it starts, which iCalendar does not allow. Its start, or the due
     * date where it repeats, is kept under another name that calendar programs ignore. */
    QELCAL_NOTE_ENTRY_RULE_NOT_WRITABLE = 606,
    /**< One of the entry's recurrence rules cannot be written as an iCalendar rule. */
    QELCAL_NOTE_ENTRY_PROPERTY_TWICE = 607,
    /**< The entry has two values for something that iCalendar allows once. The first one is
     * written; the other is kept under another name that calendar programs ignore. */
    QELCAL_NOTE_ALARM_TIME_UNKNOWN = 608,
    /**< The alarm's time cannot be compared with the time of the entry, or the entry is a note,
     * which has no alarms in iCalendar. It is kept under another name that calendar programs
     * ignore. */
    QELCAL_NOTE_CALENDAR_PROPERTIES_DIFFER = 640,
    /**< Several calendars become one, and each had its own name or the like. Those of the first one
     * are kept. */
    QELCAL_NOTE_ENTRY_TWICE = 641,
    /**< The same entry is in several files, or twice in one. */
    QELCAL_NOTE_UID_SHARED = 642,
    /**< An entry's identifier must be its own. Programs take a second entry of the same identifier
     * for a newer version of the first. */
    QELCAL_NOTE_UID_MADE_DISTINCT = 643,
    /**< Distinct UIDs were asked for, so that calendar programs show both entries. */
    QELCAL_NOTE_RULE_AS_DATES = 701,
    /**< The old format cannot express the entry's recurrence rule. The dates are listed one by one,
     * so that the entry is on the same days. */
    QELCAL_NOTE_RULE_KEPT_FOR_ICALENDAR = 702,
    /**< The old format cannot express the entry's recurrence rule, and it has no end or too many
     * dates to list. The rule is kept under another name and returns when the entry is converted
     * back. */
    QELCAL_NOTE_CANCELLATION_KEPT = 703,
    /**< The entry is cancelled, which the old format cannot express. */
    QELCAL_NOTE_ALARM_ACTION_UNKNOWN = 704,
    /**< The alarm does something other than to show a text, play a sound, send a mail or start a
     * program, and the old format has nothing else. */
    QELCAL_NOTE_ALARM_WITHOUT_ANCHOR = 705,
    /**< The alarm rings some time before or after the entry's start or end, and the entry has
     * neither. */
    QELCAL_NOTE_ALARM_PARTS_LOST = 706,
    /**< The alarm itself is written, but some of its properties have no place in the old format. */
    QELCAL_NOTE_TRANSPARENCY_KEPT = 740,
    /**< Whether the entry blocks its time is given in a word that calendars do not have. */
    QELCAL_NOTE_CALENDAR_SCALE_UNKNOWN = 801,
    /**< The file says that its dates are counted in another calendar than the usual one. */
    QELCAL_NOTE_ZONE_LINE_LATE = 802,
    /**< The file names its time zone after some of its entries. Times of those before it stay
     * local. */
    QELCAL_NOTE_NOT_CALENDAR_PROPERTY = 803,
    /**< A line that belongs to an entry is outside all entries, or there are too many lines about
     * the calendar itself. */
    QELCAL_NOTE_CALENDAR_EMPTY = 804,
    /**< The calendar has no event, to-do or note. */
    QELCAL_NOTE_DAYLIGHT_WITHOUT_ZONE = 805,
    /**< The file describes daylight saving time, but not the time zone that it changes. */
    QELCAL_NOTE_ZONE_LINE_REPLACED = 806,
    /**< The file or the entry has two different TZ lines. A file's last one counts, and an entry's
     * first one. */
    QELCAL_NOTE_ENTRIES_NOT_CHOSEN = 820,
    /**< A choice says which of events, to-dos and notes are read. The file has others too. */
} qelcal_note_code;

/* clang-format on */

#endif
