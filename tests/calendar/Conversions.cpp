#include "calendar/Conversions.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "calendar/base/Text.h"
#include "calendar/converter/EntryStream.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/rules/Occurrences.h"

namespace qel::test {

using namespace qel::calendar;

std::vector<std::string> Conversion::texts(Severity severity) const {
    std::vector<std::string> result;
    for (const Note& each : messages)
        if (each.severity() == severity)
            result.push_back(std::to_string(each.line) + ": " + each.text());
    return result;
}

bool Conversion::tells(const std::string& part) const {
    return std::any_of(
        messages.begin(), messages.end(),
        [&](const Note& each) {
            return (std::to_string(each.line) + ": " + each.text()).find(part) != std::string::npos;
        });
}

Conversion convertText(const std::string& text, std::optional<CalendarFormat> to, std::size_t piece,
                       ConversionObserver* observer, const Choices& choices) {
    Conversion result;
    std::ostringstream out;
    Converter converter(out, to, [&](const Note& message) { result.messages.push_back(message); });
    converter.observe(observer);
    converter.choose(choices);
    const auto inPieces = [&](auto&& write) {
        for (std::size_t at = 0; at < text.size(); at += piece)
            write(std::string_view(text).substr(at, piece));
    };
    converter.beginScan();
    inPieces([&](std::string_view bytes) { converter.scan(bytes); });
    converter.endScan();
    converter.beginFile("test");
    inPieces([&](std::string_view bytes) { converter.write(bytes); });
    converter.endFile();
    converter.finish();
    result.out = out.str();
    result.counts = converter.counts();
    return result;
}

std::vector<std::filesystem::path> publicFiles(const std::string& kind) {
    std::vector<std::filesystem::path> files;
    std::error_code failure;
    for (const auto& each : std::filesystem::directory_iterator(
             std::filesystem::path(QEL_TEST_SHARED_DATA) / kind, failure))
        if (each.path().extension() == "." + kind) files.push_back(each.path());
    std::sort(files.begin(), files.end());
    return files;
}

namespace {

class Transcript final : public ConversionObserver {
  public:
    [[nodiscard]] bool wantsLines() const override { return true; }
    void entryConverted(const ConvertedEntry& each) override {
        text << "entry " << each.entry.line << " with " << each.notes.size() << " notes and "
             << each.moreNotes << "\n"
             << each.source << (each.sourceCut ? "..." : "") << each.written;
    }
    void add(const Note& note) {
        text << note.file << ":" << note.line << ": " << static_cast<int>(note.code) << " "
             << note.text() << "\n";
    }

    std::ostringstream text;
};

// All that a conversion says, in its order: notes, entries with their lines, the result, counts.
// The text comes in pieces of that size; threads work on those of `from` bytes or more.
std::string transcriptOf(const std::string& text, CalendarFormat to, std::size_t piece,
                         std::size_t threads, std::size_t from, const Choices& choices) {
    Transcript transcript;
    std::ostringstream out;
    Converter converter(out, to, [&](const Note& note) { transcript.add(note); });
    converter.observe(&transcript);
    converter.choose(choices);
    converter.useThreads(threads, from);
    converter.beginScan();
    converter.scan(text);
    converter.endScan();
    converter.beginFile("test");
    for (std::size_t at = 0; at < text.size(); at += piece)
        converter.write(std::string_view(text).substr(at, piece));
    converter.endFile();
    converter.finish();
    const ConvertCounts& counts = converter.counts();
    return transcript.text.str() + out.str() + std::to_string(counts.calendars) + " " +
           std::to_string(counts.entries) + " " + std::to_string(counts.alarms);
}

}  // namespace

std::string differenceInPieces(const std::string& text) {
    for (const CalendarFormat to : {CalendarFormat::ICalendar, CalendarFormat::VCalendar10}) {
        const Conversion whole = convertText(text, to, text.size());
        for (const std::size_t piece : {1u, 2u, 7u, 4096u}) {
            const Conversion parts = convertText(text, to, piece);
            bool same = parts.out == whole.out;
            for (const Severity each : {Severity::Note, Severity::Warning, Severity::Error})
                same = same && parts.texts(each) == whole.texts(each);
            if (!same) return "pieces of " + std::to_string(piece) + " bytes";
        }
        if (std::string difference = differenceByThreads(text, to, 509); !difference.empty())
            return difference;
    }
    return {};
}

std::string differenceByThreads(const std::string& text, CalendarFormat to, std::size_t piece,
                                const Choices& choices) {
    for (const std::size_t size : {text.size(), piece}) {
        const std::string one = transcriptOf(text, to, size, 1, 1, choices);
        for (const std::size_t threads : {2u, 3u}) {
            // Spans of one entry, and of several.
            const std::size_t from = threads == 2 ? 1 : std::min<std::size_t>(size, 5000);
            const std::string many = transcriptOf(text, to, size, threads, from, choices);
            const auto [first, second] =
                std::mismatch(one.begin(), one.end(), many.begin(), many.end());
            if (first == one.end() && second == many.end()) continue;
            const auto at = static_cast<std::size_t>(first - one.begin());
            const std::size_t begin = at - std::min<std::size_t>(at, 200);
            return std::to_string(threads) + " threads, pieces of " + std::to_string(size) + ": " +
                   one.substr(begin, 400) + "\ninstead\n" + many.substr(begin, 400);
        }
    }
    return {};
}

Conversion toICalendar(const std::string& text) {
    return convertText(text, CalendarFormat::ICalendar);
}

Conversion toVCalendar(const std::string& text) {
    return convertText(text, CalendarFormat::VCalendar10);
}

std::vector<Entry> entriesOf(const std::string& text) {
    EntryStream stream;
    stream.scan(text);
    stream.write(text);
    stream.end();
    std::vector<Entry> entries;
    while (stream.next() == EntryStream::State::Entry) entries.push_back(stream.entry().entry);
    return entries;
}

namespace {

std::string momentText(const Entry& entry, const std::optional<Moment>& moment) {
    if (!moment) return "none";
    return formatMoment(entry.toUtc(*moment).value_or(*moment));
}

// The dates of a rule rather than its words.
std::string ruleText(const Entry& entry, const Rule& rule, bool exclude) {
    std::string text = exclude ? "never" : "on";
    RuleLimits limits;
    limits.most = 50;
    text += rule.endless() ? " endless" : " ends";
    if (entry.start)
        for (const int day : expandRule(rule, entry.ruleStart(), limits))
            text += " " + std::to_string(day);
    return text;
}

std::string alarmText(const Entry& entry, const Alarm& alarm) {
    std::optional<Moment> at = alarm.at;
    if (!at && entry.start) {
        Moment moment = entry.toUtc(*entry.start).value_or(*entry.start);
        at = momentAt(moment, moment.seconds() + alarm.offset);
        at->isDate = false;
    }
    std::string parameters;
    for (const Parameter& each : alarm.parameters) parameters += " " + each.name + "=" + each.value;
    return std::string(alarmName(alarm.action)) + " " + momentText(entry, at) + " " +
           (alarm.fromVCalendar ? alarm.fields : writeAlarmFields(alarm)) + parameters;
}

// Everything of an entry that must come back.
std::multiset<std::string> factsOf(const Entry& entry, bool withUid) {
    std::multiset<std::string> facts;
    if (withUid) facts.insert("UID " + entry.uid);
    facts.insert("component " + entry.component);
    const std::pair<const char*, const std::optional<Moment>*> moments[] = {
        {"start", &entry.start},
        {"end", &entry.end},
        {"due", &entry.due},
        {"completed", &entry.completed},
        {"created", &entry.created},
        {"modified", &entry.modified},
        {"instance", &entry.recurrenceId}};
    for (const auto& [name, moment] : moments)
        facts.insert(std::string(name) + " " + momentText(entry, *moment));
    for (const EntryRule& rules : entry.rules)
        for (const Rule& rule : rules.rules) facts.insert(ruleText(entry, rule, rules.exclude));
    std::set<std::string> dates;
    for (const Moment& each : entry.dates)
        dates.insert("date " + momentText(entry, entry.inClockOf(*entry.start, each)));
    for (const Moment& each : entry.excluded)
        dates.insert("not " + momentText(entry, entry.inClockOf(*entry.start, each)));
    facts.insert(dates.begin(), dates.end());
    for (const Alarm& alarm : entry.alarms) facts.insert(alarmText(entry, alarm));
    for (const EntryProperty& property : entry.properties) {
        if (property.value().find_first_not_of(' ') == std::string::npos) continue;
        std::string text = property.name;
        // iCalendar has no names with "_".
        std::replace(text.begin(), text.end(), '_', '-');
        // A series that is due and has no start begins when it is due.
        if (text == "X-VCAL-DUE") {
            facts.erase("due none");
            facts.insert("due " + property.value());
            continue;
        }
        const bool isList = property.type == EntryProperty::Type::TextList;
        for (const std::string& value : isList ? property.items : std::vector{property.text})
            text += " [" + value + "]";
        facts.insert(text);
    }
    return facts;
}

std::string difference(const std::multiset<std::string>& one,
                       const std::multiset<std::string>& other) {
    std::vector<std::string> lost;
    std::vector<std::string> gained;
    std::set_difference(one.begin(), one.end(), other.begin(), other.end(),
                        std::back_inserter(lost));
    std::set_difference(other.begin(), other.end(), one.begin(), one.end(),
                        std::back_inserter(gained));
    std::string text;
    for (const std::string& each : lost) text += "\n  lost   " + each;
    for (const std::string& each : gained) text += "\n  gained " + each;
    return text;
}

}  // namespace

std::string entryDifferences(const std::string& before, const std::string& after) {
    const std::vector<Entry> first = entriesOf(before);
    const std::vector<Entry> second = entriesOf(after);
    if (first.size() != second.size())
        return std::to_string(first.size()) + " entries became " + std::to_string(second.size());
    std::string text;
    for (std::size_t each = 0; each < first.size(); ++each) {
        // An event that has an end alone starts there in iCalendar, and so it comes back.
        if (!first[each].start && first[each].end) continue;
        const bool withUid = !first[each].uid.empty();
        const std::string change =
            difference(factsOf(first[each], withUid), factsOf(second[each], withUid));
        if (!change.empty())
            text += "entry at line " + std::to_string(first[each].line) + ":" + change + "\n";
    }
    return text;
}

std::vector<std::string> unfolded(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find("\r\n", at), text.size());
        const std::string line = text.substr(at, end - at);
        if (!line.empty() && line.front() == ' ' && !lines.empty())
            lines.back() += line.substr(1);
        else
            lines.push_back(line);
        at = end + 2;
    }
    return lines;
}

std::string vcalendarWith(const std::string& lines, const std::string& header) {
    std::string text;
    for (const char c : "BEGIN:VCALENDAR\nVERSION:1.0\n" + header + "BEGIN:VEVENT\n" + lines +
                            "END:VEVENT\nEND:VCALENDAR\n") {
        if (c == '\n') text += '\r';
        text += c;
    }
    return text;
}

namespace {

std::string faultOfLines(const std::vector<std::string>& lines) {
    static const std::set<std::string> kOnce = {
        "UID",     "DTSTAMP",   "DTSTART",       "DTEND",    "DUE",      "DURATION",     "SUMMARY",
        "CLASS",   "STATUS",    "DESCRIPTION",   "LOCATION", "PRIORITY", "SEQUENCE",     "TRANSP",
        "CREATED", "COMPLETED", "LAST-MODIFIED", "GEO",      "URL",      "RECURRENCE-ID"};
    std::vector<std::string> open;
    std::set<std::string> seen;
    bool hasStart = false;
    for (const std::string& line : lines) {
        const std::size_t head = line.find_first_of(";:");
        if (head == std::string::npos || head == 0) return "no property: " + line;
        const std::string name = line.substr(0, head);
        if (name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-") != std::string::npos)
            return "no name: " + line;
        const std::string value = line.substr(line.find(':') + 1);
        if (name == "BEGIN") {
            open.push_back(value);
            if (open.size() == 2) {
                seen.clear();
                hasStart = false;
            }
            continue;
        }
        if (name == "END") {
            if (open.empty() || open.back() != value) return "wrong END: " + line;
            if (open.size() == 2 && value != "VTIMEZONE") {
                if (seen.count("UID") == 0 || seen.count("DTSTAMP") == 0)
                    return value + " without UID or DTSTAMP";
                if (value == "VEVENT" && !hasStart) return "VEVENT without DTSTART";
                if (value == "VTODO" && seen.count("RRULE") != 0 && !hasStart)
                    return "RRULE without DTSTART";
            }
            open.pop_back();
            continue;
        }
        if (open.empty()) return "outside: " + line;
        if (open.size() == 2) {
            if (!seen.insert(name).second && kOnce.count(name) != 0) return "twice: " + line;
            hasStart = hasStart || name == "DTSTART";
        }
    }
    return open.empty() ? "" : "not closed: " + open.back();
}

}  // namespace

std::string faultOf(const std::string& icalendar) {
    std::size_t at = 0;
    while (at < icalendar.size()) {
        const std::size_t end = icalendar.find("\r\n", at);
        if (end == std::string::npos) return "the last line has no end";
        const std::string line = icalendar.substr(at, end - at);
        if (line.size() > 75) return "longer than 75 octets: " + line;
        if (!calendar::isUtf8(line)) return "not UTF-8, or a fold inside a character: " + line;
        for (const char c : line)
            if (static_cast<unsigned char>(c) < ' ' && c != '\t') return "a control: " + line;
        at = end + 2;
    }
    const std::vector<std::string> lines = unfolded(icalendar);
    if (lines.size() < 4 || lines[0] != "BEGIN:VCALENDAR" || lines[1] != "VERSION:2.0" ||
        lines[2].rfind("PRODID:", 0) != 0)
        return "no calendar";
    return faultOfLines(lines);
}

}  // namespace qel::test
