#include "calendar/entries/Entry.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"

namespace qel::calendar {

std::string_view restoredName(std::string_view name, std::string_view prefix) {
    static constexpr std::string_view kNever[] = {"",       "BEGIN",    "END",    "VERSION",
                                                  "PRODID", "ENCODING", "CHARSET"};
    const std::string_view own = name.substr(prefix.size());
    const bool isOne =
        std::any_of(std::begin(kNever), std::end(kNever),
                    [&](std::string_view each) { return equalsIgnoreCase(own, each); });
    return isOne ? name : own;
}

void Entry::clear() {
    kind = EntryKind::Event;
    component.clear();
    line = 0;
    zone.reset();
    for (std::optional<Moment>* each :
         {&start, &end, &due, &completed, &created, &modified, &stamp, &recurrenceId})
        each->reset();
    duration.reset();
    thisAndFuture = false;
    uid.clear();
    madeUid.clear();
    rules.clear();
    dates.clear();
    excluded.clear();
    alarms.clear();
    properties.clear();
}

const EntryProperty* Entry::find(std::string_view name) const {
    const auto found =
        std::find_if(properties.begin(), properties.end(),
                     [&](const EntryProperty& property) { return property.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

namespace {

Entry::WholeDays wholeDaysSaidBy(std::string_view name, std::string_view value) {
    using Days = Entry::WholeDays;
    static constexpr std::string_view kFlags[] = {"X-MICROSOFT-CDO-ALLDAYEVENT",
                                                  "X-FUNAMBOL-ALLDAY", "X-DCM-ALLDAY", "X-ALLDAY"};
    struct Word {
        std::string_view word;
        Days days;
    };
    static constexpr Word kOfTypes[] = {{"EVENT", Days::AtMidnight},
                                        {"ANNIVERSARY", Days::AtMidnight},
                                        {"APPOINTMENT", Days::No},
                                        {"REMINDER", Days::No}};
    static constexpr Word kOfFlags[] = {{"TRUE", Days::Yes}, {"1", Days::Yes}, {"YES", Days::Yes},
                                        {"FALSE", Days::No}, {"0", Days::No},  {"NO", Days::No}};
    const auto meaning = [value](std::span<const Word> words) {
        const auto found = std::find_if(words.begin(), words.end(), [value](const Word& each) {
            return equalsIgnoreCase(each.word, value);
        });
        return found == words.end() ? Days::Unsaid : found->days;
    };
    if (name == "X-EPOCAGENDAENTRYTYPE") return meaning(kOfTypes);
    const bool flag = std::find(std::begin(kFlags), std::end(kFlags), name) != std::end(kFlags);
    return flag ? meaning(kOfFlags) : Days::Unsaid;
}

}  // namespace

Entry::WholeDaysSaid Entry::wholeDaysSaid() const {
    WholeDaysSaid said;
    for (const EntryProperty& each : properties) {
        if (!each.name.starts_with("X-")) continue;
        const WholeDays what = wholeDaysSaidBy(each.name, trimmed(each.value()));
        if (what > said.what) said = {what, &each};
    }
    return said;
}

RuleStart Entry::ruleStart() const {
    const Civil civil = civilOf(start->day);
    RuleStart result{civil.year, civil.month, civil.day, start->second, start->isDate};
    if (zone == nullptr)
        result.onlyClock = start->clock;
    else if (start->clock == Clock::Zoned || start->isDate)
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
