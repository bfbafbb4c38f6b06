#include "calendar/formats/ICalReader.h"

#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

namespace {

// The parameters other than those that say how the value is written.
std::vector<Parameter> ownParameters(const ContentLine& line, bool binary) {
    std::vector<Parameter> parameters;
    for (const Parameter& each : line.parameters) {
        if (each.name == "ENCODING"sv || each.name == "CHARSET"sv || each.name.empty()) continue;
        if (each.name == "VALUE"sv &&
            (binary || equalsIgnoreCase(each.value, "URI") || equalsIgnoreCase(each.value, "TEXT")))
            continue;
        parameters.push_back(each);
    }
    return parameters;
}

}  // namespace

std::vector<std::string> ICalReader::listItems(std::string_view value) const {
    std::vector<std::string> items;
    std::string item;
    // "," here; ";" in files that mix the formats.
    for (const char c : value) {
        if (c == ',' || c == ';') {
            items.push_back(item);
            item.clear();
        } else {
            item += c;
        }
    }
    items.push_back(item);
    return items;
}

void ICalReader::takeAttachment(const ContentLine& line) {
    const auto clean = cleanBase64(line.value);
    if (!clean)
        carryRaw(line, NoteCode::AttachmentInvalid);
    else if (!clean->empty())
        add(line, line.name, EntryProperty::Type::Base64, *clean, ownParameters(line, true));
}

// A file that names no zone at all has its series in UTC because its program knew no better.
void ICalReader::settleTimes() {
    if (chosenZone() == nullptr || fileDescribesZones() || entry_.zone != nullptr) return;
    const std::optional<Moment>& start = entry_.start;
    if (!start || start->isDate || start->clock != Clock::Utc) return;
    if (!hasRecurrence() && !entry_.recurrenceId) return;
    // The days of its rule are those of UTC.
    if (chosenZone()->toLocal(*start).day != start->day) return;
    entry_.zone = chosenZone();
    moveSeriesToZone();
}

void ICalReader::addText(const ContentLine& line, std::string_view value,
                         std::vector<Parameter> parameters) {
    constexpr auto kText = EntryProperty::Type::Text;
    if (value.find('\\') == std::string_view::npos)
        add(line, line.name, kText, value, std::move(parameters));
    else
        add(line, line.name, kText, unescapeICalendar(value), std::move(parameters));
}

void ICalReader::takeProperty(const ContentLine& line) {
    const bool binary = isBase64(line);
    if (binary && line.id == PropertyName::Attach) return takeAttachment(line);
    std::vector<Parameter> parameters = ownParameters(line, binary);
    if (line.id == PropertyName::Geo) return takePosition(line, std::move(parameters));
    if (line.id == PropertyName::Attendee || line.id == PropertyName::Organizer)
        return addPerson(line, text(line), std::move(parameters));
    const std::string_view value = text(line);
    const Property& property = propertyOf(line.id);
    const bool known = property.held == HeldAs::Property;
    if (known && property.type == ValueType::TextList) {
        std::vector<std::string> items = splitICalendarList(value);
        dropBlankItems(items);
        addList(line, std::move(items), std::move(parameters));
    } else if (known && property.type == ValueType::Raw) {
        add(line, line.name, property.type, trimmed(value), std::move(parameters));
    } else if (known || line.name.starts_with("X-")) {
        addText(line, value, std::move(parameters));
    } else {
        // A property of some other standard, kept unchanged.
        add(line, line.name, EntryProperty::Type::Raw, value, std::move(parameters));
    }
}

}  // namespace qel::calendar
