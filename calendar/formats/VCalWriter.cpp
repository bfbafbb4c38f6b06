#include "calendar/formats/VCalWriter.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/formats/VCalEntry.h"
#include "calendar/formats/VCalSettle.h"
#include "calendar/text/ContentText.h"
#include "calendar/zones/ZoneText.h"

namespace qel::calendar {

namespace {

// DAYLIGHT lines reach this far: the last year of many a phone's clock. So the entries that follow
// need no calendar of their own.
constexpr int kLastPhoneYear = 2037;
// But for so many years for a series without an end.
constexpr int kYearsAhead = 10;
// The last year of such a series.
constexpr int kEndless = 2499;
// More years of an entry are not described.
constexpr int kMostYears = 100;

bool uses(const Entry& entry, Clock clock) {
    const auto is = [&](const Moment& moment) { return !moment.isDate && moment.clock == clock; };
    for (const auto* each : {&entry.start, &entry.end, &entry.due, &entry.completed, &entry.created,
                             &entry.modified, &entry.recurrenceId})
        if (*each && is(**each)) return true;
    const auto isAlarm = [&](const Alarm& alarm) { return alarm.at && is(*alarm.at); };
    return std::any_of(entry.dates.begin(), entry.dates.end(), is) ||
           std::any_of(entry.excluded.begin(), entry.excluded.end(), is) ||
           std::any_of(entry.alarms.begin(), entry.alarms.end(), isAlarm);
}

// True for an event with times that read as whole days in a calendar of `zone`.
bool readsAsDays(const Entry& entry, const ZonePtr& zone) {
    constexpr int kLastMinute = 86340;
    constexpr int kLastSecond = 86399;
    if (entry.kind != EntryKind::Event || !entry.start || entry.start->isDate || !entry.end)
        return false;
    const auto local = [&](const Moment& moment) {
        return moment.clock == Clock::Utc && zone != nullptr ? zone->toLocal(moment) : moment;
    };
    const Moment start = local(*entry.start);
    const int last = local(*entry.end).second;
    return start.second == 0 && start.clock != Clock::Utc &&
           (last == 0 || last == kLastMinute || last == kLastSecond) &&
           entry.wholeDaysSaid().what == Entry::WholeDays::Unsaid;
}

}  // namespace

void VCalWriter::openFor(const Entry& entry) {
    if (entry.zone != nullptr && uses(entry, Clock::Zoned)) {
        const Years years = yearsOf(entry, kEndless);
        const int last = years.last == kEndless
                             ? std::max(kLastPhoneYear, years.first + kYearsAhead)
                             : std::min(years.last, years.first + kMostYears);
        open(entry.zone, years.first, last);
        if (years.last > lastYear_) reportEndOfLines(entry);
        return;
    }
    const bool dayWithAlarm = entry.start && entry.start->isDate && !entry.alarms.empty();
    const bool utcSeries = entry.start && entry.start->clock == Clock::Utc &&
                           (entry.recurs() || !entry.excluded.empty());
    if (!open_ || (zone_ != nullptr && (uses(entry, Clock::Floating) || dayWithAlarm || utcSeries)))
        open(nullptr, 0, 0);
}

// Of the first series of the calendar that goes on after the DAYLIGHT lines.
void VCalWriter::reportEndOfLines(const Entry& entry) {
    if (std::exchange(endReported_, true)) return;
    report({Note(NoteCode::DaylightLinesEnd, entry.line,
                 {std::to_string(lastYear_), entry.zone->id()})});
}

void VCalWriter::writeNote(const std::string& lines) {
    close();
    any_ = true;
    beginEntry();
    put("BEGIN:VNOTE");
    put("VERSION:1.1");
    text() += lines;
    put("END:VNOTE");
}

void VCalWriter::calendar(const std::vector<EntryProperty>& properties) {
    std::vector<EntryProperty> kept = properties;
    std::erase_if(kept, [](const EntryProperty& each) { return each.value().empty(); });
    std::vector<std::string> lines;
    std::string method;
    for (const EntryProperty& each : kept) {
        lines.push_back(vCalendarLine(each.name, each.parameters, each.value()));
        if (each.name == "METHOD") method = lines.back();
    }
    if (any_ && method == method_) return reportDifferent(headerLines_, lines, kept);
    close();
    method_ = std::move(method);
    headerLines_ = std::move(lines);
    header_ = std::move(kept);
}

void VCalWriter::open(const ZonePtr& zone, int firstYear, int lastYear) {
    const bool sameZone =
        zone_ == zone || (zone_ != nullptr && zone != nullptr && zone_->id() == zone->id());
    const bool covered = zone == nullptr || (firstYear >= firstYear_ && lastYear <= lastYear_);
    if (open_ && sameZone && covered) return;
    close();
    put("BEGIN:VCALENDAR");
    put("VERSION:1.0");
    put("PRODID:" + std::string(kProduct));
    if (zone != nullptr) {
        const VCalendarZone lines = vCalendarZone(*zone, firstYear, lastYear, kLastPhoneYear);
        firstYear_ = lines.first;
        lastYear_ = lines.last;
        for (const auto& [name, value] : lines.lines) put(vCalendarLine(name, {}, value));
        if (hasOwnName(*zone)) put(vCalendarLine(kZoneName, {}, zone->id()));
        endReported_ = false;
    }
    for (const EntryProperty& each : header_) {
        const std::string name = each.name.starts_with(kVCalendarPrefix)
                                     ? std::string(restoredName(each.name, kVCalendarPrefix))
                                 : each.name.starts_with("X-") || each.name == "GEO"
                                     ? each.name
                                     : std::string(kICalendarPrefix) + each.name;
        put(vCalendarLine(name, parametersToVCalendar(each.parameters), each.value()));
    }
    zone_ = zone;
    open_ = true;
    any_ = true;
}

void VCalWriter::close() {
    if (open_) put("END:VCALENDAR");
    open_ = false;
}

void VCalWriter::draft(const Entry& read, EntryDraft& draft) const {
    settleForVCalendar(draft.settled.emplace(read));
    addLines(draft);
    // An export has a DTSTAMP of its own, and may have made the UID, which comes first.
    std::string_view lines = draft.lines;
    if (!read.uid.empty()) lines.remove_prefix(lines.find('\n') + 1);
    const std::size_t stamp = std::min(lines.find("X-ICAL-DTSTAMP:"), lines.size());
    const std::size_t rest = std::min(lines.find('\n', stamp), lines.size());
    // What a local time means stands in the calendar's lines and not in the entry's.
    const std::string_view zone =
        read.zone != nullptr && uses(read, Clock::Zoned) ? read.zone->id() : std::string_view();
    draft.content = contentDigest({lines.substr(0, stamp), lines.substr(rest), zone});
}

void VCalWriter::add(EntryDraft& draft) {
    SettledEntry& settled = *draft.settled;
    const Entry& read = settled.read();
    report(std::move(settled.notes));
    const Verdict verdict = judge(draft);
    if (verdict.twice) return beginEntry();
    // This format demands no UID of an entry that came without one.
    if (!verdict.uid.empty() && !read.uid.empty()) {
        settled.change().uid = verdict.uid;
        addLines(draft);
    }
    if (read.kind == EntryKind::Journal) return writeNote(draft.lines);
    openFor(read);
    const EntryProperty* component = settled.entry().find("X-VCAL-COMPONENT");
    const bool isEvent = read.kind == EntryKind::Event ||
                         (component != nullptr && equalsIgnoreCase(component->value(), "VEVENT"));
    const char* name = isEvent ? "VEVENT" : "VTODO";
    beginEntry();
    text() += "BEGIN:";
    put(name);
    text() += draft.lines;
    if (readsAsDays(settled.entry(), zone_)) put("X-ALLDAY:0");
    text() += "END:";
    put(name);
}

void VCalWriter::addLines(EntryDraft& draft) {
    draft.lines.clear();
    VCalEntry formatted(*draft.settled, draft.lines);
    if (draft.settled->entry().kind == EntryKind::Journal)
        formatted.addNoteLines();
    else
        formatted.addLines();
}

void VCalWriter::finish() {
    if (!any_) open(nullptr, 0, 0);
    close();
    flush();
}

}  // namespace qel::calendar
