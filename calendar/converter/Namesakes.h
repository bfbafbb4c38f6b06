// Zones that a file describes, beside those of the database whose names they have. Calendar
// programs that know the name do not look at the description. One thread.
#ifndef QEL_CALENDAR_CONVERTER_NAMESAKES_H
#define QEL_CALENDAR_CONVERTER_NAMESAKES_H

#include <map>
#include <optional>

#include "calendar/entries/Entry.h"
#include "calendar/zones/WorldZones.h"

namespace qel::calendar {

class Namesakes {
  public:
    // The first date of the entry that is at another time in the zone of that name; once for each
    // zone.
    [[nodiscard]] std::optional<Moment> differs(const Entry& entry, WorldZones& world);

  private:
    // Null for those that need no further look.
    std::map<ZonePtr, ZonePtr> known_;
};

}  // namespace qel::calendar

#endif
