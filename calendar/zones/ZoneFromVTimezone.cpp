#include "calendar/zones/ZoneFromVTimezone.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/lines/Property.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TextCodec.h"

namespace qel::calendar {

namespace {

constexpr int kLastYear = 2150;
constexpr std::size_t kMostChanges = 1500;
constexpr std::size_t kMostRuleLines = 50;

// The first property of that name, or null.
const ContentLine* find(const Component& component, std::string_view name) {
    for (const ContentLine& line : component.properties)
        if (line.name == name) return &line;
    return nullptr;
}

std::string contentText(const ContentLine& line) {
    return iCalendarLine(line.name, line.parameters, decodedText(line.value));
}

bool belongsToZone(const ContentLine& line) {
    return line.name.starts_with("X-") || propertyOf(line.id).standsIn(Property::kZone);
}

class VTimezoneBuilder {
  public:
    explicit VTimezoneBuilder(const NoteSink& sink) : sink_(sink) {}

    ZonePtr build(const Component& component) {
        const ContentLine* id = find(component, "TZID");
        if (id == nullptr || trimmed(id->value).empty()) {
            sink_(Note(NoteCode::ZoneWithoutId, component.number));
            return nullptr;
        }
        zone_.id = unescapeICalendar(trimmed(id->value));
        for (const Component& child : component.children)
            if (child.name == "STANDARD" || child.name == "DAYLIGHT") takeObservance(child);
        if (observances_ == 0) {
            sink_(Note(NoteCode::ZoneWithoutOffset, component.number, {zone_.id}));
            return nullptr;
        }
        std::stable_sort(zone_.changes.begin(), zone_.changes.end(),
                         [](const ZoneChange& a, const ZoneChange& b) { return a.utc < b.utc; });
        dropEmptyChanges();
        for (const ContentLine& line : component.properties)
            if (line.name == "X-VCAL-TZ" || line.name == "X-VCAL-DAYLIGHT")
                zone_.ownLines.emplace_back(line.name.substr(7), unescapeICalendar(line.value));
        addLines(component);
        return std::make_shared<const Zone>(std::move(zone_));
    }

  private:
    // The component unchanged, for the output. Of properties that are allowed once, the first
    // counts.
    void addLines(const Component& component) {
        std::vector<std::string>& lines = zone_.content;
        lines.push_back("BEGIN:" + component.name);
        for (const ContentLine& line : component.properties)
            if (!belongsToZone(line))
                sink_(Note(NoteCode::ZonePropertyUnknown, line.number, {line.name}));
            else if (propertyOf(line.id).once && find(component, line.name) != &line)
                sink_(Note(NoteCode::ZonePropertyRepeated, line.number, {line.name}));
            else
                lines.push_back(contentText(line));
        for (const Component& child : component.children)
            if (child.name == "STANDARD" || child.name == "DAYLIGHT")
                addLines(child);
            else
                sink_(Note(NoteCode::ZoneComponentUnknown, child.number, {child.name}));
        lines.push_back("END:" + component.name);
    }

    void takeObservance(const Component& observance) {
        const ContentLine* start = find(observance, "DTSTART");
        const ContentLine* from = find(observance, "TZOFFSETFROM");
        const ContentLine* to = find(observance, "TZOFFSETTO");
        const auto first = start == nullptr ? std::nullopt : parseMoment(start->value);
        const auto fromOffset = parseUtcOffset(from == nullptr ? "" : from->value);
        const auto toOffset = parseUtcOffset(to == nullptr ? "" : to->value);
        if (!first || !fromOffset || !toOffset) {
            sink_(Note(NoteCode::ZonePartIncomplete, observance.number, {zone_.id}));
            return;
        }
        const int before = *fromOffset;
        const ContentLine* name = find(observance, "TZNAME");
        ZoneChange change{0, *toOffset, observance.name == "DAYLIGHT", ""};
        if (name != nullptr) {
            std::vector<Note> ignored;
            change.name = unescapeICalendar(decodedValue(*name, "", ignored));
        }
        ++observances_;
        // The offset before the earliest change.
        if (!hasBase_ || first->seconds() < baseSince_) {
            hasBase_ = true;
            baseSince_ = first->seconds();
            zone_.baseOffset = before;
        }
        addOnset(change, *first, before);
        for (const ContentLine& line : observance.properties) {
            if (line.name == "RRULE") addRule(line, change, *first, before);
            if (line.name == "RDATE") addDates(line, change, before);
        }
    }

    void addOnset(ZoneChange change, const Moment& local, int before) {
        if (zone_.changes.size() >= kMostChanges) return;
        change.utc = local.seconds() - (local.clock == Clock::Utc ? 0 : before);
        zone_.changes.push_back(change);
    }

    void addRule(const ContentLine& line, const ZoneChange& change, const Moment& first,
                 int before) {
        if (++ruleLines_ > kMostRuleLines) return;
        const Civil civil = civilOf(first.day);
        RuleStart start{civil.year, civil.month, civil.day, first.second, false, before};
        RuleReading reading = readRules(line.value, RuleForm::ICalendar, start);
        for (Note& note : reading.notes) {
            if (note.severity() == Severity::Note) continue;
            note.line = line.number;
            note.property = line.name;
            note.excerpt = trimmed(line.value).substr(0, kLongestExcerpt);
            sink_(std::move(note));
        }
        for (const Rule& rule : reading.rules) {
            // The hour of the change is DTSTART's, even where the rule gives it again.
            RuleLimits limits;
            limits.most = kMostChanges;
            limits.lastYear = kLastYear;
            Moment onset = first;
            for (const int day : expandRule(rule, start, limits)) {
                onset.day = day;
                addOnset(change, onset, before);
            }
        }
    }

    void addDates(const ContentLine& line, const ZoneChange& change, int before) {
        for (std::string_view rest = line.value; !rest.empty();) {
            std::string_view item = nextField(rest, ',');
            const auto moment = parseMoment(nextField(item, '/'));
            if (moment) addOnset(change, *moment, before);
        }
    }

    // Removes changes that change nothing. Of several at one moment the last one counts.
    void dropEmptyChanges() {
        std::vector<ZoneChange> kept;
        for (const ZoneChange& change : zone_.changes) {
            if (!kept.empty() && kept.back().utc == change.utc) kept.pop_back();
            if (kept.empty() || kept.back().offset != change.offset ||
                kept.back().daylight != change.daylight)
                kept.push_back(change);
        }
        zone_.changes = std::move(kept);
    }

    const NoteSink& sink_;
    ZoneParts zone_;
    int observances_ = 0;
    std::size_t ruleLines_ = 0;
    bool hasBase_ = false;
    std::int64_t baseSince_ = 0;
};

}  // namespace

ZonePtr zoneFromVTimezone(const Component& component, const NoteSink& sink) {
    return VTimezoneBuilder(sink).build(component);
}

}  // namespace qel::calendar
