// Days that are shown in month grids, and the months that they fall into. Plain data; any thread.
#ifndef QEL_CALENDAR_BASE_MARKEDDAYS_H
#define QEL_CALENDAR_BASE_MARKEDDAYS_H

#include <span>
#include <vector>

namespace qel::calendar {

struct MarkedDay {
    int day = 0;            // a code date
    bool excluded = false;  // taken out of its series
};

struct MarkedMonth {
    int year = 0;
    int month = 1;                    // 1..12
    std::span<const MarkedDay> days;  // at least one
};

// The months that contain a marked day, in order. Their days refer to `days`. REQUIRES: days
// ascend.
[[nodiscard]] std::vector<MarkedMonth> monthsOf(std::span<const MarkedDay> days);

}  // namespace qel::calendar

#endif
