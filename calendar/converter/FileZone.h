// The zone that TZ and DAYLIGHT of a vCalendar 1.0 file describe, and the one that its entries get.
// One thread.
#ifndef QEL_CALENDAR_CONVERTER_FILEZONE_H
#define QEL_CALENDAR_CONVERTER_FILEZONE_H

#include <cstddef>
#include <memory>
#include <string>

#include "calendar/base/Notes.h"
#include "calendar/entries/Entry.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/zones/ZoneNaming.h"

namespace qel::calendar {

class FileZone {
  public:
    FileZone() = default;
    // `made` comes from the lines, or is null; `line` is the number of TZ; `name` is what the file
    // calls it, or empty; `chosen` is what a person chose for times without a zone, or null.
    FileZone(ZonePtr made, std::size_t line, const std::string& name, const ZonePtr& chosen,
             ZoneNamings& namings, WorldZones& world);

    // For reading the entries.
    [[nodiscard]] const ZonePtr& zone() const { return zone_; }
    // Gives an entry of this zone the zone of the database where that is meant. What is assumed is
    // reported once.
    void settle(Entry& entry, const NoteSink& sink);

  private:
    void reportYears(const Entry& entry, const Years& years, const NoteSink& sink);

    ZonePtr zone_;
    std::size_t line_ = 0;
    ZonePtr chosen_;
    std::shared_ptr<const ZoneNaming> naming_;
    bool nameReported_ = false;
    bool chosenReported_ = false;
    bool yearsReported_ = false;
};

}  // namespace qel::calendar

#endif
