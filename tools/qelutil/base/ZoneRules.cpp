#include "base/ZoneRules.h"

#include <algorithm>
#include <cstdio>

#include "base/Moment.h"

namespace qel::cli {

namespace {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2499;

constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
constexpr const char* kWeekdays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
constexpr const char* kWeeks[] = {"first", "second", "third", "fourth", "fifth"};

// A change of some years after each other.
struct Pattern {
    Pattern(const qelcal_offset_change& change, const Time& local)
        : month(local.month),
          weekday(static_cast<int>((change.local / kDaySeconds + 1) % 7)),
          second(static_cast<int>(change.local % kDaySeconds)),
          before(change.before),
          after(change.after),
          earliest(local.day),
          latest(local.day) {
        const Time inWeek = momentAt(change.local + 7 * kDaySeconds, false);
        last = inWeek.month != month;
    }

    // Whether one rule makes both; any seven days after each other have each weekday once.
    [[nodiscard]] bool goesWith(const Pattern& other) const {
        return month == other.month && weekday == other.weekday && second == other.second &&
               before == other.before && after == other.after &&
               ((last && other.last) ||
                std::max(latest, other.latest) - std::min(earliest, other.earliest) < 7);
    }
    void add(const Pattern& other) {
        last = last && other.last;
        earliest = std::min(earliest, other.earliest);
        latest = std::max(latest, other.latest);
    }

    [[nodiscard]] std::string when(bool once) const {
        const std::string day = kWeekdays[weekday];
        const std::string of = std::string(" of ") + kMonths[month - 1];
        std::string text = day + " from " + std::to_string(earliest) + " to " +
                           std::to_string(latest) + " " + kMonths[month - 1];
        if (once)
            text = std::to_string(earliest) + " " + kMonths[month - 1];
        else if (last)
            text = "last " + day + of;
        else if ((earliest - 1) / 7 == (latest - 1) / 7)
            text = std::string(kWeeks[(earliest - 1) / 7]) + " " + day + of;
        char time[32];
        std::snprintf(time, sizeof time, ", %02d:%02d", second / 3600, second / 60 % 60);
        return text + time;
    }

    int month;
    int weekday;  // 0 Sunday
    int second;   // of the day
    std::int64_t before;
    std::int64_t after;
    int earliest;  // day of the month
    int latest;
    bool last;
};

struct Group {
    int first;
    int last;
    std::vector<Pattern> patterns;
};

std::vector<Pattern> patternsOf(const qelcal::Zone& zone, int year) {
    std::vector<Pattern> patterns;
    for (const qelcal_offset_change& change : zone.changes(year))
        patterns.emplace_back(change, momentAt(change.local, false));
    return patterns;
}

}  // namespace

std::vector<ZoneRule> zoneRules(const qelcal::Zone& zone) {
    std::vector<Group> groups;
    for (int year = kFirstYear; year <= kLastYear; ++year) {
        const std::vector<Pattern> patterns = patternsOf(zone, year);
        if (patterns.empty()) continue;
        const bool joins =
            !groups.empty() && groups.back().last == year - 1 &&
            std::equal(patterns.begin(), patterns.end(), groups.back().patterns.begin(),
                       groups.back().patterns.end(),
                       [](const Pattern& a, const Pattern& b) { return a.goesWith(b); });
        if (!joins) {
            groups.push_back({year, year, patterns});
            continue;
        }
        groups.back().last = year;
        for (std::size_t i = 0; i < patterns.size(); ++i)
            groups.back().patterns[i].add(patterns[i]);
    }
    std::vector<ZoneRule> rules;
    for (const Group& group : groups) {
        ZoneRule rule{group.first, group.last, group.last == kLastYear, {}};
        for (const Pattern& each : group.patterns)
            rule.changes.push_back({each.when(group.first == group.last), each.before, each.after});
        rules.push_back(std::move(rule));
    }
    return rules;
}

}  // namespace qel::cli
