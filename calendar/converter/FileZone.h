// The zone that TZ and DAYLIGHT of a vCalendar 1.0 file describe, and the one that its entries get.
// One thread, but for what is constant.
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
    struct Settled {
        const ZonePtr* named = nullptr;  // the zone of the database that is meant, as long as this
        bool kept = false;               // the entry keeps the zone of the lines,
        Years years{};                   // and has dates in these years
    };
    // What zone an entry of this zone gets.
    [[nodiscard]] Settled settle(const Entry& entry) const;
    // True when settle() does the same with both.
    [[nodiscard]] bool isLike(const FileZone& other) const {
        return zone_ == other.zone_ && naming_ == other.naming_;
    }
    // Reports what was assumed about it, once.
    void report(const Settled& settled, const Entry& entry, const NoteSink& sink);

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
