#include "calendar/zones/Zone.h"

#include <algorithm>

namespace qel::calendar {

std::size_t Zone::cost() const {
    std::size_t bytes = sizeof(Zone) + parts_.changes.size() * sizeof(ZoneChange) +
                        parts_.observances.size() * sizeof(ZoneObservance);
    for (const std::string& line : parts_.content) bytes += sizeof(std::string) + line.size();
    for (const auto& [name, value] : parts_.ownLines)
        bytes += 2 * sizeof(std::string) + value.size();
    return bytes;
}

int Zone::offsetAtUtc(std::int64_t utc) const {
    const auto next = std::upper_bound(
        parts_.changes.begin(), parts_.changes.end(), utc,
        [](std::int64_t moment, const ZoneChange& change) { return moment < change.utc; });
    return next == parts_.changes.begin() ? parts_.baseOffset : (next - 1)->offset;
}

int Zone::offsetAtLocal(std::int64_t local) const {
    const auto before = [&](const ZoneChange& change) {
        return &change == parts_.changes.data() ? parts_.baseOffset : (&change - 1)->offset;
    };
    // The first change that the clock before it has not reached yet.
    const auto next = std::partition_point(
        parts_.changes.begin(), parts_.changes.end(),
        [&](const ZoneChange& change) { return change.utc + before(change) <= local; });
    if (next == parts_.changes.begin()) return parts_.baseOffset;
    const ZoneChange& last = *(next - 1);
    const bool skipped = local < last.utc + last.offset;
    return skipped ? before(last) : last.offset;
}

Moment Zone::toUtc(const Moment& zoned) const {
    if (zoned.isDate) return zoned;
    Moment moment = zoned;
    moment.clock = Clock::Utc;
    return momentAt(moment, zoned.seconds() - offsetAtLocal(zoned.seconds()));
}

Moment Zone::toLocal(const Moment& utc) const {
    if (utc.isDate) return utc;
    Moment moment = utc;
    moment.clock = Clock::Zoned;
    return momentAt(moment, utc.seconds() + offsetAtUtc(utc.seconds()));
}

}  // namespace qel::calendar
