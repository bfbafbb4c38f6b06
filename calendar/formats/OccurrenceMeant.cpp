#include "calendar/formats/OccurrenceMeant.h"

#include "calendar/base/Days.h"

namespace qel::calendar {

Moment occurrenceMeant(const Entry& entry, const Moment& start, const Moment& date) {
    constexpr int kHalfDay = kDaySeconds / 2;
    Moment own = entry.inClockOf(start, date);
    if (date.isDate) return own;
    if (start.isDate) {
        // Midnight east of Greenwich is on the day before in UTC.
        if (date.clock == Clock::Utc && entry.zone == nullptr && date.second > kHalfDay) ++own.day;
        return own;
    }
    if (own.clock == start.clock && own.second == start.second) return own;
    Moment meant = start;
    meant.day = own.day;
    if (own.second == 0) return meant;
    if (date.second == 0) {
        meant.day = date.day;
        return meant;
    }
    if (own.clock == start.clock) return own;
    if (own.second - start.second > kHalfDay) ++meant.day;
    if (start.second - own.second > kHalfDay) --meant.day;
    return meant;
}

}  // namespace qel::calendar
