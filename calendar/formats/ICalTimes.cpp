// Dates and recurrence of an entry in iCalendar.
#include <algorithm>
#include <set>

#include "calendar/formats/ICalEntry.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/text/ContentText.h"

namespace qel::calendar {

// A count that goes on for longer stays a count.
static constexpr int kYearsCounted = 100;

void ICalEntry::keep(std::string_view name, const Moment& moment) {
    entry_.properties.push_back({std::string(kVCalendarPrefix) + std::string(name),
                                 {},
                                 EntryProperty::Type::Text,
                                 formatMoment(moment),
                                 {},
                                 entry_.line});
}

void ICalEntry::settleStart() {
    if (entry_.kind != EntryKind::Event || entry_.start) return;
    if (entry_.end) {
        entry_.start = entry_.end;
        entry_.end.reset();
        tell(Severity::Warning, "the event has an end and no start; it starts at its end");
        return;
    }
    tell(Severity::Warning, "the event has no start; it is written as a to-do");
    entry_.kind = EntryKind::Todo;
    entry_.properties.push_back({std::string(kVCalendarPrefix) + "COMPONENT",
                                 {},
                                 EntryProperty::Type::Text,
                                 "VEVENT",
                                 {},
                                 entry_.line});
}

Moment ICalEntry::likeStart(const Moment& moment) const {
    const Moment& start = *entry_.start;
    if (moment.isDate && !start.isDate) return {moment.day, 0, false, start.clock};
    if (!moment.isDate && start.isDate) {
        Moment day = entry_.inClockOf(start, moment);
        if (moment.second != 0) ++day.day;
        return day;
    }
    return entry_.inClockOf(start, moment);
}

std::int64_t ICalEntry::afterStart(const Moment& moment) const {
    const auto utc = entry_.toUtc(moment);
    const auto startUtc = entry_.toUtc(*entry_.start);
    if (utc && startUtc) return utc->seconds() - startUtc->seconds();
    return moment.seconds() - entry_.start->seconds();
}

void ICalEntry::settleEnd() {
    if (entry_.kind != EntryKind::Event) {
        if (entry_.end) keep("DTEND", *entry_.end);
        entry_.end.reset();
        return;
    }
    if (!entry_.end) return;
    const Moment end = likeStart(*entry_.end);
    const std::int64_t length = afterStart(end);
    if (length > 0) {
        if (end.clock != entry_.start->clock && !end.isDate)
            tell(Severity::Warning, "the start is local and the end in UTC, or the reverse");
        entry_.end = end;
        return;
    }
    if (length < 0)
        tell(Severity::Warning, "the event ends before it starts; its end is kept as X-VCAL-DTEND");
    keep("DTEND", *entry_.end);
    entry_.end.reset();
}

void ICalEntry::settleDue() {
    if (entry_.kind != EntryKind::Todo) {
        if (entry_.due) keep("DUE", *entry_.due);
        entry_.due.reset();
    }
    if (!entry_.due || !entry_.start) return;
    const Moment due = likeStart(*entry_.due);
    const std::int64_t length = afterStart(due);
    if (length > 0) {
        entry_.due = due;
        return;
    }
    if (length < 0) tell(Severity::Warning, "the to-do is due before it starts");
    // iCalendar wants it due later; a series needs its start, and a person the due date.
    if (entry_.recurs() || !entry_.excluded.empty()) {
        keep("DUE", *entry_.due);
        entry_.due.reset();
    } else {
        keep("DTSTART", *entry_.start);
        entry_.start.reset();
    }
}

void ICalEntry::addMoment(std::string_view name, const Moment& moment,
                          std::vector<Parameter> parameters) {
    if (moment.isDate) {
        parameters.insert(parameters.begin(), {"VALUE", "DATE"});
    } else if (moment.clock == Clock::Zoned && entry_.zone != nullptr) {
        parameters.insert(parameters.begin(), {"TZID", entry_.zone->id()});
        usesZone_ = true;
    }
    addICalendarLine(lines_, name, parameters, MomentText(moment));
}

void ICalEntry::addUtc(std::string_view name, const std::optional<Moment>& moment) {
    if (!moment) return;
    Moment utc = entry_.toUtc(*moment).value_or(*moment);
    std::vector<Parameter> parameters;
    if (utc.clock != Clock::Utc)
        parameters.push_back({"X-VCAL-FLOATING", utc.isDate ? "DATE" : "TRUE"});
    utc.isDate = false;
    utc.clock = Clock::Utc;
    addICalendarLine(lines_, name, parameters, MomentText(utc));
}

void ICalEntry::addDates() {
    std::optional<Moment> stamp;
    for (const auto* each :
         {&entry_.stamp, &entry_.modified, &entry_.created, &entry_.start, &entry_.due})
        if (!stamp && *each) stamp = *each;
    Moment utc = stamp ? entry_.toUtc(*stamp).value_or(*stamp) : kNoStamp;
    utc.isDate = false;
    utc.clock = Clock::Utc;
    addICalendarLine(lines_, "DTSTAMP", {}, MomentText(utc));
    if (entry_.start) addMoment("DTSTART", *entry_.start);
    if (entry_.end) addMoment("DTEND", *entry_.end);
    if (entry_.due) addMoment("DUE", *entry_.due);
    addDuration();
    addUtc("CREATED", entry_.created);
    addUtc("LAST-MODIFIED", entry_.modified);
    if (entry_.kind == EntryKind::Todo)
        addUtc("COMPLETED", entry_.completed);
    else if (entry_.completed)
        keep("COMPLETED", *entry_.completed);
    if (entry_.recurrenceId) {
        std::vector<Parameter> parameters;
        if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
        addMoment("RECURRENCE-ID", *entry_.recurrenceId, parameters);
    }
}

void ICalEntry::addDuration() {
    if (!entry_.duration) return;
    const bool allowed = !entry_.end && !entry_.due && entry_.start && entry_.duration->total() > 0;
    addICalendarLine(lines_, allowed ? "DURATION" : "X-VCAL-DURATION", {},
                     formatDuration(*entry_.duration));
}

std::string ICalEntry::untilText(const std::string& until) const {
    const auto read = parseMoment(until);
    if (!read) return until;
    Moment moment = *read;
    const Moment& start = *entry_.start;
    if (moment.clock == Clock::Floating && start.clock != Clock::Floating && !moment.isDate)
        moment.clock = entry_.zone != nullptr ? Clock::Zoned : Clock::Utc;
    if (start.isDate) return formatMoment(entry_.inClockOf(start, moment));
    if (start.clock == Clock::Floating)
        moment.clock = Clock::Floating;
    else if (const auto utc = entry_.toUtc(moment))
        moment = *utc;
    return formatMoment(moment);
}

void ICalEntry::settleOddStart() {
    const RuleStart start = entry_.ruleStart();
    bool odd = false;
    bool yielded = false;
    for (EntryRule& each : entry_.rules) {
        if (each.exclude) continue;
        for (Rule& rule : each.rules) {
            const bool times =
                !rule.hours.empty() || !rule.minutes.empty() || !rule.seconds.empty();
            if (times || yieldsStart(rule, start)) {
                yielded = true;
                continue;
            }
            odd = true;
            if (rule.count == 0) continue;
            RuleLimits limits;
            limits.most = static_cast<std::size_t>(rule.count);
            limits.lastYear = start.year + kYearsCounted;
            const std::vector<int> days = expandRule(rule, start, limits);
            if (days.size() != limits.most) continue;
            Moment last = *entry_.start;
            last.day = days.back();
            rule.until = formatMoment(last);
            rule.count = 0;
        }
    }
    const auto isStart = [this](const Moment& date) {
        return entry_.inClockOf(*entry_.start, date) == *entry_.start;
    };
    if (odd && !yielded && std::none_of(entry_.excluded.begin(), entry_.excluded.end(), isStart))
        entry_.dates.insert(entry_.dates.begin(), *entry_.start);
}

void ICalEntry::addRecurrence() {
    if (!entry_.start) return;
    settleOddStart();
    for (EntryRule& each : entry_.rules) {
        for (Rule& rule : each.rules) {
            if (!rule.until.empty()) rule.until = untilText(rule.until);
            const std::string text = iCalendarText(rule);
            if (text.empty())
                tell(Severity::Error, "the rule cannot be written; it is left out", each.line);
            else
                addICalendarLine(lines_, each.exclude ? "EXRULE" : "RRULE", {}, text);
        }
    }
    addDateList("RDATE", entry_.dates);
    addDateList("EXDATE", entry_.excluded);
}

void ICalEntry::addDateList(std::string_view name, const std::vector<Moment>& dates) {
    struct Form {
        bool isDate;
        Clock clock;
    };
    static constexpr Form kForms[] = {{true, Clock::Floating},
                                      {false, Clock::Floating},
                                      {false, Clock::Utc},
                                      {false, Clock::Zoned}};
    for (const Form& form : kForms) {
        std::vector<std::string> items;
        std::set<std::string> seen;
        for (const Moment& date : dates) {
            Moment moment = entry_.inClockOf(*entry_.start, date);
            // Some readers pass over the TZID of an RDATE.
            if (name == "RDATE") moment = entry_.toUtc(moment).value_or(moment);
            if (moment.isDate != form.isDate) continue;
            if (!form.isDate && moment.clock != form.clock) continue;
            const std::string item = formatMoment(moment);
            if (seen.insert(item).second) items.push_back(item);
        }
        if (items.empty()) continue;
        std::vector<Parameter> parameters;
        if (form.isDate) parameters.push_back({"VALUE", "DATE"});
        if (!form.isDate && form.clock == Clock::Zoned && entry_.zone != nullptr) {
            parameters.push_back({"TZID", entry_.zone->id()});
            usesZone_ = true;
        }
        std::string value;
        for (const std::string& item : items) value += (value.empty() ? "" : ",") + item;
        addICalendarLine(lines_, name, parameters, value);
    }
}

}  // namespace qel::calendar
