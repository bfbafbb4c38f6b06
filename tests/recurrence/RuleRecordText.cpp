#include "recurrence/RuleRecordText.h"

#include <utility>

namespace qel::test {

namespace {

std::string bits(unsigned long long set, int offset = 0) {
    std::string text;
    for (int bit = 0; bit < 64; ++bit) {
        if ((set >> bit & 1) == 0) continue;
        if (!text.empty()) text += ',';
        text += std::to_string(bit + offset);
    }
    return text;
}

void add(std::string& line, const char* name, const std::string& value) {
    if (!value.empty()) line += std::string(" ") + name + "=" + value;
}

}  // namespace

std::string describe(const _rruleRepeat& rule) {
    std::string line;
    const std::pair<int, const char*> frequencies[] = {{RRULE_FREQ_DAILY, "DAILY"},
                                                       {RRULE_FREQ_WEEKLY, "WEEKLY"},
                                                       {RRULE_FREQ_MONTHLY, "MONTHLY"},
                                                       {RRULE_FREQ_YEARLY, "YEARLY"}};
    for (const auto& [bit, name] : frequencies)
        if ((rule.freq & bit) != 0) line += name;
    if (rule.interval != 1) add(line, "interval", std::to_string(rule.interval));
    if (rule.count != -1) add(line, "count", std::to_string(rule.count));
    if (rule.until != -1) {
        const __int64 until = rule.until;
        add(line, "until", std::to_string(until / 86400) + "+" + std::to_string(until % 86400));
    }
    const std::pair<int, const char*> parts[] = {
        {RRULE_TYPE_BYDAY, "BYDAY"},         {RRULE_TYPE_BYMONTHDAY, "BYMONTHDAY"},
        {RRULE_TYPE_BYYEARDAY, "BYYEARDAY"}, {RRULE_TYPE_BYWEEKNO, "BYWEEKNO"},
        {RRULE_TYPE_BYMONTH, "BYMONTH"},     {RRULE_TYPE_BYSETPOS, "BYSETPOS"}};
    std::string present;
    for (const auto& [bit, name] : parts)
        if ((rule.type & bit) != 0) present += (present.empty() ? "" : ",") + std::string(name);
    add(line, "parts", present);
    add(line, "days", bits(rule.byDay));
    add(line, "monthdays", bits(rule.byMonthDay));
    add(line, "monthdays-", bits(rule.byMonthDayNeg));
    for (int word = 0; word < 6; ++word) {
        add(line, "yeardays", bits(rule.byYearDay[word], word * 64));
        add(line, "yeardays-", bits(rule.byYearDayNeg[word], word * 64));
    }
    add(line, "weeks", bits(rule.byWeekNo));
    add(line, "weeks-", bits(rule.byWeekNoNeg));
    add(line, "months", bits(rule.byMonth));
    std::string positions;
    for (short position : rule.setPos)
        positions += (positions.empty() ? "" : ",") + std::to_string(position);
    if (positions != "0,0,0,0") add(line, "positions", positions);
    if (rule.wkst != RRULE_DAY_SU) add(line, "weekstart", bits(rule.wkst));
    return line;
}

}  // namespace qel::test
