#include "calendar/rules/RuleReadICalendar.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "calendar/base/Ascii.h"
#include "calendar/base/ByteSearch.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Strays.h"
#include "calendar/rules/RuleEnd.h"
#include "calendar/rules/RuleParts.h"

namespace qel::calendar {

namespace {

class PartReader {
  public:
    explicit PartReader(RuleReading& reading) : reading_(reading) {}

    [[nodiscard]] bool hasFrequency() const { return hasFrequency_; }

    void take(std::string_view name, std::string_view value) {
        for (const RulePart& part : kRuleParts)
            if (equalsIgnoreCase(name, part.name)) return take(part, value);
        any_ = true;
        strays_.add(name);
    }

    void take(const RulePart& part, std::string_view value) {
        any_ = true;
        switch (part.kind) {
            case RulePart::Kind::Frequency:
                return takeFrequency(value);
            case RulePart::Kind::Until:
                return takeUntil(value);
            case RulePart::Kind::Count:
                return takePositive(value, part.name, end_.count);
            case RulePart::Kind::Interval: {
                std::optional<int> interval;
                takePositive(value, part.name, interval);
                if (interval) rule_.interval = *interval;
                return;
            }
            case RulePart::Kind::Days:
                return takeDays(value);
            case RulePart::Kind::Numbers:
                return takeNumbers(value, part);
            case RulePart::Kind::WeekStart:
                rule_.weekStart = weekdayOfCode(value);
                if (rule_.weekStart == 0) outside_.add(value);
        }
    }

    void finish(const std::optional<RuleStart>& start) {
        if (!any_) return;
        outside_.report(reading_.notes, NoteCode::RuleValueOutside);
        strays_.report(reading_.notes, NoteCode::RulePartUnknown);
        if (strays_.any()) reading_.complete = false;
        if (!hasFrequency_ && usable_) {
            reading_.notes.emplace_back(NoteCode::RuleFrequencyMissing);
            usable_ = false;
        }
        if (!usable_) {
            reading_.complete = false;
            return;
        }
        dropOrdinals();
        weeksToOrdinals();
        applyEnd(end_, start, false, rule_, reading_.notes);
        reading_.rules.push_back(std::move(rule_));
    }

  private:
    void takeFrequency(std::string_view value) {
        hasFrequency_ = true;
        const auto* const found =
            std::find_if(kFrequencyNames.begin(), kFrequencyNames.end(),
                         [&](std::string_view name) { return equalsIgnoreCase(name, value); });
        if (found != kFrequencyNames.end()) {
            rule_.frequency = static_cast<Frequency>(found - kFrequencyNames.begin());
            return;
        }
        usable_ = false;
        for (const std::string_view each : {"HOURLY", "MINUTELY", "SECONDLY"}) {
            if (!equalsIgnoreCase(value, each)) continue;
            reading_.notes.push_back(Note(NoteCode::RuleWithinDay, 0, {each}));
            return;
        }
        reading_.notes.push_back(
            Note(NoteCode::RuleFrequencyUnknown, 0, {value.substr(0, kLongestExcerpt)}));
    }

    void takeUntil(std::string_view value) {
        if (value.empty() || readUntil(value, end_)) return;
        reading_.notes.push_back(
            Note(NoteCode::RuleEndInvalid, 0, {value.substr(0, kLongestExcerpt)}));
        usable_ = false;
    }

    // A number of at least 1; anything else is ignored.
    void takePositive(std::string_view value, std::string_view name, std::optional<int>& number) {
        if (value.empty()) return;
        number = parseInt(trimmed(value));
        if (number && *number >= 1) return;
        number.reset();
        outside_.add(std::string(name) + "=" + std::string(value));
    }

    void takeDays(std::string_view value) {
        for (std::string_view rest = value; !rest.empty();) {
            const std::string_view item = trimmed(nextField(rest, ','));
            if (item.empty()) continue;
            const std::string_view code = item.substr(item.size() < 2 ? 0 : item.size() - 2);
            const std::string_view number = item.substr(0, item.size() - code.size());
            const int weekday = weekdayOfCode(code);
            const auto position = number.empty() ? std::optional<int>(0) : parseInt(number);
            if (weekday == 0 || !position || *position < -53 || *position > 53 ||
                (*position == 0 && !number.empty()))
                outside_.add(item);
            else
                addOnce(rule_.days, {*position, weekday});
        }
    }

    void takeNumbers(std::string_view value, const RulePart& part) {
        for (std::string_view rest = value; !rest.empty();) {
            const std::string_view item = trimmed(nextField(rest, ','));
            if (item.empty()) continue;
            const auto number = parseInt(item);
            const int size = number ? (part.fromEnd ? std::abs(*number) : *number) : -1;
            if (size < part.least || size > part.most)
                outside_.add(item);
            else
                addOnce(rule_.*part.numbers, *number);
        }
    }

    // Positions have a meaning only within a month or a year, not within numbered weeks.
    void dropOrdinals() {
        const bool byWeek = !rule_.weekNumbers.empty();
        if (rule_.frequency == Frequency::Monthly ||
            (rule_.frequency == Frequency::Yearly && !byWeek) || !anyPosition(rule_.days))
            return;
        std::vector<RuleDay> days;
        for (const RuleDay& day : rule_.days) addOnce(days, {0, day.weekday});
        rule_.days = std::move(days);
        reading_.notes.emplace_back(NoteCode::RulePositionsIgnored);
    }

    // A weekday on one of the days 8 to 14 is the second one of its month. Records and
    // vCalendar 1.0 can express a position, but not a weekday limited to days of the month.
    void weeksToOrdinals() {
        const bool inMonth = rule_.frequency == Frequency::Monthly ||
                             (rule_.frequency == Frequency::Yearly && !rule_.months.empty());
        const bool plain = !anyPosition(rule_.days);
        const bool alone = rule_.setPositions.empty() && rule_.yearDays.empty() &&
                           rule_.weekNumbers.empty() && !rule_.days.empty();
        const int position = weekOf(rule_.monthDays);
        if (!inMonth || !plain || !alone || position == 0) return;
        rule_.monthDays.clear();
        for (RuleDay& day : rule_.days) day.position = position;
        reading_.notes.emplace_back(NoteCode::RuleWeekAsPosition);
    }

    // 2 for the days 8 to 14 in any order, -1 for -7 to -1, 0 for days that are not such a week.
    static int weekOf(std::vector<int> days) {
        if (days.size() != 7) return 0;
        std::sort(days.begin(), days.end());
        const int first = days.front();
        if (days.back() - first != 6 || (first > 0 ? first - 1 : first) % 7 != 0) return 0;
        return first > 0 ? first / 7 + 1 : first / 7;
    }

    RuleReading& reading_;
    Rule rule_;
    RuleEnd end_;
    bool hasFrequency_ = false;
    bool any_ = false;
    bool usable_ = true;
    Strays strays_;
    Strays outside_;
};

}  // namespace

void readICalendarRules(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading) {
    if (startsWithIgnoreCase(text, "RRULE:")) text.remove_prefix(6);
    std::size_t rules = 1;
    std::optional<PartReader> part(reading);
    while (!text.empty()) {
        const std::size_t end = findAny<';', ' ', '\t', '\r', '\n'>(text);
        const std::string_view item = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (trimmed(item).empty()) continue;
        const std::size_t equals = item.find('=');
        const std::string_view name = trimmed(item.substr(0, equals));
        const std::string_view value = equals == std::string_view::npos
                                           ? std::string_view()
                                           : trimmed(item.substr(equals + 1));
        if (equalsIgnoreCase(name, "FREQ") && part->hasFrequency()) {
            if (++rules > kMostRulesInText) {
                reading.notes.push_back(
                    Note(NoteCode::RuleTooMany, 0, {std::to_string(kMostRulesInText)}));
                reading.complete = false;
                break;
            }
            part->finish(start);
            part.emplace(reading);
        }
        part->take(name, value);
    }
    part->finish(start);
}

void readPositionalRule(std::string_view text, const std::optional<RuleStart>& start,
                        RuleReading& reading) {
    PartReader reader(reading);
    bool hasUntil = false;
    for (std::size_t field = 0; field < kRuleParts.size(); ++field) {
        const RulePart& part = partOfField(field);
        const std::string_view value = trimmed(nextField(text, ';'));
        if (value.empty()) continue;
        hasUntil = hasUntil || part.kind == RulePart::Kind::Until;
        // The form defines that a count next to an end date is not read.
        if (part.kind == RulePart::Kind::Count && hasUntil) continue;
        reader.take(part, value);
    }
    reader.finish(start);
}

}  // namespace qel::calendar
