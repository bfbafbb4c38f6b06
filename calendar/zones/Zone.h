// A time zone: a list of changes of its offset. Moments move between its wall clock and UTC through
// it. Immutable; any thread.
#ifndef QEL_CALENDAR_ZONES_ZONE_H
#define QEL_CALENDAR_ZONES_ZONE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "calendar/base/Moment.h"

namespace qel::calendar {

struct ZoneChange {
    std::int64_t utc;  // seconds since 1 January 1900
    int offset;        // seconds east of UTC from then on
    bool daylight;
    std::string name;
};

// A STANDARD or DAYLIGHT part of a VTIMEZONE.
struct ZoneObservance {
    bool daylight = false;
    std::int64_t start = 0;  // on the clock before the change, seconds since 1 January 1900
    int from = 0;            // seconds east of UTC
    int to = 0;
    std::string name;
    std::string rule;                   // an RRULE value; "" when it happens once
    std::vector<std::int64_t> dates{};  // RDATE: further starts
};

// A line without parameters: "TZ" and "+01".
using ZoneLine = std::pair<std::string, std::string>;

// Of the first DAYLIGHT line its begin and of the last one its end, in UTC.
struct DaylightLines {
    std::int64_t begin;
    std::int64_t end;
};

struct ZoneParts {
    std::string id;      // the TZID
    int baseOffset = 0;  // before the first change
    std::string baseName{};
    std::vector<ZoneChange> changes;          // ascending
    std::vector<ZoneLine> ownLines;           // TZ and DAYLIGHT as they were read
    std::optional<DaylightLines> daylight{};  // where the zone comes from such lines
    // Other years than those of the lines follow a rule that they show.
    bool continued = false;
    std::vector<std::string> content;  // VTIMEZONE as it was read, not folded
    // What a VTIMEZONE is written from when none was read; empty for a zone that is described from
    // its changes.
    std::vector<ZoneObservance> observances;
};

class Zone {
  public:
    explicit Zone(ZoneParts parts) : parts_(std::move(parts)) {}

    [[nodiscard]] const std::string& id() const { return parts_.id; }
    [[nodiscard]] const ZoneParts& parts() const { return parts_; }

    // Seconds east of UTC at a moment of UTC, or of the zone's own clock (both in seconds since 1
    // January 1900). A wall-clock time that comes twice is the first of the two; one that is
    // skipped counts by the offset before the change (RFC 5545 section 3.3.5).
    [[nodiscard]] int offsetAtUtc(std::int64_t utc) const;
    [[nodiscard]] int offsetAtLocal(std::int64_t local) const;

    // REQUIRES: a moment of the clock named. A date stays as it is.
    [[nodiscard]] Moment toUtc(const Moment& zoned) const;
    [[nodiscard]] Moment toLocal(const Moment& utc) const;

    // The memory that it takes, roughly, in bytes.
    [[nodiscard]] std::size_t cost() const;

  private:
    ZoneParts parts_;
};

using ZonePtr = std::shared_ptr<const Zone>;

// True when the zone's offset in the years before `since`, from `first` on, is that of its first
// moment: what a description from there on says about them.
[[nodiscard]] bool sameBefore(const Zone& zone, int first, int since);

// True when the clocks of the two show the same from `begin` to just before `end`, moments of UTC.
[[nodiscard]] bool agree(const Zone& one, const Zone& other, std::int64_t begin, std::int64_t end);

}  // namespace qel::calendar

#endif
