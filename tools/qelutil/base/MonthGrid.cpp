#include "base/MonthGrid.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>

namespace qel::cli {

namespace {

using std::chrono::day;
using std::chrono::sys_days;
using std::chrono::weekday;
using std::chrono::year_month;

constexpr std::array<const char*, 12> kMonths = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
constexpr std::array<const char*, 7> kDays = {"Su", "Mo", "Tu", "We", "Th", "Fr", "Sa"};
constexpr std::size_t kCellWidth = 4;  // "[12]"
constexpr std::size_t kMonthWidth = 7 * kCellWidth;
constexpr std::size_t kGap = 2;
constexpr int kWeeks = 6;

// A line of one month: what is written, and how many columns it takes (escape sequences none).
struct Line {
    std::string text;
    std::size_t columns = 0;

    void add(const std::string& what, std::size_t width) {
        text += what;
        columns += width;
    }
};

std::string cell(unsigned number, const DayMark* mark, bool highlight) {
    const std::string digits = (number < 10 ? " " : "") + std::to_string(number);
    if (mark == nullptr) return " " + digits + " ";
    if (*mark == DayMark::Occurrence)
        return highlight ? " \x1b[7m" + digits + "\x1b[0m " : "[" + digits + "]";
    return highlight ? " \x1b[2;9m" + digits + "\x1b[0m " : "(" + digits + ")";
}

std::vector<Line> monthLines(year_month month, const MarkedDays& marks,
                             const MonthGridLayout& layout) {
    std::vector<Line> lines(2 + kWeeks);
    const std::string title = std::string(kMonths[static_cast<unsigned>(month.month()) - 1]) + " " +
                              std::to_string(static_cast<int>(month.year()));
    const std::size_t margin = (kMonthWidth - title.size()) / 2;
    lines[0].add(std::string(margin, ' ') + title, margin + title.size());
    for (unsigned column = 0; column < 7; ++column) {
        const weekday name = layout.firstDayOfWeek + std::chrono::days(column);
        lines[1].add(std::string(" ") + kDays[name.c_encoding()] + " ", kCellWidth);
    }
    const weekday first(sys_days(month / day(1)));
    const auto offset = static_cast<unsigned>((first - layout.firstDayOfWeek).count());
    const auto last = static_cast<unsigned>((month / std::chrono::last).day());
    for (unsigned number = 1; number <= last; ++number) {
        const unsigned position = offset + number - 1;
        Line& line = lines[2 + position / 7];
        if (number == 1) line.add(std::string(offset * kCellWidth, ' '), offset * kCellWidth);
        const auto found = marks.find(month / day(number));
        const DayMark* mark = found == marks.end() ? nullptr : &found->second;
        line.add(cell(number, mark, layout.highlight), kCellWidth);
    }
    return lines;
}

void writeRow(std::ostream& out, const std::vector<std::vector<Line>>& row) {
    for (std::size_t number = 0; number < 2 + kWeeks; ++number) {
        Line whole;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::size_t left = i * (kMonthWidth + kGap);
            if (row[i][number].columns == 0) continue;
            whole.add(std::string(left - whole.columns, ' '), left - whole.columns);
            whole.add(row[i][number].text, row[i][number].columns);
        }
        while (!whole.text.empty() && whole.text.back() == ' ') whole.text.pop_back();
        // The sixth week, when no month of the row has one, is not written at all.
        if (number >= 2 && whole.text.empty()) continue;
        out << whole.text << '\n';
    }
}

}  // namespace

std::vector<year_month> monthsWith(const MarkedDays& marks) {
    std::vector<year_month> months;
    for (const auto& [date, mark] : marks) {
        const year_month month = date.year() / date.month();
        if (months.empty() || months.back() != month) months.push_back(month);
    }
    return months;
}

void writeMonths(std::ostream& out, const std::vector<year_month>& months, const MarkedDays& marks,
                 const MonthGridLayout& layout) {
    const auto width = static_cast<std::size_t>(std::max(layout.width, 0));
    const std::size_t perRow = std::max<std::size_t>(1, (width + kGap) / (kMonthWidth + kGap));
    std::vector<std::vector<Line>> row;
    bool firstRow = true;
    const auto finishRow = [&] {
        if (row.empty()) return;
        if (!firstRow) out << '\n';
        firstRow = false;
        writeRow(out, row);
        row.clear();
    };
    for (const year_month month : months) {
        if (!month.ok()) continue;
        row.push_back(monthLines(month, marks, layout));
        if (row.size() == perRow) finishRow();
    }
    finishRow();
}

}  // namespace qel::cli
