// Properties and alarms of an entry in vCalendar 1.0.
#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/formats/VCalEntry.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

bool isVCalendarName(PropertyName name) {
    switch (name) {
        case PropertyName::Attach:
        case PropertyName::Attendee:
        case PropertyName::Categories:
        case PropertyName::Class:
        case PropertyName::Description:
        case PropertyName::Geo:
        case PropertyName::Location:
        case PropertyName::Priority:
        case PropertyName::RelatedTo:
        case PropertyName::Resources:
        case PropertyName::Sequence:
        case PropertyName::Status:
        case PropertyName::Summary:
        case PropertyName::Transp:
        case PropertyName::Url:
            return true;
        default:
            return false;
    }
}

std::string_view parameterOf(const std::vector<Parameter>& parameters, std::string_view name) {
    for (const Parameter& each : parameters)
        if (each.name == name) return each.value;
    return {};
}

}  // namespace

std::vector<Parameter> parametersToVCalendar(const std::vector<Parameter>& parameters) {
    std::vector<Parameter> result;
    for (const Parameter& each : parameters)
        if (each.name == "X-VCAL-PARAMETER")
            result.push_back({"", each.value});
        else if (each.name.starts_with(kVCalendarPrefix))
            result.push_back({each.name.substr(kVCalendarPrefix.size()), each.value});
        else if (each.name.starts_with("X-") || each.name == "LANGUAGE")
            result.push_back(each);
        else
            result.push_back({std::string(kICalendarPrefix) + each.name, each.value});
    return result;
}

void VCalEntry::addProperty(const EntryProperty& property) {
    const std::string& name = property.name;
    const PropertyName id = propertyName(name);
    // Where there is no value, parsers of the time take the next line for it.
    if (name == "X-VCAL-COMPONENT" || property.value().empty()) return;
    if (name.starts_with(kVCalendarPrefix)) {
        const std::string own = name.substr(kVCalendarPrefix.size());
        // Texts of vCalendar 1.0 come back as they were.
        line(own, parametersToVCalendar(property.parameters), property.value());
    } else if (id == PropertyName::Status) {
        addStatus(property);
    } else if (id == PropertyName::Transp) {
        if (ownTransparency_) return;
        line(name, parametersToVCalendar(property.parameters),
             equalsIgnoreCase(property.value(), "TRANSPARENT") ? "1" : "0");
    } else if (id == PropertyName::Geo) {
        addPosition(property);
    } else if (id == PropertyName::Attendee) {
        addAttendee(property);
    } else if (id == PropertyName::Attach) {
        addAttachment(property);
    } else if (property.type == EntryProperty::Type::TextList) {
        addList(property);
    } else if (property.type == EntryProperty::Type::Text && isVCalendarName(id)) {
        line(name, parametersToVCalendar(property.parameters),
             escapeVCalendar(property.value(), ""));
    } else if (isVCalendarName(id) || name.starts_with("X-")) {
        line(name, parametersToVCalendar(property.parameters), property.value());
    } else {
        line(std::string(kICalendarPrefix) + name, parametersToVCalendar(property.parameters),
             property.value());
    }
}

void VCalEntry::addList(const EntryProperty& property) {
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    std::string value;
    for (const std::string& item : property.items) {
        if (!value.empty()) value += ';';
        value += escapeVCalendar(item, ";,");
        // A backslash at an item's end would swallow the semicolon behind it.
        if (item.ends_with('\\')) {
            line(property.name, parameters, value);
            value.clear();
        }
    }
    if (!value.empty()) line(property.name, parameters, value);
}

void VCalEntry::addStatus(const EntryProperty& property) {
    const std::string_view own = statusToVCalendar(property.value(), entry_.kind);
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (!own.empty()) {
        line("STATUS", parameters, own);
        return;
    }
    line("X-ICAL-STATUS", parameters, property.value());
    if (equalsIgnoreCase(property.value(), "CANCELLED"))
        tell(Severity::Warning,
             "vCalendar 1.0 cannot say that an entry is cancelled; it is kept as X-ICAL-STATUS",
             property.line);
}

void VCalEntry::addPosition(const EntryProperty& property) {
    const std::string& value = property.value();
    const std::size_t middle = value.find(';');
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (middle == std::string::npos) {
        line("X-ICAL-GEO", parameters, value);
    } else {
        line("GEO", parameters,
             std::string(trimmed(value.substr(middle + 1))) + "," +
                 std::string(trimmed(value.substr(0, middle))));
    }
}

void VCalEntry::addAttendee(const EntryProperty& property) {
    std::vector<Parameter> parameters;
    const std::string_view ownStatus = parameterOf(property.parameters, "X-VCAL-STATUS");
    const std::string_view ownRole = parameterOf(property.parameters, "X-VCAL-ROLE");
    std::string_view name;
    std::string_view address;
    for (const Parameter& each : property.parameters) {
        if (each.name == "CN") {
            name = each.value;
        } else if (each.name == "X-VCAL-ADDRESS") {
            address = each.value;
        } else if (each.name == "RSVP") {
            parameters.push_back({"RSVP", equalsIgnoreCase(each.value, "TRUE") ? "YES" : "NO"});
        } else if (each.name == "ROLE") {
            if (ownRole.empty()) addWord("ROLE", roleToVCalendar(each.value), each, parameters);
        } else if (each.name == "PARTSTAT") {
            if (ownStatus.empty())
                addWord("STATUS", participationToVCalendar(each.value), each, parameters);
        } else {
            for (const Parameter& back : parametersToVCalendar({each})) parameters.push_back(back);
        }
    }
    const std::string value = address.empty()
                                  ? addressToVCalendar({std::string(name), property.value()})
                                  : std::string(address);
    line("ATTENDEE", parameters, value);
}

void VCalEntry::addWord(std::string_view name, std::string_view word, const Parameter& parameter,
                        std::vector<Parameter>& parameters) {
    if (word.empty())
        parameters.push_back({std::string(kICalendarPrefix) + parameter.name, parameter.value});
    else
        parameters.push_back({std::string(name), std::string(word)});
}

void VCalEntry::addAttachment(const EntryProperty& property) {
    std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (property.type == EntryProperty::Type::Base64) {
        parameters.push_back({"VALUE", "INLINE"});
        parameters.push_back({"ENCODING", "BASE64"});
        writer_.put(vCalendarBase64("ATTACH", parameters, property.value()));
        return;
    }
    const std::string& value = property.value();
    const bool hasValue = !parameterOf(parameters, "VALUE").empty();
    if (startsWithIgnoreCase(value, "cid:")) {
        if (!hasValue) parameters.push_back({"VALUE", "CONTENT-ID"});
        line("ATTACH", parameters, "<" + value.substr(4) + ">");
    } else {
        if (!hasValue) parameters.push_back({"VALUE", "URL"});
        line("ATTACH", parameters, value);
    }
}

std::optional<Moment> VCalEntry::alarmMoment(const Alarm& alarm) const {
    if (alarm.at) return alarm.at;
    std::optional<Moment> anchor = entry_.start;
    if (alarm.fromEnd || !anchor) {
        const std::optional<Moment>& end = entry_.kind == EntryKind::Todo ? entry_.due : entry_.end;
        if (end) anchor = end;
    }
    if (!anchor) return std::nullopt;
    Moment moment = later(*anchor, alarm.offset);
    moment.isDate = false;
    return moment;
}

void VCalEntry::addAlarm(const Alarm& alarm) {
    const auto when = alarmMoment(alarm);
    if (alarm.action == Alarm::Action::Other || !when) {
        tell(Severity::Warning,
             alarm.action == Alarm::Action::Other
                 ? "vCalendar 1.0 has no alarm " + quoted(alarm.actionName) + "; it is left out"
                 : "the alarm has nothing that it could be relative to; it is left out",
             alarm.line);
        return;
    }
    std::string lost;
    for (const EntryProperty& other : alarm.others) lost += (lost.empty() ? "" : ", ") + other.name;
    if (!lost.empty())
        tell(Severity::Warning, "an alarm of vCalendar 1.0 has no room for " + lost + "; left out",
             alarm.line);
    std::string value = formatMoment(*when);
    const std::string fields = alarm.fromVCalendar ? alarm.fields : writeAlarmFields(alarm);
    if (!fields.empty()) value += ";" + fields;
    const std::string name(alarmName(alarm.action));
    std::vector<Parameter> parameters = alarm.parameters;
    const bool takesUri =
        alarm.action == Alarm::Action::Audio || alarm.action == Alarm::Action::Procedure;
    if (takesUri && isUri(alarm.text) && parameterOf(parameters, "VALUE").empty())
        parameters.push_back({"VALUE", "URL"});
    const bool binary =
        std::any_of(alarm.parameters.begin(), alarm.parameters.end(),
                    [](const Parameter& each) { return equalsIgnoreCase(each.value, "BASE64"); });
    if (binary) {
        // The fields before the sound stand on the first line.
        writer_.put(vCalendarBase64(name, parameters, value));
    } else {
        line(name, parameters, value);
    }
}

}  // namespace qel::calendar
