// Properties and alarms of an entry in iCalendar.
#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/formats/ICalEntry.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

std::string valueText(const EntryProperty& property) {
    switch (property.type) {
        case EntryProperty::Type::Text:
            return escapeICalendar(property.value());
        case EntryProperty::Type::TextList: {
            std::string text;
            for (const std::string& item : property.items)
                text += (text.empty() ? "" : ",") + escapeICalendar(item);
            return text;
        }
        case EntryProperty::Type::Raw:
        case EntryProperty::Type::Base64:
            break;
    }
    return property.value();
}

bool ICalEntry::isFineRule(const EntryProperty& property) {
    return (property.name == "X-ICAL-RRULE" || property.name == "X-ICAL-EXRULE") &&
           (startsWithIgnoreCase(property.value(), "FREQ=HOURLY") ||
            startsWithIgnoreCase(property.value(), "FREQ=MINUTELY") ||
            startsWithIgnoreCase(property.value(), "FREQ=SECONDLY"));
}

void ICalEntry::addLine(const EntryProperty& property, std::string_view name,
                        const std::vector<Parameter>& parameters) {
    if (property.type == EntryProperty::Type::TextList)
        return addICalendarLine(lines_, name, parameters, valueText(property));
    addICalendarLine(lines_, name, parameters, property.text,
                     property.type == EntryProperty::Type::Text ? Value::Escaped : Value::AsItIs);
}

void ICalEntry::addProperty(const EntryProperty& property) {
    if (isFineRule(property) && entry_.start) {
        addICalendarLine(lines_, property.name.substr(kICalendarPrefix.size()), {},
                         property.value());
        return;
    }
    // Empty texts say nothing, and some readers take them for a fault.
    if (property.type == EntryProperty::Type::Text && trimmed(property.value()).empty()) return;
    const PropertyName id = propertyName(property.name);
    const PropertyKind* kind = propertyKind(id);
    bool allowed = true;
    if (kind != nullptr) {
        allowed = entry_.kind == EntryKind::Event  ? kind->inEvent
                  : entry_.kind == EntryKind::Todo ? kind->inTodo
                                                   : kind->inJournal;
        if (kind->once && writtenOnce_.test(static_cast<std::size_t>(id))) {
            allowed = false;
            tell(Severity::Warning,
                 property.name + " stands twice in this entry; it is kept as X-VCAL-" +
                     property.name,
                 property.line);
        } else if (kind->once) {
            writtenOnce_.set(static_cast<std::size_t>(id));
        }
    }
    if ((id == PropertyName::Attach || id == PropertyName::Url) &&
        property.type == EntryProperty::Type::Raw && !isUri(property.value()))
        allowed = false;
    if (!allowed) {
        EntryProperty kept = property;
        if (kept.type == EntryProperty::Type::Raw) kept.type = EntryProperty::Type::Text;
        addLine(kept, std::string(kVCalendarPrefix) + property.name, kept.parameters);
        return;
    }
    if (property.type != EntryProperty::Type::Base64)
        return addLine(property, property.name, property.parameters);
    std::vector<Parameter> parameters = property.parameters;
    parameters.push_back({"ENCODING", "BASE64"});
    parameters.push_back({"VALUE", "BINARY"});
    addLine(property, property.name, parameters);
}

std::optional<std::string> ICalEntry::trigger(const Alarm& alarm) const {
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

void ICalEntry::keepAlarm(const Alarm& alarm) {
    const std::string name = std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action));
    tell(Severity::Warning,
         "the alarm's time cannot be told from the entry's; it is kept as " + name, alarm.line);
    std::string value = alarm.at ? formatMoment(*alarm.at) : "";
    if (!alarm.fields.empty()) value += ";" + alarm.fields;
    addICalendarLine(lines_, name, carriedParameters(alarm.parameters), value, Value::Escaped);
}

std::vector<Parameter> ICalEntry::carriedParameters(const std::vector<Parameter>& parameters) {
    std::vector<Parameter> carried;
    for (const Parameter& each : parameters) {
        const std::string name = each.name.empty() ? "PARAMETER" : each.name;
        carried.push_back({name.starts_with("X-") ? name : "X-VCAL-" + name, each.value});
    }
    return carried;
}

void ICalEntry::addAlarm(const Alarm& alarm) {
    const auto when = entry_.kind == EntryKind::Journal ? std::nullopt : trigger(alarm);
    if (!when) {
        keepAlarm(alarm);
        return;
    }
    std::string& lines = alarmLines_;
    lines += "BEGIN:VALARM\r\n";
    lines += *when;
    lines += "\r\n";
    // What reading these lines will give; the rest of the alarm goes beside them.
    Alarm told;
    told.action = alarm.action;
    if (alarm.snooze && *alarm.snooze > 0 && alarm.repeat && *alarm.repeat > 0) {
        addICalendarLine(lines, "DURATION", {}, formatDuration(*alarm.snooze));
        addICalendarLine(lines, "REPEAT", {}, std::to_string(*alarm.repeat));
        told.snooze = alarm.snooze;
        told.repeat = alarm.repeat;
    }
    addAction(alarm, told, lines);
    for (const EntryProperty& other : alarm.others)
        addICalendarLine(lines, other.name, other.parameters, valueText(other));
    if (alarm.fromVCalendar &&
        (writeAlarmFields(told) != alarm.fields || !alarm.parameters.empty()))
        addICalendarLine(lines,
                         std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action)),
                         carriedParameters(alarm.parameters),
                         escapeICalendar(alarm.fields.empty() ? ";" : alarm.fields));
    lines += "END:VALARM\r\n";
}

void ICalEntry::addAction(const Alarm& alarm, Alarm& told, std::string& lines) const {
    const auto description = [&] {
        told.text = alarm.hasText ? std::string_view(alarm.text) : summary_;
        addICalendarLine(lines, "DESCRIPTION", {}, told.text, Value::Escaped);
    };
    switch (alarm.action) {
        case Alarm::Action::Audio:
        case Alarm::Action::Procedure:
            lines +=
                alarm.action == Alarm::Action::Audio ? "ACTION:AUDIO\r\n" : "ACTION:PROCEDURE\r\n";
            addSound(alarm, told, lines);
            break;
        case Alarm::Action::Email:
            if (addressFromVCalendar(alarm.address).uri.starts_with("mailto:")) {
                lines += "ACTION:EMAIL\r\n";
                addICalendarLine(lines, "ATTENDEE", {}, "mailto:" + alarm.address);
                addICalendarLine(lines, "SUMMARY", {},
                                 alarm.summary.empty() ? summary_ : std::string_view(alarm.summary),
                                 Value::Escaped);
                told.address = alarm.address;
                description();
                break;
            }
            // Nobody to write to: the person is reminded here.
            lines += "ACTION:DISPLAY\r\n";
            description();
            break;
        case Alarm::Action::Display:
            lines += "ACTION:DISPLAY\r\n";
            description();
            break;
        case Alarm::Action::Other:
            addICalendarLine(lines, "ACTION", {}, alarm.actionName);
            if (alarm.hasText) description();
            break;
    }
}

void ICalEntry::addSound(const Alarm& alarm, Alarm& told, std::string& lines) const {
    const bool binary =
        std::any_of(alarm.parameters.begin(), alarm.parameters.end(),
                    [](const Parameter& each) { return equalsIgnoreCase(each.value, "BASE64"); });
    if (binary) {
        if (const auto clean = cleanBase64(alarm.text); clean && !clean->empty())
            addICalendarLine(lines, "ATTACH", {{"ENCODING", "BASE64"}, {"VALUE", "BINARY"}},
                             *clean);
    } else if (isUri(alarm.text)) {
        addICalendarLine(lines, "ATTACH", {}, alarm.text);
        told.text = alarm.text;
    }
}

}  // namespace qel::calendar
