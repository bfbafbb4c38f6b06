#include "base/RealZone.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "base/Moment.h"

namespace qel::cli {

namespace {

// By the zone's number in the table, from 1.
constexpr std::array<const char*, 77> kNames = {"Etc/GMT+12",
                                                "Pacific/Pago_Pago",
                                                "Pacific/Honolulu",
                                                "America/Anchorage",
                                                "America/Los_Angeles",
                                                "America/Phoenix",
                                                "America/Denver",
                                                "America/Chicago",
                                                "America/Mexico_City",
                                                "America/Regina",
                                                "America/New_York",
                                                "America/Indianapolis",
                                                "America/Halifax",
                                                "America/Caracas",
                                                "America/St_Johns",
                                                "America/Sao_Paulo",
                                                "America/Argentina/Buenos_Aires",
                                                "Atlantic/South_Georgia",
                                                "Atlantic/Azores",
                                                "Europe/Dublin",
                                                "Europe/London",
                                                "UTC",
                                                "Europe/Berlin",
                                                "Europe/Paris",
                                                "Europe/Belgrade",
                                                "Europe/Warsaw",
                                                "Europe/Athens",
                                                "Europe/Bucharest",
                                                "Africa/Cairo",
                                                "Africa/Harare",
                                                "Europe/Helsinki",
                                                "Asia/Jerusalem",
                                                "Asia/Riyadh",
                                                "Europe/Moscow",
                                                "Africa/Nairobi",
                                                "Asia/Tehran",
                                                "Asia/Dubai",
                                                "Asia/Baku",
                                                "Asia/Kabul",
                                                "Asia/Karachi",
                                                "Asia/Yekaterinburg",
                                                "Asia/Kolkata",
                                                "Asia/Dhaka",
                                                "Asia/Colombo",
                                                "Asia/Bangkok",
                                                "Asia/Shanghai",
                                                "Australia/Perth",
                                                "Asia/Seoul",
                                                "Asia/Tokyo",
                                                "Australia/Adelaide",
                                                "Australia/Darwin",
                                                "Australia/Brisbane",
                                                "Australia/Sydney",
                                                "Pacific/Guam",
                                                "Asia/Magadan",
                                                "Pacific/Fiji",
                                                "Pacific/Auckland",
                                                "America/Guatemala",
                                                "America/Bogota",
                                                "America/Santiago",
                                                "America/Godthab",
                                                "Atlantic/Cape_Verde",
                                                "Africa/Casablanca",
                                                "Africa/Lagos",
                                                "Asia/Baghdad",
                                                "Asia/Kathmandu",
                                                "Asia/Almaty",
                                                "Asia/Rangoon",
                                                "Asia/Krasnoyarsk",
                                                "Asia/Singapore",
                                                "Asia/Taipei",
                                                "Asia/Irkutsk",
                                                "Asia/Yakutsk",
                                                "Australia/Hobart",
                                                "Asia/Vladivostok",
                                                "Australia/Sydney",
                                                "Pacific/Tongatapu"};

// The offsets of a year, from its first second in UTC on.
std::vector<std::int64_t> clocksOf(const qelcal::Zone& zone, int year) {
    Time begin;
    begin.year = year;
    std::vector<std::int64_t> clocks{zone.offset(begin.seconds())};
    for (const qelcal_offset_change& change : zone.changes(year)) {
        clocks.push_back(change.local - change.before);
        clocks.push_back(change.after);
    }
    return clocks;
}

}  // namespace

std::optional<qelcal::Zone> placeOf(const qelcal::Zone& zone) {
    const int number = zone.number();
    if (number < 1 || number > static_cast<int>(kNames.size())) return std::nullopt;
    return qelcal::Zone::find(kNames.at(static_cast<std::size_t>(number - 1)));
}

std::optional<qelcal::Zone> realZoneOf(const qelcal::Zone& zone, int year) {
    auto real = placeOf(zone);
    if (!real || year < 1971 || clocksOf(zone, year) == clocksOf(*real, year)) return std::nullopt;
    return real;
}

}  // namespace qel::cli
