#include "calendar/base/MarkedDays.h"

#include <cstddef>

#include "calendar/base/Days.h"

namespace qel::calendar {

std::vector<MarkedMonth> monthsOf(std::span<const MarkedDay> days) {
    constexpr std::size_t kUsual = 6;
    std::vector<MarkedMonth> months;
    months.reserve(kUsual);
    while (!days.empty()) {
        const Civil first = civilOf(days.front().day);
        const int next =
            dayNumber(first.year, first.month, 1) + daysInMonth(first.year, first.month);
        std::size_t count = 1;
        while (count < days.size() && days[count].day < next) ++count;
        months.push_back({first.year, first.month, days.first(count)});
        days = days.subspan(count);
    }
    return months;
}

}  // namespace qel::calendar
