// Month grids like those of `cal`, several side by side, with days marked. Any thread.
#ifndef QELUTIL_BASE_MONTHGRID_H
#define QELUTIL_BASE_MONTHGRID_H

#include <chrono>
#include <iosfwd>
#include <span>

namespace qel::cli {

struct MarkedDay {
    int day = 0;            // a code date
    bool excluded = false;  // taken out of its series
};

struct MonthGridLayout {
    std::chrono::weekday firstDayOfWeek = std::chrono::Sunday;
    int width = 80;          // columns of the page; at least one month is written in each row
    bool highlight = false;  // escape sequences instead of brackets
};

// Writes the months that hold a day of `days`, as many side by side as the page's width takes, with
// a blank line between rows: [12] for a day of the series, (12) for an excluded one, or highlighted
// and struck through. No line ends in a blank. REQUIRES: days ascend.
void writeMonths(std::ostream& out, std::span<const MarkedDay> days, const MonthGridLayout& layout);

}  // namespace qel::cli

#endif
