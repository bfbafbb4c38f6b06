#include "base/Zones.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "QelUtility/ZQDate.h"
#include "base/Command.h"
#include "base/Moment.h"

namespace qel::cli {

namespace {

constexpr int kFirstTableYear = 1990;
constexpr int kLastTableYear = 2010;
constexpr int kUtcZone = 22;

std::string lowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return text;
}

std::int64_t midnight(int year, int month, int day) {
    unsigned code = 0;
    ZQ_DateEncode(month, day, std::clamp(year, 1900, 2499), &code);
    return code * kDaySeconds;
}

int yearOf(std::int64_t seconds) {
    char text[9];
    const auto day = std::clamp<std::int64_t>(seconds / kDaySeconds, 0, kLastCodeDate);
    return std::atoi(std::string(ZQ_CodeDateToAlpha(static_cast<int>(day), text), 4).c_str());
}

std::string listOf(const std::vector<const Zone*>& zones) {
    std::string text;
    for (const Zone* zone : zones)
        text += (text.empty() ? "" : "; ") + std::to_string(zone->number()) + " " + zone->name();
    return text;
}

}  // namespace

Zone::Zone(int number, std::string name) : number_(number), name_(std::move(name)) {
    if (number_ != 0) return;
    computer_.Initialize();
    for (int month = 1; month <= 12; ++month) {
        const std::int64_t offset = libraryOffset(midnight(2005, month, 15));
        daylightOffset_ = month == 1 ? offset : std::max(daylightOffset_, offset);
    }
}

Zone Zone::named(const std::string& name) {
    const std::string wanted = lowerCase(name);
    if (wanted == "local") return Zone(0, "the computer's own zone");
    const std::vector<Zone> zones = tableZones();
    if (!wanted.empty() && wanted.find_first_not_of("0123456789") == std::string::npos) {
        const std::size_t number = wanted.size() > 3 ? 0 : std::stoul(wanted);
        if (number < 1 || number > zones.size()) {
            throw UsageError("there is no zone " + name + "; the numbers are 1 to " +
                             std::to_string(zones.size()));
        }
        return zones[number - 1];
    }
    std::vector<const Zone*> found;
    for (const Zone& zone : zones) {
        const std::string known = lowerCase(zone.name());
        if (known == wanted) return zone;
        if (known.find(wanted) != std::string::npos) found.push_back(&zone);
    }
    if (found.size() == 1) return *found[0];
    if (found.empty() || wanted.empty())
        throw UsageError("there is no zone \"" + name + "\"; `qelutil zone list` shows them");
    throw UsageError("\"" + name + "\" fits several zones: " + listOf(found));
}

bool Zone::knows(int year) const {
    return number_ == 0 || number_ == kUtcZone ||
           (year >= kFirstTableYear && year <= kLastTableYear);
}

// By what the library moves a local time to make it UTC. At the ends of the calendar, where UTC may
// lie outside it, the days beside them speak for the last ones.
std::int64_t Zone::libraryOffset(std::int64_t local) {
    const std::int64_t held = std::clamp(local, 2 * kDaySeconds, kEndOfTime - 2 * kDaySeconds);
    const std::string text = momentText({held, true, false});
    if (number_ == 0) return held - readMoment(computer_.LocalToUTC(text.c_str())).seconds;
    VStr utc;
    BxTZ_LocalToUTC(number_, text.c_str(), utc);
    return held - readMoment(static_cast<const char*>(utc)).seconds;
}

// The offset of the clock on the wall: of a repeated time the first one's, of a skipped one the
// later one's.
std::int64_t Zone::wallOffset(std::int64_t local) {
    // The class takes both of a year's changes early by the daylight offset, so it is asked about a
    // time that is as much earlier.
    return libraryOffset(local - daylightOffset_);
}

std::vector<OffsetChange> Zone::changesIn(int year) {
    std::vector<OffsetChange> changes;
    if (!knows(year)) return changes;
    const std::int64_t begin = midnight(year, 1, 1) - 1;
    const std::int64_t end = midnight(year, 12, 31) + kDaySeconds - 1;
    std::int64_t before = wallOffset(begin);
    for (std::int64_t time = begin; time < end; time += kDaySeconds) {
        const std::int64_t after = wallOffset(time + kDaySeconds);
        if (after == before) continue;
        std::int64_t low = time;  // the old offset holds
        std::int64_t high = time + kDaySeconds;
        while (high - low > 1) {
            const std::int64_t middle = low + (high - low) / 2;
            (wallOffset(middle) == before ? low : high) = middle;
        }
        changes.push_back({high, before, after});
        before = after;
    }
    return changes;
}

UtcTime Zone::toUtc(std::int64_t local) {
    const std::int64_t offset = wallOffset(local);
    for (const OffsetChange& change : changesIn(yearOf(local))) {
        const std::int64_t step = change.after - change.before;
        if (step > 0 && local >= change.local && local < change.local + step)
            return {local - change.before, change.before, UtcTime::Kind::Skipped};
        if (step < 0 && local >= change.local + step && local < change.local)
            return {local - change.before, change.before, UtcTime::Kind::Repeated};
    }
    return {local - offset, offset, UtcTime::Kind::Once};
}

std::int64_t Zone::offsetAtUtc(std::int64_t utc) {
    const int year = yearOf(utc);
    std::int64_t offset = wallOffset(knows(year) ? midnight(year, 1, 1) - 1 : utc);
    for (const OffsetChange& change : changesIn(year))
        if (utc >= change.local - change.before) offset = change.after;
    return offset;
}

std::vector<Zone> tableZones() {
    VStrArray names;
    std::vector<int> numbers;
    BxTZ_GetZoneList(names, numbers);
    if (numbers.empty()) throw std::bad_alloc();
    std::vector<Zone> zones;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        zones.push_back(Zone(numbers[i], std::string(names.ElementAt(static_cast<int>(i)))));
    std::sort(zones.begin(), zones.end(),
              [](const Zone& a, const Zone& b) { return a.number() < b.number(); });
    return zones;
}

}  // namespace qel::cli
