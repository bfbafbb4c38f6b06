// An entry as a person reads it: what it is, when it is and how it recurs, in words and as
// days. Plain data; any thread.
#ifndef QEL_CALENDAR_REPORT_ENTRYFACTS_H
#define QEL_CALENDAR_REPORT_ENTRYFACTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/converter/ConversionObserver.h"
#include "calendar/entries/Entry.h"
#include "calendar/entries/EntryDates.h"

namespace qel::calendar {

// Months of an entry that are shown: those in a row on a wide screen.
inline constexpr std::size_t kMostMonths = 5;

struct RuleFacts {
    bool exclude = false;
    std::string sentence;                // "every 2 weeks on Monday, 10 times"
    std::vector<std::string> vCalendar;  // empty where the format cannot hold the rule
    std::string whyNot;                  // then: the reason
    std::string iCalendar;
};

struct EntryFacts {
    std::string kind;   // "Event"
    std::string title;  // "" when it has none
    std::string when;   // "Wednesday, 15 June 2005, 08:30 to 09:30, Europe/Berlin"
    std::vector<RuleFacts> rules;
    std::size_t furtherDates = 0;  // RDATE
    std::size_t exclusions = 0;    // EXDATE
    std::size_t alarms = 0;
    EntryDays days;
};

// A rule's texts are those of the entry's lines in the file and in the result, where these have one
// rule each.
[[nodiscard]] EntryFacts entryFacts(const ConvertedEntry& converted);
// Without rules and days, for a list of many.
[[nodiscard]] EntryFacts entryHeading(const Entry& entry);

}  // namespace qel::calendar

#endif
