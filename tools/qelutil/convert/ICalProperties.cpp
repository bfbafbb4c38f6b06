// Properties and alarms of an entry in iCalendar.
#include <algorithm>

#include "convert/Ascii.h"
#include "convert/ICalEntry.h"
#include "convert/TextCodec.h"
#include "convert/Vocabulary.h"

namespace qel::convert {

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

void ICalEntry::addProperty(const EntryProperty& property) {
    if (isFineRule(property) && entry_.start) {
        line(lines_, property.name.substr(kICalendarPrefix.size()), {}, property.value());
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
        kept.name = std::string(kVCalendarPrefix) + property.name;
        if (kept.type == EntryProperty::Type::Raw) kept.type = EntryProperty::Type::Text;
        line(lines_, kept.name, kept.parameters, valueText(kept));
        return;
    }
    if (property.type != EntryProperty::Type::Base64) {
        line(lines_, property.name, property.parameters, valueText(property));
        return;
    }
    std::vector<Parameter> parameters = property.parameters;
    parameters.push_back({"ENCODING", "BASE64"});
    parameters.push_back({"VALUE", "BINARY"});
    line(lines_, property.name, parameters, property.value());
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
    line(lines_, name, carriedParameters(alarm.parameters), escapeICalendar(value));
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
    lines += "BEGIN:VALARM\n" + *when + "\n";
    // What reading these lines will give; the rest of the alarm goes beside them.
    Alarm told;
    told.action = alarm.action;
    if (alarm.snooze && *alarm.snooze > 0 && alarm.repeat && *alarm.repeat > 0) {
        lines += "DURATION:" + formatDuration(*alarm.snooze) + "\nREPEAT:" +
                 std::to_string(*alarm.repeat) + "\n";
        told.snooze = alarm.snooze;
        told.repeat = alarm.repeat;
    }
    addAction(alarm, told, lines);
    for (const EntryProperty& other : alarm.others)
        line(lines, other.name, other.parameters, valueText(other));
    if (alarm.fromVCalendar &&
        (writeAlarmFields(told) != alarm.fields || !alarm.parameters.empty()))
        line(lines, std::string(kVCalendarPrefix) + std::string(alarmName(alarm.action)),
                          carriedParameters(alarm.parameters),
                          escapeICalendar(alarm.fields.empty() ? ";" : alarm.fields));
    lines += "END:VALARM\n";
}

void ICalEntry::addAction(const Alarm& alarm, Alarm& told, std::string& lines) const {
    const auto description = [&] {
        const std::string text = alarm.hasText ? alarm.text : summary_;
        line(lines, "DESCRIPTION", {}, escapeICalendar(text));
        told.text = text;
    };
    switch (alarm.action) {
        case Alarm::Action::Audio:
        case Alarm::Action::Procedure:
            lines += alarm.action == Alarm::Action::Audio ? "ACTION:AUDIO\n"
                                                          : "ACTION:PROCEDURE\n";
            addSound(alarm, told, lines);
            break;
        case Alarm::Action::Email:
            if (addressFromVCalendar(alarm.address).uri.starts_with("mailto:")) {
                lines += "ACTION:EMAIL\n";
                line(lines, "ATTENDEE", {}, "mailto:" + alarm.address);
                line(lines, "SUMMARY", {},
                    escapeICalendar(alarm.summary.empty() ? summary_ : alarm.summary));
                told.address = alarm.address;
                description();
                break;
            }
            // Nobody to write to: the person is reminded here.
            lines += "ACTION:DISPLAY\n";
            description();
            break;
        case Alarm::Action::Display:
            lines += "ACTION:DISPLAY\n";
            description();
            break;
        case Alarm::Action::Other:
            line(lines, "ACTION", {}, alarm.actionName);
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
            lines += "ATTACH;ENCODING=BASE64;VALUE=BINARY:" + *clean + "\n";
    } else if (isUri(alarm.text)) {
        line(lines, "ATTACH", {}, alarm.text);
        told.text = alarm.text;
    }
}

}  // namespace qel::convert
