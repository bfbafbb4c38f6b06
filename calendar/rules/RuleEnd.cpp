#include "calendar/rules/RuleEnd.h"

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/Occurrences.h"

namespace qel::calendar {

bool readUntil(std::string_view text, RuleEnd& end) {
    // "20050624Z": a day is the same with it.
    if (text.size() == 9 && (text.back() == 'Z' || text.back() == 'z')) text.remove_suffix(1);
    const auto moment = parseMoment(text);
    if (!moment) return false;
    end.until = formatMoment(*moment);
    return true;
}

namespace {

// The last second of the day of `until`, in until's own clock.
std::string endOfDay(const std::string& until) {
    return until.substr(0, 8) + "T235959" + (until.back() == 'Z' ? "Z" : "");
}

// How many days after its own day an end on the other clock of UTC and local time ends the series.
// No zone relates the two, so the end is taken for the last occurrence where some usual zone makes
// it that, else for the whole of its day.
int daysToLast(const Moment& until, const RuleStart& start, bool midnightIsDay) {
    constexpr int kHour = 3600;
    constexpr int kHalfDay = kDaySeconds / 2;
    const bool utc = until.clock == Clock::Utc;
    // The last second of a day: west of Greenwich that is on the next one in UTC.
    if (until.second % kHour == kHour - 1) return utc && until.second < kHalfDay ? -1 : 0;
    const bool maybeExact = until.second % 900 == 0 && !(midnightIsDay && until.second == 0);
    // Midnight east of Greenwich is on the day before in UTC.
    if (start.isDate) return maybeExact && until.second > kHalfDay ? 1 : 0;
    if (!maybeExact) return 0;
    const int toStart = start.secondOfDay - until.second;
    for (const int days : {0, 1, -1}) {
        const int gap = toStart + days * kDaySeconds;
        const int offset = utc ? gap : -gap;
        if (offset >= -8 * kHour && offset <= 10 * kHour) return days;
    }
    return 0;
}

std::string untilOnOtherClock(const std::string& until, const RuleStart& start,
                              bool midnightIsDay) {
    Moment last = *parseMoment(until);
    const int days = daysToLast(last, start, midnightIsDay);
    if (days == 0 && (start.isDate || last.second >= start.secondOfDay)) return until;
    last.day += days;
    if (!start.isDate) return endOfDay(formatMoment(last));
    return formatMoment({last.day, 0, true, Clock::Floating});
}

bool isOnOtherClock(const std::string& until, const RuleStart& start) {
    if (!start.onlyClock || until.size() == 8) return false;
    return (until.back() == 'Z') != (start.onlyClock == Clock::Utc);
}

std::string adjustedUntil(const std::string& until, const RuleStart& start, bool midnightIsDay) {
    if (isOnOtherClock(until, start)) return untilOnOtherClock(until, start, midnightIsDay);
    if (start.isDate) return until;
    if (until.size() == 8) return endOfDay(until);
    const int offset = until.back() == 'Z' ? start.utcOffset : 0;
    const int startSecond =
        ((start.secondOfDay - offset) % kDaySeconds + kDaySeconds) % kDaySeconds;
    if (midnightIsDay && startSecond != 0 && until.substr(9, 6) == "000000") return endOfDay(until);
    return until;
}

}  // namespace

void applyEnd(const RuleEnd& end, const std::optional<RuleStart>& start, bool midnightIsDay,
              Rule& rule, std::vector<Note>& notes) {
    rule.until = end.until;
    if (!rule.until.empty() && start) {
        rule.until = adjustedUntil(rule.until, *start, midnightIsDay);
        if (end.until.size() > 8 && rule.until != end.until)
            notes.push_back(Note(isOnOtherClock(end.until, *start) ? NoteCode::RuleEndOtherClock
                                                                   : NoteCode::RuleEndWholeDay,
                                 0, {rule.until.substr(0, 8)}));
    }
    if (!end.count || *end.count == 0) return;
    if (rule.until.empty()) {
        rule.count = *end.count;
        return;
    }
    if (!start) {
        notes.emplace_back(NoteCode::RuleCountIgnored);
        return;
    }
    RuleLimits limits;
    limits.most = static_cast<std::size_t>(*end.count);
    if (expandRule(rule, *start, limits).size() == limits.most) {
        rule.count = *end.count;
        rule.until.clear();
        notes.emplace_back(NoteCode::RuleCountFirst);
    } else {
        notes.emplace_back(NoteCode::RuleEndFirst);
    }
}

}  // namespace qel::calendar
