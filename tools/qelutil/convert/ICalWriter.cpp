// Entries as iCalendar 2.0.
#include <algorithm>
#include <array>
#include <ostream>

#include "convert/Ascii.h"
#include "convert/Days.h"
#include "convert/EntryWriter.h"
#include "convert/RuleText.h"
#include "convert/TextCodec.h"
#include "convert/Vocabulary.h"

namespace qel::convert {

namespace {

// Zones that one calendar describes; a file with more of them gets another calendar.
constexpr std::size_t kMostZones = 1000;

std::string valueText(const EntryProperty& property) {
    switch (property.type) {
        case EntryProperty::Type::Text:
            return escapeICalendar(property.value());
        case EntryProperty::Type::TextList: {
            std::string text;
            for (const std::string& item : property.values)
                text += (text.empty() ? "" : ",") + escapeICalendar(item);
            return text;
        }
        case EntryProperty::Type::Raw:
        case EntryProperty::Type::Base64:
            break;
    }
    return property.value();
}

std::string linesOf(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

}  // namespace

// One entry on its way out: its times are put in order, then its lines are made.
class ICalEntry {
  public:
    ICalEntry(ICalWriter& writer, const Entry& entry) : writer_(writer), entry_(entry) {}

    void write() {
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
            for (const std::string& line : entry_.zone->vTimezone()) writer_.fold(line);
        const char* name = entry_.kind == EntryKind::Event  ? "VEVENT"
                           : entry_.kind == EntryKind::Todo ? "VTODO"
                                                            : "VJOURNAL";
        writer_.put(std::string("BEGIN:") + name);
        writer_.fold(iCalendarLine("UID", {}, escapeICalendar(uid())));
        for (const std::string& line : lines_) writer_.fold(line);
        for (const std::string& line : alarmLines_) writer_.fold(line);
        writer_.put(std::string("END:") + name);
    }

  private:
    // The same entry gives the same name, whenever it is converted.
    [[nodiscard]] std::string uid() const {
        if (!entry_.uid.empty()) return entry_.uid;
        return digestOf(linesOf(lines_) + linesOf(alarmLines_)) + "@qelutil";
    }

    void tell(Severity severity, const std::string& message, std::size_t line = 0) {
        writer_.tell(severity, line == 0 ? entry_.line : line, message);
    }

    // A date of vCalendar 1.0 that iCalendar does not allow there.
    void keep(std::string_view name, const Moment& moment) {
        entry_.properties.push_back({std::string(kVCalendarPrefix) + std::string(name),
                                     {},
                                     EntryProperty::Type::Text,
                                     {formatMoment(moment)},
                                     entry_.line});
    }

    void settleStart() {
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
                                     {"VEVENT"},
                                     entry_.line});
    }

    // `moment` with the value type and clock of the start, which it must share.
    [[nodiscard]] Moment likeStart(const Moment& moment) const {
        const Moment& start = *entry_.start;
        if (moment.isDate && !start.isDate) return {moment.day, 0, false, start.clock};
        if (!moment.isDate && start.isDate) {
            Moment day = entry_.inClockOf(start, moment);
            if (moment.second != 0) ++day.day;
            return day;
        }
        return entry_.inClockOf(start, moment);
    }

    // Below 0, 0, above 0 for before, at, after the start; both on the start's clock.
    [[nodiscard]] std::int64_t afterStart(const Moment& moment) const {
        const auto utc = entry_.toUtc(moment);
        const auto startUtc = entry_.toUtc(*entry_.start);
        if (utc && startUtc) return utc->seconds() - startUtc->seconds();
        return moment.seconds() - entry_.start->seconds();
    }

    void settleEnd() {
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
            tell(Severity::Warning,
                 "the event ends before it starts; its end is kept as X-VCAL-DTEND");
        keep("DTEND", *entry_.end);
        entry_.end.reset();
    }

    void settleDue() {
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

    void addMoment(std::string_view name, const Moment& moment,
                   std::vector<Parameter> parameters = {}) {
        if (moment.isDate) {
            parameters.insert(parameters.begin(), {"VALUE", "DATE"});
        } else if (moment.clock == Clock::Zoned && entry_.zone != nullptr) {
            parameters.insert(parameters.begin(), {"TZID", entry_.zone->id()});
            usesZone_ = true;
        }
        lines_.push_back(iCalendarLine(name, parameters, formatMoment(moment)));
    }

    // Properties that iCalendar has in UTC only.
    void addUtc(std::string_view name, const std::optional<Moment>& moment) {
        if (!moment) return;
        Moment utc = entry_.toUtc(*moment).value_or(*moment);
        std::vector<Parameter> parameters;
        if (utc.clock != Clock::Utc)
            parameters.push_back({"X-VCAL-FLOATING", utc.isDate ? "DATE" : "TRUE"});
        utc.isDate = false;
        utc.clock = Clock::Utc;
        lines_.push_back(iCalendarLine(name, parameters, formatMoment(utc)));
    }

    void addDates() {
        std::optional<Moment> stamp;
        for (const auto* each :
             {&entry_.stamp, &entry_.modified, &entry_.created, &entry_.start, &entry_.due})
            if (!stamp && *each) stamp = *each;
        Moment utc = stamp ? entry_.toUtc(*stamp).value_or(*stamp) : kNoStamp;
        utc.isDate = false;
        utc.clock = Clock::Utc;
        lines_.push_back(iCalendarLine("DTSTAMP", {}, formatMoment(utc)));
        if (entry_.start) addMoment("DTSTART", *entry_.start);
        if (entry_.end) addMoment("DTEND", *entry_.end);
        if (entry_.due) addMoment("DUE", *entry_.due);
        addDuration();
        addUtc("CREATED", entry_.created);
        addUtc("LAST-MODIFIED", entry_.modified);
        if (entry_.kind == EntryKind::Todo) {
            addUtc("COMPLETED", entry_.completed);
        } else if (entry_.completed) {
            keep("COMPLETED", *entry_.completed);
        }
        if (entry_.recurrenceId) {
            std::vector<Parameter> parameters;
            if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
            addMoment("RECURRENCE-ID", *entry_.recurrenceId, parameters);
        }
    }

    void addDuration() {
        if (!entry_.duration) return;
        const bool allowed =
            !entry_.end && !entry_.due && entry_.start && entry_.duration->total() > 0;
        lines_.push_back(iCalendarLine(allowed ? "DURATION" : "X-VCAL-DURATION", {},
                                       formatDuration(*entry_.duration)));
    }

    // UNTIL is of the start's value type: a date, a local time, or UTC (RFC 5545 section 3.3.10).
    [[nodiscard]] std::string untilText(const std::string& until) const {
        const auto read = parseMoment(until);
        if (!read) return until;
        Moment moment = *read;
        const Moment& start = *entry_.start;
        if (moment.clock == Clock::Floating && start.clock != Clock::Floating && !moment.isDate)
            moment.clock = entry_.zone != nullptr ? Clock::Zoned : Clock::Utc;
        if (start.isDate) return formatMoment(entry_.inClockOf(start, moment));
        if (start.clock == Clock::Floating) {
            moment.clock = Clock::Floating;
        } else if (const auto utc = entry_.toUtc(moment)) {
            moment = *utc;
        }
        return formatMoment(moment);
    }

    void addRecurrence() {
        if (!entry_.start) return;
        for (const EntryRule& each : entry_.rules) {
            for (Rule rule : each.rules) {
                if (!rule.until.empty()) rule.until = untilText(rule.until);
                const std::string text = iCalendarText(rule);
                if (text.empty()) {
                    tell(Severity::Error, "the rule cannot be written", each.line);
                } else {
                    lines_.push_back(iCalendarLine(each.exclude ? "EXRULE" : "RRULE", {}, text));
                }
            }
        }
        addDateList("RDATE", entry_.dates);
        addDateList("EXDATE", entry_.excluded);
    }

    // One line for the dates that share a clock.
    void addDateList(std::string_view name, const std::vector<Moment>& dates) {
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
                const Moment moment = entry_.inClockOf(*entry_.start, date);
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
            lines_.push_back(iCalendarLine(name, parameters, value));
        }
    }

    // A rule that recurs within the day: no record holds it, but it is a rule of iCalendar.
    static bool isFineRule(const EntryProperty& property) {
        return (property.name == "X-ICAL-RRULE" || property.name == "X-ICAL-EXRULE") &&
               (startsWithIgnoreCase(property.value(), "FREQ=HOURLY") ||
                startsWithIgnoreCase(property.value(), "FREQ=MINUTELY") ||
                startsWithIgnoreCase(property.value(), "FREQ=SECONDLY"));
    }

    void addProperty(const EntryProperty& property) {
        if (isFineRule(property) && entry_.start) {
            lines_.push_back(
                iCalendarLine(property.name.substr(kICalendarPrefix.size()), {}, property.value()));
            return;
        }
        // Empty texts say nothing, and some readers take them for a fault.
        if (property.type == EntryProperty::Type::Text && trimmed(property.value()).empty()) return;
        const PropertyKind* kind = propertyKind(property.name);
        bool allowed = true;
        if (kind != nullptr) {
            allowed = entry_.kind == EntryKind::Event  ? kind->inEvent
                      : entry_.kind == EntryKind::Todo ? kind->inTodo
                                                       : kind->inJournal;
            if (kind->once && !writtenOnce_.insert(property.name).second) {
                allowed = false;
                tell(Severity::Warning,
                     property.name + " stands twice in this entry; it is kept as X-VCAL-" +
                         property.name,
                     property.line);
            }
        }
        if ((property.name == "ATTACH" || property.name == "URL") &&
            property.type == EntryProperty::Type::Raw && !isUri(property.value()))
            allowed = false;
        if (!allowed) {
            EntryProperty kept = property;
            kept.name = std::string(kVCalendarPrefix) + property.name;
            if (kept.type == EntryProperty::Type::Raw) kept.type = EntryProperty::Type::Text;
            lines_.push_back(iCalendarLine(kept.name, kept.parameters, valueText(kept)));
            return;
        }
        std::vector<Parameter> parameters = property.parameters;
        if (property.type == EntryProperty::Type::Base64) {
            parameters.push_back({"ENCODING", "BASE64"});
            parameters.push_back({"VALUE", "BINARY"});
        }
        lines_.push_back(iCalendarLine(property.name, parameters, valueText(property)));
    }

    // TRIGGER of an alarm; nothing when its moment cannot be told from the start's.
    [[nodiscard]] std::optional<std::string> trigger(const Alarm& alarm) const {
        if (!alarm.at) {
            std::vector<Parameter> parameters;
            if (alarm.fromEnd) parameters.push_back({"RELATED", "END"});
            return iCalendarLine("TRIGGER", parameters, formatDuration(alarm.offset));
        }
        const std::optional<Moment>& anchor = entry_.start ? entry_.start : entry_.due;
        std::vector<Parameter> parameters;
        if (!entry_.start) parameters.push_back({"RELATED", "END"});
        const auto utc = entry_.toUtc(*alarm.at);
        if (anchor && alarm.fromVCalendar) {
            const auto anchorUtc = entry_.toUtc(*anchor);
            if (utc && anchorUtc)
                return iCalendarLine("TRIGGER", parameters,
                                     formatDuration(utc->seconds() - anchorUtc->seconds()));
            Moment local = *alarm.at;
            if (local.clock == Clock::Utc && entry_.zone != nullptr)
                local = entry_.zone->toLocal(local);
            if (anchor->clock == Clock::Floating && local.clock != Clock::Utc)
                return iCalendarLine("TRIGGER", parameters,
                                     formatDuration(local.seconds() - anchor->seconds()));
        }
        if (!utc) return std::nullopt;
        return iCalendarLine("TRIGGER", {{"VALUE", "DATE-TIME"}}, formatMoment(*utc));
    }

    void keepAlarm(const Alarm& alarm) {
        const std::string name =
            std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action));
        tell(Severity::Warning,
             "the alarm's time cannot be told from the entry's; it is kept as " + name, alarm.line);
        std::string value = alarm.at ? formatMoment(*alarm.at) : "";
        if (!alarm.fields.empty()) value += ";" + alarm.fields;
        lines_.push_back(
            iCalendarLine(name, carriedParameters(alarm.parameters), escapeICalendar(value)));
    }

    [[nodiscard]] static std::vector<Parameter> carriedParameters(
        const std::vector<Parameter>& parameters) {
        std::vector<Parameter> carried;
        for (const Parameter& each : parameters) {
            const std::string name = each.name.empty() ? "PARAMETER" : each.name;
            carried.push_back({name.starts_with("X-") ? name : "X-VCAL-" + name, each.value});
        }
        return carried;
    }

    void addAlarm(const Alarm& alarm) {
        const auto when = entry_.kind == EntryKind::Journal ? std::nullopt : trigger(alarm);
        if (!when) {
            keepAlarm(alarm);
            return;
        }
        std::vector<std::string>& lines = alarmLines_;
        lines.emplace_back("BEGIN:VALARM");
        lines.push_back(*when);
        // What reading these lines will give; the rest of the alarm goes beside them.
        Alarm told;
        told.action = alarm.action;
        if (alarm.snooze && *alarm.snooze > 0 && alarm.repeat && *alarm.repeat > 0) {
            lines.push_back("DURATION:" + formatDuration(*alarm.snooze));
            lines.push_back("REPEAT:" + std::to_string(*alarm.repeat));
            told.snooze = alarm.snooze;
            told.repeat = alarm.repeat;
        }
        addAction(alarm, told, lines);
        for (const EntryProperty& other : alarm.others)
            lines.push_back(iCalendarLine(other.name, other.parameters, valueText(other)));
        if (alarm.fromVCalendar &&
            (writeAlarmFields(told) != alarm.fields || !alarm.parameters.empty()))
            lines.push_back(
                iCalendarLine(std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action)),
                              carriedParameters(alarm.parameters),
                              escapeICalendar(alarm.fields.empty() ? ";" : alarm.fields)));
        lines.emplace_back("END:VALARM");
    }

    void addAction(const Alarm& alarm, Alarm& told, std::vector<std::string>& lines) const {
        const auto description = [&] {
            const std::string text = alarm.hasText ? alarm.text : summary_;
            lines.push_back(iCalendarLine("DESCRIPTION", {}, escapeICalendar(text)));
            told.text = text;
        };
        switch (alarm.action) {
            case Alarm::Action::Audio:
            case Alarm::Action::Procedure:
                lines.emplace_back(alarm.action == Alarm::Action::Audio ? "ACTION:AUDIO"
                                                                        : "ACTION:PROCEDURE");
                addSound(alarm, told, lines);
                break;
            case Alarm::Action::Email:
                if (addressFromVCalendar(alarm.address).uri.starts_with("mailto:")) {
                    lines.emplace_back("ACTION:EMAIL");
                    lines.push_back("ATTENDEE:mailto:" + alarm.address);
                    lines.push_back(iCalendarLine(
                        "SUMMARY", {},
                        escapeICalendar(alarm.summary.empty() ? summary_ : alarm.summary)));
                    told.address = alarm.address;
                    description();
                    break;
                }
                // Nobody to write to: the person is reminded here.
                lines.emplace_back("ACTION:DISPLAY");
                description();
                break;
            case Alarm::Action::Display:
                lines.emplace_back("ACTION:DISPLAY");
                description();
                break;
            case Alarm::Action::Other:
                lines.push_back(iCalendarLine("ACTION", {}, alarm.actionName));
                if (alarm.hasText) description();
                break;
        }
    }

    void addSound(const Alarm& alarm, Alarm& told, std::vector<std::string>& lines) const {
        const bool binary = std::any_of(
            alarm.parameters.begin(), alarm.parameters.end(),
            [](const Parameter& each) { return equalsIgnoreCase(each.value, "BASE64"); });
        if (binary) {
            if (const auto clean = cleanBase64(alarm.text); clean && !clean->empty())
                lines.push_back("ATTACH;ENCODING=BASE64;VALUE=BINARY:" + *clean);
        } else if (isUri(alarm.text)) {
            lines.push_back(iCalendarLine("ATTACH", {}, alarm.text));
            told.text = alarm.text;
        }
    }

    ICalWriter& writer_;
    Entry entry_;
    bool usesZone_ = false;
    std::string summary_ = "Reminder";  // what an alarm shows that has no text
    std::vector<std::string> lines_;
    std::vector<std::string> alarmLines_;
    std::set<std::string, std::less<>> writtenOnce_;
};

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

void ICalWriter::write(const Entry& entry) {
    ICalEntry(*this, entry).write();
}

void ICalWriter::finish() {
    if (!any_) open();
    close();
}

}  // namespace qel::convert
