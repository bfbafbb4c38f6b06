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
            notes.push_back({Severity::Note, "the end at midnight of " + end.until.substr(0, 8) +
                                                 " is read as the whole of that day"});
    }
    if (!end.count || *end.count == 0) return;
    if (rule.until.empty()) {
        rule.count = *end.count;
        return;
    }
    if (!start) {
        notes.push_back({Severity::Warning,
                         "both a count and an end date are given, and no start to tell which comes "
                         "first; the end date is kept"});
        return;
    }
    RuleLimits limits;
    limits.most = static_cast<std::size_t>(*end.count);
    if (expandRule(rule, *start, limits).size() == limits.most) {
        rule.count = *end.count;
        rule.until.clear();
        notes.push_back({Severity::Note, "the count comes before the end date and is kept"});
    } else {
        notes.push_back({Severity::Note, "the end date comes before the count and is kept"});
    }
}

}  // namespace qel::calendar
