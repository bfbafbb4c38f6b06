#include "calendar/rules/RuleEnd.h"

#include "calendar/base/Days.h"
#include "calendar/base/Moment.h"
#include "calendar/rules/Occurrences.h"

namespace qel::calendar {

bool readUntil(std::string_view text, RuleEnd& end) {
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

std::string adjustedUntil(const std::string& until, const RuleStart& start, bool midnightIsDay) {
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
        if (rule.until.size() > 8 && end.until.size() > 8 && rule.until != end.until)
            notes.push_back(Note(NoteCode::RuleEndWholeDay, 0, {end.until.substr(0, 8)}));
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
