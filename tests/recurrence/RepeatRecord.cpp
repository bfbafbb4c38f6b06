#include "recurrence/RepeatRecord.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "QelUtility/ZQDate.h"

namespace qel::test {

namespace {

// "2,4,5:2" gives `put` the pairs (1, 1), (3, 1) and (4, 2).
template <typename Put>
void readSet(const std::string& text, Put put) {
    std::istringstream items(text);
    for (std::string item; std::getline(items, item, ',');) {
        const std::size_t colon = item.find(':');
        const int flag = colon == std::string::npos ? 1 : std::stoi(item.substr(colon + 1));
        put(std::stoi(item) - 1, static_cast<short>(flag));
    }
}

template <typename Flag>
std::string setText(const char* name, int size, Flag flag) {
    std::string text;
    for (int i = 0; i < size; ++i) {
        if (flag(i) == 0) continue;
        text += (text.empty() ? " " + std::string(name) + " " : ",") + std::to_string(i + 1);
        if (flag(i) != 1) text += ":" + std::to_string(flag(i));
    }
    return text;
}

const struct {
    const char* name;
    short ZQTR_REPEAT::*value;
    short usual;
} kNumbers[] = {{"every", &ZQTR_REPEAT::interval, 1},    {"units", &ZQTR_REPEAT::unitCount, 1},
                {"day", &ZQTR_REPEAT::dayOfMonth, 0},    {"month", &ZQTR_REPEAT::month, 0},
                {"weekday", &ZQTR_REPEAT::dayOfWeek, 0}, {"week", &ZQTR_REPEAT::weekOfMonth, 0}};

std::string bits(unsigned long long set, int offset = 0) {
    std::string text;
    for (int bit = 0; bit < 64; ++bit) {
        if ((set >> bit & 1) == 0) continue;
        text += (text.empty() ? "" : ",") + std::to_string(bit + offset);
    }
    return text;
}

void add(std::string& line, const char* name, const std::string& value) {
    if (!value.empty()) line += std::string(" ") + name + "=" + value;
}

}  // namespace

int code(int date) {
    if (date < 19000101) return date;
    return ZQ_AlphaToCodeDate(std::to_string(date).c_str());
}

int date(int code) {
    char text[9];
    const int date = std::atoi(ZQ_CodeDateToAlpha(code, text));
    return date == 0 ? code : date;
}

std::string dates(const std::vector<int>& codes) {
    std::string text;
    for (const int day : codes) text += (text.empty() ? "" : " ") + std::to_string(date(day));
    return text;
}

std::vector<int> codes(const std::string& dates) {
    std::istringstream in(dates);
    std::vector<int> list;
    for (int day = 0; in >> day;) list.push_back(code(day));
    return list;
}

Record::Record(const std::string& text) {
    repeat.endDate = -1;
    for (const auto& each : kNumbers) repeat.*each.value = each.usual;
    std::istringstream in(text);
    in >> repeat.type;
    std::string name;
    std::string value;
    while (in >> name >> value) {
        const auto number = std::find_if(std::begin(kNumbers), std::end(kNumbers),
                                         [&name](const auto& each) { return each.name == name; });
        if (number != std::end(kNumbers))
            repeat.*number->value = static_cast<short>(std::stoi(value));
        else if (name == "from")
            repeat.startDate = code(std::stoi(value));
        else if (name == "to")
            repeat.endDate = code(std::stoi(value));
        else if (name == "days")
            readSet(value, [&](int i, short flag) { repeat.days[i] = flag; });
        else if (name == "months")
            readSet(value, [&](int i, short flag) { repeat.months[i] = flag; });
        else if (name == "weeks")
            readSet(value, [&](int i, short flag) { repeat.weeks[i] = flag; });
        else if (name == "except")
            readSet(value, [&](int i, short) { exclusions_.push_back(code(i + 1)); });
        else
            throw std::invalid_argument(text);
    }
    repeat.exclusions = exclusions_.data();
    repeat.exclusionCount = static_cast<short>(exclusions_.size());
}

std::string describe(const ZQTR_REPEAT& repeat) {
    std::string text =
        std::to_string(repeat.type) + " from " + std::to_string(date(repeat.startDate));
    if (repeat.endDate != -1) text += " to " + std::to_string(date(repeat.endDate));
    for (const auto& [name, value, usual] : kNumbers)
        if (repeat.*value != usual) text += ' ' + (name + (' ' + std::to_string(repeat.*value)));
    text += setText("days", 7, [&](int i) { return repeat.days[i]; }) +
            setText("months", 12, [&](int i) { return repeat.months[i]; }) +
            setText("weeks", 5, [&](int i) { return repeat.weeks[i]; });
    for (int i = 0; i < repeat.exclusionCount; ++i)
        text += (i == 0 ? " except " : ",") + std::to_string(date(repeat.exclusions[i]));
    return text;
}

std::string describe(const _rruleRepeat& rule) {
    std::string line;
    for (const auto& [bit, name] : {std::pair{RRULE_FREQ_DAILY, "DAILY"},
                                    {RRULE_FREQ_WEEKLY, "WEEKLY"},
                                    {RRULE_FREQ_MONTHLY, "MONTHLY"},
                                    {RRULE_FREQ_YEARLY, "YEARLY"}})
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

std::vector<int> occurrences(const ZQTR_REPEAT& repeat, int previous, std::size_t count) {
    ZQTR_REPEAT record = repeat;
    std::vector<int> found;
    int next = -1;
    while (found.size() < count && ZQRepeatNextDate(&record, &next, &previous) == QEL_OK)
        found.push_back(next);
    return found;
}

}  // namespace qel::test
