// The dates of an entry: its start, those of its rules and lists, and what is taken out of them
// again. Any thread.
#ifndef QEL_CALENDAR_ENTRIES_ENTRYDATES_H
#define QEL_CALENDAR_ENTRIES_ENTRYDATES_H

#include <cstddef>
#include <optional>
#include <vector>

#include "calendar/base/MarkedDays.h"
#include "calendar/base/Moment.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

// Which occurrences are wanted. Times on another clock than the start's are moved to it where the
// entry's zone allows that; a date means its whole day.
struct OccurrenceRange {
    std::optional<Moment> since;    // missing: from the first one on
    std::optional<Moment> through;  // missing: 31 December 2499
    std::size_t most = 0;           // 0: no limit
};

// The occurrences in `range`, ascending, each once, on the start's clock, without excluded ones; of
// an entry that does not recur, its start. Empty for an entry without a start. Occurrences of rules
// are at the start's time of day.
[[nodiscard]] std::vector<Moment> occurrences(const Entry& entry, const OccurrenceRange& range);

struct Exclusions {
    std::vector<Moment> dates;  // ascending, at most `most`
    bool more = false;          // after `through` there are others
    int through = 0;            // a code date
};

// The dates of the entry that its rules of exceptions (EXRULE) take out. REQUIRES: start.
[[nodiscard]] Exclusions excludedByRules(const Entry& entry, std::size_t most);

// True for a rule of exceptions that takes nothing out: it recurs at times of day at which the
// entry has no occurrence. Not looked for where thousands of dates are added. REQUIRES: start.
[[nodiscard]] bool isAtOtherTimes(const Entry& entry, const Rule& exception);

struct EntryDays {
    std::vector<MarkedDay> days;  // ascending, each once
    bool more = false;            // the series goes on after them
};

// The first `most` days that the entry's occurrences take up, at most a month of each. A day is
// marked as excluded when an occurrence on it is taken out, even where a list adds another one at
// another time. Without a start, the day on which it is due. REQUIRES: most > 0.
[[nodiscard]] EntryDays markedDays(const Entry& entry, std::size_t most);

// The end of the first occurrence on the start's clock: of an all-day entry its last day. Nothing
// when it does not end after its start. REQUIRES: start.
[[nodiscard]] std::optional<Moment> lastMoment(const Entry& entry);

// The years of an entry's dates. The last one of a series without an end is `endless`; of a long
// one it may be earlier than the true one. 2000 for an entry without any date.
struct Years {
    int first;
    int last;
};
[[nodiscard]] int firstYearOf(const Entry& entry);
[[nodiscard]] Years yearsOf(const Entry& entry, int endless);

}  // namespace qel::calendar

#endif
