// Month grids as tables of a page. Any thread.
#ifndef QEL_CALENDAR_REPORT_MONTHTABLES_H
#define QEL_CALENDAR_REPORT_MONTHTABLES_H

#include <cstddef>
#include <string>
#include <vector>

#include "base/RuleDates.h"

namespace qel::calendar {

struct MonthTables {
    std::string html;
    std::size_t count = 0;  // of the tables
};

// The months that hold a day of `days`, at most `most` of them, each a <table>, and what comes
// after them in words. REQUIRES: days ascend. `more`: there are further ones behind them.
[[nodiscard]] MonthTables monthTables(const std::vector<cli::ListedDate>& days, bool more,
                                      std::size_t most);

}  // namespace qel::calendar

#endif
