#include "dates/ZoneLookup.h"

#include <algorithm>
#include <cstddef>

#include "QelUtility/BxTrace.h"

namespace qel::dates {

namespace {

constexpr char kSourceName[] = "BxTimezones";
constexpr int kLineOffsetOfBadZone = 563;
constexpr int kLineNoOffsets = 582;
constexpr int kBadZoneNumber = 2016;

}  // namespace

int offsetAt(std::span<const ZoneChange> changes, ZoneColumn column, ZoneTime& time) {
    if (changes.empty())
        return BxTrace_Error_S(kSourceName, kLineNoOffsets, "no offsets array", QEL_FAILED);
    const auto key = [](const ZoneTime& t) {
        return std::int64_t{t.date} << 16 | t.hour << 8 | t.minute;
    };
    const auto half = [&](std::size_t i) -> const ZoneTime& {
        return column == ZoneColumn::Local ? changes[i].local : changes[i].utc;
    };
    // A zone of the table has two changes in each year, so the search begins next to its end. It is
    // right from wherever it begins.
    const std::int64_t wanted = key(time);
    const int years = time.date / 10000 - half(0).date / 10000;
    std::size_t next = std::clamp<std::size_t>(static_cast<std::size_t>(std::max(years, 0)) * 2, 0,
                                               changes.size() - 1);
    while (next > 0 && wanted < key(half(next))) --next;
    while (next + 1 < changes.size() && wanted >= key(half(next + 1))) ++next;
    time.offsetHours = half(next).offsetHours;
    time.offsetMinutes = half(next).offsetMinutes;
    return 0;
}

int zoneOffsetAt(int zone, ZoneColumn column, ZoneTime& time) {
    if (!isZoneNumber(zone))
        return BxTrace_Error_SL(kSourceName, kLineOffsetOfBadZone, "invalid timezoneID", zone,
                                kBadZoneNumber);
    return offsetAt(zoneChanges(zone), column, time);
}

}  // namespace qel::dates
