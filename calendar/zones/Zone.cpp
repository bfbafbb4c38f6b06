#include "calendar/zones/Zone.h"

#include <algorithm>

#include "calendar/base/Days.h"

namespace qel::calendar {

namespace {

// The moments from `begin` to `end` at which a zone's offset changes.
class Steps {
  public:
    Steps(const Zone& zone, std::int64_t begin, std::int64_t end)
        : changes_(zone.parts().changes), end_(end), offset_(zone.offsetAtUtc(begin)) {
        const auto after = std::upper_bound(
            changes_.begin(), changes_.end(), begin,
            [](std::int64_t moment, const ZoneChange& change) { return moment < change.utc; });
        at_ = static_cast<std::size_t>(after - changes_.begin());
    }

    [[nodiscard]] int offset() const { return offset_; }
    // The next one, or `end`.
    std::int64_t next() {
        for (; at_ < changes_.size() && changes_[at_].utc < end_; ++at_) {
            if (changes_[at_].offset == offset_) continue;
            offset_ = changes_[at_].offset;
            return changes_[at_].utc;
        }
        return end_;
    }

  private:
    const std::vector<ZoneChange>& changes_;
    std::int64_t end_;
    int offset_;
    std::size_t at_ = 0;
};

}  // namespace

bool sameBefore(const Zone& zone, int first, int since) {
    if (first >= since) return true;
    const std::int64_t end = yearBegin(since) + kDaySeconds;
    return Steps(zone, yearBegin(first), end).next() == end;
}

bool agree(const Zone& one, const Zone& other, std::int64_t begin, std::int64_t end) {
    Steps a(one, begin, end);
    Steps b(other, begin, end);
    for (std::int64_t at = begin; at < end;) {
        if (a.offset() != b.offset()) return false;
        at = a.next();
        if (b.next() != at) return false;
    }
    return true;
}

std::size_t Zone::cost() const {
    // The same on every system, so that all keep the same zones.
    constexpr std::size_t kZone = 200;
    constexpr std::size_t kChange = 48;
    constexpr std::size_t kObservance = 112;
    constexpr std::size_t kText = 32;
    std::size_t bytes =
        kZone + parts_.changes.size() * kChange + parts_.observances.size() * kObservance;
    for (const std::string& line : parts_.content) bytes += kText + line.size();
    for (const auto& [name, value] : parts_.ownLines) bytes += 2 * kText + value.size();
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
