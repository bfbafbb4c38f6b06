#include "calendar/converter/Namesakes.h"

#include <vector>

#include "calendar/base/Days.h"
#include "calendar/entries/EntryDates.h"

namespace qel::calendar {

namespace {

constexpr int kFirstYear = 1970;
// As far as a series without an end is looked at.
constexpr int kLastYear = 2037;
constexpr std::size_t kMostDates = 2000;
// A file that describes more of them is no calendar.
constexpr std::size_t kMostZones = 1000;

ZonePtr namesakeOf(const Zone& zone, WorldZones& world) {
    const auto meant = worldZoneMeant(zone.id());
    if (!meant) return nullptr;
    ZonePtr namesake = world.zone(*meant);
    const bool same = agree(zone, *namesake, yearBegin(kFirstYear), yearBegin(kLastYear + 1));
    return same ? nullptr : namesake;
}

std::vector<Moment> zonedDates(const Entry& entry) {
    std::vector<Moment> dates;
    if (entry.start && entry.recurs()) {
        Entry series;
        series.start = entry.start;
        series.zone = entry.zone;
        series.rules = entry.rules;
        series.dates = entry.dates;
        const Moment through{dayNumber(kLastYear, 12, 31), 0, true, Clock::Floating};
        dates = occurrences(series, {std::nullopt, through, kMostDates});
    }
    for (const auto* each : {&entry.start, &entry.end, &entry.due})
        if (*each) dates.push_back(**each);
    std::erase_if(dates,
                  [](const Moment& date) { return date.isDate || date.clock != Clock::Zoned; });
    return dates;
}

}  // namespace

std::optional<Moment> Namesakes::differs(const Entry& entry, WorldZones& world) {
    if (entry.zone == nullptr || entry.zone->parts().content.empty()) return std::nullopt;
    auto place = known_.find(entry.zone);
    if (place == known_.end() && known_.size() >= kMostZones) return std::nullopt;
    if (place == known_.end())
        place = known_.emplace(entry.zone, namesakeOf(*entry.zone, world)).first;
    ZonePtr& namesake = place->second;
    if (namesake == nullptr) return std::nullopt;
    for (const Moment& date : zonedDates(entry)) {
        if (namesake->toUtc(date) == entry.zone->toUtc(date)) continue;
        namesake = nullptr;
        return date;
    }
    return std::nullopt;
}

}  // namespace qel::calendar
