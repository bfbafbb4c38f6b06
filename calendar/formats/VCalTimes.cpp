// Dates and recurrence of an entry in vCalendar 1.0.
#include "calendar/base/Days.h"
#include "calendar/formats/VCalEntry.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::calendar {

namespace {

// Dates on one RDATE or EXDATE line; phones have short line buffers.
constexpr std::size_t kDatesOnLine = 4;
// A rule that vCalendar 1.0 lacks becomes a list of dates up to this many.
constexpr std::size_t kMostDates = 500;

}  // namespace

std::string VCalEntry::dateText(const Moment& moment) const {
    std::string text = formatMoment(moment);
    if (moment.isDate && entry_.start && entry_.start->isDate && allDay_) text += "T000000";
    return text;
}

Moment VCalEntry::after(const Moment& moment, const Duration& duration) const {
    Moment day = momentAt(moment, moment.seconds() + duration.days * 86400);
    return later(day, duration.seconds);
}

Moment VCalEntry::later(const Moment& moment, std::int64_t seconds) const {
    if (moment.clock == Clock::Zoned && entry_.zone != nullptr && !moment.isDate) {
        const Moment utc = entry_.zone->toUtc(moment);
        return entry_.zone->toLocal(momentAt(utc, utc.seconds() + seconds));
    }
    return momentAt(moment, moment.seconds() + seconds);
}

void VCalEntry::addDates() {
    if (entry_.duration && entry_.start && !entry_.end && !entry_.due) {
        (entry_.kind == EntryKind::Todo ? entry_.due : entry_.end) =
            after(*entry_.start, *entry_.duration);
    } else if (entry_.duration) {
        line("X-ICAL-DURATION", {}, formatDuration(*entry_.duration));
    }
    if (entry_.start) line("DTSTART", {}, dateText(*entry_.start));
    if (entry_.end) line("DTEND", {}, dateText(*entry_.end));
    if (entry_.due) line("DUE", {}, dateText(*entry_.due));
    if (entry_.completed) line("COMPLETED", {}, formatMoment(*entry_.completed));
    if (entry_.created) line("DCREATED", {}, formatMoment(*entry_.created));
    if (entry_.modified) line("LAST-MODIFIED", {}, formatMoment(*entry_.modified));
    if (entry_.recurrenceId) {
        std::vector<Parameter> parameters;
        if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
        line("X-RECURRENCE-ID", parameters, dateText(*entry_.recurrenceId));
    }
    addStamp();
}

void VCalEntry::addStamp() {
    const bool fallback = entry_.stamp && entry_.stamp->seconds() == kNoStamp.seconds();
    if (!entry_.stamp || fallback) return;
    for (const auto* each : {&entry_.modified, &entry_.created, &entry_.start, &entry_.due}) {
        if (!*each) continue;
        Moment derived = entry_.toUtc(**each).value_or(**each);
        derived.isDate = false;
        if (derived.seconds() == entry_.stamp->seconds()) return;
        break;
    }
    line("X-ICAL-DTSTAMP", {}, formatMoment(*entry_.stamp));
}

std::string VCalEntry::untilText(const std::string& until) const {
    const auto read = parseMoment(until);
    if (!read) return until;
    Moment moment = *read;
    const Moment& start = *entry_.start;
    if (moment.clock == Clock::Floating && start.clock == Clock::Zoned && !moment.isDate)
        moment.clock = Clock::Zoned;
    moment = entry_.inClockOf(start, moment);
    if (!moment.isDate && start.clock == Clock::Utc) moment.clock = Clock::Utc;
    if (start.clock == Clock::Floating) moment.clock = Clock::Floating;
    return formatMoment(moment);
}

void VCalEntry::addRecurrence() {
    if (!entry_.start) return;
    RuleStart start = entry_.ruleStart();
    start.utcOffset = 0;
    for (EntryRule& each : entry_.rules) {
        for (Rule& rule : each.rules) {
            if (!rule.until.empty()) rule.until = untilText(rule.until);
            const VCalendarRule texts = vCalendarTexts(rule, start);
            for (const std::string& text : texts.texts)
                writer_.put((each.exclude ? "EXRULE:" : "RRULE:") + text);
            if (texts.texts.empty()) addInexpressible(each, rule, start, texts.reason);
        }
    }
    addDateList("RDATE", entry_.dates);
    addDateList("EXDATE", entry_.excluded);
}

void VCalEntry::addInexpressible(const EntryRule& owner, const Rule& rule, const RuleStart& start,
                                 const std::string& reason) {
    const std::string text = iCalendarText(rule);
    const std::string head = "vCalendar 1.0 has no rule for " + reason + "; ";
    const bool times = !rule.hours.empty() || !rule.minutes.empty() || !rule.seconds.empty();
    RuleLimits limits;
    limits.most = kMostDates + 1;
    const std::vector<int> days =
        rule.endless() || times ? std::vector<int>() : expandRule(rule, start, limits);
    if (!days.empty() && days.size() <= kMostDates) {
        std::vector<Moment>& list = owner.exclude ? entry_.excluded : entry_.dates;
        Moment moment = *entry_.start;
        for (const int day : days) {
            moment.day = day;
            if (moment != *entry_.start || owner.exclude) list.push_back(moment);
        }
        tell(Severity::Note,
             head + text + " is written as " + std::to_string(days.size()) + " dates", owner.line);
        return;
    }
    const std::string name = owner.exclude ? "X-ICAL-EXRULE" : "X-ICAL-RRULE";
    line(name, {}, text);
    tell(Severity::Warning, head + text + " is kept as " + name, owner.line);
}

void VCalEntry::addDateList(std::string_view name, const std::vector<Moment>& dates) {
    std::string value;
    std::size_t count = 0;
    for (const Moment& date : dates) {
        const Moment moment = entry_.inClockOf(*entry_.start, date);
        value += (value.empty() ? "" : ";") + dateText(moment);
        if (++count % kDatesOnLine == 0) {
            writer_.put(std::string(name) + ":" + value);
            value.clear();
        }
    }
    if (!value.empty()) writer_.put(std::string(name) + ":" + value);
}

}  // namespace qel::calendar
