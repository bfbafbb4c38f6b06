// What a zone's clock shows, in the terms of the interface: times are seconds since 1 January 1900.
// Any thread.
#ifndef QEL_CALENDAR_ZONES_ZONECLOCK_H
#define QEL_CALENDAR_ZONES_ZONECLOCK_H

#include <cstdint>
#include <vector>

#include "calendar/zones/TableZone.h"
#include "calendar/zones/Zone.h"

namespace qel::calendar {

// The changes of offset in a year of the zone's clock, in the order of time.
[[nodiscard]] std::vector<OffsetChange> changesIn(const Zone& zone, int year);
[[nodiscard]] UtcTime utcOf(const Zone& zone, std::int64_t local);

}  // namespace qel::calendar

#endif
