// Rule texts as they stand in real calendar files, put in order before the library reads them and
// after it has written them. Three forms are known: vCalendar 1.0, iCalendar (RFC 2445 and 5545)
// and the library's positional form. No input is too long or too odd; time is linear in the text.
// Any thread.
#ifndef QEL_CALENDAR_RULES_RULETEXT_H
#define QEL_CALENDAR_RULES_RULETEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QelUtility/RRule.h"
#include "calendar/base/Notes.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar {

enum class RuleForm { VCalendar10, ICalendar, Positional };

// "FREQ=..." anywhere is iCalendar, a text with ";" positional, anything else vCalendar 1.0.
[[nodiscard]] RuleForm guessRuleForm(std::string_view text);

struct RuleReading {
    std::vector<Rule> rules;  // in the order of the text; several where it holds several
    std::vector<Note> notes;  // how the text was understood, and what of it was not
    // False when a part of the text says when the series recurs and was not understood: a note of
    // at least a warning names it, and without any rule the text itself is what is left to keep.
    bool complete = true;
};

// Reads a rule text of any degree of tidiness. `start` fills in what a rule leaves to its entry's
// start: the day of "MD1 #0", the month of "YM1 #0", the weekday of "MP1 #3". It also decides
// between a count and an end date that are both given: the earlier one is kept. Without it the gaps
// stay (the lists are empty) and the end date wins.
//
// vCalendar 1.0: blanks in any number, either case, positions with or without sign, several of them
// before a list of days ("MP2 1+ SU 1- SU"), "LD", "3-", "-3", weekdays written out, times of day,
// several rules in one text, rules without an end token (twice, as vCalendar 1.0 has it), iCalendar
// rules. "M1 #0" is a monthly rule. A date as an end token that is midnight, or no more than a
// date, is a whole day where the series has another time of day: "W1 MO 20050630T000000" from 10:00
// gives UNTIL=20050630T235959. An empty text gives no rule and a note.
//
// iCalendar: a weekday among seven days of the month is the n-th one: "BYDAY=TU;BYMONTHDAY=8,9,10,
// 11,12,13,14" gives BYDAY=2TU, with -7 to -1 BYDAY=-1TU.
[[nodiscard]] RuleReading readRules(std::string_view text, RuleForm form,
                                    const std::optional<RuleStart>& start);

// One rule as the library's record holds it. A rule that no single record can hold becomes several:
// together they are the rule.
struct RulePiece {
    _rruleRepeat record;
    // The record's positions belong to its one weekday ("2TU"); false: they select from each period
    // (BYSETPOS).
    bool positionsAreOrdinals = false;
};

// The records of `rule`, read by the library from the rule's positional texts. Empty when the
// library refuses. BYHOUR, BYMINUTE, BYSECOND and an interval or count beyond 32767 do not fit a
// record; `notes` says so (it may be null).
[[nodiscard]] std::vector<RulePiece> rulePieces(const Rule& rule, std::vector<Note>* notes);

// The texts that rulePieces hands to the library, one for each piece, e.g.
// "WEEKLY;;10;2;;;;MO,WE;;;;;;;".
[[nodiscard]] std::vector<std::string> positionalTexts(const Rule& rule);

// An RRULE value (RFC 5545 section 3.3.10), written by the library piece by piece and joined:
// BYDAY with its ordinals, BYHOUR and the like, WKST where it matters. UNTIL is written as `rule`
// holds it. "FREQ=MONTHLY;COUNT=10;INTERVAL=2;BYDAY=1SU,-1SU".
[[nodiscard]] std::string iCalendarText(const Rule& rule);

struct VCalendarRule {
    // One text, or several where the format needs several ("MD1 13 #0"). Empty when it has none.
    std::vector<std::string> texts;
    // When texts is empty: what the format lacks. When it is not: empty.
    std::string reason;
};

// vCalendar 1.0 rule texts, written by the library and mended. The texts, read again with the same
// start, give the same occurrences: that is checked, and a rule for which it fails counts as one
// that the format cannot hold. "MP2 1+ SU 1- SU #10".
[[nodiscard]] VCalendarRule vCalendarTexts(const Rule& rule, const std::optional<RuleStart>& start);

}  // namespace qel::calendar

#endif
