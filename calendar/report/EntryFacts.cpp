#include "calendar/report/EntryFacts.h"

#include <algorithm>

#include "calendar/base/Ascii.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/rules/RuleSentence.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::calendar {

namespace {

// Days of one entry that are looked for; of one rule without end, those of the months that are
// shown and one more.
constexpr std::size_t kMostDays = 500;
constexpr std::size_t kMostDaysOfEndless = 31 * kMostMonths + 1;

void addDateWords(std::string& text, int day) {
    const Civil civil = civilOf(day);
    text.append(weekdayName(weekdayOf(day))).append(", ").append(std::to_string(civil.day));
    text.append(" ").append(monthName(civil.month)).append(" ");
    text += std::to_string(civil.year);
}

void addTimeWords(std::string& text, int second) {
    const auto add = [&text](int number) {
        text += static_cast<char>('0' + number / 10);
        text += static_cast<char>('0' + number % 10);
    };
    add(second / 3600);
    text += ':';
    add(second / 60 % 60);
    if (second % 60 == 0) return;
    text += ':';
    add(second % 60);
}

void addMoment(std::string& text, const Moment& moment) {
    addDateWords(text, moment.day);
    if (moment.isDate) return;
    text += ", ";
    addTimeWords(text, moment.second);
}

std::string clockText(const Entry& entry, const Moment& moment) {
    if (moment.isDate || moment.clock == Clock::Floating) return {};
    if (moment.clock == Clock::Utc) return " UTC";
    if (entry.zone == nullptr) return {};
    // The zones of phones' files have made-up names.
    const std::string& id = entry.zone->id();
    const bool named = id.find('/') != std::string::npos;
    return named ? " (" + id + ")"
                 : " UTC" + formatUtcOffset(entry.zone->offsetAtLocal(moment.seconds()), true);
}

std::string whenText(const Entry& entry) {
    constexpr std::size_t kUsual = 80;
    std::string text;
    text.reserve(kUsual);
    if (entry.start) {
        addMoment(text, *entry.start);
        if (const auto last = lastMoment(entry)) {
            text += " to ";
            if (last->day == entry.start->day && !last->isDate)
                addTimeWords(text, last->second);
            else
                addMoment(text, *last);
        }
        text += clockText(entry, *entry.start);
        if (entry.start->isDate) text += ", all day";
    }
    if (entry.due) {
        text += text.empty() ? "due " : "; due ";
        addMoment(text, *entry.due);
        text += clockText(entry, *entry.due);
    }
    return text;
}

// The values of the lines of that name without parameters, unfolded. A phone folds its lines at a
// blank, which stays then.
std::vector<std::string> valuesOf(std::string_view lines, std::string_view name, bool ofPhone) {
    std::vector<std::string> values;
    const auto takeLine = [&lines] {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::string_view line = lines.substr(0, end);
        lines.remove_prefix(std::min(end + 1, lines.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        return line;
    };
    for (std::size_t at = lines.find(name); at != lines.npos; at = lines.find(name)) {
        const bool begins = at == 0 || lines[at - 1] == '\n';
        lines.remove_prefix(at + name.size());
        if (!begins || !lines.starts_with(':')) continue;
        values.emplace_back(takeLine().substr(1));
        while (lines.starts_with(' ')) values.back() += takeLine().substr(ofPhone ? 0 : 1);
    }
    return values;
}

std::string titleOf(const Entry& entry) {
    for (const char* name : {"SUMMARY", "DESCRIPTION", "LOCATION"}) {
        const EntryProperty* property = entry.find(name);
        if (property == nullptr) continue;
        const std::string_view value = trimmed(property->value());
        if (!value.empty()) return std::string(value.substr(0, value.find('\n')));
    }
    return {};
}

}  // namespace

EntryFacts entryHeading(const Entry& entry) {
    EntryFacts facts;
    facts.kind = entry.kind == EntryKind::Event  ? "Event"
                 : entry.kind == EntryKind::Todo ? "To-do"
                                                 : "Note";
    facts.title = titleOf(entry);
    facts.when = whenText(entry);
    return facts;
}

EntryFacts entryFacts(const ConvertedEntry& converted) {
    const Entry& entry = converted.entry;
    EntryFacts facts = entryHeading(entry);
    facts.furtherDates = entry.dates.size();
    facts.exclusions = entry.excluded.size();
    facts.alarms = entry.alarms.size();
    bool endless = false;
    if (entry.start) {
        const RuleStart start = entry.ruleStart();
        for (const EntryRule& each : entry.rules) {
            for (const Rule& rule : each.rules) {
                const VCalendarRule texts = vCalendarTexts(rule, start);
                facts.rules.push_back({each.exclude, ruleSentence(rule, start), texts.texts,
                                       texts.reason, iCalendarText(rule)});
                endless = endless || (!each.exclude && rule.endless());
            }
        }
    }
    // The writer settles ends on the clock of the start, and readers write them in other ways too.
    if (facts.rules.size() == 1 && !facts.rules[0].exclude) {
        RuleFacts& rule = facts.rules[0];
        const bool toPhone = converted.target == CalendarFormat::VCalendar10;
        const std::vector<std::string> before = valuesOf(converted.source, "RRULE", !toPhone);
        const std::vector<std::string> after = valuesOf(converted.written, "RRULE", toPhone);
        const auto& iCalendar = toPhone ? before : after;
        const auto& vCalendar = toPhone ? after : before;
        if (iCalendar.size() == 1) rule.iCalendar = iCalendar[0];
        if (vCalendar.size() == 1 && !rule.vCalendar.empty()) rule.vCalendar = vCalendar;
    }
    const bool alone = facts.rules.size() == 1;
    facts.days = markedDays(entry, endless && alone ? kMostDaysOfEndless : kMostDays);
    // Dates are looked for until the year 2499, where a series without end does not end.
    facts.days.more = facts.days.more || endless;
    return facts;
}

}  // namespace qel::calendar
