#include "calendar/zones/TableZone.h"

#include <algorithm>
#include <limits>
#include <new>

#include "QelUtility/VStr.h"
#include "QelUtility/VStrArray.h"
#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"

namespace qel::calendar {

namespace {

constexpr int kFirstTableYear = 1990;
constexpr int kLastTableYear = 2010;
constexpr int kUtcZone = 22;
constexpr int kFirstYear = 1900;  // of all times that QelUtility knows
constexpr int kLastYear = 2499;
constexpr std::int64_t kEndOfTime = std::int64_t{dayNumber(kLastYear + 1, 1, 1)} * kDaySeconds;

std::int64_t midnight(int year, int month, int day) {
    return std::int64_t{dayNumber(std::clamp(year, kFirstYear, kLastYear), month, day)} *
           kDaySeconds;
}

int yearOf(std::int64_t seconds) {
    return civilOf(
               static_cast<int>(std::clamp<std::int64_t>(seconds, 0, kEndOfTime - 1) / kDaySeconds))
        .year;
}

// Of a date-time text of QelUtility, which is incomplete only when memory was refused.
std::int64_t secondsOf(const char* text) {
    const auto moment = parseMoment(text);
    if (!moment) throw std::bad_alloc();
    return moment->seconds();
}

std::string listOf(const std::vector<std::size_t>& zones) {
    std::string text;
    for (const std::size_t zone : zones)
        text +=
            (text.empty() ? "" : "; ") + std::to_string(zone + 1) + " " + tableZoneNames()[zone];
    return text;
}

}  // namespace

TableZone::TableZone(int number) : number_(number) {
    if (number_ != 0) return;
    computer_.Initialize();
    for (int month = 1; month <= 12; ++month) {
        const std::int64_t offset = libraryOffset(midnight(2005, month, 15));
        daylightOffset_ = month == 1 ? offset : std::max(daylightOffset_, offset);
    }
}

bool TableZone::knows(int year) const {
    return number_ == 0 || number_ == kUtcZone ||
           (year >= kFirstTableYear && year <= kLastTableYear);
}

// By what QelUtility moves a local time to make it UTC. At the ends of the calendar, where UTC may
// lie outside it, the days next to them are used instead.
std::int64_t TableZone::libraryOffset(std::int64_t local) {
    const std::int64_t held =
        std::clamp<std::int64_t>(local, 2 * kDaySeconds, kEndOfTime - 2 * kDaySeconds);
    const std::string text = formatMoment(momentAt(Moment{}, held));
    if (number_ == 0) return held - secondsOf(computer_.LocalToUTC(text.c_str()));
    VStr utc;
    BxTZ_LocalToUTC(number_, text.c_str(), utc);
    return held - secondsOf(static_cast<const char*>(utc));
}

// The offset of the clock on the wall: of a repeated time the first one's, of a skipped one the
// later one's.
std::int64_t TableZone::wallOffset(std::int64_t local) {
    // The class takes both of a year's changes early by the daylight offset, so it is asked about a
    // time that is as much earlier.
    return libraryOffset(local - daylightOffset_);
}

std::vector<OffsetChange> TableZone::changesIn(int year) {
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

UtcTime TableZone::toUtc(std::int64_t local) {
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

std::int64_t TableZone::offsetAtUtc(std::int64_t utc) {
    const int year = yearOf(utc);
    std::int64_t offset = wallOffset(knows(year) ? midnight(year, 1, 1) - 1 : utc);
    for (const OffsetChange& change : changesIn(year))
        if (utc >= change.local - change.before) offset = change.after;
    return offset;
}

const std::vector<std::string>& tableZoneNames() {
    static const std::vector<std::string> kNames = [] {
        VStrArray names;
        std::vector<int> numbers;
        BxTZ_GetZoneList(names, numbers);
        if (numbers.empty()) throw std::bad_alloc();
        std::vector<std::string> sorted(numbers.size());
        for (std::size_t i = 0; i < numbers.size(); ++i)
            sorted.at(static_cast<std::size_t>(numbers[i]) - 1) =
                std::string(names.ElementAt(static_cast<int>(i)));
        return sorted;
    }();
    return kNames;
}

FoundZone findTableZone(std::string_view name) {
    if (equalsIgnoreCase(name, "local")) return {0, {}};
    const std::vector<std::string>& names = tableZoneNames();
    if (allDigits(name)) {
        const auto number = parseInt(name);
        if (*number >= 1 && static_cast<std::size_t>(*number) <= names.size()) return {*number, {}};
        return {-1, "there is no zone " + std::string(name) + "; the numbers are 1 to " +
                        std::to_string(names.size())};
    }
    std::vector<std::size_t> found;
    const std::string wanted = upper(name);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string known = upper(names[i]);
        if (known == wanted) return {static_cast<int>(i) + 1, {}};
        if (known.find(wanted) != std::string::npos) found.push_back(i);
    }
    if (found.size() == 1) return {static_cast<int>(found.front()) + 1, {}};
    if (found.empty() || wanted.empty()) return {-1, "there is no zone " + quoted(name)};
    return {-1, quoted(name) + " fits several zones: " + listOf(found)};
}

}  // namespace qel::calendar
