// The occurrence that a date in a file means: EXDATE and RECURRENCE-ID name one, but not always in
// the form of the series' start. Any thread.
#ifndef QEL_CALENDAR_FORMATS_OCCURRENCEMEANT_H
#define QEL_CALENDAR_FORMATS_OCCURRENCEMEANT_H

#include "calendar/base/Moment.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

// `date` in the form of a series that starts at `start`: a date alone and a midnight are that day;
// a moment on another clock that the entry's zone cannot compare with the start's is the nearest
// time of day of the start. Any other moment stays as it is, on the start's clock.
[[nodiscard]] Moment occurrenceMeant(const Entry& entry, const Moment& start, const Moment& date);

}  // namespace qel::calendar

#endif
