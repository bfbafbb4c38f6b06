#include "calendar/entries/Entry.h"

#include <algorithm>
#include <iterator>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"

namespace qel::calendar {

const EntryProperty* Entry::find(std::string_view name) const {
    const auto found =
        std::find_if(properties.begin(), properties.end(),
                     [&](const EntryProperty& property) { return property.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

Entry::WholeDaysSaid Entry::wholeDaysSaid() const {
    static constexpr std::string_view kFlags[] = {"X-MICROSOFT-CDO-ALLDAYEVENT",
                                                  "X-FUNAMBOL-ALLDAY", "X-DCM-ALLDAY", "X-ALLDAY"};
    static constexpr std::string_view kType = "X-EPOCAGENDAENTRYTYPE";
    WholeDaysSaid said;
    for (const EntryProperty& each : properties) {
        if (!each.name.starts_with("X-")) continue;
        const std::string_view value = trimmed(each.value());
        const auto is = [value](std::string_view word) { return equalsIgnoreCase(value, word); };
        WholeDays what = WholeDays::Unsaid;
        if (each.name == kType)
            what = is("EVENT") || is("ANNIVERSARY")      ? WholeDays::AtMidnight
                   : is("APPOINTMENT") || is("REMINDER") ? WholeDays::No
                                                         : WholeDays::Unsaid;
        else if (std::find(std::begin(kFlags), std::end(kFlags), each.name) != std::end(kFlags))
            what = is("TRUE") || is("1") || is("YES")   ? WholeDays::Yes
                   : is("FALSE") || is("0") || is("NO") ? WholeDays::No
                                                        : WholeDays::Unsaid;
        if (what > said.what) said = {what, &each};
    }
    return said;
}

RuleStart Entry::ruleStart() const {
    const Civil civil = civilOf(start->day);
    RuleStart result{civil.year, civil.month, civil.day, start->second, start->isDate, 0};
    if (start->clock == Clock::Zoned && zone != nullptr)
        result.utcOffset = zone->offsetAtLocal(start->seconds());
    return result;
}

std::optional<Moment> Entry::toUtc(const Moment& moment) const {
    if (moment.isDate || moment.clock == Clock::Floating) return std::nullopt;
    if (moment.clock == Clock::Utc) return moment;
    if (zone == nullptr) return std::nullopt;
    return zone->toUtc(moment);
}

Moment Entry::later(const Moment& moment, std::int64_t seconds) const {
    if (moment.clock == Clock::Zoned && zone != nullptr && !moment.isDate) {
        const Moment utc = zone->toUtc(moment);
        return zone->toLocal(momentAt(utc, utc.seconds() + seconds));
    }
    return momentAt(moment, moment.seconds() + seconds);
}

Moment Entry::inClockOf(const Moment& like, const Moment& moment) const {
    Moment result = moment;
    if (moment.isDate) {
        if (!like.isDate) {
            result = like;
            result.day = moment.day;
        }
        return result;
    }
    if (moment.clock != like.clock && zone != nullptr) {
        if (moment.clock == Clock::Utc && (like.clock == Clock::Zoned || like.isDate))
            result = zone->toLocal(moment);
        else if (moment.clock == Clock::Zoned && like.clock == Clock::Utc)
            result = zone->toUtc(moment);
    }
    if (like.isDate) {
        result = like;
        const Moment local =
            moment.clock == Clock::Utc && zone != nullptr ? zone->toLocal(moment) : moment;
        result.day = local.day;
    }
    return result;
}

}  // namespace qel::calendar
