#include "calendar/zones/Zone.h"

#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"

namespace qel::calendar {

namespace {

std::int64_t yearBegin(int year) {
    return std::int64_t{dayNumber(year, 1, 1)} * 86400;
}

// "+01", "+05:30".
std::string vCalendarOffset(int seconds) {
    std::string text = formatUtcOffset(seconds, true);
    if (text.size() == 6 && text.ends_with(":00")) text.resize(3);
    return text;
}

std::string utcText(std::int64_t utc) {
    Moment moment;
    moment.clock = Clock::Utc;
    return formatMoment(momentAt(moment, utc));
}

}  // namespace

std::size_t Zone::cost() const {
    std::size_t bytes = sizeof(Zone) + changes_.size() * sizeof(Change);
    for (const std::string& line : vTimezone_) bytes += sizeof(std::string) + line.size();
    for (const auto& [name, value] : ownLines_) bytes += 2 * sizeof(std::string) + value.size();
    return bytes;
}

int Zone::offsetAtUtc(std::int64_t utc) const {
    const auto next = std::upper_bound(
        changes_.begin(), changes_.end(), utc,
        [](std::int64_t moment, const Change& change) { return moment < change.utc; });
    return next == changes_.begin() ? baseOffset_ : (next - 1)->offset;
}

int Zone::offsetAtLocal(std::int64_t local) const {
    const auto before = [&](const Change& change) {
        return &change == changes_.data() ? baseOffset_ : (&change - 1)->offset;
    };
    // The first change that the clock before it has not reached yet.
    const auto next = std::partition_point(
        changes_.begin(), changes_.end(),
        [&](const Change& change) { return change.utc + before(change) <= local; });
    if (next == changes_.begin()) return baseOffset_;
    const Change& last = *(next - 1);
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

std::vector<std::pair<std::string, std::string>> Zone::vCalendarLines(int from, int to) const {
    if (!ownLines_.empty()) return ownLines_;
    const std::int64_t begin = yearBegin(from);
    const std::int64_t end = yearBegin(to + 1);
    // The offset outside daylight time at the beginning, or else the first one after it.
    int standard = baseOffset_;
    std::string standardName;
    for (const Change& change : changes_) {
        const bool inForce = change.utc <= begin || standardName.empty();
        if (!change.daylight && inForce) {
            standard = change.offset;
            standardName = change.name.empty() ? " " : change.name;
        }
    }
    std::vector<std::pair<std::string, std::string>> lines;
    lines.emplace_back("TZ", vCalendarOffset(standard));
    for (std::size_t each = 0; each < changes_.size(); ++each) {
        const Change& change = changes_[each];
        const std::int64_t until = each + 1 < changes_.size() ? changes_[each + 1].utc : end;
        if (change.offset == standard || until <= begin || change.utc >= end) continue;
        lines.emplace_back("DAYLIGHT", "TRUE;" + vCalendarOffset(change.offset) + ";" +
                                           utcText(std::max(change.utc, begin)) + ";" +
                                           utcText(until) + ";" +
                                           std::string(trimmed(standardName)) + ";" + change.name);
    }
    if (lines.size() == 1) lines.emplace_back("DAYLIGHT", "FALSE");
    return lines;
}

}  // namespace qel::calendar
