// The zones of the library's table beside the world's clocks. Any thread.
#ifndef QELUTIL_BASE_REALZONE_H
#define QELUTIL_BASE_REALZONE_H

#include <optional>

#include "QelCalendar/Zones.h"

namespace qel::cli {

// The zone of the IANA database at the first place that a zone of the table names; nothing for
// other zones.
[[nodiscard]] std::optional<qelcal::Zone> placeOf(const qelcal::Zone& zone);

// The table keeps the rules of one time for all years. The zone of the IANA database that has the
// clocks of its first place, when these had other offsets in that year; nothing for other zones.
[[nodiscard]] std::optional<qelcal::Zone> realZoneOf(const qelcal::Zone& zone, int year);

}  // namespace qel::cli

#endif
