#include "recurrence/RepeatRecord.h"

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

std::string fieldText(const char* name, int value, int usual = 0) {
    return value == usual ? "" : " " + std::string(name) + " " + std::to_string(value);
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
    repeat.interval = 1;
    repeat.unitCount = 1;
    std::istringstream in(text);
    in >> repeat.type;
    std::string name;
    std::string value;
    while (in >> name >> value) {
        const auto number = static_cast<short>(std::atoi(value.c_str()));
        if (name == "from")
            repeat.startDate = code(std::stoi(value));
        else if (name == "to")
            repeat.endDate = code(std::stoi(value));
        else if (name == "every")
            repeat.interval = number;
        else if (name == "units")
            repeat.unitCount = number;
        else if (name == "day")
            repeat.dayOfMonth = number;
        else if (name == "month")
            repeat.month = number;
        else if (name == "weekday")
            repeat.dayOfWeek = number;
        else if (name == "week")
            repeat.weekOfMonth = number;
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
    text += fieldText("every", repeat.interval, 1) + fieldText("units", repeat.unitCount, 1) +
            fieldText("day", repeat.dayOfMonth) + fieldText("month", repeat.month) +
            fieldText("weekday", repeat.dayOfWeek) + fieldText("week", repeat.weekOfMonth) +
            setText("days", 7, [&](int i) { return repeat.days[i]; }) +
            setText("months", 12, [&](int i) { return repeat.months[i]; }) +
            setText("weeks", 5, [&](int i) { return repeat.weeks[i]; });
    for (int i = 0; i < repeat.exclusionCount; ++i)
        text += (i == 0 ? " except " : ",") + std::to_string(date(repeat.exclusions[i]));
    return text;
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
