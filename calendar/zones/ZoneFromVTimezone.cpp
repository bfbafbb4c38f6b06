// Zones from VTIMEZONE components (RFC 5545 section 3.6.5).
#include <algorithm>
#include <iterator>
#include <optional>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/text/ContentText.h"
#include "calendar/text/ContentValue.h"
#include "calendar/text/Escapes.h"
#include "calendar/zones/Zone.h"

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
    std::vector<Note> ignored;
    ContentLine bytes;
    bytes.value = line.value;
    return iCalendarLine(line.name, line.parameters, decodedValue(bytes, ignored));
}

bool belongsToZone(std::string_view name) {
    static constexpr std::string_view kNames[] = {
        "TZID",  "TZURL", "LAST-MODIFIED", "DTSTART", "TZOFFSETFROM", "TZOFFSETTO",
        "RRULE", "RDATE", "EXRULE",        "EXDATE",  "TZNAME",       "COMMENT"};
    return name.substr(0, 2) == "X-" ||
           std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

bool standsOnce(std::string_view name) {
    return name == "TZID" || name == "LAST-MODIFIED" || name == "TZURL" || name == "DTSTART" ||
           name == "TZOFFSETFROM" || name == "TZOFFSETTO";
}

}  // namespace

class VTimezoneZone {
  public:
    explicit VTimezoneZone(const NoteSink& sink) : sink_(sink), zone_(std::make_shared<Zone>()) {}

    ZonePtr build(const Component& component) {
        const ContentLine* id = find(component, "TZID");
        if (id == nullptr || trimmed(id->value).empty()) {
            sink_(Note(Severity::Error, "a VTIMEZONE without TZID is left out", component.number));
            return nullptr;
        }
        zone_->id_ = unescapeICalendar(trimmed(id->value));
        for (const Component& child : component.children)
            if (child.name == "STANDARD" || child.name == "DAYLIGHT") takeObservance(child);
        if (observances_ == 0) {
            sink_(Note(Severity::Error, "the zone " + quoted(zone_->id_) + " has no usable offset",
                       component.number));
            return nullptr;
        }
        std::stable_sort(
            zone_->changes_.begin(), zone_->changes_.end(),
            [](const Zone::Change& a, const Zone::Change& b) { return a.utc < b.utc; });
        dropEmptyChanges();
        for (const ContentLine& line : component.properties)
            if (line.name == "X-VCAL-TZ" || line.name == "X-VCAL-DAYLIGHT")
                zone_->ownLines_.emplace_back(line.name.substr(7), unescapeICalendar(line.value));
        addLines(component);
        return zone_;
    }

  private:
    // The component as it stands, for the output. Of what may stand once, the first counts.
    void addLines(const Component& component) {
        std::vector<std::string>& lines = zone_->vTimezone_;
        lines.push_back("BEGIN:" + component.name);
        for (const ContentLine& line : component.properties)
            if (!belongsToZone(line.name))
                sink_(Note(Severity::Error,
                           std::string(line.name) + " is no part of a zone; it is left out",
                           line.number));
            else if (standsOnce(line.name) && find(component, line.name) != &line)
                sink_(Note(Severity::Error,
                           "a second " + std::string(line.name) + " in a zone is left out",
                           line.number));
            else
                lines.push_back(contentText(line));
        for (const Component& child : component.children) {
            if (child.name == "STANDARD" || child.name == "DAYLIGHT")
                addLines(child);
            else
                sink_(Note(Severity::Error,
                           quoted(child.name) + " is no part of a zone; it is left out",
                           child.number));
        }
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
            sink_(Note(Severity::Error,
                       "this part of the zone " + quoted(zone_->id_) +
                           " lacks DTSTART, TZOFFSETFROM or TZOFFSETTO",
                       observance.number));
            return;
        }
        const int before = *fromOffset;
        const ContentLine* name = find(observance, "TZNAME");
        Zone::Change change{0, *toOffset, observance.name == "DAYLIGHT", ""};
        if (name != nullptr) {
            std::vector<Note> ignored;
            change.name = unescapeICalendar(decodedValue(*name, ignored));
        }
        ++observances_;
        // What was before the first change of all.
        if (!hasBase_ || first->seconds() < baseSince_) {
            hasBase_ = true;
            baseSince_ = first->seconds();
            zone_->baseOffset_ = before;
        }
        addOnset(change, *first, before);
        for (const ContentLine& line : observance.properties) {
            if (line.name == "RRULE") addRule(line, change, *first, before);
            if (line.name == "RDATE") addDates(line, change, before);
        }
    }

    void addOnset(Zone::Change change, const Moment& local, int before) {
        if (zone_->changes_.size() >= kMostChanges) return;
        change.utc = local.seconds() - (local.clock == Clock::Utc ? 0 : before);
        zone_->changes_.push_back(change);
    }

    void addRule(const ContentLine& line, const Zone::Change& change, const Moment& first,
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
            // The hour of the change is DTSTART's, whatever the rule repeats of it.
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

    void addDates(const ContentLine& line, const Zone::Change& change, int before) {
        for (std::string_view rest = line.value; !rest.empty();) {
            std::string_view item = nextField(rest, ',');
            const auto moment = parseMoment(nextField(item, '/'));
            if (moment) addOnset(change, *moment, before);
        }
    }

    // Changes to what is in force already are none; of two at one moment the last counts.
    void dropEmptyChanges() {
        std::vector<Zone::Change> kept;
        for (const Zone::Change& change : zone_->changes_) {
            if (!kept.empty() && kept.back().utc == change.utc) kept.pop_back();
            if (kept.empty() || kept.back().offset != change.offset ||
                kept.back().daylight != change.daylight)
                kept.push_back(change);
        }
        zone_->changes_ = std::move(kept);
    }

    const NoteSink& sink_;
    std::shared_ptr<Zone> zone_;
    int observances_ = 0;
    std::size_t ruleLines_ = 0;
    bool hasBase_ = false;
    std::int64_t baseSince_ = 0;
};

ZonePtr Zone::fromVTimezone(const Component& component, const NoteSink& sink) {
    return VTimezoneZone(sink).build(component);
}

}  // namespace qel::calendar
