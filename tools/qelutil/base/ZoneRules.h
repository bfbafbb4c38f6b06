// The changes of a zone's offset, years with the same rule together. Values; any thread.
#ifndef QELUTIL_BASE_ZONERULES_H
#define QELUTIL_BASE_ZONERULES_H

#include <cstdint>
#include <string>
#include <vector>

#include "QelCalendar/Zones.h"

namespace qel::cli {

struct YearlyChange {
    std::string when;  // "last Sunday of March, 02:00", in a single year "6 April, 02:00"
    std::int64_t before = 0;
    std::int64_t after = 0;
};

struct ZoneRule {
    int first = 0;  // year
    int last = 0;
    bool endless = false;
    std::vector<YearlyChange> changes;
};

// Ascending; years without a change are in none.
[[nodiscard]] std::vector<ZoneRule> zoneRules(const qelcal::Zone& zone);

}  // namespace qel::cli

#endif
