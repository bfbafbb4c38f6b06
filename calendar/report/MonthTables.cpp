#include "calendar/report/MonthTables.h"

#include <algorithm>
#include <string_view>

#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/report/Html.h"

namespace qel::calendar {

namespace {

// Of all days, where none is marked.
constexpr std::string_view kPlainCells =
    "<td>1<td>2<td>3<td>4<td>5<td>6<td>7<td>8<td>9<td>10<td>11<td>12<td>13<td>14<td>15<td>16"
    "<td>17<td>18<td>19<td>20<td>21<td>22<td>23<td>24<td>25<td>26<td>27<td>28<td>29<td>30<td>31";

// Bytes of a month's table with a few marks.
constexpr std::size_t kUsualTable = 512;

// Where the cell of a day begins in it.
constexpr std::size_t placeOfCell(int number) {
    const int bytes = 5 * (number - 1) + (number > 10 ? number - 10 : 0);
    return static_cast<std::size_t>(bytes);
}
static_assert(kPlainCells.substr(placeOfCell(9), 5) == "<td>9" &&
              kPlainCells.substr(placeOfCell(11)).starts_with("<td>11") &&
              placeOfCell(32) == kPlainCells.size());

int columnOf(int day, int weekStart) {
    return (weekdayOf(day) + 7 - weekStart) % 7;
}

// REQUIRES: 1 to 31.
void addDay(std::string& text, int number) {
    if (number >= 10) text += static_cast<char>('0' + number / 10);
    text += static_cast<char>('0' + number % 10);
}

void addWeekdayHeads(std::string& text, int weekStart) {
    constexpr std::string_view kTwoWeeks =
        "<th>Su<th>Mo<th>Tu<th>We<th>Th<th>Fr<th>Sa<th>Su<th>Mo<th>Tu<th>We<th>Th<th>Fr<th>Sa";
    constexpr std::size_t kHead = 6;
    text += kTwoWeeks.substr(static_cast<std::size_t>(weekStart - 1) * kHead, 7 * kHead);
}

// The table's marks in words, for screen readers; `first` is the month's first day.
void addSpoken(std::string& text, std::span<const MarkedDay> days, int first) {
    text += "<span class=v>";
    const auto add = [&](bool excluded, const char* words) {
        const char* before = words;
        for (const MarkedDay& each : days) {
            if (each.excluded != excluded) continue;
            text += before;
            addDay(text, each.day - first + 1);
            before = ", ";
        }
    };
    add(false, ": on ");
    add(true, "; not on ");
    text += "</span>";
}

// End tags that HTML does not require are left out: a page may hold thousands of months.
void addMonthTable(std::string& text, const MarkedMonth& month, int weekStart) {
    const int first = dayNumber(month.year, month.month, 1);
    const int length = daysInMonth(month.year, month.month);
    text.append("<table class=m><caption>").append(monthName(month.month)).append(" ");
    text += std::to_string(month.year);
    addSpoken(text, month.days, first);
    text += "</caption><tr>";
    addWeekdayHeads(text, weekStart);
    text += "<tr>";
    int column = columnOf(first, weekStart);
    if (column > 0) text.append("<td colspan=").append(std::to_string(column)).append(">");
    auto mark = month.days.begin();
    for (int number = 1; number <= length;) {
        const bool marks = mark != month.days.end() && mark->day >= first + number - 1;
        const int marked = marks ? mark->day - first + 1 : length + 1;
        if (number > 1 && column % 7 == 0) text += "<tr>";
        if (number == marked) {
            text += mark->excluded ? "<td class=x><s>" : "<td class=o><b>";
            addDay(text, number);
            text += mark->excluded ? "</s>" : "</b>";
            ++mark;
            ++number;
            ++column;
            continue;
        }
        // Those up to the next mark, the week's end or the month's.
        const int next = std::min({marked, number + 7 - column % 7, length + 1});
        text += kPlainCells.substr(placeOfCell(number), placeOfCell(next) - placeOfCell(number));
        column += next - number;
        number = next;
    }
    text += "</table>\n";
}

}  // namespace

MonthTables monthTables(std::span<const MarkedDay> days, bool more, std::size_t most,
                        int weekStart) {
    MonthTables tables;
    std::size_t left = 0;
    const std::vector<MarkedMonth> months = monthsOf(days);
    tables.html.reserve(std::min(months.size(), most) * kUsualTable);
    for (const MarkedMonth& month : months) {
        if (tables.count < most) {
            addMonthTable(tables.html, month, weekStart);
            ++tables.count;
        } else {
            for (const MarkedDay& each : month.days) left += each.excluded ? 0 : 1;
        }
    }
    if (left == 0 && !more) return tables;
    tables.html += "<p class=more>";
    if (more) {
        tables.html += "and so on";
    } else {
        const Civil last = civilOf(days.back().day);
        tables.html += "and " + counted(left, "more day", "more days") + ", the last in " +
                       std::string(monthName(last.month)) + " " + std::to_string(last.year);
    }
    tables.html += "</p>\n";
    return tables;
}

}  // namespace qel::calendar
