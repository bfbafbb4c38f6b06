// The zones of the IANA database, which is compiled into the library: the same on every computer.
#ifndef QEL_CALENDAR_ZONES_WORLDZONES_H
#define QEL_CALENDAR_ZONES_WORLDZONES_H

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "calendar/zones/Zone.h"

namespace qel::calendar {

// The database's version: "2025b". Any thread, as the functions below.
[[nodiscard]] std::string_view worldZoneVersion();
[[nodiscard]] std::size_t worldZoneCount();
// REQUIRES: a number below the count. In the order of the alphabet.
[[nodiscard]] std::string_view worldZoneName(std::size_t number);

// By its name without regard to case: "europe/berlin".
[[nodiscard]] std::optional<std::size_t> findWorldZone(std::string_view name);
// The zone that a TZID means which the file does not describe: an IANA name, also after a prefix as
// in "/mozilla.org/20050126_1/Europe/Berlin", with "-" for "/" or with blanks; a name of Windows
// ("W. Europe Standard Time", also with "Daylight"); or an offset of whole hours.
[[nodiscard]] std::optional<std::size_t> worldZoneMeant(std::string_view tzid);
// "GMT+0100", "UTC-5", "+01:00": seconds east of UTC, as a TZ line or a TZID has them instead of a
// zone's name. The sign is required.
[[nodiscard]] std::optional<int> offsetNamed(std::string_view text);
// Why there is no zone of that name, with names that resemble it: `there is no time zone "berlin";
// similar names: Europe/Berlin`.
[[nodiscard]] std::string noWorldZone(std::string_view name);

// Seconds east of UTC, without building the zone.
[[nodiscard]] int worldZoneOffset(std::size_t number, std::int64_t utc);
// Its changes of the years 1900 to 2499.
[[nodiscard]] ZonePtr makeWorldZone(std::size_t number);
// The same, built when it is first asked for and kept as long as the library is there.
[[nodiscard]] ZonePtr worldZone(std::size_t number);

// True for the zone that is UTC itself, by whatever name.
[[nodiscard]] bool isUtc(const Zone& zone);

// The zones that one caller has asked for, without a lock from the second time on. One thread.
class WorldZones {
  public:
    // REQUIRES: a number below the count.
    [[nodiscard]] const ZonePtr& zone(std::size_t number) {
        ZonePtr& place = known_[number];
        if (place == nullptr) place = worldZone(number);
        return place;
    }

  private:
    std::map<std::size_t, ZonePtr> known_;
};

// Zones of Windows, each with the zone that most of its people live in (CLDR).
struct WindowsZone {
    const char* windows;
    const char* world;
};
[[nodiscard]] std::span<const WindowsZone> windowsZones();

}  // namespace qel::calendar

#endif
