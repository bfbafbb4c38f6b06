// Time zones as the two formats describe them: TZ and DAYLIGHT lines in vCalendar 1.0, VTIMEZONE in
// iCalendar. A zone is a list of changes of its offset; moments move between its wall clock and UTC
// through it. Immutable once it is built; any thread.
#ifndef QEL_CALENDAR_ZONES_ZONE_H
#define QEL_CALENDAR_ZONES_ZONE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/base/Moment.h"
#include "calendar/base/Notes.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/text/ContentText.h"

namespace qel::calendar {

class Zone;
using ZonePtr = std::shared_ptr<const Zone>;

class Zone {
  public:
    // From the zone's TZ value and DAYLIGHT values, each with its line. Null without a usable TZ.
    // A DAYLIGHT line that makes no sense is told and passed over. Two or more lines that follow
    // one yearly rule stand for that rule in all years; any others for themselves alone.
    // Local times of change are read on the clock as it goes before the change.
    static ZonePtr fromVCalendar(const ContentLine& tz, const std::vector<ContentLine>& daylight,
                                 const NoteSink& sink);

    // From a VTIMEZONE. Null when it has no TZID or no observance with an offset.
    static ZonePtr fromVTimezone(const Component& component, const NoteSink& sink);

    // The TZID.
    [[nodiscard]] const std::string& id() const { return id_; }

    // Seconds east of UTC at a moment of UTC, or of the zone's own clock (both in seconds since 1
    // January 1900). A wall-clock time that comes twice is the first of the two; one that is
    // skipped counts by the offset before the change (RFC 5545 section 3.3.5).
    [[nodiscard]] int offsetAtUtc(std::int64_t utc) const;
    [[nodiscard]] int offsetAtLocal(std::int64_t local) const;

    // REQUIRES: a moment of the clock named. A date stays as it is.
    [[nodiscard]] Moment toUtc(const Moment& zoned) const;
    [[nodiscard]] Moment toLocal(const Moment& utc) const;

    // VTIMEZONE as content lines, BEGIN and END included, not folded.
    [[nodiscard]] const std::vector<std::string>& vTimezone() const { return vTimezone_; }

    // TZ and DAYLIGHT for the years from..to: names and values. The lines that a zone came from
    // stand for all years.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> vCalendarLines(int from,
                                                                                  int to) const;
    // Bytes that it takes, roughly.
    [[nodiscard]] std::size_t cost() const;
    // True when vCalendarLines is the same for all years.
    [[nodiscard]] bool sameInAllYears() const { return !ownLines_.empty() || changes_.empty(); }

  private:
    friend class VCalendarZone;
    friend class VTimezoneZone;

    struct Change {
        std::int64_t utc;
        int offset;  // from then on
        bool daylight;
        std::string name;
    };

    std::string id_;
    int baseOffset_ = 0;           // before the first change
    std::vector<Change> changes_;  // ascending
    std::vector<std::string> vTimezone_;
    std::vector<std::pair<std::string, std::string>> ownLines_;  // as they were read
};

}  // namespace qel::calendar

#endif
