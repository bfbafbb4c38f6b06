#include "calendar/zones/ZoneClock.h"

#include "calendar/base/Days.h"

namespace qel::calendar {

std::vector<OffsetChange> changesIn(const Zone& zone, int year) {
    std::vector<OffsetChange> changes;
    int before = zone.parts().baseOffset;
    for (const ZoneChange& change : zone.parts().changes) {
        const std::int64_t local = change.utc + before;
        if (change.offset != before && local >= yearBegin(year) && local < yearBegin(year + 1))
            changes.push_back({local, before, change.offset});
        before = change.offset;
    }
    return changes;
}

UtcTime utcOf(const Zone& zone, std::int64_t local) {
    const std::int64_t offset = zone.offsetAtLocal(local);
    const std::int64_t utc = local - offset;
    UtcTime time{utc, offset, UtcTime::Kind::Once};
    if (zone.offsetAtUtc(utc) != offset)
        time.kind = UtcTime::Kind::Skipped;
    else if (const std::int64_t later = local - zone.offsetAtUtc(utc + kDaySeconds);
             later > utc && later + zone.offsetAtUtc(later) == local)
        time.kind = UtcTime::Kind::Repeated;
    return time;
}

}  // namespace qel::calendar
