// Which zone of the IANA database is meant by the TZ and DAYLIGHT lines of a phone's file. Calendar
// programs know zones by those names, and make little of a name that is made up. One thread.
#ifndef QEL_CALENDAR_ZONES_ZONENAMING_H
#define QEL_CALENDAR_ZONES_ZONENAMING_H

#include <memory>
#include <vector>

#include "calendar/zones/WorldZones.h"
#include "calendar/zones/Zone.h"

namespace qel::calendar {

class ZoneNaming {
  public:
    // `wanted` is the zone that a person or the file itself names; it may be null.
    // REQUIRES: `made` comes from zoneFromVCalendar.
    ZoneNaming(ZonePtr made, ZonePtr wanted, WorldZones& world);

    [[nodiscard]] const ZonePtr& made() const { return made_; }
    [[nodiscard]] const ZonePtr& wanted() const { return wanted_; }

    // The zone for an entry of the years `first` to `last`. The wanted one, where the lines agree
    // with it; without lines for daylight time, where its clocks agree in those years. Else, where
    // nothing is wanted, the first of the zones that Windows has whose clocks agree with the lines
    // and in those years, as far as the lines show a rule for them; TZ alone means no place. Else
    // the one that was made.
    [[nodiscard]] const ZonePtr& zoneFor(int first, int last) const;
    // The same for an entry from `first` on without regard to its end; null where that matters.
    [[nodiscard]] const ZonePtr* zoneFrom(int first) const {
        return first >= firstSteadyYear_ ? &candidates_.front() : nullptr;
    }

  private:
    static constexpr int kAlways = -10000;
    static constexpr int kNever = 10000;

    void findCandidates(WorldZones& world);
    [[nodiscard]] bool agreesWithLines(const Zone& zone) const;

    ZonePtr made_;
    ZonePtr wanted_;
    bool alwaysWanted_ = false;
    std::vector<ZonePtr> candidates_;
    // From then on the first candidate agrees in all years that the lines say something about.
    int firstSteadyYear_ = kNever;
};

// Keeps what it found last: to look through all zones takes longer than to convert an entry, and a
// phone that writes a calendar for each entry writes the same lines in all of them. One thread.
class ZoneNamings {
  public:
    // As the constructor of ZoneNaming takes them.
    std::shared_ptr<const ZoneNaming> of(ZonePtr made, ZonePtr wanted, WorldZones& world);

  private:
    std::shared_ptr<const ZoneNaming> last_;
};

}  // namespace qel::calendar

#endif
