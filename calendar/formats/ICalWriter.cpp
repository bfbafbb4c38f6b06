// Calendars of iCalendar 2.0, and the entry that stands in them.
#include "calendar/base/Ascii.h"
#include "calendar/formats/ICalEntry.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Digest.h"

namespace qel::calendar {

namespace {

// Zones that one calendar describes; a file with more of them gets another calendar.
constexpr std::size_t kMostZones = 1000;

}  // namespace

void ICalEntry::write() {
    settleStart();
    settleEnd();
    settleDue();
    if (entry_.kind == EntryKind::Journal) entry_.duration.reset();
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties) addProperty(property);
    const EntryProperty* summary = entry_.find("SUMMARY");
    if (summary != nullptr && !trimmed(summary->value()).empty()) summary_ = summary->value();
    for (const Alarm& alarm : entry_.alarms) addAlarm(alarm);
    if (writer_.zones_.size() >= kMostZones) writer_.close();
    writer_.open();
    if (usesZone_ && writer_.zones_.insert(entry_.zone->id()).second)
        for (const std::string& each : entry_.zone->vTimezone()) writer_.fold(each);
    const char* name = entry_.kind == EntryKind::Event  ? "VEVENT"
                       : entry_.kind == EntryKind::Todo ? "VTODO"
                                                        : "VJOURNAL";
    writer_.beginEntry();
    writer_.text() += "BEGIN:";
    writer_.put(name);
    addICalendarLine(writer_.text(), "UID", {}, uid(), Value::Escaped);
    writer_.text() += lines_;
    writer_.text() += alarmLines_;
    writer_.text() += "END:";
    writer_.put(name);
}

std::string ICalEntry::uid() const {
    if (!entry_.uid.empty()) return entry_.uid;
    return digestOf(unfolded(lines_) + unfolded(alarmLines_)) + "@qelutil";
}

void ICalEntry::tell(Severity severity, const std::string& message, std::size_t at) {
    writer_.tell(severity, at == 0 ? entry_.line : at, message);
}

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

void ICalWriter::write(Entry& entry) {
    lines_.clear();
    alarmLines_.clear();
    ICalEntry(*this, entry, lines_, alarmLines_).write();
}

void ICalWriter::finish() {
    if (!any_) open();
    close();
    flush();
}

}  // namespace qel::calendar
