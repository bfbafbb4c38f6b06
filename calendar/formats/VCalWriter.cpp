// Calendars of vCalendar 1.0, and the entry that stands in them.
#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/formats/VCalEntry.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/text/ContentText.h"

namespace qel::calendar {

namespace {

// DAYLIGHT lines for an endless series reach this far.
constexpr int kYearsAhead = 10;

}  // namespace

void VCalEntry::write() {
    if (entry_.kind == EntryKind::Journal) {
        writeNote();
        return;
    }
    openCalendar();
    const EntryProperty* component = entry_.find("X-VCAL-COMPONENT");
    std::string name = entry_.kind == EntryKind::Event ? "VEVENT" : "VTODO";
    if (component != nullptr && equalsIgnoreCase(component->value(), "VEVENT")) name = "VEVENT";
    writer_.beginEntry();
    writer_.text() += "BEGIN:";
    writer_.put(name);
    if (!entry_.uid.empty()) line("UID", {}, entry_.uid);
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties) addProperty(property);
    for (const Alarm& alarm : entry_.alarms) addAlarm(alarm);
    writer_.text() += "END:";
    writer_.put(name);
}

void VCalEntry::tell(Severity severity, const std::string& message, std::size_t at) {
    writer_.tell(severity, at == 0 ? entry_.line : at, message);
}

void VCalEntry::line(std::string_view name, const std::vector<Parameter>& parameters,
                     std::string_view value) {
    addVCalendarLine(writer_.text(), name, parameters, value);
    writer_.endLine();
}

bool VCalEntry::uses(Clock clock) const {
    const auto is = [&](const Moment& moment) { return !moment.isDate && moment.clock == clock; };
    for (const auto* each : {&entry_.start, &entry_.end, &entry_.due, &entry_.completed,
                             &entry_.created, &entry_.modified, &entry_.recurrenceId})
        if (*each && is(**each)) return true;
    const auto isAlarm = [&](const Alarm& alarm) { return alarm.at && is(*alarm.at); };
    return std::any_of(entry_.dates.begin(), entry_.dates.end(), is) ||
           std::any_of(entry_.excluded.begin(), entry_.excluded.end(), is) ||
           std::any_of(entry_.alarms.begin(), entry_.alarms.end(), isAlarm);
}

void VCalEntry::openCalendar() {
    if (entry_.zone != nullptr && uses(Clock::Zoned)) {
        const auto [first, last] = years();
        writer_.open(entry_.zone, first, last);
        return;
    }
    const bool dayWithAlarm = entry_.start && entry_.start->isDate && !entry_.alarms.empty();
    const bool utcSeries = entry_.start && entry_.start->clock == Clock::Utc &&
                           (entry_.recurs() || !entry_.excluded.empty());
    if (!writer_.open_ || writer_.headerChanged_ ||
        (writer_.zone_ != nullptr && (uses(Clock::Floating) || dayWithAlarm || utcSeries)))
        writer_.open(nullptr, 0, 0);
}

std::pair<int, int> VCalEntry::years() const {
    int first = 9999;
    int last = 0;
    for (const auto* each : {&entry_.start, &entry_.end, &entry_.due, &entry_.completed,
                             &entry_.created, &entry_.modified, &entry_.recurrenceId}) {
        if (!*each) continue;
        first = std::min(first, civilOf((*each)->day).year);
        last = std::max(last, civilOf((*each)->day).year);
    }
    for (const auto* list : {&entry_.dates, &entry_.excluded})
        for (const Moment& each : *list) last = std::max(last, civilOf(each.day).year);
    if (first > last) first = last = 2000;
    if (entry_.start) {
        for (const EntryRule& each : entry_.rules) {
            for (const Rule& rule : each.rules) {
                RuleLimits limits;
                limits.most = 10000;
                limits.lastYear = std::min(civilOf(entry_.start->day).year + 30, 2499);
                const int end = rule.endless() ? civilOf(entry_.start->day).year + kYearsAhead
                                               : lastYear(rule, limits);
                last = std::max(last, end);
            }
        }
    }
    return {first, std::min(last, first + 50)};
}

int VCalEntry::lastYear(const Rule& rule, const RuleLimits& limits) const {
    const std::vector<int> days = expandRule(rule, entry_.ruleStart(), limits);
    return days.empty() ? 0 : civilOf(days.back()).year;
}

void VCalEntry::writeNote() {
    writer_.close();
    writer_.any_ = true;
    writer_.beginEntry();
    writer_.put("BEGIN:VNOTE");
    writer_.put("VERSION:1.1");
    if (!entry_.uid.empty()) line("UID", {}, entry_.uid);
    std::string body;
    for (const EntryProperty& each : entry_.properties)
        if (each.name == "DESCRIPTION") body += (body.empty() ? "" : "\n\n") + each.value();
    line("BODY", {}, body);
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties)
        if (property.name != "DESCRIPTION") addProperty(property);
    for (const Alarm& alarm : entry_.alarms) addAlarm(alarm);
    writer_.put("END:VNOTE");
}

void VCalWriter::calendar(const std::vector<EntryProperty>& properties) {
    std::vector<EntryProperty> kept = properties;
    std::erase_if(kept, [](const EntryProperty& each) { return each.value().empty(); });
    std::vector<std::string> before;
    std::vector<std::string> now;
    for (const EntryProperty& each : header_)
        before.push_back(vCalendarLine(each.name, each.parameters, each.value()));
    for (const EntryProperty& each : kept)
        now.push_back(vCalendarLine(each.name, each.parameters, each.value()));
    headerChanged_ = headerChanged_ || before != now;
    header_ = std::move(kept);
}

void VCalWriter::open(const ZonePtr& zone, int firstYear, int lastYear) {
    const bool sameZone =
        zone_ == zone || (zone_ != nullptr && zone != nullptr && zone_->id() == zone->id());
    const bool covered = zone == nullptr || zone->sameInAllYears() ||
                         (firstYear >= firstYear_ && lastYear <= lastYear_);
    if (open_ && !headerChanged_ && sameZone && covered) return;
    close();
    put("BEGIN:VCALENDAR");
    put("VERSION:1.0");
    put("PRODID:" + std::string(kProduct));
    // Some years more, so that the entries that follow find room.
    firstYear_ = firstYear;
    lastYear_ = std::max(lastYear, firstYear + kYearsAhead);
    if (zone != nullptr)
        for (const auto& [name, value] : zone->vCalendarLines(firstYear_, lastYear_))
            put(vCalendarLine(name, {}, value));
    for (const EntryProperty& each : header_) {
        const std::string name = each.name.starts_with(kVCalendarPrefix)
                                     ? each.name.substr(kVCalendarPrefix.size())
                                 : each.name.starts_with("X-") || each.name == "GEO"
                                     ? each.name
                                     : std::string(kICalendarPrefix) + each.name;
        put(vCalendarLine(name, parametersToVCalendar(each.parameters), each.value()));
    }
    zone_ = zone;
    open_ = true;
    any_ = true;
    headerChanged_ = false;
}

void VCalWriter::close() {
    if (open_) put("END:VCALENDAR");
    open_ = false;
}

void VCalWriter::write(Entry& entry) {
    VCalEntry(*this, entry).write();
}

void VCalWriter::finish() {
    if (!any_) open(nullptr, 0, 0);
    close();
    flush();
}

}  // namespace qel::calendar
