// Month grids as tables of a page. Any thread.
#ifndef QEL_CALENDAR_REPORT_MONTHTABLES_H
#define QEL_CALENDAR_REPORT_MONTHTABLES_H

#include <cstddef>
#include <span>
#include <string>

#include "calendar/base/MarkedDays.h"

namespace qel::calendar {

struct MonthTables {
    std::string html;
    std::size_t count = 0;  // tables
};

// The months that contain a day of `days`, at most `most` of them, each a <table>, and in words
// what comes after them. `more`: the series continues after `days`. `weekStart`: 1 Sunday to 7
// Saturday. REQUIRES: days ascend.
[[nodiscard]] MonthTables monthTables(std::span<const MarkedDay> days, bool more, std::size_t most,
                                      int weekStart);

}  // namespace qel::calendar

#endif
