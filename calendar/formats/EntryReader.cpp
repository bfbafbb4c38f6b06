#include "calendar/formats/EntryReader.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Strays.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

// Rules that one entry may have; each one is worked out. A text that passes it is read to its end.
constexpr std::size_t kMostRules = 100;
// Names of zones that are remembered as told.
constexpr std::size_t kMostUnknownZones = 1000;
constexpr std::size_t kLongestZone = 1000;
// Properties that an entry usually has at most: their room is kept for the next one.
constexpr std::size_t kUsualProperties = 32;

}  // namespace

bool isEncodingWord(std::string_view value) {
    static constexpr std::string_view kWords[] = {
        "QUOTED-PRINTABLE", "BASE64", "B", "8BIT", "8-BIT", "7BIT"};
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](std::string_view word) { return equalsIgnoreCase(word, value); });
}

Entry* EntryReader::read(const Component& component, const ZonePtr& zone) {
    std::vector<EntryProperty> properties = std::move(entry_.properties);
    properties.clear();
    if (properties.capacity() > kUsualProperties) properties = {};
    properties.reserve(kUsualProperties);
    entry_ = {};
    entry_.properties = std::move(properties);
    ruleLines_.clear();
    dateLines_.clear();
    texts_.clear();
    entry_.component = component.name;
    entry_.line = component.number;
    entry_.zone = zone;
    if (component.name == "VEVENT") {
        entry_.kind = EntryKind::Event;
    } else if (component.name == "VTODO") {
        entry_.kind = EntryKind::Todo;
    } else if (component.name == "VJOURNAL" || component.name == "VNOTE") {
        entry_.kind = EntryKind::Journal;
    } else {
        tell(Severity::Warning, component.number,
             component.name + " is no event, to-do or note; it is left out");
        return nullptr;
    }
    for (const ContentLine& line : component.properties) takeLine(line);
    settleTimes();
    // A series counts from its start; a to-do may have a due date alone.
    if (entry_.kind == EntryKind::Todo && hasRecurrence() && !entry_.start && entry_.due) {
        entry_.properties.push_back({std::string(kVCalendarPrefix) + "DUE",
                                     {},
                                     EntryProperty::Type::Text,
                                     formatMoment(*entry_.due),
                                     {},
                                     entry_.line});
        entry_.start = std::exchange(entry_.due, std::nullopt);
    }
    if (entry_.start) {
        readRuleLines();
        for (const ContentLine& line : dateLines_) takeDateList(line);
        // A series has its start anyway.
        if (!entry_.rules.empty())
            std::erase_if(entry_.dates, [this](const Moment& date) {
                return entry_.inClockOf(*entry_.start, date) == *entry_.start;
            });
    } else {
        for (const auto* lines : {&ruleLines_, &dateLines_})
            for (const ContentLine& line : *lines)
                if (!trimmed(line.value).empty())
                    carry(line, "stands in an entry without a start", Severity::Warning);
    }
    for (const Component& child : component.children) {
        if (child.name == "VALARM") {
            takeAlarmComponent(child);
        } else {
            tell(Severity::Warning, child.number,
                 child.name + " within an entry is not known; it is left out");
        }
    }
    return &entry_;
}

void EntryReader::takeLine(const ContentLine& line) {
    using Name = PropertyName;
    switch (line.id) {
        case Name::DtStart:
            return takeDate(line, entry_.start);
        case Name::DtEnd:
            return takeDate(line, entry_.end);
        case Name::Due:
            return takeDate(line, entry_.due);
        case Name::Completed:
            return takeDate(line, entry_.completed);
        case Name::Created:
        case Name::DCreated:
            return takeDate(line, entry_.created);
        case Name::LastModified:
            return takeDate(line, entry_.modified);
        case Name::DtStamp:
        case Name::XICalDtStamp:
            return takeDate(line, entry_.stamp);
        case Name::RecurrenceId:
        case Name::XRecurrenceId:
            return takeDate(line, entry_.recurrenceId);
        case Name::Duration:
            return takeDuration(line);
        case Name::RRule:
        case Name::ExRule:
        case Name::XICalRRule:
        case Name::XICalExRule:
            return keepDecoded(line, ruleLines_);
        case Name::RDate:
        case Name::ExDate:
            return keepDecoded(line, dateLines_);
        case Name::Uid:
            return takeUid(line);
        case Name::AAlarm:
        case Name::DAlarm:
        case Name::MAlarm:
        case Name::PAlarm:
            return takeAlarmLine(line);
        default:
            return takeProperty(line);
    }
}

void EntryReader::takeUid(const ContentLine& line) {
    const std::string_view uid = text(line);
    entry_.uid = trimmed(ruleForm() == RuleForm::ICalendar ? unescapeICalendar(uid)
                                                           : unescapeVCalendar(uid));
}

std::string_view EntryReader::text(const ContentLine& line) {
    if (isPlainText(line)) return line.value;
    std::vector<Note> notes;
    const std::string value = decodedValue(line, notes);
    for (Note& note : notes) sink_(std::move(note));
    return texts_.keep(value);
}

std::optional<Moment> EntryReader::moment(const ContentLine& line, std::string_view value) {
    auto result = parseMoment(value);
    if (!result || result->isDate || result->clock == Clock::Utc) return result;
    const std::string_view id = line.parameter("TZID");
    ZonePtr zone = entry_.zone;
    if (!id.empty()) {
        const auto found = zones_.find(id);
        if (found == zones_.end()) {
            tellUnknownZone(line, id);
            return result;
        }
        zone = found->second;
    }
    if (zone == nullptr) return result;
    result->clock = Clock::Zoned;
    if (entry_.zone == nullptr) {
        entry_.zone = zone;
    } else if (entry_.zone != zone) {
        // One entry, one zone: the same instant on the clock of the entry's own.
        return entry_.zone->toLocal(zone->toUtc(*result));
    }
    return result;
}

void EntryReader::tellUnknownZone(const ContentLine& line, std::string_view id) {
    if (unknownZones_.contains(id)) return;
    // Beyond some number of them the file is no calendar but an attempt at this memory.
    if (unknownZones_.size() < kMostUnknownZones) unknownZones_.emplace(id.substr(0, kLongestZone));
    tell(Severity::Warning, line.number,
         std::string(line.name) + ": the zone " + quoted(id) +
             " is not described in the file; its times stay local");
}

void EntryReader::takeDuration(const ContentLine& line) {
    entry_.duration = parseDuration(line.value);
    if (!entry_.duration) carry(line, "is no duration", Severity::Error);
}

void EntryReader::takeDate(const ContentLine& line, std::optional<Moment>& slot) {
    const std::string_view value = text(line);
    auto read = moment(line, value);
    // Written in UTC because iCalendar has it in nothing else.
    if (const std::string_view mark = line.parameter("X-VCAL-FLOATING"); read && !mark.empty()) {
        read->clock = Clock::Floating;
        read->isDate = mark == "DATE";
    }
    if (!read) {
        if (!trimmed(value).empty())
            carry(line, "holds " + quoted(value) + ", which is no date", Severity::Error);
    } else if (slot) {
        carry(line, "stands twice in this entry; the first one counts", Severity::Warning);
    } else {
        slot = read;
        if (&slot == &entry_.recurrenceId)
            entry_.thisAndFuture = equalsIgnoreCase(line.parameter("RANGE"), "THISANDFUTURE");
    }
}

void EntryReader::keepDecoded(const ContentLine& line, std::vector<ContentLine>& lines) {
    lines.push_back(line);
    lines.back().value = text(line);
}

void EntryReader::readRuleLines() {
    const std::optional<RuleStart> start = entry_.ruleStart();
    std::size_t count = 0;
    bool told = false;
    for (const ContentLine& line : ruleLines_) {
        if (count >= kMostRules) {
            carry(line, std::exchange(told, true) ? "" : "is one rule too many for an entry",
                  Severity::Error);
            continue;
        }
        RuleReading reading = readRules(line.value, ruleForm(), start);
        count += std::max<std::size_t>(reading.rules.size(), 1);
        for (Note& note : reading.notes) {
            note.line = line.number;
            note.property = line.name;
            note.excerpt = trimmed(line.value).substr(0, kLongestExcerpt);
            sink_(std::move(note));
        }
        if (reading.rules.empty()) {
            if (!trimmed(line.value).empty()) carry(line, "", Severity::Note);
            continue;
        }
        entry_.rules.push_back(
            {line.name.ends_with("EXRULE"), std::move(reading.rules), line.number});
    }
}

void EntryReader::takeDateList(const ContentLine& line) {
    const bool excluded = line.id == PropertyName::ExDate;
    const std::string name(line.name);
    bool period = false;
    Strays strays;
    for (const std::string& item : listItems(line.value)) {
        if (trimmed(item).empty()) continue;
        std::string_view rest = item;
        const auto read = moment(line, nextField(rest, '/'));
        if (!read) {
            strays.add(item);
            continue;
        }
        period = period || !rest.empty();
        (excluded ? entry_.excluded : entry_.dates).push_back(*read);
    }
    std::vector<Note> notes;
    strays.report(notes, Severity::Error, name + " holds what is no date, and it is left out:");
    for (const Note& note : notes) tell(note.severity(), line.number, note.text());
    if (period)
        tell(Severity::Warning, line.number, name + " holds periods; their lengths are left out");
}

void EntryReader::carry(const ContentLine& line, std::string_view why, Severity severity) {
    // What has been carried once keeps its name.
    const bool carried =
        line.name.starts_with(kVCalendarPrefix) || line.name.starts_with(kICalendarPrefix);
    std::string name(carried ? std::string_view() : carryPrefix());
    name += line.name;
    std::vector<Parameter> parameters;
    for (const Parameter& each : line.parameters) {
        if (each.name == "ENCODING" || each.name == "CHARSET") continue;
        if (each.name.empty() && (equalsIgnoreCase(each.value, "QUOTED-PRINTABLE") ||
                                  equalsIgnoreCase(each.value, "BASE64")))
            continue;
        const std::string own = each.name.empty() ? "PARAMETER" : each.name;
        parameters.push_back(
            {own.starts_with("X-") ? own : std::string(carryPrefix()) + own, each.value});
    }
    if (!why.empty())
        tell(severity, line.number,
             std::string(line.name) + " " + std::string(why) + "; it is kept as " + name);
    add(line, name, EntryProperty::Type::Text, text(line), std::move(parameters));
}

void EntryReader::add(const ContentLine& line, std::string_view name, EntryProperty::Type type,
                      std::string_view value, std::vector<Parameter> parameters) {
    entry_.properties.push_back(
        {std::string(name), std::move(parameters), type, std::string(value), {}, line.number});
}

void EntryReader::addList(const ContentLine& line, std::vector<std::string> items,
                          std::vector<Parameter> parameters) {
    if (items.empty()) return;
    entry_.properties.push_back({std::string(line.name),
                                 std::move(parameters),
                                 EntryProperty::Type::TextList,
                                 {},
                                 std::move(items),
                                 line.number});
}

}  // namespace qel::calendar
