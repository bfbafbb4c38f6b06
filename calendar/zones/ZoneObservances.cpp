#include "calendar/zones/ZoneObservances.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "calendar/base/Days.h"
#include "calendar/rules/Rule.h"
#include "calendar/rules/RuleWriteICalendar.h"

namespace qel::calendar {

namespace {

// Years after each other from which a rule is read off.
constexpr std::size_t kShortestRun = 3;
// So many changes of one kind are observances of their own, because some readers ignore an RDATE or
// the start beside it; more are one with a list.
constexpr std::size_t kMostSingles = 4;
constexpr int kLastYearWithoutRule = 2100;

// A change on the clock before it.
struct Onset {
    std::int64_t local = 0;
    int year = 0;
    int from = 0;
    const ZoneChange* change = nullptr;

    [[nodiscard]] int day() const { return static_cast<int>(local / kDaySeconds); }
    [[nodiscard]] bool sameKind(const Onset& other) const {
        return from == other.from && change->offset == other.change->offset &&
               change->daylight == other.change->daylight && change->name == other.change->name;
    }
};

// The days of the month that the changes of a run fall on, in one month and on one weekday.
class Pattern {
  public:
    // `anyWeek`: any seven days in a row will do, where otherwise it is the n-th week or the last.
    Pattern(const Onset& first, bool anyWeek) : first_(first), anyWeek_(anyWeek) {
        include(civilOf(first.day()));
    }

    // False, and nothing changes, when `next` does not follow the rule.
    bool take(const Onset& next) {
        const Civil civil = civilOf(next.day());
        if (civil.month != civilOf(first_.day()).month ||
            weekdayOf(next.day()) != weekdayOf(first_.day()) ||
            next.local % kDaySeconds != first_.local % kDaySeconds)
            return false;
        const Pattern before = *this;
        include(civil);
        if (last_ || isOneWeek() || (anyWeek_ && latest_ - earliest_ < 7)) return true;
        *this = before;
        return false;
    }

    [[nodiscard]] Rule rule() const {
        Rule rule;
        rule.frequency = Frequency::Yearly;
        rule.months = {civilOf(first_.day()).month};
        const int weekday = weekdayOf(first_.day());
        if (last_) {
            rule.days = {{-1, weekday}};
        } else if (isOneWeek()) {
            rule.days = {{(earliest_ - 1) / 7 + 1, weekday}};
        } else {
            rule.days = {{0, weekday}};
            const int begin = std::min(earliest_, shortest_ - 6);
            for (int day = 0; day < 7; ++day) rule.monthDays.push_back(begin + day);
        }
        return rule;
    }

  private:
    [[nodiscard]] bool isOneWeek() const { return (earliest_ - 1) / 7 == (latest_ - 1) / 7; }

    void include(const Civil& civil) {
        const int length = daysInMonth(civil.year, civil.month);
        earliest_ = std::min(earliest_, civil.day);
        latest_ = std::max(latest_, civil.day);
        shortest_ = std::min(shortest_, length);
        last_ = last_ && civil.day + 7 > length;
    }

    Onset first_;
    bool anyWeek_;
    int earliest_ = 31;
    int latest_ = 1;
    int shortest_ = 31;
    bool last_ = true;  // of the month, each
};

class Builder {
  public:
    Builder(const Zone& zone, int year) : zone_(zone.parts()), year_(year) {}

    std::vector<ZoneObservance> build() {
        addOnsets(yearBegin(year_));
        for (std::size_t i = 0; i < onsets_.size(); ++i)
            if (!used_[i]) addRun(i);
        addSingles();
        std::stable_sort(
            observances_.begin() + 1, observances_.end(),
            [](const ZoneObservance& a, const ZoneObservance& b) { return a.start < b.start; });
        return std::move(observances_);
    }

  private:
    // The changes from `begin` on, after an observance of what holds then.
    void addOnsets(std::int64_t begin) {
        int offset = zone_.baseOffset;
        ZoneObservance base{false, begin, offset, offset, zone_.baseName, {}, {}};
        for (const ZoneChange& change : zone_.changes) {
            const std::int64_t local = change.utc + offset;
            if (local <= begin) {
                base = {change.daylight, begin, change.offset, change.offset, change.name, {}, {}};
            } else {
                const int year = civilOf(static_cast<int>(local / kDaySeconds)).year;
                onsets_.push_back({local, year, offset, &change});
            }
            offset = change.offset;
        }
        observances_.push_back(std::move(base));
        used_.assign(onsets_.size(), false);
    }

    struct Run {
        std::vector<std::size_t> onsets;
        Rule rule;
    };

    // The longest run of years from onset `at` on that follow one rule.
    [[nodiscard]] Run runFrom(std::size_t at, bool anyWeek) const {
        Pattern pattern(onsets_[at], anyWeek);
        std::vector<std::size_t> run = {at};
        for (std::size_t i = at + 1; i < onsets_.size(); ++i) {
            const Onset& next = onsets_[i];
            const Onset& last = onsets_[run.back()];
            if (next.year > last.year + 1) break;
            if (used_[i] || next.year == last.year || !next.sameKind(last)) continue;
            if (!pattern.take(next)) break;
            run.push_back(i);
        }
        return {std::move(run), pattern.rule()};
    }

    [[nodiscard]] bool isEndless(const Run& run) const {
        const int lastYear = onsets_.back().year;
        return lastYear >= kLastYearWithoutRule && onsets_[run.onsets.back()].year == lastYear;
    }

    void addRun(std::size_t at) {
        Run run = runFrom(at, false);
        // Few readers are used to rules of other weeks, so they are for nothing but the last years.
        if (!isEndless(run))
            if (Run other = runFrom(at, true); isEndless(other)) run = std::move(other);
        if (run.onsets.size() < kShortestRun) {
            singles_.push_back(at);
            return;
        }
        for (const std::size_t each : run.onsets) used_[each] = true;
        const Onset& first = onsets_[at];
        const Onset& last = onsets_[run.onsets.back()];
        if (first.year > kLastYearWithoutRule) return;
        if (!isEndless(run)) {
            Moment until;
            until.clock = Clock::Utc;
            run.rule.until = formatMoment(momentAt(until, last.local - last.from));
        }
        ZoneObservance observance = observanceOf(first);
        observance.rule = iCalendarText(run.rule);
        observances_.push_back(std::move(observance));
    }

    [[nodiscard]] static ZoneObservance observanceOf(const Onset& onset) {
        return {onset.change->daylight, onset.local,   onset.from, onset.change->offset,
                onset.change->name,     std::string(), {}};
    }

    void addSingles() {
        std::vector<std::pair<Onset, std::vector<std::int64_t>>> kinds;
        for (const std::size_t single : singles_) {
            const Onset& onset = onsets_[single];
            if (onset.year > kLastYearWithoutRule) break;
            const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const auto& each) {
                return each.first.sameKind(onset);
            });
            if (kind == kinds.end())
                kinds.push_back({onset, {onset.local}});
            else
                kind->second.push_back(onset.local);
        }
        for (const auto& [onset, starts] : kinds) {
            ZoneObservance observance = observanceOf(onset);
            if (starts.size() > kMostSingles) {
                observance.dates.assign(starts.begin() + 1, starts.end());
                observances_.push_back(std::move(observance));
                continue;
            }
            for (const std::int64_t start : starts) {
                observance.start = start;
                observances_.push_back(observance);
            }
        }
    }

    const ZoneParts& zone_;
    int year_;
    std::vector<Onset> onsets_;
    std::vector<bool> used_;
    std::vector<std::size_t> singles_;
    std::vector<ZoneObservance> observances_;
};

}  // namespace

std::vector<ZoneObservance> observancesSince(const Zone& zone, int year) {
    return Builder(zone, year).build();
}

}  // namespace qel::calendar
