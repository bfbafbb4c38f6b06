// What the readers of the rule forms share; for them alone.
#ifndef QEL_CALENDAR_RULES_RULEPARTS_H
#define QEL_CALENDAR_RULES_RULEPARTS_H

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/rules/RuleText.h"

namespace qel::calendar {

inline constexpr std::array<std::string_view, 8> kDayCodes = {"",   "SU", "MO", "TU",
                                                              "WE", "TH", "FR", "SA"};

// 1 Sunday .. 7 Saturday for a two-letter code in either case, else 0.
[[nodiscard]] int weekdayOfCode(std::string_view code);

// "1,15,-1"
[[nodiscard]] std::string joined(const std::vector<int>& numbers, char separator = ',');

template <class Item>
void addOnce(std::vector<Item>& list, const Item& item) {
    if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}

// Items of a rule that were passed over; one note for all of them, however many there are.
class Strays {
  public:
    void add(std::string_view item) {
        if (count_++ == 0) first_ = std::string(item);
    }
    // "WHAT "39"", "WHAT "39" and 2 more".
    void report(std::vector<Note>& notes, Severity severity, std::string_view what) const;
    [[nodiscard]] bool any() const { return count_ != 0; }

  private:
    std::size_t count_ = 0;
    std::string first_;
};

// The end of a rule as it is met, in any order and number.
struct RuleEnd {
    std::optional<int> count;  // 0: without end
    std::string until;         // as Rule::until, "" when none was given
};

// Reads an end date. False when it names no date.
[[nodiscard]] bool readUntil(std::string_view text, RuleEnd& end);

// Puts an end into `rule`: of a count and a date the earlier one where the start is known, else the
// date. An end date that is a day only becomes the last second of that day in a series with a time
// of day; `midnightIsDay` does the same for an end at midnight of a series that is not at midnight.
void applyEnd(const RuleEnd& end, const std::optional<RuleStart>& start, bool midnightIsDay,
              Rule& rule, std::vector<Note>& notes);

// The readers of the two forms, for readRules.
void readVCalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading);
void readICalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading);
void readPositionalRule(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading);

}  // namespace qel::calendar

#endif
