// The parts of a VTIMEZONE from a zone's changes. Any thread.
#ifndef QEL_CALENDAR_ZONES_ZONEOBSERVANCES_H
#define QEL_CALENDAR_ZONES_ZONEOBSERVANCES_H

#include <vector>

#include "calendar/zones/Zone.h"

namespace qel::calendar {

// From 1 January of `year` on: changes that follow one yearly rule for some years are one
// observance with that rule, without an end where it is still followed in 2100. Changes without a
// rule are given until then.
[[nodiscard]] std::vector<ZoneObservance> observancesSince(const Zone& zone, int year);

}  // namespace qel::calendar

#endif
