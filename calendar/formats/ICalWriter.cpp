#include "calendar/formats/ICalWriter.h"

#include <utility>

#include "calendar/formats/ICalEntry.h"
#include "calendar/formats/ICalSettle.h"
#include "calendar/text/ContentText.h"
#include "calendar/zones/ZoneText.h"

namespace qel::calendar {

namespace {

// Zones that one calendar describes; a file with more of them gets another calendar.
constexpr std::size_t kMostZones = 1000;

}  // namespace

void ICalWriter::calendar(const std::vector<EntryProperty>& properties) {
    header_.clear();
    for (const EntryProperty& each : properties)
        header_.push_back(iCalendarLine(each.name, each.parameters, valueText(each)));
}

void ICalWriter::open() {
    if (open_ && header_ != written_) close();
    if (open_) return;
    put("BEGIN:VCALENDAR");
    put("VERSION:2.0");
    put("PRODID:" + std::string(kProduct));
    for (const std::string& line : header_) fold(line);
    written_ = header_;
    zones_.clear();
    open_ = true;
    any_ = true;
}

void ICalWriter::close() {
    if (open_) put("END:VCALENDAR");
    open_ = false;
}

void ICalWriter::write(const Entry& read) {
    SettledEntry settled = settledForICalendar(read);
    report(std::move(settled.notes));
    const Entry& entry = settled.entry();
    lines_.clear();
    alarmLines_.clear();
    ICalEntry formatted(settled, lines_, alarmLines_);
    formatted.addLines();
    if (zones_.size() >= kMostZones) close();
    open();
    if (formatted.usesZone()) writeZone(*entry.zone);
    const char* name = entry.kind == EntryKind::Event  ? "VEVENT"
                       : entry.kind == EntryKind::Todo ? "VTODO"
                                                       : "VJOURNAL";
    beginEntry();
    text() += "BEGIN:";
    put(name);
    addICalendarLine(text(), "UID", {}, formatted.uid(), Value::Escaped);
    text() += lines_;
    text() += alarmLines_;
    text() += "END:";
    put(name);
}

void ICalWriter::writeZone(const Zone& zone) {
    if (!zones_.insert(zone.id()).second) return;
    for (const std::string& each : vTimezoneLines(zone)) fold(each);
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
