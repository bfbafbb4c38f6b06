#include "base/MonthGrid.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "base/Moment.h"

namespace qel::cli {

namespace {

constexpr std::array<const char*, 7> kDays = {"Su", "Mo", "Tu", "We", "Th", "Fr", "Sa"};
constexpr std::size_t kCellWidth = 4;  // "[12]"
constexpr std::size_t kMonthWidth = 7 * kCellWidth;
constexpr std::size_t kGap = 2;
constexpr int kWeeks = 6;

// A line of one month, and how many columns it takes: escape sequences take none.
struct Line {
    std::string text;
    std::size_t columns = 0;

    void add(const std::string& what, std::size_t width) {
        text += what;
        columns += width;
    }
};

std::string cell(int number, const MarkedDay* mark, bool highlight) {
    const std::string digits = (number < 10 ? " " : "") + std::to_string(number);
    if (mark == nullptr) return " " + digits + " ";
    if (mark->excluded) return highlight ? " \x1b[2;9m" + digits + "\x1b[0m " : "(" + digits + ")";
    return highlight ? " \x1b[7m" + digits + "\x1b[0m " : "[" + digits + "]";
}

// Of the month that begins on `start`.
int daysInMonth(const Time& start) {
    int days = 28;
    while (start.plus(days * kDaySeconds).month == start.month) ++days;
    return days;
}

// The month that begins on `start`, with `days` of it marked.
std::vector<Line> monthLines(const Time& start, std::span<const MarkedDay> days,
                             const MonthGridLayout& layout) {
    std::vector<Line> lines(2 + kWeeks);
    const std::string title = qelcal::monthName(start.month) + " " + std::to_string(start.year);
    const std::size_t margin = (kMonthWidth - title.size()) / 2;
    lines[0].add(std::string(margin, ' ') + title, margin + title.size());
    for (int column = 0; column < 7; ++column) {
        const std::chrono::weekday name = layout.firstDayOfWeek + std::chrono::days(column);
        lines[1].add(std::string(" ") + kDays[name.c_encoding()] + " ", kCellWidth);
    }
    const std::chrono::weekday firstWeekday(static_cast<unsigned>(start.weekday() - 1));
    const auto offset = static_cast<std::size_t>((firstWeekday - layout.firstDayOfWeek).count());
    lines[2].add(std::string(offset * kCellWidth, ' '), offset * kCellWidth);
    const int first = codeDateOf(start);
    auto mark = days.begin();
    for (int number = 1; number <= daysInMonth(start); ++number) {
        const bool marked = mark != days.end() && mark->day == first + number - 1;
        Line& line = lines[2 + (offset + static_cast<std::size_t>(number) - 1) / 7];
        line.add(cell(number, marked ? &*mark : nullptr, layout.highlight), kCellWidth);
        if (marked) ++mark;
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
        // A sixth week that no month of the row has is left out.
        if (number >= 2 && whole.text.empty()) continue;
        out << whole.text << '\n';
    }
}

}  // namespace

void writeMonths(std::ostream& out, std::span<const MarkedDay> days,
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
    while (!days.empty()) {
        const Time date = dateOf(days.front().day);
        const Time start = later(date, (1 - date.day) * kDaySeconds);
        const int next = codeDateOf(start) + daysInMonth(start);
        std::size_t count = 1;
        while (count < days.size() && days[count].day < next) ++count;
        row.push_back(monthLines(start, days.first(count), layout));
        days = days.subspan(count);
        if (row.size() == perRow) finishRow();
    }
    finishRow();
}

}  // namespace qel::cli
