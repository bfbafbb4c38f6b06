#include "calendar/zones/ZoneText.h"

#include <algorithm>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/text/Escapes.h"
#include "calendar/text/TextCodec.h"
#include "calendar/zones/ZoneObservances.h"

namespace qel::calendar {

namespace {

// "+01", "+05:30".
std::string vCalendarOffset(int seconds) {
    std::string text = formatUtcOffset(seconds, true);
    if (text.size() == 6 && text.ends_with(":00")) text.resize(3);
    return text;
}

constexpr int kEarliest = 1;
constexpr int kLatest = 9999;

std::string utcText(std::int64_t utc) {
    Moment moment;
    moment.clock = Clock::Utc;
    return formatMoment(momentAt(moment, utc));
}

// A text that was read without a character set.
std::string escaped(const std::string& bytes) {
    return escapeICalendar(decodedText(bytes));
}

void addObservance(std::vector<std::string>& lines, const ZoneObservance& observance) {
    const std::string kind = observance.daylight ? "DAYLIGHT" : "STANDARD";
    lines.push_back("BEGIN:" + kind);
    lines.push_back("DTSTART:" + formatMoment(momentAt(Moment{}, observance.start)));
    lines.push_back("TZOFFSETFROM:" + formatUtcOffset(observance.from));
    lines.push_back("TZOFFSETTO:" + formatUtcOffset(observance.to));
    if (!observance.name.empty()) lines.push_back("TZNAME:" + escaped(observance.name));
    if (!observance.rule.empty()) lines.push_back("RRULE:" + observance.rule);
    std::string dates;
    for (const std::int64_t date : observance.dates)
        dates += (dates.empty() ? "RDATE:" : ",") + formatMoment(momentAt(Moment{}, date));
    if (!dates.empty()) lines.push_back(std::move(dates));
    lines.push_back("END:" + kind);
}

struct Standard {
    int offset;
    std::string name;
};

// Outside daylight time at `begin`, or else the first after it.
Standard standardAt(const ZoneParts& zone, std::int64_t begin) {
    Standard standard{zone.baseOffset, ""};
    bool any = false;
    for (const ZoneChange& change : zone.changes) {
        if (change.daylight || (any && change.utc > begin)) continue;
        standard = {change.offset, change.name};
        any = true;
    }
    return standard;
}

// The years that DAYLIGHT lines are about; every year without such lines.
std::pair<int, int> yearsOf(const std::vector<ZoneLine>& lines) {
    std::pair<int, int> years{kLatest, kEarliest};
    for (const auto& [name, value] : lines) {
        std::string_view rest = value;
        if (name != "DAYLIGHT" || !equalsIgnoreCase(trimmed(nextField(rest, ';')), "TRUE"))
            continue;
        (void)nextField(rest, ';');
        for (int field = 0; field < 2; ++field)
            if (const auto moment = parseMoment(nextField(rest, ';'))) {
                const int year = civilOf(moment->day).year;
                years = {std::min(years.first, year), std::max(years.second, year)};
            }
    }
    if (years.first > years.second) return {kEarliest, kEarliest};
    return years;
}

// The last year after `year` to which the zone has no change.
int steadyTo(const ZoneParts& zone, int year) {
    const std::int64_t end = yearBegin(year + 1);
    for (const ZoneChange& change : zone.changes)
        if (change.utc >= end) return civilOf(static_cast<int>(change.utc / kDaySeconds)).year - 1;
    return kLatest;
}

// The first year before `year` from which on the zone has no change.
int steadyFrom(const ZoneParts& zone, int year) {
    int from = kEarliest;
    for (const ZoneChange& change : zone.changes) {
        if (change.utc >= yearBegin(year)) break;
        from = civilOf(static_cast<int>(change.utc / kDaySeconds)).year + 1;
    }
    return from;
}

std::vector<ZoneLine> linesFor(const ZoneParts& parts, int from, int to) {
    const std::int64_t begin = yearBegin(from);
    const std::int64_t end = yearBegin(to + 1);
    const Standard standard = standardAt(parts, begin);
    std::vector<ZoneLine> lines;
    lines.emplace_back("TZ", vCalendarOffset(standard.offset));
    for (std::size_t each = 0; each < parts.changes.size(); ++each) {
        const ZoneChange& change = parts.changes[each];
        const std::int64_t until =
            each + 1 < parts.changes.size() ? parts.changes[each + 1].utc : end;
        if (change.offset == standard.offset || until <= begin || change.utc >= end) continue;
        lines.emplace_back("DAYLIGHT", "TRUE;" + vCalendarOffset(change.offset) + ";" +
                                           utcText(std::max(change.utc, begin)) + ";" +
                                           utcText(until) + ";" +
                                           std::string(trimmed(standard.name)) + ";" + change.name);
    }
    if (lines.size() == 1) lines.emplace_back("DAYLIGHT", "FALSE");
    return lines;
}

}  // namespace

bool isDescribedByChanges(const Zone& zone) {
    return zone.parts().content.empty() && zone.parts().observances.empty();
}

std::vector<std::string> vTimezoneLines(const Zone& zone, int year) {
    const ZoneParts& parts = zone.parts();
    if (!parts.content.empty()) return parts.content;
    std::vector<std::string> lines = {"BEGIN:VTIMEZONE", "TZID:" + parts.id};
    for (const auto& [name, value] : parts.ownLines)
        if (!value.empty()) lines.push_back("X-VCAL-" + name + ":" + escaped(value));
    if (parts.observances.empty())
        for (const ZoneObservance& each : observancesSince(zone, year)) addObservance(lines, each);
    for (const ZoneObservance& each : parts.observances) addObservance(lines, each);
    lines.emplace_back("END:VTIMEZONE");
    return lines;
}

VCalendarZone vCalendarZone(const Zone& zone, int first, int last, int until) {
    const ZoneParts& parts = zone.parts();
    if (!parts.ownLines.empty()) {
        const auto [begin, end] = yearsOf(parts.ownLines);
        const int right = begin == kEarliest ? kEarliest : steadyFrom(parts, begin);
        const int rightTo = begin == kEarliest ? steadyTo(parts, kEarliest) : steadyTo(parts, end);
        if (right <= first && rightTo >= last) return {parts.ownLines, right, rightTo};
    }
    if (parts.changes.empty())
        return {
            {{"TZ", vCalendarOffset(parts.baseOffset)}, {"DAYLIGHT", "FALSE"}}, kEarliest, kLatest};
    until = std::max(last, until);
    return {linesFor(parts, first, until), first, steadyTo(parts, until)};
}

bool hasOwnName(const Zone& zone) {
    const std::string_view id = zone.id();
    if (!id.starts_with("TZ+") && !id.starts_with("TZ-")) return true;
    const std::size_t digits = std::min(id.find_first_not_of("0123456789", 3), id.size()) - 3;
    // A digest of the DAYLIGHT lines may follow the offset.
    const std::string_view rest = id.substr(3 + digits);
    const bool madeUp = rest.empty() || (rest.size() == 9 && rest.front() == '-');
    return !madeUp || (digits != 4 && digits != 6);
}

}  // namespace qel::calendar
