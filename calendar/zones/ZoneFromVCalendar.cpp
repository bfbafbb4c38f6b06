#include "calendar/zones/ZoneFromVCalendar.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "calendar/base/Ascii.h"
#include "calendar/base/Days.h"
#include "calendar/rules/Rule.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/text/Digest.h"
#include "calendar/zones/WorldZones.h"
#include "calendar/zones/YearlyChange.h"

namespace qel::calendar {

namespace {

constexpr int kFirstYear = 1970;  // of a yearly rule
constexpr int kLastYear = 2100;

// "DAYLIGHT:TRUE;+02;20060326T010000Z;20061029T010000Z;CET;CEST"
struct Period {
    int offset = 0;
    std::int64_t beginUtc = 0;
    std::int64_t endUtc = 0;
    std::int64_t beginLocal = 0;  // both on the clock before the change
    std::int64_t endLocal = 0;
    bool continues = false;  // the one before ends where this one begins
    std::string standardName;
    std::string daylightName;
};

struct RawPeriod {
    Period period;
    Moment begin;
    Moment end;
    std::size_t line = 0;
};

std::optional<YearlyChange> yearlyChange(std::span<const Period> periods,
                                         std::int64_t Period::*local) {
    YearlyChange change;
    bool allLast = true;
    int week = 0;
    int lastYear = 0;
    for (const Period& period : periods) {
        const int day = static_cast<int>(period.*local / 86400);
        const int second = static_cast<int>(period.*local % 86400);
        const Civil civil = civilOf(day);
        const int thisWeek = (civil.day - 1) / 7 + 1;
        if (lastYear == 0) {
            change = {civil.month, 0, weekdayOf(day), second};
            week = thisWeek;
        } else if (civil.year != lastYear + 1 || civil.month != change.month ||
                   weekdayOf(day) != change.weekday || second != change.second) {
            return std::nullopt;
        }
        lastYear = civil.year;
        if (thisWeek != week) week = 0;
        allLast = allLast && civil.day + 7 > daysInMonth(civil.year, civil.month);
    }
    if (allLast)
        change.week = -1;
    else if (week >= 1 && week <= 4)
        change.week = week;
    else
        return std::nullopt;
    return change;
}

// A period of daylight time that comes every year.
struct YearlyRule {
    YearlyChange begins;
    YearlyChange ends;
};

// Nothing when the periods do not follow one rule.
std::optional<YearlyRule> yearlyRule(std::span<const Period> periods) {
    const bool uniform = std::all_of(periods.begin(), periods.end(), [&](const Period& period) {
        return period.offset == periods.front().offset && !period.continues;
    });
    if (periods.empty() || !uniform) return std::nullopt;
    const auto begins = yearlyChange(periods, &Period::beginLocal);
    const auto ends = yearlyChange(periods, &Period::endLocal);
    if (!begins || !ends) return std::nullopt;
    return YearlyRule{*begins, *ends};
}

// Whether one period shows its rule: clocks are changed on a weekday, not on a date.
bool isClear(const Period& period) {
    constexpr std::int64_t kMonth = std::int64_t{30} * kDaySeconds;
    const std::int64_t length = period.endUtc - period.beginUtc;
    return weekdayOf(static_cast<int>(period.beginLocal / kDaySeconds)) ==
               weekdayOf(static_cast<int>(period.endLocal / kDaySeconds)) &&
           length > kMonth && length < 11 * kMonth;
}

class ZoneBuilder {
  public:
    ZoneBuilder(int standard, const NoteSink& sink) : standard_(standard), sink_(sink) {
        zone_.baseOffset = standard;
    }

    void take(const ContentLine& line) {
        std::string_view rest = trimmed(line.value);
        const std::string_view flag = trimmed(nextField(rest, ';'));
        if (!equalsIgnoreCase(flag, "TRUE")) {
            if (!flag.empty() && !equalsIgnoreCase(flag, "FALSE")) reject(line);
            return;
        }
        RawPeriod raw;
        raw.line = line.number;
        const auto offset = parseUtcOffset(nextField(rest, ';'));
        const auto begin = parseMoment(nextField(rest, ';'));
        const auto end = parseMoment(nextField(rest, ';'));
        raw.period.standardName = std::string(trimmed(nextField(rest, ';')));
        raw.period.daylightName = std::string(trimmed(nextField(rest, ';')));
        const auto inRange = [](const std::optional<Moment>& moment) {
            if (!moment) return false;
            const int year = civilOf(moment->day).year;
            return year >= 1900 && year <= kLastYear;
        };
        if (!offset || !inRange(begin) || !inRange(end) || end->seconds() <= begin->seconds()) {
            reject(line);
            return;
        }
        if (*offset == standard_)
            sink_(Note(NoteCode::DaylightWithoutChange, line.number, {line.value}));
        raw.period.offset = *offset;
        raw.begin = *begin;
        raw.end = *end;
        raw_.push_back(raw);
    }

    ZonePtr finish(const ContentLine& tz, const std::vector<ContentLine>& daylight) {
        std::stable_sort(raw_.begin(), raw_.end(), [](const RawPeriod& a, const RawPeriod& b) {
            return a.begin.seconds() < b.begin.seconds();
        });
        for (RawPeriod& raw : raw_) place(raw);
        zone_.ownLines.emplace_back("TZ", trimmed(tz.value));
        for (const ContentLine& line : daylight)
            zone_.ownLines.emplace_back("DAYLIGHT", trimmed(line.value));
        nameZone();
        // Before any change, and for all time where there is none.
        addObservance({false, firstYearBegin(), standard_, standard_,
                       periods_.empty() ? "" : periods_.front().standardName, ""});
        if (std::any_of(periods_.begin(), periods_.end(),
                        [this](const Period& each) { return each.offset != standard_; }))
            zone_.daylight = {periods_.front().beginUtc, periods_.back().endUtc};
        const auto all = yearlyRule(periods_);
        if (all && (periods_.size() > 1 || isClear(periods_.front())))
            addYearly(*all);
        else
            addPeriods();
        return std::make_shared<const Zone>(std::move(zone_));
    }

  private:
    void reject(const ContentLine& line) {
        sink_(Note(NoteCode::DaylightInvalid, line.number, {line.value}));
    }

    void place(RawPeriod& raw) {
        Period& period = raw.period;
        const Period* last = periods_.empty() ? nullptr : &periods_.back();
        const bool beginIsUtc = raw.begin.clock == Clock::Utc;
        period.continues = last != nullptr && (beginIsUtc ? last->endUtc == raw.begin.seconds()
                                                          : last->endLocal == raw.begin.seconds());
        const int before = period.continues ? last->offset : standard_;
        period.beginUtc = raw.begin.seconds() - (beginIsUtc ? 0 : before);
        period.beginLocal = period.beginUtc + before;
        period.endUtc = raw.end.seconds() - (raw.end.clock == Clock::Utc ? 0 : period.offset);
        period.endLocal = period.endUtc + period.offset;
        if (period.endUtc <= period.beginUtc ||
            (last != nullptr && period.beginUtc < last->endUtc)) {
            sink_(Note(NoteCode::DaylightOverlaps, raw.line));
            return;
        }
        periods_.push_back(period);
    }

    // The same lines give the same name, in every file.
    void nameZone() {
        std::string lines;
        bool daylight = false;
        for (const auto& [name, value] : zone_.ownLines) {
            lines += name + ":" + value + "\n";
            daylight = daylight || (name == "DAYLIGHT" && !equalsIgnoreCase(value, "FALSE"));
        }
        zone_.id = "TZ" + formatUtcOffset(standard_);
        if (daylight) zone_.id += "-" + digestOf(lines).substr(0, 8);
    }

    [[nodiscard]] std::int64_t firstYearBegin() const {
        int year = kFirstYear;
        if (!periods_.empty())
            year = std::min(
                year, civilOf(static_cast<int>(periods_.front().beginLocal / 86400)).year - 1);
        return std::int64_t{dayNumber(year, 1, 1)} * 86400;
    }

    void addObservance(ZoneObservance observance) {
        zone_.observances.push_back(std::move(observance));
    }

    void addYearly(const YearlyRule& yearly) {
        const auto& [begins, ends] = yearly;
        const Period& model = periods_.front();
        const auto rule = [](const YearlyChange& change) {
            Rule text;
            text.frequency = Frequency::Yearly;
            text.months = {change.month};
            text.days = {{change.week, change.weekday}};
            return iCalendarText(text);
        };
        addObservance({true, begins.inYear(kFirstYear), standard_, model.offset, model.daylightName,
                       rule(begins)});
        addObservance({false, ends.inYear(kFirstYear), model.offset, standard_, model.standardName,
                       rule(ends)});
        addYears(yearly, model, kFirstYear, kLastYear);
    }

    // The changes of the years `from` to `to` by a rule.
    void addYears(const YearlyRule& rule, const Period& model, int from, int to) {
        zone_.continued = true;
        for (int year = from; year <= to; ++year) {
            addChange(rule.begins.inYear(year) - standard_, model.offset, true, model.daylightName);
            addChange(rule.ends.inYear(year) - model.offset, standard_, false, model.standardName);
        }
        std::sort(zone_.changes.begin(), zone_.changes.end(),
                  [](const ZoneChange& a, const ZoneChange& b) { return a.utc < b.utc; });
    }

    // Of the periods from the first on, or up to the last, as many as follow one rule.
    [[nodiscard]] std::span<const Period> runAt(bool end) const {
        const std::span<const Period> all = periods_;
        std::size_t length = 0;
        while (length < all.size() &&
               yearlyRule(end ? all.last(length + 1) : all.first(length + 1)))
            ++length;
        return end ? all.last(length) : all.first(length);
    }

    // The rule changed in between: each end of the lines goes on by its own.
    void addYearsAround() {
        const std::span<const Period> first = runAt(false);
        const std::span<const Period> last = runAt(true);
        if (first.size() < 2 && last.size() < 2) return;
        const auto yearOf = [](std::int64_t local) {
            return civilOf(static_cast<int>(local / kDaySeconds)).year;
        };
        if (const int year = yearOf(periods_.front().beginLocal); first.size() > 1)
            addYears(*yearlyRule(first), first.front(), kFirstYear, year - 1);
        if (const int year = yearOf(periods_.back().beginLocal); last.size() > 1)
            addYears(*yearlyRule(last), last.front(), year + 1, kLastYear);
        // It is described by all of its changes.
        zone_.baseName = zone_.observances.front().name;
        zone_.observances.clear();
    }

    // One observance for each change: some readers ignore an RDATE here, or the start beside it.
    void addPeriods() {
        for (std::size_t each = 0; each < periods_.size(); ++each) {
            const Period& period = periods_[each];
            const int before = period.continues ? periods_[each - 1].offset : standard_;
            addObservance(
                {true, period.beginLocal, before, period.offset, period.daylightName, ""});
            addChange(period.beginUtc, period.offset, true, period.daylightName);
            if (each + 1 < periods_.size() && periods_[each + 1].continues) continue;
            addObservance(
                {false, period.endLocal, period.offset, standard_, period.standardName, ""});
            addChange(period.endUtc, standard_, false, period.standardName);
        }
        addYearsAround();
    }

    void addChange(std::int64_t utc, int offset, bool daylight, const std::string& name) {
        zone_.changes.push_back({utc, offset, daylight, name});
    }

    int standard_;
    const NoteSink& sink_;
    ZoneParts zone_;
    std::vector<RawPeriod> raw_;
    std::vector<Period> periods_;
};

}  // namespace

ZonePtr zoneFromVCalendar(const ContentLine& tz, const std::vector<ContentLine>& daylight,
                          const NoteSink& sink) {
    auto standard = parseUtcOffset(tz.value);
    if (!standard) standard = offsetNamed(tz.value);
    if (!standard) {
        if (!trimmed(tz.value).empty())
            sink(Note(NoteCode::UtcOffsetInvalid, tz.number, {tz.value}));
        for (const ContentLine& line : daylight)
            if (!startsWithIgnoreCase(trimmed(line.value), "FALSE"))
                sink(Note(NoteCode::DaylightWithoutZone, line.number));
        return nullptr;
    }
    ZoneBuilder builder(*standard, sink);
    for (const ContentLine& line : daylight) builder.take(line);
    return builder.finish(tz, daylight);
}

}  // namespace qel::calendar
