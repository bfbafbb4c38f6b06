#include "calendar/formats/VCalSettle.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/entries/EntryDates.h"
#include "calendar/formats/AlarmText.h"
#include "calendar/formats/Vocabulary.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::calendar {

namespace {

// A rule that vCalendar 1.0 lacks becomes a list of dates up to this many.
constexpr std::size_t kMostDates = 500;

class VCalSettling {
  public:
    explicit VCalSettling(SettledEntry& settled) : settled_(settled) {}

    void settle() {
        settleDuration();
        settleRules();
        reportStatus();
        reportTransparency();
        reportJoinedTexts();
        settleAlarms();
    }

  private:
    [[nodiscard]] const Entry& entry() const { return settled_.entry(); }

    void addNote(NoteCode code, std::size_t line, std::initializer_list<std::string_view> values) {
        settled_.notes.emplace_back(code, line == 0 ? entry().line : line, values);
    }

    void settleDuration();
    void reportTransparency();
    void reportJoinedTexts();
    // The rule's end on the start's clock.
    [[nodiscard]] std::string untilText(const std::string& until) const;
    void settleRules();
    // A rule of exceptions says by itself what iCalendar lists beside it.
    void dropListedExceptions();
    void settleInexpressible(const EntryRule& owner, const Rule& rule, const RuleStart& start,
                             const std::string& reason);
    void reportStatus();
    [[nodiscard]] bool rings(const Alarm& alarm) const {
        return alarm.action != Alarm::Action::Other && vCalendarAlarmTime(entry(), alarm);
    }
    void settleAlarms();

    SettledEntry& settled_;
};

// The days of a duration are of the wall clock, the rest is elapsed time.
void VCalSettling::settleDuration() {
    if (!entry().duration || !entry().start || entry().end || entry().due) return;
    const Moment& start = *entry().start;
    const Duration& duration = *entry().duration;
    const Moment day = momentAt(start, start.seconds() + duration.days * 86400);
    Entry& changed = settled_.change();
    (changed.kind == EntryKind::Todo ? changed.due : changed.end) =
        changed.later(day, duration.seconds);
    changed.duration.reset();
}

void VCalSettling::reportTransparency() {
    for (const EntryProperty& each : entry().properties)
        if (each.name == "TRANSP"sv && transparencyToVCalendar(each.value()).empty())
            addNote(NoteCode::TransparencyKept, each.line, {each.value(), "X-ICAL-TRANSP"});
}

// The texts of a note become one, with the parameters of the first.
void VCalSettling::reportJoinedTexts() {
    const EntryProperty* const first = entry().find("DESCRIPTION");
    if (first == nullptr || entry().kind != EntryKind::Journal) return;
    for (const EntryProperty& each : entry().properties) {
        if (each.name != "DESCRIPTION"sv || each.parameters == first->parameters) continue;
        std::string names;
        for (const Parameter& own : each.parameters)
            names += (names.empty() ? "" : ", ") + own.name;
        if (!names.empty()) addNote(NoteCode::ParametersLeftOut, each.line, {each.name, names});
    }
}

std::string VCalSettling::untilText(const std::string& until) const {
    const auto read = parseMoment(until);
    if (!read) return until;
    Moment moment = *read;
    const Moment& start = *entry().start;
    if (moment.clock == Clock::Floating && start.clock == Clock::Zoned && !moment.isDate)
        moment.clock = Clock::Zoned;
    moment = entry().inClockOf(start, moment);
    if (!moment.isDate && start.clock == Clock::Utc) moment.clock = Clock::Utc;
    if (start.clock == Clock::Floating) moment.clock = Clock::Floating;
    // Phones take the whole of the last day.
    if (!moment.isDate && moment.second < start.second && moment.day > start.day) {
        --moment.day;
        moment.second = start.second;
    }
    return formatMoment(moment);
}

void VCalSettling::settleRules() {
    if (!entry().start) return;
    RuleStart start = entry().ruleStart();
    start.utcOffset = 0;
    for (const EntryRule& each : settled_.read().rules) {
        for (const Rule& own : each.rules) {
            std::optional<Rule> ended;
            if (!own.until.empty()) ended.emplace(own).until = untilText(own.until);
            const Rule& rule = ended ? *ended : own;
            VCalendarRule texts = vCalendarTexts(rule, start);
            for (std::string& text : texts.texts)
                settled_.rules.push_back({each.exclude ? "EXRULE" : "RRULE", std::move(text)});
            if (texts.texts.empty()) settleInexpressible(each, rule, start, texts.reason);
        }
    }
    const auto isException = [](const SettledRule& rule) { return rule.name == "EXRULE"sv; };
    if (!entry().excluded.empty() &&
        std::any_of(settled_.rules.begin(), settled_.rules.end(), isException))
        dropListedExceptions();
}

void VCalSettling::dropListedExceptions() {
    const Exclusions found = excludedByRules(settled_.read(), kMostDates);
    std::set<std::int64_t> dates;
    for (const Moment& date : found.dates) dates.insert(date.seconds());
    const Moment start = *entry().start;
    Entry& changed = settled_.change();
    std::erase_if(changed.excluded, [&](const Moment& date) {
        return dates.contains(changed.inClockOf(start, date).seconds());
    });
}

// A list of dates where the rule has an end, or the iCalendar rule, for when the entry is converted
// back.
void VCalSettling::settleInexpressible(const EntryRule& owner, const Rule& rule,
                                       const RuleStart& start, const std::string& reason) {
    std::string text = iCalendarText(rule);
    RuleLimits limits;
    limits.most = kMostDates + 1;
    const std::vector<int> days =
        rule.endless() || rule.hasTimes() ? std::vector<int>() : expandRule(rule, start, limits);
    if (!days.empty() && days.size() <= kMostDates) {
        Entry& changed = settled_.change();
        std::vector<Moment>& list = owner.exclude ? changed.excluded : changed.dates;
        Moment moment = *changed.start;
        for (const int day : days) {
            moment.day = day;
            if (moment != *changed.start || owner.exclude) list.push_back(moment);
        }
        addNote(NoteCode::RuleAsDates, owner.line,
                {reason, text, std::to_string(days.size()),
                 owner.exclude ? "the exceptions are" : "the repetition is"});
        return;
    }
    const std::string_view name = owner.exclude ? "X-ICAL-EXRULE" : "X-ICAL-RRULE";
    // That it takes nothing out was reported when it was read.
    if (!owner.exclude || !isAtOtherTimes(entry(), rule))
        addNote(NoteCode::RuleKeptForICalendar, owner.line,
                {reason, text, name,
                 owner.exclude ? "dates that the series leaves out show"
                               : "the entry does not repeat"});
    settled_.rules.push_back({name, std::move(text)});
}

void VCalSettling::reportStatus() {
    for (const EntryProperty& each : entry().properties)
        if (each.name == "STATUS"sv && equalsIgnoreCase(each.value(), "CANCELLED"))
            addNote(NoteCode::CancellationKept, each.line, {"X-ICAL-STATUS"});
}

void VCalSettling::settleAlarms() {
    bool allRing = true;
    for (const Alarm& alarm : entry().alarms) {
        if (!rings(alarm)) {
            allRing = false;
            if (alarm.action == Alarm::Action::Other)
                addNote(NoteCode::AlarmActionUnknown, alarm.line, {alarm.actionName});
            else
                addNote(NoteCode::AlarmWithoutAnchor, alarm.line, {});
            continue;
        }
        std::string lost;
        for (const EntryProperty& other : alarm.others)
            lost += (lost.empty() ? "" : ", ") + other.name;
        if (!lost.empty()) addNote(NoteCode::AlarmPartsLost, alarm.line, {lost});
    }
    if (!allRing)
        std::erase_if(settled_.change().alarms,
                      [this](const Alarm& alarm) { return !rings(alarm); });
}

}  // namespace

void settleForVCalendar(SettledEntry& settled) {
    VCalSettling(settled).settle();
}

}  // namespace qel::calendar
