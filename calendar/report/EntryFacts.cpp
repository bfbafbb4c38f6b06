#include "calendar/report/EntryFacts.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>

#include "calendar/base/Ascii.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/RuleSentence.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

namespace qel::calendar {

namespace {

// Days of one entry that are looked for.
constexpr std::size_t kMostDays = 500;
// Days of one occurrence that are marked.
constexpr int kLongestSpan = 31;

std::string dateWords(int day) {
    const Civil civil = civilOf(day);
    return std::string(weekdayName(weekdayOf(day))) + ", " + std::to_string(civil.day) + " " +
           std::string(monthName(civil.month)) + " " + std::to_string(civil.year);
}

std::string timeWords(int second) {
    char text[48];
    const int seconds = second % 60;
    if (seconds == 0) {
        std::snprintf(text, sizeof text, "%02d:%02d", second / 3600, second / 60 % 60);
    } else {
        std::snprintf(text, sizeof text, "%02d:%02d:%02d", second / 3600, second / 60 % 60,
                      seconds);
    }
    return text;
}

std::string momentText(const Moment& moment) {
    return dateWords(moment.day) + (moment.isDate ? "" : ", " + timeWords(moment.second));
}

std::string clockText(const Entry& entry, const Moment& moment) {
    if (moment.isDate || moment.clock == Clock::Floating) return {};
    if (moment.clock == Clock::Utc) return " UTC";
    if (entry.zone == nullptr) return {};
    // The zone of a phone's file has a name that was made up for it.
    const std::string& id = entry.zone->id();
    const bool named = id.find('/') != std::string::npos;
    return named ? " (" + id + ")"
                 : " UTC" + formatUtcOffset(entry.zone->offsetAtLocal(moment.seconds()), true);
}

// The last moment of the entry on the start's clock: of an all-day one its last day.
std::optional<Moment> lastOf(const Entry& entry) {
    std::optional<Moment> last;
    if (entry.end)
        last = entry.inClockOf(*entry.start, *entry.end);
    else if (entry.duration)
        last = momentAt(*entry.start, entry.start->seconds() + entry.duration->total());
    if (last && last->isDate && last->day > entry.start->day) --last->day;
    if (last && last->seconds() <= entry.start->seconds()) return std::nullopt;
    return last;
}

std::string whenText(const Entry& entry) {
    std::string text;
    if (entry.start) {
        text = momentText(*entry.start);
        if (const auto last = lastOf(entry)) {
            const bool sameDay = last->day == entry.start->day && !last->isDate;
            text += " to " + (sameDay ? timeWords(last->second) : momentText(*last));
        }
        text += clockText(entry, *entry.start);
        if (entry.start->isDate) text += ", all day";
    }
    if (entry.due) {
        text += (text.empty() ? "due " : "; due ") + momentText(*entry.due) +
                clockText(entry, *entry.due);
    }
    return text;
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

// The days of the entry's rules and lists, and those that are taken out of them again.
class Days {
  public:
    explicit Days(const Entry& entry) : entry_(entry) {}

    void collect(EntryFacts& facts) {
        marks_[entry_.start->day] = false;
        for (const EntryRule& each : entry_.rules)
            for (const Rule& rule : each.rules) addRule(rule, each.exclude);
        for (const Moment& date : entry_.dates)
            marks_.try_emplace(entry_.inClockOf(*entry_.start, date).day, false);
        for (const Moment& date : entry_.excluded) exclude(date);
        for (const int day : excludedByRule_) {
            const auto found = marks_.find(day);
            if (found != marks_.end()) found->second = true;
        }
        addSpans();
        for (const auto& [day, excluded] : marks_) {
            if (day > last_ || facts.days.size() >= kMostDays) {
                facts.more = true;
                break;
            }
            facts.days.push_back({day, excluded});
        }
        facts.more = facts.more || cut_;
    }

  private:
    void addRule(const Rule& rule, bool excluded) {
        RuleLimits limits;
        limits.most = kMostDays;
        const std::vector<int> days = expandRule(rule, entry_.ruleStart(), limits);
        if (days.size() >= kMostDays) {
            // Beyond it other rules would be shown without this one.
            last_ = std::min(last_, days.back());
            cut_ = cut_ || !excluded;
        }
        if (excluded)
            excludedByRule_.insert(excludedByRule_.end(), days.begin(), days.end());
        else
            for (const int day : days) marks_.try_emplace(day, false);
    }

    void exclude(const Moment& date) {
        const Moment moment = entry_.inClockOf(*entry_.start, date);
        const auto found = marks_.find(moment.day);
        // Another time of the day excludes nothing.
        if (found != marks_.end() && (moment.isDate || moment.second == entry_.start->second))
            found->second = true;
    }

    void addSpans() {
        const auto last = lastOf(entry_);
        if (!last) return;
        // Up to midnight is not into the next day.
        const int lastDay = !last->isDate && last->second == 0 ? last->day - 1 : last->day;
        const int length = std::min(lastDay - entry_.start->day, kLongestSpan);
        if (length <= 0) return;
        const std::map<int, bool> starts = marks_;
        for (const auto& [day, excluded] : starts) {
            if (excluded) continue;
            for (int each = 1; each <= length; ++each) marks_[day + each] = false;
        }
    }

    const Entry& entry_;
    std::map<int, bool> marks_;  // by day; true when it is excluded
    std::vector<int> excludedByRule_;
    int last_ = cli::kLastDay;
    bool cut_ = false;
};

}  // namespace

EntryFacts entryFacts(const Entry& entry) {
    EntryFacts facts;
    facts.kind = entry.kind == EntryKind::Event  ? "Event"
                 : entry.kind == EntryKind::Todo ? "To-do"
                                                 : "Note";
    facts.title = titleOf(entry);
    facts.when = whenText(entry);
    facts.furtherDates = entry.dates.size();
    facts.exclusions = entry.excluded.size();
    facts.alarms = entry.alarms.size();
    if (entry.start) {
        const RuleStart start = entry.ruleStart();
        for (const EntryRule& each : entry.rules) {
            for (const Rule& rule : each.rules) {
                const VCalendarRule texts = vCalendarTexts(rule, start);
                facts.rules.push_back({each.exclude, ruleSentence(rule, start), texts.texts,
                                       texts.reason, iCalendarText(rule)});
            }
        }
        Days(entry).collect(facts);
    } else if (entry.due) {
        facts.days.push_back({entry.due->day, false});
    }
    return facts;
}

}  // namespace qel::calendar
