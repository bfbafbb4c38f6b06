// Month grids in the manner of `cal`, several side by side, with days marked. Any thread.
#ifndef QELUTIL_BASE_MONTHGRID_H
#define QELUTIL_BASE_MONTHGRID_H

#include <chrono>
#include <iosfwd>
#include <map>
#include <vector>

namespace qel::cli {

enum class DayMark {
    Occurrence,  // [12], or highlighted
    Excluded     // (12), or dimmed and struck through
};

using MarkedDays = std::map<std::chrono::year_month_day, DayMark>;

struct MonthGridLayout {
    std::chrono::weekday firstDayOfWeek = std::chrono::Sunday;
    int width = 80;          // columns of the page; at least one month is written in each row
    bool highlight = false;  // escape sequences instead of brackets
};

// The months that hold a marked day, in order, each once.
[[nodiscard]] std::vector<std::chrono::year_month> monthsWith(const MarkedDays& marks);

// Writes the months in the order given, as many side by side as the page's width takes, with a
// blank line between rows. No line ends in a blank. Months that are not valid dates are passed
// over.
void writeMonths(std::ostream& out, const std::vector<std::chrono::year_month>& months,
                 const MarkedDays& marks, const MonthGridLayout& layout);

}  // namespace qel::cli

#endif
