#include "calendar/entries/EntryDates.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

#include "calendar/base/Days.h"
#include "calendar/rules/Occurrences.h"
#include "calendar/rules/Rule.h"

namespace qel::calendar {

namespace {

constexpr int kLastYear = 2499;
constexpr int kLastDay = dayNumber(kLastYear, 12, 31);
// More than a rule can have occurrences: one a day from the year 1 on.
constexpr std::size_t kUnlimited = kLastDay - dayNumber(1, 1, 1) + 2;
// Days of one occurrence that are marked after its first.
constexpr int kLongestSpan = 31;
// Dates of all rules together, and of lists, among which those of the rules of exceptions are
// looked for.
constexpr std::size_t kMostLookedAt = 8000;

// On the start's clock.
struct Occurrence {
    int day;
    int second;
    bool excluded = false;

    [[nodiscard]] auto at() const { return std::tie(day, second); }
    bool operator<(const Occurrence& other) const { return at() < other.at(); }
    bool operator==(const Occurrence& other) const { return at() == other.at(); }
};

// All occurrences of an entry, those that are taken out too.
class Series {
  public:
    // Of each rule the first `mostOfRule`, none later than `lastYear`.
    Series(const Entry& entry, std::size_t mostOfRule, int lastYear)
        : entry_(entry), limits_{mostOfRule, std::min(lastYear, kLastYear)} {
        add(*entry.start);
        addRules(false);
        for (const Moment& date : entry.dates) add(inClock(date));
        // Rules give their days in order, so that mostly nothing is to be sorted.
        if (!std::is_sorted(occurrences_.begin(), occurrences_.end()))
            std::sort(occurrences_.begin(), occurrences_.end());
        occurrences_.erase(std::unique(occurrences_.begin(), occurrences_.end()),
                           occurrences_.end());
        addRules(true);
    }

    // Takes out what EXDATE names; the rules of exceptions have been followed.
    void excludeListed() {
        for (const Moment& date : entry_.excluded) exclude(inClock(date));
    }

    // Ascending, each once.
    [[nodiscard]] const std::vector<Occurrence>& occurrences() const { return occurrences_; }
    // After this day there may be occurrences that are missing here, or not taken out.
    [[nodiscard]] int completeThrough() const { return completeThrough_; }
    // A rule that adds occurrences has more of them.
    [[nodiscard]] bool goesOn() const { return goesOn_; }
    // After that day, complete or not, nothing is taken out by a rule.
    [[nodiscard]] int lastException() const { return lastException_; }

  private:
    void addRules(bool excludes) {
        for (const EntryRule& each : entry_.rules)
            for (const Rule& rule : each.rules)
                if (each.exclude == excludes) addRule(rule, excludes);
    }

    void addRule(const Rule& rule, bool excludes) {
        const RuleStart start = entry_.ruleStart();
        std::vector<int> days = expandRule(rule, start, limits_);
        const bool isCut = days.size() >= limits_.most;
        if (isCut) {
            completeThrough_ = std::min(completeThrough_, days.back());
            goesOn_ = goesOn_ || !excludes;
        }
        if (!excludes) {
            occurrences_.reserve(occurrences_.size() + days.size());
            for (const int day : days) add(atStartsTime(day));
            return;
        }
        lastException_ = std::max(lastException_, isCut ? kLastDay : days.back());
        // An exception does not begin with the start by itself.
        if (!yieldsStart(rule, start)) days.erase(days.begin());
        for (const int day : days) excludeOn(day, rule, start);
    }

    // What the rule takes out of that day: an occurrence at another time of day is another one.
    void excludeOn(int day, const Rule& rule, const RuleStart& start) {
        auto each = std::lower_bound(occurrences_.begin(), occurrences_.end(), Occurrence{day, 0});
        for (; each != occurrences_.end() && each->day == day; ++each)
            each->excluded = each->excluded || recursAt(rule, start, each->second);
    }

    [[nodiscard]] Moment inClock(const Moment& date) const {
        return entry_.inClockOf(*entry_.start, date);
    }
    [[nodiscard]] Moment atStartsTime(int day) const {
        Moment moment = *entry_.start;
        moment.day = day;
        return moment;
    }
    void add(const Moment& moment) { occurrences_.push_back({moment.day, moment.second}); }
    void exclude(const Moment& moment) {
        const Occurrence wanted{moment.day, moment.second};
        const auto found = std::lower_bound(occurrences_.begin(), occurrences_.end(), wanted);
        if (found != occurrences_.end() && *found == wanted) found->excluded = true;
    }

    const Entry& entry_;
    RuleLimits limits_;
    std::vector<Occurrence> occurrences_;
    int completeThrough_ = kLastDay;
    int lastException_ = std::numeric_limits<int>::min();
    bool goesOn_ = false;
};

// Moments in seconds of the start's clock.
struct Seconds {
    std::int64_t first = std::numeric_limits<std::int64_t>::min();
    std::int64_t last = std::int64_t{kLastDay + 1} * kDaySeconds - 1;
};

Seconds secondsOf(const Entry& entry, const OccurrenceRange& range) {
    Seconds seconds;
    const auto inClock = [&](const Moment& moment) {
        return moment.isDate ? moment : entry.inClockOf(*entry.start, moment);
    };
    if (range.since) seconds.first = inClock(*range.since).seconds();
    if (range.through) {
        const Moment through = inClock(*range.through);
        seconds.last = through.seconds() + (through.isDate ? kDaySeconds - 1 : 0);
    }
    return seconds;
}

// How many occurrences of a rule can matter at first: those before the range, one a day, and those
// that are wanted, some of which may be taken out.
std::size_t firstGuess(const Entry& entry, const OccurrenceRange& range, const Seconds& seconds) {
    if (range.most == 0 || range.most > kUnlimited) return kUnlimited;
    const std::int64_t before =
        range.since ? (seconds.first - entry.start->seconds()) / kDaySeconds + 1 : 0;
    return range.most + entry.excluded.size() +
           static_cast<std::size_t>(std::max<std::int64_t>(before, 0)) + 1;
}

// The days of occurrences that go on for `length` days after their first. REQUIRES: days ascend,
// each once.
void addSpans(std::vector<MarkedDay>& days, int length) {
    if (length <= 0) return;
    const std::size_t starts = days.size();
    for (std::size_t i = 0; i < starts; ++i)
        for (int each = 1; each <= length && !days[i].excluded; ++each)
            days.push_back({days[i].day + each, false});
    // A day that is taken up comes before the same day taken out.
    std::sort(
        days.begin(), days.end(),
        [](const MarkedDay& one, const MarkedDay& other) {
            return std::tie(one.day, one.excluded) < std::tie(other.day, other.excluded);
        });
    const auto sameDay = [](const MarkedDay& one, const MarkedDay& other) {
        return one.day == other.day;
    };
    days.erase(std::unique(days.begin(), days.end(), sameDay), days.end());
}

// Days after its first that an occurrence takes up.
int spanOf(const Entry& entry) {
    const auto last = lastMoment(entry);
    if (!last) return 0;
    // An entry that ends at midnight is not on the day that begins then.
    const int lastDay = !last->isDate && last->second == 0 ? last->day - 1 : last->day;
    return std::min(lastDay - entry.start->day, kLongestSpan);
}

// The years after a series' start that its rules are expanded for, to see when it ends.
constexpr int kYearsExpanded = 30;

// The last year of a rule.
int lastYearOf(const Entry& entry, const Rule& rule, int endless) {
    const int first = civilOf(entry.start->day).year;
    if (rule.endless()) return endless;
    if (const auto until = parseMoment(rule.until)) return civilOf(until->day).year;
    const std::vector<int> days =
        expandRule(rule, entry.ruleStart(), {10000, std::min(first + kYearsExpanded, kLastYear)});
    return days.empty() ? first : civilOf(days.back()).year;
}

// Without those of rules.
Years yearsOfDates(const Entry& entry) {
    Years years{9999, 0};
    const auto include = [&years](const Moment& moment) {
        const int year = civilOf(moment.day).year;
        years = {std::min(years.first, year), std::max(years.last, year)};
    };
    for (const auto* each : {&entry.start, &entry.end, &entry.due, &entry.completed, &entry.created,
                             &entry.modified, &entry.recurrenceId})
        if (*each) include(**each);
    for (const auto* list : {&entry.dates, &entry.excluded})
        for (const Moment& each : *list) include(each);
    return years.last == 0 ? Years{2000, 2000} : years;
}

}  // namespace

int firstYearOf(const Entry& entry) {
    return yearsOfDates(entry).first;
}

Years yearsOf(const Entry& entry, int endless) {
    Years years = yearsOfDates(entry);
    if (!entry.start) return years;
    for (const EntryRule& each : entry.rules)
        for (const Rule& rule : each.rules)
            years.last = std::max(years.last, lastYearOf(entry, rule, endless));
    return years;
}

std::vector<Moment> occurrences(const Entry& entry, const OccurrenceRange& range) {
    std::vector<Moment> found;
    if (!entry.start) return found;
    const Seconds seconds = secondsOf(entry, range);
    const int lastYear = range.through ? civilOf(range.through->day).year + 1 : kLastYear;
    for (std::size_t most = firstGuess(entry, range, seconds);; most *= 2) {
        Series series(entry, most, lastYear);
        series.excludeListed();
        const bool complete = series.completeThrough() == kLastDay;
        found.clear();
        for (const auto& [day, second, excluded] : series.occurrences()) {
            Moment moment = *entry.start;
            moment.day = day;
            moment.second = second;
            if (moment.day > series.completeThrough() && !complete) break;
            if (moment.seconds() > seconds.last) return found;
            if (excluded || moment.seconds() < seconds.first) continue;
            found.push_back(moment);
            if (found.size() == range.most) return found;
        }
        if (complete) return found;
    }
}

Exclusions excludedByRules(const Entry& entry, std::size_t most) {
    const std::size_t rules = std::accumulate(
        entry.rules.begin(), entry.rules.end(), std::size_t{1},
        [](std::size_t sum, const EntryRule& each) { return sum + each.rules.size(); });
    const Series series(entry, std::max<std::size_t>(kMostLookedAt / rules, 100), kLastYear);
    Exclusions result;
    result.through = series.completeThrough();
    const bool goesOn = series.goesOn() || series.occurrences().back().day > result.through;
    result.more = goesOn && series.lastException() > result.through;
    for (const auto& [day, second, excluded] : series.occurrences()) {
        if (!excluded || day > series.completeThrough()) continue;
        if (result.dates.size() == most) {
            result.more = true;
            result.through = result.dates.back().day;
            break;
        }
        Moment moment = *entry.start;
        moment.day = day;
        moment.second = second;
        result.dates.push_back(moment);
    }
    return result;
}

bool isAtOtherTimes(const Entry& entry, const Rule& exception) {
    const RuleStart start = entry.ruleStart();
    if (recursAt(exception, start, start.secondOfDay)) return false;
    if (entry.dates.size() > kMostLookedAt) return false;
    for (const EntryRule& each : entry.rules)
        for (const Rule& rule : each.rules)
            if (!each.exclude && rule.hasTimes()) return false;
    return std::none_of(entry.dates.begin(), entry.dates.end(), [&](const Moment& date) {
        return recursAt(exception, start, entry.inClockOf(*entry.start, date).second);
    });
}

EntryDays markedDays(const Entry& entry, std::size_t most) {
    EntryDays result;
    if (!entry.start) {
        if (entry.due) result.days.push_back({entry.due->day, false});
        return result;
    }
    Series series(entry, most, kLastYear);
    series.excludeListed();
    std::vector<MarkedDay>& days = result.days;
    days.reserve(series.occurrences().size());
    for (const auto& [day, second, excluded] : series.occurrences())
        if (days.empty() || days.back().day != day)
            days.push_back({day, excluded});
        else
            days.back().excluded = days.back().excluded || excluded;
    addSpans(days, spanOf(entry));
    result.more = series.goesOn();
    const auto end = std::find_if(days.begin(), days.end(), [&](const MarkedDay& each) {
        return each.day > series.completeThrough();
    });
    const auto kept = std::min(most, static_cast<std::size_t>(end - days.begin()));
    result.more = result.more || kept < days.size();
    days.resize(kept);
    return result;
}

std::optional<Moment> lastMoment(const Entry& entry) {
    std::optional<Moment> last;
    if (entry.end)
        last = entry.inClockOf(*entry.start, *entry.end);
    else if (entry.duration)
        last = momentAt(*entry.start, entry.start->seconds() + entry.duration->total());
    if (last && last->isDate && last->day > entry.start->day) --last->day;
    if (last && last->seconds() <= entry.start->seconds()) return std::nullopt;
    return last;
}

}  // namespace qel::calendar
