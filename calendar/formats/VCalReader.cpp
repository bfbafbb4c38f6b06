#include "calendar/formats/VCalReader.h"

#include <algorithm>
#include <set>

#include "calendar/base/Ascii.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

namespace {

// Of a parameter that is given twice the first one counts.
void dropRepeated(std::vector<Parameter>& parameters) {
    // So few are compared with each other sooner than their names are sorted.
    constexpr std::size_t kFew = 16;
    const bool few = parameters.size() <= kFew;
    std::set<std::string> names;
    auto end = parameters.begin();
    for (auto each = end; each != parameters.end(); ++each) {
        const auto isSame = [&](const Parameter& other) { return other.name == each->name; };
        const bool known =
            few ? std::any_of(parameters.begin(), end, isSame) : !names.insert(each->name).second;
        if (known) continue;
        if (end != each) *end = std::move(*each);
        ++end;
    }
    parameters.erase(end, parameters.end());
}

bool isICalendarParameter(std::string_view name) {
    static constexpr std::string_view kNames[] = {
        "ALTREP",   "CN",     "CUTYPE",   "DELEGATED-FROM", "DELEGATED-TO", "DIR",    "FMTTYPE",
        "LANGUAGE", "MEMBER", "PARTSTAT", "RANGE",          "RELTYPE",      "SENT-BY"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

}  // namespace

std::vector<Parameter> parametersFromVCalendar(const ContentLine& line) {
    std::vector<Parameter> parameters;
    if (line.parameters.empty()) return parameters;
    std::string bare;
    for (const Parameter& each : line.parameters) {
        if (each.name == "ENCODING"sv || each.name == "CHARSET"sv) continue;
        if (each.name.empty()) {
            if (isEncodingWord(each.value)) continue;
            bare += (bare.empty() ? "" : ",") + each.value;
        } else if (each.name.starts_with(kICalendarPrefix)) {
            parameters.push_back(
                {std::string(restoredName(each.name, kICalendarPrefix)), each.value});
        } else if (each.name.starts_with("X-") || isICalendarParameter(each.name)) {
            parameters.push_back(each);
        } else {
            parameters.push_back({std::string(kVCalendarPrefix) + each.name, each.value});
        }
    }
    if (!bare.empty()) parameters.push_back({std::string(kVCalendarPrefix) + "PARAMETER", bare});
    return parameters;
}

std::vector<std::string> VCalReader::listItems(std::string_view value) const {
    return splitVCalendar(value, ";,");
}

void VCalReader::takeProperty(const ContentLine& line) {
    using Name = PropertyName;
    switch (line.id) {
        case Name::Attendee:
            return takeAttendee(line);
        case Name::Attach:
            return takeAttachment(line);
        case Name::Status:
            return takeStatus(line);
        case Name::Transp:
            return takeTransparency(line);
        case Name::Geo:
            return takePosition(line, parametersFromVCalendar(line));
        case Name::Organizer:
            return addPerson(line, text(line), parametersFromVCalendar(line));
        case Name::Priority:
            return takeNumber(line, 9);
        case Name::Sequence:
            return takeNumber(line, 2147483647);
        case Name::Class:
            return takeClass(line);
        case Name::Categories:
        case Name::Resources:
            return takeList(line);
        case Name::Tz:
        case Name::Daylight:
        case Name::Version:
            // Read before the entry; a note has a version of its own.
            return;
        default:
            return takeText(line);
    }
}

void VCalReader::takeList(const ContentLine& line) {
    std::vector<std::string> items = splitVCalendar(text(line), ";,");
    dropBlankItems(items);
    addList(line, std::move(items), parametersFromVCalendar(line));
}

void VCalReader::takeClass(const ContentLine& line) {
    const std::string value = upper(trimmed(text(line)));
    if (value == "PUBLIC"sv || value == "PRIVATE"sv || value == "CONFIDENTIAL"sv)
        add(line, line.name, EntryProperty::Type::Text, value, parametersFromVCalendar(line));
    else if (!value.empty())
        carry(line, NoteCode::EntryClassUnknown, value);
}

void VCalReader::takeText(const ContentLine& line) {
    using Type = EntryProperty::Type;
    const std::string_view name = line.name;
    if (line.id == PropertyName::Body && entry_.component == "VNOTE"sv) {
        add(line, "DESCRIPTION", Type::Text, text(line), parametersFromVCalendar(line));
    } else if (name.starts_with(kICalendarPrefix)) {
        // A property of iCalendar that has been carried here.
        const std::string_view own = restoredName(name, kICalendarPrefix);
        const Property& property = propertyOf(propertyName(own));
        // The entry has its dates and its UID; these are others.
        const bool keepsName = property.held == HeldAs::Date || property.id == PropertyName::Uid;
        const bool isText = property.held == HeldAs::Property && property.type != Type::Raw;
        add(line, keepsName ? name : own, keepsName || isText ? Type::Text : Type::Raw, text(line),
            parametersFromVCalendar(line));
    } else if (const Property& property = propertyOf(line.id); property.held == HeldAs::Property) {
        const std::string_view value = text(line);
        const bool escaped =
            property.type == Type::Text && value.find('\\') != std::string_view::npos;
        if (property.type == Type::Raw)
            return add(line, name, property.type, trimmed(value), parametersFromVCalendar(line));
        add(line, name, property.type, escaped ? std::string_view(unescapeVCalendar(value)) : value,
            parametersFromVCalendar(line));
    } else if (name.starts_with("X-")) {
        add(line, name, Type::Text, text(line), parametersFromVCalendar(line));
    } else if (propertyOf(line.id).isOf(Property::kVCalendar)) {
        // The format's own, which iCalendar lacks.
        carry(line);
    } else {
        carry(line, NoteCode::EntryPropertyUnknown);
    }
}

void VCalReader::takeNumber(const ContentLine& line, int most) {
    const auto number = parseInt(trimmed(text(line)));
    if (number && *number >= 0 && *number <= most) {
        add(line, line.name, EntryProperty::Type::Raw, std::to_string(*number),
            parametersFromVCalendar(line));
    } else if (!trimmed(line.value).empty()) {
        carry(line, NoteCode::EntryNumberInvalid, line.value);
    }
}

void VCalReader::takeStatus(const ContentLine& line) {
    const std::string_view value = text(line);
    const std::string_view own = statusFromVCalendar(trimmed(value), entry_.kind);
    if (own.empty()) {
        if (!trimmed(value).empty()) carry(line);
        return;
    }
    add(line, line.name, EntryProperty::Type::Text, own, parametersFromVCalendar(line));
}

void VCalReader::takeTransparency(const ContentLine& line) {
    const std::string_view value = trimmed(text(line));
    const auto number = parseInt(value);
    if (entry_.kind != EntryKind::Event || (number && *number > 1)) carry(line);
    if (entry_.kind != EntryKind::Event) return;
    if (number && *number >= 0) {
        add(line, line.name, EntryProperty::Type::Text, *number == 0 ? "OPAQUE" : "TRANSPARENT",
            parametersFromVCalendar(line));
    } else if (equalsIgnoreCase(value, "OPAQUE") || equalsIgnoreCase(value, "TRANSPARENT")) {
        add(line, line.name, EntryProperty::Type::Text, upper(value),
            parametersFromVCalendar(line));
    } else if (!value.empty()) {
        carry(line, NoteCode::EntryTransparencyInvalid, value);
    }
}

void VCalReader::takeAttachment(const ContentLine& line) {
    std::vector<Parameter> parameters = parametersFromVCalendar(line);
    const std::string kind = upper(line.parameter("VALUE"));
    const bool named = kind == "CONTENT-ID" || kind == "CID";
    const bool known = named || kind == "URL" || kind == "URI" || kind == "BINARY" ||
                       kind == "INLINE" || kind.empty();
    if (known)
        std::erase_if(parameters,
                      [](const Parameter& each) { return each.name == "X-VCAL-VALUE"sv; });
    if (isBase64(line)) {
        const auto clean = cleanBase64(line.value);
        if (!clean)
            carryRaw(line, NoteCode::AttachmentInvalid);
        else if (!clean->empty())
            add(line, line.name, EntryProperty::Type::Base64, *clean, parameters);
        return;
    }
    std::string value(trimmed(text(line)));
    if (named && value.size() > 2 && value.front() == '<' && value.back() == '>')
        value = "cid:" + value.substr(1, value.size() - 2);
    else if (named && !startsWithIgnoreCase(value, "cid:"))
        value = "cid:" + value;
    if (!value.empty()) add(line, line.name, EntryProperty::Type::Raw, value, parameters);
}

void VCalReader::takeAttendee(const ContentLine& line) {
    const std::string value(trimmed(text(line)));
    std::vector<Parameter> parameters;
    for (const Parameter& each : parametersFromVCalendar(line)) {
        if (each.name == "X-VCAL-ROLE"sv) {
            addRoleFromVCalendar(each.value, parameters);
        } else if (each.name == "X-VCAL-STATUS"sv) {
            addParticipationFromVCalendar(each.value, entry_.kind, parameters);
        } else if (each.name == "X-VCAL-RSVP"sv) {
            const bool yes =
                equalsIgnoreCase(each.value, "YES") || equalsIgnoreCase(each.value, "TRUE");
            parameters.push_back({"RSVP", yes ? "TRUE" : "FALSE"});
        } else {
            parameters.push_back(each);
        }
    }
    CalendarAddress address = addressFromVCalendar(value);
    if (!address.name.empty()) parameters.insert(parameters.begin(), {"CN", address.name});
    if (addressToVCalendar(address) != value) parameters.push_back({"X-VCAL-ADDRESS", value});
    dropRepeated(parameters);
    addPerson(line, address.uri, std::move(parameters));
}

void VCalReader::settleTimes() {
    if (!entry_.start) return;
    // Rules are meant in wall-clock time: a series given in UTC moves to the clock of the file's
    // zone.
    const ZonePtr& zone = entry_.zone;
    Moment local = *entry_.start;
    if (zone != nullptr && local.clock == Clock::Utc) local = zone->toLocal(local);
    if (entry_.start->isDate) {
        makeAllDay();
        return;
    }
    // One day of a series of times is the occurrence of that day (RFC 5545 section 3.8.4.4).
    if (entry_.recurrenceId && entry_.recurrenceId->isDate)
        entry_.recurrenceId = entry_.inClockOf(local, *entry_.recurrenceId);
    if (zone == nullptr || entry_.start->clock != Clock::Utc || !hasRecurrence()) return;
    if (local.day != entry_.start->day && !rulesYield(local) && rulesYield(*entry_.start))
        return report(Note(NoteCode::SeriesDaysOfUtc, entry_.line));
    moveSeriesToZone();
}

}  // namespace qel::calendar
