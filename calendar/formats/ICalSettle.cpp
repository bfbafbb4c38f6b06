#include "calendar/formats/ICalSettle.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/formats/AlarmText.h"
#include "calendar/formats/ICalEntry.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/text/Escapes.h"

namespace qel::calendar {

namespace {

// A count whose series lasts longer stays a count.
constexpr int kYearsCounted = 100;

// A rule of exceptions becomes a list of dates up to this many, and is kept under this name.
constexpr std::size_t kMostExceptions = 500;
constexpr std::string_view kException = "X-ICAL-EXRULE";

std::string keptName(std::string_view name) {
    return std::string(kVCalendarPrefix) + std::string(name);
}

// A rule that recurs within the day: a Rule cannot express it, but iCalendar can.
bool isFineRule(const EntryProperty& property) {
    return property.name == "X-ICAL-RRULE"sv &&
           (startsWithIgnoreCase(property.value(), "FREQ=HOURLY") ||
            startsWithIgnoreCase(property.value(), "FREQ=MINUTELY") ||
            startsWithIgnoreCase(property.value(), "FREQ=SECONDLY"));
}

// True where several rules have times of day of their own: only those of the start are followed.
bool exceptsOtherTimes(const Entry& entry) {
    const auto haveTimes = [&entry](bool exclude) {
        return std::any_of(entry.rules.begin(), entry.rules.end(), [&](const EntryRule& each) {
            return each.exclude == exclude &&
                   std::any_of(each.rules.begin(), each.rules.end(),
                               [](const Rule& rule) { return rule.hasTimes(); });
        });
    };
    return haveTimes(false) && haveTimes(true);
}

// True for a rule without an occurrence on its start.
bool isOdd(const Rule& rule, const RuleStart& start) {
    return !rule.hasTimes() && !yieldsStart(rule, start);
}

class ICalSettling {
  public:
    explicit ICalSettling(SettledEntry& settled) : settled_(settled) {}

    void settle() {
        settleStart();
        settleEnd();
        settleDue();
        if (entry().kind == EntryKind::Journal && entry().duration)
            settled_.change().duration.reset();
        if (entry().kind != EntryKind::Todo && entry().completed)
            keep("COMPLETED", *entry().completed);
        settleRules();
        settleProperties();
        settleAlarms();
    }

  private:
    [[nodiscard]] const Entry& entry() const { return settled_.entry(); }

    void addNote(NoteCode code, std::initializer_list<std::string_view> values = {},
                 std::size_t line = 0) {
        settled_.notes.emplace_back(code, line == 0 ? entry().line : line, values);
    }

    // Keeps a date that iCalendar does not allow in such an entry.
    void keep(std::string_view name, Moment moment) {
        settled_.change().properties.push_back({keptName(name),
                                                {},
                                                EntryProperty::Type::Text,
                                                formatMoment(moment),
                                                {},
                                                entry().line});
    }

    void settleStart();
    // `moment` with the value type and clock of the start, which iCalendar demands.
    [[nodiscard]] Moment likeStart(const Moment& moment) const;
    // Seconds from the start to `moment`, which is on the start's clock.
    [[nodiscard]] std::int64_t afterStart(const Moment& moment) const;
    void settleEnd();
    void settleDue();
    // UNTIL is of the start's value type: a date, a local time, or UTC (RFC 5545 section 3.3.10).
    [[nodiscard]] std::string untilText(const std::string& until) const;
    // Readers disagree about a start that its rule does not yield, and about its place in a count:
    // it becomes a date of its own, and the count an end date, so that all find the same series.
    void settleOddStart();
    // Gives a counted rule that does not yield the start its last date in place of the count.
    void countToEnd(Rule& rule, const RuleStart& start) const;
    [[nodiscard]] std::string ruleText(const Rule& rule, bool exclude) const;
    void settleRules();
    // Today's calendar programs ignore EXRULE: its dates become EXDATEs.
    void settleExceptions(const std::string& rule);
    void settleProperties();
    [[nodiscard]] bool allowed(const EntryProperty& property);
    void settleAlarms();

    SettledEntry& settled_;
    bool odd_ = false;  // a rule that adds dates does not yield the start
    std::bitset<static_cast<std::size_t>(kLastPropertyName) + 1> seen_;  // that may stand once
};

void ICalSettling::settleStart() {
    if (entry().kind != EntryKind::Event || entry().start) return;
    Entry& changed = settled_.change();
    if (changed.end) {
        changed.start = std::exchange(changed.end, std::nullopt);
        addNote(NoteCode::EventStartsAtItsEnd);
        return;
    }
    addNote(NoteCode::EventBecomesTodo);
    changed.kind = EntryKind::Todo;
    changed.properties.push_back(
        {keptName("COMPONENT"), {}, EntryProperty::Type::Text, "VEVENT", {}, changed.line});
}

Moment ICalSettling::likeStart(const Moment& moment) const {
    const Moment& start = *entry().start;
    if (moment.isDate && !start.isDate) return {moment.day, 0, false, start.clock};
    if (!moment.isDate && start.isDate) {
        Moment day = entry().inClockOf(start, moment);
        if (moment.second != 0) ++day.day;
        return day;
    }
    return entry().inClockOf(start, moment);
}

std::int64_t ICalSettling::afterStart(const Moment& moment) const {
    const auto utc = entry().toUtc(moment);
    const auto startUtc = entry().toUtc(*entry().start);
    if (utc && startUtc) return utc->seconds() - startUtc->seconds();
    return moment.seconds() - entry().start->seconds();
}

void ICalSettling::settleEnd() {
    if (!entry().end) return;
    if (entry().kind == EntryKind::Event) {
        const Moment end = likeStart(*entry().end);
        const std::int64_t length = afterStart(end);
        if (length > 0) {
            if (end.clock != entry().start->clock && !end.isDate)
                addNote(NoteCode::StartAndEndOnTwoClocks);
            if (end != *entry().end) settled_.change().end = end;
            return;
        }
        if (length < 0) addNote(NoteCode::EndBeforeStart, {keptName("DTEND")});
    }
    keep("DTEND", *entry().end);
    settled_.change().end.reset();
}

void ICalSettling::settleDue() {
    if (!entry().due) return;
    if (entry().kind != EntryKind::Todo) {
        keep("DUE", *entry().due);
        settled_.change().due.reset();
        return;
    }
    if (!entry().start) return;
    const Moment due = likeStart(*entry().due);
    const std::int64_t length = afterStart(due);
    if (length > 0) {
        if (due != *entry().due) settled_.change().due = due;
        return;
    }
    // A series may start at its due time, as calendar programs themselves write it.
    if (length == 0 && entry().recurs()) {
        if (due != *entry().due) settled_.change().due = due;
        return;
    }
    // iCalendar demands that it is due later; a series needs its start, and a person the due date.
    const bool keepsDue = entry().recurs() || !entry().excluded.empty();
    const std::string_view name = keepsDue ? "DUE" : "DTSTART";
    if (length < 0) addNote(NoteCode::DueBeforeStart, {keptName(name)});
    std::optional<Moment>& dropped = keepsDue ? settled_.change().due : settled_.change().start;
    keep(name, *dropped);
    dropped.reset();
}

std::string ICalSettling::untilText(const std::string& until) const {
    const auto read = parseMoment(until);
    if (!read) return until;
    Moment moment = *read;
    const Moment& start = *entry().start;
    if (moment.clock == Clock::Floating && start.clock != Clock::Floating && !moment.isDate)
        moment.clock = entry().zone != nullptr ? Clock::Zoned : Clock::Utc;
    if (start.isDate) return formatMoment(entry().inClockOf(start, moment));
    if (start.clock == Clock::Floating)
        moment.clock = Clock::Floating;
    else if (const auto utc = entry().toUtc(moment))
        moment = *utc;
    return formatMoment(moment);
}

void ICalSettling::settleOddStart() {
    const RuleStart start = entry().ruleStart();
    bool yielded = false;
    for (const EntryRule& each : settled_.read().rules)
        for (const Rule& rule : each.rules)
            if (!each.exclude && !isOdd(rule, start))
                yielded = true;
            else if (!each.exclude)
                odd_ = true;
    if (!odd_ || yielded) return;
    const auto isStart = [this](const Moment& date) {
        return entry().inClockOf(*entry().start, date) == *entry().start;
    };
    if (std::any_of(entry().excluded.begin(), entry().excluded.end(), isStart)) return;
    std::vector<Moment>& dates = settled_.change().dates;
    dates.insert(dates.begin(), *entry().start);
}

void ICalSettling::countToEnd(Rule& rule, const RuleStart& start) const {
    if (rule.count == 0) return;
    RuleLimits limits;
    limits.most = static_cast<std::size_t>(rule.count);
    limits.lastYear = start.year + kYearsCounted;
    const std::vector<int> days = expandRule(rule, start, limits);
    if (days.size() != limits.most) return;
    Moment last = *entry().start;
    last.day = days.back();
    rule.until = formatMoment(last);
    rule.count = 0;
}

void ICalSettling::settleRules() {
    if (!entry().start || entry().rules.empty()) return;
    settleOddStart();
    std::string exception;
    for (const EntryRule& each : settled_.read().rules) {
        for (const Rule& rule : each.rules) {
            std::string text = ruleText(rule, each.exclude);
            if (each.exclude && exception.empty()) exception = text;
            if (text.empty())
                addNote(NoteCode::EntryRuleNotWritable, {}, each.line);
            else
                settled_.rules.push_back({each.exclude ? kException : "RRULE", std::move(text)});
        }
    }
    if (!exception.empty()) settleExceptions(exception);
}

std::string ICalSettling::ruleText(const Rule& rule, bool exclude) const {
    const bool odd = odd_ && !exclude && rule.count != 0;
    if (!odd && rule.until.empty()) return iCalendarText(rule);
    Rule settled = rule;
    const RuleStart start = entry().ruleStart();
    if (odd && isOdd(rule, start)) countToEnd(settled, start);
    if (!settled.until.empty()) settled.until = untilText(settled.until);
    return iCalendarText(settled);
}

void ICalSettling::settleExceptions(const std::string& rule) {
    const Exclusions found = excludedByRules(settled_.read(), kMostExceptions);
    const auto owner = std::find_if(entry().rules.begin(), entry().rules.end(),
                                    [](const EntryRule& each) { return each.exclude; });
    const std::string count = std::to_string(found.dates.size());
    if (exceptsOtherTimes(entry()))
        addNote(NoteCode::ExceptionTimesMissing, {rule, kException}, owner->line);
    else if (found.more)
        addNote(NoteCode::ExceptionRuleCut,
                {rule, count, kException, formatMoment({found.through, 0, true, Clock::Floating})},
                owner->line);
    else if (!found.dates.empty())
        addNote(NoteCode::ExceptionRuleAsDates, {rule, count, kException}, owner->line);
    if (found.dates.empty()) return;
    std::vector<Moment>& excluded = settled_.change().excluded;
    excluded.insert(excluded.end(), found.dates.begin(), found.dates.end());
}

void ICalSettling::settleProperties() {
    for (std::size_t at = 0; at < entry().properties.size(); ++at) {
        const EntryProperty& property = entry().properties[at];
        if (isFineRule(property) && entry().start) {
            EntryProperty& rule = settled_.change().properties[at];
            rule.rename(rule.name.substr(kICalendarPrefix.size()));
            rule.parameters.clear();
            rule.type = EntryProperty::Type::Raw;
        } else if (!allowed(property)) {
            EntryProperty& kept = settled_.change().properties[at];
            kept.rename(keptName(kept.name));
            // Its name no longer says that the value is not a text.
            if (kept.type == EntryProperty::Type::Raw) kept.text = escapeICalendar(kept.text);
        }
    }
}

bool ICalSettling::allowed(const EntryProperty& property) {
    // Empty texts are not written.
    if (property.type == EntryProperty::Type::Text && saysNothing(property.value())) return true;
    const PropertyName id = property.id();
    const Property& known = propertyOf(id);
    bool result = true;
    if (known.held == HeldAs::Property) {
        result = known.standsIn(entry().kind == EntryKind::Event  ? Property::kEvent
                                : entry().kind == EntryKind::Todo ? Property::kTodo
                                                                  : Property::kJournal);
        if (known.once && seen_.test(static_cast<std::size_t>(id))) {
            result = false;
            addNote(NoteCode::EntryPropertyTwice, {property.name, keptName(property.name)},
                    property.line);
        } else if (known.once) {
            seen_.set(static_cast<std::size_t>(id));
        }
    }
    const bool isLink = (id == PropertyName::Attach || id == PropertyName::Url) &&
                        property.type == EntryProperty::Type::Raw;
    return result && !(isLink && !isUri(property.value()));
}

void ICalSettling::settleAlarms() {
    const auto rings = [this](const Alarm& alarm) {
        return entry().kind != EntryKind::Journal && iCalendarTrigger(entry(), alarm);
    };
    if (std::all_of(entry().alarms.begin(), entry().alarms.end(), rings)) return;
    Entry& changed = settled_.change();
    for (const Alarm& alarm : changed.alarms) {
        if (rings(alarm)) continue;
        changed.properties.push_back(keptAlarm(alarm));
        addNote(NoteCode::AlarmTimeUnknown, {changed.properties.back().name}, alarm.line);
    }
    std::erase_if(changed.alarms, [&](const Alarm& alarm) { return !rings(alarm); });
}

}  // namespace

void settleForICalendar(SettledEntry& settled) {
    ICalSettling(settled).settle();
}

}  // namespace qel::calendar
