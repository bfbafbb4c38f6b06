// Reads rule texts as real calendar files have them, of any degree of tidiness, in three forms:
// vCalendar 1.0, iCalendar (RFC 2445 and 5545) and QelUtility's positional form. Accepts any input;
// time is linear in the text's length. Any thread.
#ifndef QEL_CALENDAR_RULES_RULEREADER_H
#define QEL_CALENDAR_RULES_RULEREADER_H

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "calendar/base/Choices.h"
#include "calendar/base/Notes.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar {

enum class RuleForm { VCalendar10, ICalendar, Positional };

// "FREQ=..." anywhere means iCalendar, a text with ";" positional, anything else vCalendar 1.0.
[[nodiscard]] RuleForm guessRuleForm(std::string_view text);

// More rules than this in one text are ignored.
inline constexpr std::size_t kMostRulesInText = 50;

struct RuleReading {
    std::vector<Rule> rules;  // in the order of the text, which may contain several
    std::vector<Note> notes;  // how the text was understood, and which of its parts were not
    // False when a part that affects the dates was not understood. A note of at least a warning
    // names it. With no rule at all, the text itself is all there is to keep.
    bool complete = true;
};

// Reads a rule text. `start` supplies what a rule takes from its entry's start: the day of
// "MD1 #0", the month of "YM1 #0", the weekday of "MP1 #3". It also decides between a count and an
// end date when both are given: the earlier one is kept. Without it such parts stay empty, and the
// end date wins.
//
// vCalendar 1.0: any number of blanks, upper and lower case, positions with or without a sign,
// several of them before a list of days ("MP2 1+ SU 1- SU"), "LD", "3-", "-3", weekdays written
// out, times of day, several rules in one text, rules without an end (which vCalendar 1.0 defines
// as two occurrences), and iCalendar rules. "M1 #0" is a monthly rule. An end date at midnight, or
// without a time, means that whole day when the series has another time of day: "W1 MO
// 20050630T000000" from 10:00 gives UNTIL=20050630T235959. An empty text gives no rule and a note.
//
// iCalendar: a weekday within seven days of the month is the n-th one: "BYDAY=TU;BYMONTHDAY=8,9,10,
// 11,12,13,14" gives BYDAY=2TU, with -7 to -1 BYDAY=-1TU.
//
// `countMeans` is for "#5" of a vCalendar 1.0 rule with several days in a period, where the two
// readings differ; a note says which was taken and how the other one ends.
[[nodiscard]] RuleReading readRules(std::string_view text, RuleForm form,
                                    const std::optional<RuleStart>& start,
                                    CountMeans countMeans = CountMeans::Dates);

}  // namespace qel::calendar

#endif
