#include "calendar/formats/VCalEntry.h"

#include "calendar/base/Ascii.h"
#include "calendar/formats/AlarmText.h"
#include "calendar/formats/EntryWriter.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

// Dates on one RDATE or EXDATE line; phones have short line buffers.
constexpr std::size_t kDatesOnLine = 4;

std::string_view parameterOf(const std::vector<Parameter>& parameters, std::string_view name) {
    for (const Parameter& each : parameters)
        if (each.name == name) return each.value;
    return {};
}

bool isOwn(PropertyName id) {
    const Property& known = propertyOf(id);
    return known.held == HeldAs::Property && known.isOf(Property::kVCalendar);
}

// A property's name in vCalendar 1.0, with a prefix where it has none of its own.
std::string nameInVCalendar(const std::string& name, PropertyName id) {
    // A zone of its own changes the times of an entry.
    if (name == "X-VCAL-TZ"sv || name == "X-VCAL-DAYLIGHT"sv) return name;
    if (name.starts_with(kVCalendarPrefix))
        return std::string(restoredName(name, kVCalendarPrefix));
    return isOwn(id) || name.starts_with("X-") ? name : std::string(kICalendarPrefix) + name;
}

}  // namespace

std::vector<Parameter> parametersToVCalendar(const std::vector<Parameter>& parameters) {
    std::vector<Parameter> result;
    for (const Parameter& each : parameters)
        if (each.name == "X-VCAL-PARAMETER"sv)
            result.push_back({"", each.value});
        else if (each.name.starts_with(kVCalendarPrefix))
            result.push_back({std::string(restoredName(each.name, kVCalendarPrefix)), each.value});
        else if (each.name.starts_with("X-") || each.name == "LANGUAGE"sv)
            result.push_back(each);
        else
            result.push_back({std::string(kICalendarPrefix) + each.name, each.value});
    return result;
}

void VCalEntry::addLines() {
    addUid();
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties) addProperty(property);
    addAlarms();
}

void VCalEntry::addNoteLines() {
    addUid();
    std::string body;
    for (const EntryProperty& each : entry_.properties)
        if (each.name == "DESCRIPTION"sv) body += (body.empty() ? "" : "\n\n") + each.value();
    const EntryProperty* const first = entry_.find("DESCRIPTION");
    const std::vector<Parameter> none;
    line("BODY", first == nullptr ? none : parametersToVCalendar(first->parameters), body);
    addDates();
    addRecurrence();
    for (const EntryProperty& property : entry_.properties)
        if (property.name != "DESCRIPTION"sv) addProperty(property);
    addAlarms();
}

void VCalEntry::line(LineName name, const std::vector<Parameter>& parameters,
                     std::string_view value) {
    addVCalendarLine(lines_, name, parameters, value);
}

void VCalEntry::addUid() {
    if (!entry_.uid.empty()) line(PropertyName::Uid, {}, entry_.uid);
}

std::string VCalEntry::dateText(const Moment& moment) const {
    std::string text = formatMoment(moment);
    if (moment.isDate && allDay_) text += "T000000";
    return text;
}

void VCalEntry::dateLine(PropertyName name, const Moment& moment) {
    if (moment.isDate && allDay_)
        line(name, {}, dateText(moment));
    else
        line(name, {}, MomentText(moment));
}

void VCalEntry::addDates() {
    if (entry_.duration) line("X-ICAL-DURATION", {}, formatDuration(*entry_.duration));
    if (entry_.start) dateLine(PropertyName::DtStart, *entry_.start);
    if (entry_.end) dateLine(PropertyName::DtEnd, *entry_.end);
    if (entry_.due) dateLine(PropertyName::Due, *entry_.due);
    if (entry_.completed) line(PropertyName::Completed, {}, MomentText(*entry_.completed));
    if (entry_.created) line(PropertyName::DCreated, {}, MomentText(*entry_.created));
    if (entry_.modified) line(PropertyName::LastModified, {}, MomentText(*entry_.modified));
    if (entry_.recurrenceId) {
        std::vector<Parameter> parameters;
        if (entry_.thisAndFuture) parameters.push_back({"RANGE", "THISANDFUTURE"});
        line("X-RECURRENCE-ID", parameters, dateText(*entry_.recurrenceId));
    }
    addStamp();
}

void VCalEntry::addStamp() {
    const bool fallback = entry_.stamp && entry_.stamp->seconds() == kNoStamp.seconds();
    if (!entry_.stamp || fallback) return;
    for (const auto* each : {&entry_.modified, &entry_.created, &entry_.start, &entry_.due}) {
        if (!*each) continue;
        Moment derived = entry_.toUtc(**each).value_or(**each);
        derived.isDate = false;
        if (derived.seconds() == entry_.stamp->seconds()) return;
        break;
    }
    line("X-ICAL-DTSTAMP", {}, formatMoment(*entry_.stamp));
}

void VCalEntry::addRecurrence() {
    if (!entry_.start) return;
    for (const SettledRule& rule : settled_.rules)
        if (rule.name.starts_with(kICalendarPrefix))
            line(rule.name, {}, rule.text);
        else
            plainLine(rule.name, rule.text);
    addDateList("RDATE", entry_.dates);
    addDateList("EXDATE", entry_.excluded);
}

void VCalEntry::plainLine(std::string_view name, std::string_view value) {
    lines_ += name;
    lines_ += ':';
    lines_ += value;
    lines_ += "\r\n";
}

void VCalEntry::addDateList(std::string_view name, const std::vector<Moment>& dates) {
    std::string value;
    std::size_t count = 0;
    for (const Moment& date : dates) {
        const Moment moment = entry_.inClockOf(*entry_.start, date);
        value += (value.empty() ? "" : ";") + dateText(moment);
        if (++count % kDatesOnLine == 0) {
            plainLine(name, value);
            value.clear();
        }
    }
    if (!value.empty()) plainLine(name, value);
}

void VCalEntry::addProperty(const EntryProperty& property) {
    const std::string& name = property.name;
    const PropertyName id = property.id();
    // Without a value, parsers of the time take the next line for it.
    if (name == "X-VCAL-COMPONENT"sv || property.value().empty()) return;
    if (property.type == EntryProperty::Type::Base64 && id != PropertyName::Attach)
        addBytes(nameInVCalendar(name, id), property);
    else if (id == PropertyName::Status)
        addStatus(property);
    else if (id == PropertyName::Transp)
        addTransparency(property);
    else if (id == PropertyName::Geo)
        addPosition(property);
    else if (id == PropertyName::Attendee)
        addAttendee(property);
    else if (id == PropertyName::Attach)
        addAttachment(property);
    else if (property.type == EntryProperty::Type::TextList && !name.starts_with(kVCalendarPrefix))
        addList(property);
    else if (property.type == EntryProperty::Type::Text && isOwn(id))
        addText(property);
    else  // texts of vCalendar 1.0 under the prefix come back as they were
        line(nameInVCalendar(name, id), parametersToVCalendar(property.parameters),
             property.value());
}

// Only a backslash needs to be protected.
void VCalEntry::addText(const EntryProperty& property) {
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (property.value().find('\\') == std::string::npos)
        line(property.id(), parameters, property.value());
    else
        line(property.id(), parameters, escapeVCalendar(property.value(), ""));
}

void VCalEntry::addTransparency(const EntryProperty& property) {
    if (ownTransparency_) return;
    const std::string_view word = transparencyToVCalendar(property.value());
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (word.empty())
        line("X-ICAL-TRANSP", parameters, property.value());
    else
        line(PropertyName::Transp, parameters, word);
}

void VCalEntry::addList(const EntryProperty& property) {
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    std::string value;
    for (const std::string& item : property.items) {
        if (!value.empty()) value += ';';
        value += escapeVCalendar(item, ";,");
        // A backslash at an item's end would swallow the semicolon after it.
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
    if (own.empty())
        line("X-ICAL-STATUS", parameters, property.value());
    else
        line("STATUS", parameters, own);
}

void VCalEntry::addPosition(const EntryProperty& property) {
    // Latitude first, as phones write it.
    std::string value = property.value();
    const std::size_t middle = value.find(';');
    const std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    if (middle == std::string::npos) {
        line("X-ICAL-GEO", parameters, value);
    } else {
        value[middle] = ',';
        line("GEO", parameters, value);
    }
}

void VCalEntry::addAttendee(const EntryProperty& property) {
    std::vector<Parameter> parameters;
    const std::string_view ownStatus = parameterOf(property.parameters, "X-VCAL-STATUS");
    const std::string_view ownRole = parameterOf(property.parameters, "X-VCAL-ROLE");
    std::string_view name;
    std::string_view address;
    for (const Parameter& each : property.parameters) {
        if (each.name == "CN"sv) {
            name = each.value;
        } else if (each.name == "X-VCAL-ADDRESS"sv) {
            address = each.value;
        } else if (each.name == "RSVP"sv) {
            parameters.push_back({"RSVP", equalsIgnoreCase(each.value, "TRUE") ? "YES" : "NO"});
        } else if (each.name == "ROLE"sv) {
            if (ownRole.empty()) addWord("ROLE", roleToVCalendar(each.value), each, parameters);
        } else if (each.name == "PARTSTAT"sv) {
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

void VCalEntry::addBytes(std::string_view name, const EntryProperty& property) {
    std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
    parameters.push_back({"VALUE", "INLINE"});
    parameters.push_back({"ENCODING", "BASE64"});
    lines_ += vCalendarBase64(name, parameters, property.value());
}

void VCalEntry::addAttachment(const EntryProperty& property) {
    if (property.type == EntryProperty::Type::Base64) return addBytes("ATTACH", property);
    std::vector<Parameter> parameters = parametersToVCalendar(property.parameters);
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

void VCalEntry::addAlarms() {
    for (const Alarm& alarm : entry_.alarms) addVCalendarAlarm(lines_, entry_, alarm);
}

}  // namespace qel::calendar
