#include "convert/EntryReader.h"

#include <algorithm>
#include <utility>

#include "convert/Ascii.h"
#include "convert/RuleParts.h"
#include "convert/TextCodec.h"
#include "convert/Vocabulary.h"

namespace qel::convert {

namespace {

// Rules that one entry may have; each one is worked out. A text that passes it is read to its end.
constexpr std::size_t kMostRules = 100;
// Names of zones that are remembered as told.
constexpr std::size_t kMostUnknownZones = 1000;
constexpr std::size_t kLongestZone = 1000;

}  // namespace

bool isEncodingWord(std::string_view value) {
    static constexpr std::string_view kWords[] = {
        "QUOTED-PRINTABLE", "BASE64", "B", "8BIT", "8-BIT", "7BIT"};
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&](std::string_view word) { return equalsIgnoreCase(word, value); });
}

std::optional<Entry> EntryReader::read(const Component& component, const ZonePtr& zone) {
    entry_ = {};
    ruleLines_.clear();
    dateLines_.clear();
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
        return std::nullopt;
    }
    for (const ContentLine& line : component.properties) takeLine(line);
    settleTimes();
    // A series counts from its start; a to-do may have a due date alone.
    if (entry_.kind == EntryKind::Todo && hasRecurrence() && !entry_.start && entry_.due) {
        entry_.properties.push_back({std::string(kVCalendarPrefix) + "DUE",
                                     {},
                                     EntryProperty::Type::Text,
                                     {formatMoment(*entry_.due)},
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
    return std::move(entry_);
}

void EntryReader::takeLine(const ContentLine& line) {
    if (takeDate(line) || takeRecurrence(line)) return;
    if (line.name == "UID") {
        const std::string uid = text(line);
        entry_.uid = std::string(trimmed(
            ruleForm() == RuleForm::ICalendar ? unescapeICalendar(uid) : unescapeVCalendar(uid)));
        return;
    }
    if (line.name == "AALARM" || line.name == "DALARM" || line.name == "MALARM" ||
        line.name == "PALARM") {
        takeAlarmLine(line);
        return;
    }
    takeProperty(line);
}

std::string EntryReader::text(const ContentLine& line) {
    std::vector<RuleNote> notes;
    std::string value = decodedValue(line, notes);
    for (const RuleNote& note : notes)
        tell(note.severity, line.number, line.name + ": " + note.text);
    return value;
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
         line.name + ": the zone " + quoted(id) +
             " is not described in the file; its times stay local");
}

namespace {

struct DateSlot {
    std::string_view name;
    std::optional<Moment> Entry::*moment;
};
constexpr DateSlot kDateSlots[] = {{"DTSTART", &Entry::start},
                                   {"DTEND", &Entry::end},
                                   {"DUE", &Entry::due},
                                   {"COMPLETED", &Entry::completed},
                                   {"CREATED", &Entry::created},
                                   {"DCREATED", &Entry::created},
                                   {"LAST-MODIFIED", &Entry::modified},
                                   {"DTSTAMP", &Entry::stamp},
                                   {"X-ICAL-DTSTAMP", &Entry::stamp},
                                   {"RECURRENCE-ID", &Entry::recurrenceId},
                                   {"X-RECURRENCE-ID", &Entry::recurrenceId}};

const DateSlot* dateSlot(std::string_view name) {
    for (const DateSlot& slot : kDateSlots)
        if (slot.name == name) return &slot;
    return nullptr;
}

}  // namespace

bool isEntryDate(std::string_view name) {
    return dateSlot(name) != nullptr || name == "DURATION" || name == "RDATE" || name == "EXDATE";
}

bool EntryReader::takeDate(const ContentLine& line) {
    const DateSlot* slot = dateSlot(line.name);
    if (slot == nullptr) {
        if (line.name != "DURATION") return false;
        entry_.duration = parseDuration(line.value);
        if (!entry_.duration) carry(line, "is no duration", Severity::Error);
        return true;
    }
    const std::string value = text(line);
    auto read = moment(line, value);
    // Written in UTC because iCalendar has it in nothing else.
    if (const std::string_view mark = line.parameter("X-VCAL-FLOATING"); read && !mark.empty()) {
        read->clock = Clock::Floating;
        read->isDate = mark == "DATE";
    }
    if (!read) {
        if (!trimmed(value).empty())
            carry(line, "holds " + quoted(value) + ", which is no date", Severity::Error);
    } else if (entry_.*(slot->moment)) {
        carry(line, "stands twice in this entry; the first one counts", Severity::Warning);
    } else {
        entry_.*(slot->moment) = read;
        if (slot->moment == &Entry::recurrenceId)
            entry_.thisAndFuture = equalsIgnoreCase(line.parameter("RANGE"), "THISANDFUTURE");
    }
    return true;
}

bool EntryReader::takeRecurrence(const ContentLine& line) {
    const bool carried = line.name == "X-ICAL-RRULE" || line.name == "X-ICAL-EXRULE";
    if (line.name == "RRULE" || line.name == "EXRULE" || carried) {
        ruleLines_.push_back(line);
        ruleLines_.back().value = text(line);
        return true;
    }
    if (line.name == "RDATE" || line.name == "EXDATE") {
        dateLines_.push_back(line);
        dateLines_.back().value = text(line);
        return true;
    }
    return false;
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
        for (const RuleNote& note : reading.notes)
            tell(note.severity, line.number,
                 line.name + " " + quoted(trimmed(line.value)) + ": " + note.text);
        if (reading.rules.empty()) {
            if (!trimmed(line.value).empty()) carry(line, "", Severity::Note);
            continue;
        }
        entry_.rules.push_back(
            {line.name.ends_with("EXRULE"), std::move(reading.rules), line.number});
    }
}

void EntryReader::takeDateList(const ContentLine& line) {
    const bool excluded = line.name == "EXDATE";
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
    std::vector<RuleNote> notes;
    strays.report(notes, Severity::Error,
                  line.name + " holds what is no date, and it is left out:");
    for (const RuleNote& note : notes) tell(note.severity, line.number, note.text);
    if (period)
        tell(Severity::Warning, line.number,
             line.name + " holds periods; their lengths are left out");
}

void EntryReader::carry(const ContentLine& line, std::string_view why, Severity severity) {
    // What has been carried once keeps its name.
    const bool carried =
        line.name.starts_with(kVCalendarPrefix) || line.name.starts_with(kICalendarPrefix);
    const std::string name = carried ? line.name : std::string(carryPrefix()) + line.name;
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
        tell(severity, line.number, line.name + " " + std::string(why) + "; it is kept as " + name);
    add(line, name, EntryProperty::Type::Text, {text(line)}, std::move(parameters));
}

void EntryReader::add(const ContentLine& line, std::string_view name, EntryProperty::Type type,
                      std::vector<std::string> values, std::vector<Parameter> parameters) {
    if (values.empty()) values.emplace_back();
    entry_.properties.push_back(
        {std::string(name), std::move(parameters), type, std::move(values), line.number});
}

}  // namespace qel::convert
