#include "dates/ZoneLookup.h"

#include <algorithm>
#include <tuple>

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
    const auto key = [](const ZoneTime& t) { return std::tuple(t.date, t.hour, t.minute); };
    const auto half = [column](const ZoneChange& change) -> const ZoneTime& {
        return column == ZoneColumn::Local ? change.local : change.utc;
    };
    auto next = std::upper_bound(
        changes.begin(), changes.end(), key(time),
        [&](const auto& wanted, const ZoneChange& change) { return wanted < key(half(change)); });
    if (next != changes.begin()) --next;
    time.offsetHours = half(*next).offsetHours;
    time.offsetMinutes = half(*next).offsetMinutes;
    return 0;
}

int zoneOffsetAt(int zone, ZoneColumn column, ZoneTime& time) {
    if (!isZoneNumber(zone))
        return BxTrace_Error_SL(kSourceName, kLineOffsetOfBadZone, "invalid timezoneID", zone,
                                kBadZoneNumber);
    return offsetAt(zoneChanges(zone), column, time);
}

}  // namespace qel::dates
