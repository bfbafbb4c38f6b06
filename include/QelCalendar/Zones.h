/// @file
/// The time zones of QelUtility's table, the computer's own and those of the IANA time zone
/// database, both ways between local time and UTC. Times are seconds since 1 January 1900 of the
/// years 1900 to 2499. Values; any thread.
#ifndef QELCALENDAR_ZONES_H
#define QELCALENDAR_ZONES_H

#include <cstdint>
#include <string>
#include <vector>

#include "QelCalendar/Error.h"

namespace qelcal {

/// What a wall-clock time is in UTC.
struct UtcTime {
    std::int64_t utc;      ///< of a repeated time the first, of a skipped one as if clocks ran on
    qelcal_occurs occurs;  ///< once, skipped or repeated
};

/// A zone by its number.
class Zone {
  public:
    /// The zone of that name; see qelcal_zone_find. Throws Error when there is none, or several.
    static Zone find(const std::string& name) {
        int number = 0;
        detail::check(qelcal_zone_find(name.c_str(), &number));
        return Zone(number);
    }
    /// All zones of the table, by number.
    static std::vector<Zone> all() {
        std::vector<Zone> zones;
        const std::size_t count = qelcal_zone_count();
        if (count == 0) throw std::bad_alloc();
        for (std::size_t i = 1; i <= count; ++i) zones.push_back(Zone(static_cast<int>(i)));
        return zones;
    }
    /// All zones of the database, in the order of the alphabet.
    static std::vector<Zone> world() {
        std::vector<Zone> zones;
        for (std::size_t i = 0; i < qelcal_zone_data_count(); ++i)
            zones.push_back(Zone(QELCAL_FIRST_WORLD_ZONE + static_cast<int>(i)));
        return zones;
    }
    /// The database's version: "2025b".
    static std::string worldVersion() { return qelcal_zone_data_version(); }
    /// The computer's own zone.
    static Zone local() { return Zone(0); }

    /// 1 to the number of zones of the table, 0 for the computer's own, from
    /// QELCAL_FIRST_WORLD_ZONE on for those of the database.
    int number() const noexcept { return number_; }
    /// "Europe/Berlin"
    std::string name() const { return qelcal_zone_name(number_); }
    /// True when the zone's changes in `year` are known.
    bool knows(int year) const { return qelcal_zone_knows(number_, year) != 0; }
    /// UTC of a wall-clock time. Throws Error outside the years 1900 to 2499.
    UtcTime toUtc(std::int64_t local) const {
        UtcTime time{};
        int occurs = 0;
        detail::check(qelcal_zone_to_utc(number_, local, &time.utc, &occurs));
        time.occurs = static_cast<qelcal_occurs>(occurs);
        return time;
    }
    /// Local time minus UTC at a moment of UTC, in seconds. Throws Error outside these years.
    std::int64_t offset(std::int64_t utc) const {
        std::int64_t seconds = 0;
        detail::check(qelcal_zone_offset(number_, utc, &seconds));
        return seconds;
    }
    /// The changes of one year, ascending.
    std::vector<qelcal_offset_change> changes(int year) const {
        std::size_t count = 0;
        detail::check(qelcal_zone_changes(number_, year, nullptr, 0, &count));
        std::vector<qelcal_offset_change> found(count);
        if (count != 0)
            detail::check(qelcal_zone_changes(number_, year, found.data(), count, &count));
        return found;
    }

  private:
    explicit Zone(int number) : number_(number) {}
    int number_;
};

}  // namespace qelcal

#endif
