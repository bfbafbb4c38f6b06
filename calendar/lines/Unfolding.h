// Undoes the folds of a line. Any thread.
#ifndef QEL_CALENDAR_LINES_UNFOLDING_H
#define QEL_CALENDAR_LINES_UNFOLDING_H

#include "calendar/lines/LineReader.h"

namespace qel::calendar {

// How a fold is undone. iCalendar (RFC 5545 section 3.1) takes the blank away that begins the next
// line. vCalendar 1.0 keeps it, as RFC 822 does. Many writers of either format fold in the other
// way, and their lines give themselves away: all of one width, or just as wide as their words
// allow.
enum class FoldStyle { ICalendar, VCalendar10 };

// Undoes the folds of the head always as iCalendar does, those of the value by `style`. True when
// they were kept as the blanks of a text, against iCalendar.
[[nodiscard]] bool unfold(RawLine& raw, FoldStyle style);

}  // namespace qel::calendar

#endif
