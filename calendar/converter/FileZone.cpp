#include "calendar/converter/FileZone.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Days.h"
#include "calendar/entries/EntryDates.h"

namespace qel::calendar {

namespace {

// As far as zones are known that are made of lines.
constexpr int kLastYear = 2099;

bool isLocal(const std::optional<Moment>& moment) {
    return moment && !moment->isDate && moment->clock == Clock::Zoned;
}

// `zone` by another name.
ZonePtr renamed(const ZonePtr& zone, const std::string& name) {
    ZoneParts parts = zone->parts();
    parts.id = name;
    return std::make_shared<const Zone>(std::move(parts));
}

}  // namespace

FileZone::FileZone(ZonePtr made, std::size_t line, const std::string& name, const ZonePtr& chosen,
                   ZoneNamings& namings, WorldZones& world)
    : zone_(std::move(made)), line_(line) {
    const auto known = findWorldZone(name);
    if (zone_ == nullptr) {
        if (known) zone_ = world.zone(*known);
        return;
    }
    if (!name.empty() && !known) {
        zone_ = renamed(zone_, name);
        return;
    }
    if (!known) chosen_ = chosen;
    nameReported_ = known.has_value();
    naming_ = namings.of(std::move(zone_), known ? world.zone(*known) : chosen, world);
    zone_ = naming_->made();
}

FileZone::Settled FileZone::settle(const Entry& entry) const {
    if (naming_ == nullptr || entry.zone != zone_) return {};
    if (!isLocal(entry.start) && !isLocal(entry.end) && !isLocal(entry.due)) return {};
    if (!zone_->parts().daylight && naming_->wanted() == nullptr) return {};
    const ZonePtr* named = naming_->zoneFrom(firstYearOf(entry));
    Years years{};
    if (named == nullptr) {
        years = yearsOf(entry, kLastYear);
        named = &naming_->zoneFor(years.first, years.last);
    }
    if (*named == zone_) return {nullptr, true, years};
    return {named, false, years};
}

void FileZone::report(const Settled& settled, const Entry& entry, const NoteSink& sink) {
    if (settled.kept) {
        if (chosen_ != nullptr && !std::exchange(chosenReported_, true))
            sink(Note(NoteCode::ChosenZoneDiffers, line_, {chosen_->id()}));
        if (zone_->parts().daylight) reportYears(entry, settled.years, sink);
    } else if (settled.named != nullptr && chosen_ == nullptr &&
               !std::exchange(nameReported_, true)) {
        sink(Note(NoteCode::ZoneRecognised, line_, {entry.zone->id()}));
    }
}

void FileZone::reportYears(const Entry& entry, const Years& years, const NoteSink& sink) {
    const ZoneParts& parts = zone_->parts();
    const auto yearOf = [](std::int64_t utc) {
        return civilOf(static_cast<int>(utc / kDaySeconds)).year;
    };
    const int first = yearOf(parts.daylight->begin);
    const int last = yearOf(parts.daylight->end);
    if (yearsReported_ || (years.first >= first && years.last <= last)) return;
    yearsReported_ = true;
    const std::string shown =
        std::to_string(first) + (first == last ? "" : " to " + std::to_string(last));
    sink(Note(parts.continued ? NoteCode::DaylightContinued : NoteCode::DaylightEnds, entry.line,
              {shown}));
}

}  // namespace qel::calendar
