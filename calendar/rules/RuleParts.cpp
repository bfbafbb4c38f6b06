#include "calendar/rules/RuleParts.h"

#include "calendar/base/Ascii.h"

namespace qel::calendar {

int weekdayOfCode(std::string_view code) {
    for (int weekday = 1; weekday <= 7; ++weekday)
        if (equalsIgnoreCase(code, kDayCodes[static_cast<std::size_t>(weekday)])) return weekday;
    return 0;
}

std::string joined(const std::vector<int>& numbers, char separator) {
    std::string text;
    for (const int number : numbers) {
        if (!text.empty()) text += separator;
        text += std::to_string(number);
    }
    return text;
}

}  // namespace qel::calendar
