#include "calendar/formats/ICalWriter.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Days.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/formats/ICalEntry.h"
#include "calendar/formats/ICalSettle.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Digest.h"
#include "calendar/zones/ZoneText.h"

namespace qel::calendar {

namespace {

// Zones that one calendar describes; a file with more of them gets another calendar.
constexpr std::size_t kMostZones = 1000;
// Zones are described from then on, from earlier on for an earlier entry.
constexpr int kUsualFirstYear = 1970;
// So long the clocks of two zones have to agree for a series without an end.
constexpr int kLastYearCompared = 2099;

// The entry's own, or one made of its lines: the same entry gives the same, whenever it is
// converted.
std::string uidOf(const EntryDraft& draft) {
    const Entry& read = draft.settled->read();
    const std::string& own = draft.settled->entry().uid;
    if (!own.empty()) return own;
    if (!read.madeUid.empty()) return read.madeUid;
    return digestOf(unfolded(draft.lines) + unfolded(draft.alarmLines)) + "@qelutil";
}

}  // namespace

void ICalWriter::calendar(const std::vector<EntryProperty>& properties) {
    std::vector<std::string> lines;
    std::string method;
    for (const EntryProperty& each : properties) {
        lines.push_back(iCalendarLine(each.name, each.parameters, valueText(each)));
        if (each.name == "METHOD") method = lines.back();
    }
    // A method is about all entries of its calendar.
    if (any_ && method == method_) return reportDifferent(header_, lines, properties);
    close();
    header_ = std::move(lines);
    method_ = std::move(method);
}

void ICalWriter::open() {
    if (open_) return;
    put("BEGIN:VCALENDAR");
    put("VERSION:2.0");
    put("PRODID:" + std::string(kProduct));
    for (const std::string& line : header_) fold(line);
    zones_.clear();
    open_ = true;
    any_ = true;
}

void ICalWriter::close() {
    if (open_) put("END:VCALENDAR");
    open_ = false;
}

void ICalWriter::draft(const Entry& read, EntryDraft& draft) const {
    settleForICalendar(draft.settled.emplace(read));
    draft.lines.clear();
    draft.alarmLines.clear();
    ICalEntry formatted(*draft.settled, draft.lines, draft.alarmLines);
    formatted.addLines();
    draft.usesZone = formatted.usesZone();
    // An export has a DTSTAMP of its own, on the first line.
    const std::string_view lines = draft.lines;
    const std::string_view content = lines.substr(std::min(lines.find('\n'), lines.size()));
    draft.content = contentDigest({content, draft.alarmLines});
}

void ICalWriter::add(EntryDraft& draft) {
    report(std::move(draft.settled->notes));
    const Entry& entry = draft.settled->entry();
    const Verdict verdict = judge(draft);
    if (verdict.twice) return beginEntry();
    if (zones_.size() >= kMostZones || (draft.usesZone && !holdsZoneOf(entry))) close();
    open();
    if (draft.usesZone) writeZoneOf(entry);
    const char* name = entry.kind == EntryKind::Event  ? "VEVENT"
                       : entry.kind == EntryKind::Todo ? "VTODO"
                                                       : "VJOURNAL";
    beginEntry();
    text() += "BEGIN:";
    put(name);
    addICalendarLine(text(), "UID", {}, verdict.uid.empty() ? uidOf(draft) : verdict.uid,
                     Value::Escaped);
    text() += draft.lines;
    text() += draft.alarmLines;
    text() += "END:";
    put(name);
}

bool ICalWriter::holdsZoneOf(const Entry& entry) const {
    const auto found = zones_.find(entry.zone->id());
    if (found == zones_.end()) return true;
    const auto& [zone, since] = found->second;
    if (since != 0 && !sameBefore(*zone, firstYearOf(entry), since)) return false;
    if (zone == entry.zone) return true;
    // The same name may mean another zone in another file. No matter while the clocks agree.
    const Years years = yearsOf(entry, kLastYearCompared);
    return agree(*zone, *entry.zone, yearBegin(years.first), yearBegin(years.last + 1));
}

void ICalWriter::writeZoneOf(const Entry& entry) {
    const Zone& zone = *entry.zone;
    if (zones_.contains(zone.id())) return;
    int since = 0;
    if (isDescribedByChanges(zone)) since = std::min(kUsualFirstYear, firstYearOf(entry));
    for (const std::string& each : vTimezoneLines(zone, since)) fold(each);
    zones_.emplace(zone.id(), DescribedZone{entry.zone, since});
}

void ICalWriter::fold(std::string_view line) {
    addFolded(text(), line);
    endLine();
}

void ICalWriter::finish() {
    if (!any_) open();
    close();
    flush();
}

}  // namespace qel::calendar
