#include "calendar/report/MonthTables.h"

#include <algorithm>

#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/report/Html.h"

namespace qel::calendar {

namespace {

int columnOf(int day, int weekStart) {
    return (weekdayOf(day) + 7 - weekStart) % 7;
}

std::string weekdayHeads(int weekStart) {
    std::string heads;
    for (int column = 0; column < 7; ++column)
        heads += "<th>" + std::string(weekdayName((weekStart + column - 1) % 7 + 1).substr(0, 2));
    return heads;
}

// The table's marks in words, for screen readers.
std::string spoken(std::span<const MarkedDay> days) {
    std::string dates;
    std::string excluded;
    for (const MarkedDay& each : days) {
        std::string& list = each.excluded ? excluded : dates;
        list += (list.empty() ? "" : ", ") + std::to_string(civilOf(each.day).day);
    }
    std::string text = "<span class=v>";
    if (!dates.empty()) text += ": on " + dates;
    if (!excluded.empty()) text += "; not on " + excluded;
    return text + "</span>";
}

// End tags that HTML does not require are left out: a page may hold thousands of months.
std::string monthTable(const MarkedMonth& month, int weekStart) {
    const int first = dayNumber(month.year, month.month, 1);
    const int length = daysInMonth(month.year, month.month);
    std::string text = "<table class=m><caption>" + std::string(monthName(month.month)) + " " +
                       std::to_string(month.year) + spoken(month.days) + "</caption><tr>" +
                       weekdayHeads(weekStart) + "<tr>";
    if (const int column = columnOf(first, weekStart); column > 0)
        text += "<td colspan=" + std::to_string(column) + ">";
    auto mark = month.days.begin();
    for (int number = 1; number <= length; ++number) {
        const int day = first + number - 1;
        if (number > 1 && columnOf(day, weekStart) == 0) text += "<tr>";
        const std::string digits = std::to_string(number);
        if (mark != month.days.end() && mark->day == day) {
            text += mark->excluded ? "<td class=x><s>" + digits + "</s>"
                                   : "<td class=o><b>" + digits + "</b>";
            ++mark;
        } else {
            text += "<td>" + digits;
        }
    }
    return text + "</table>\n";
}

}  // namespace

MonthTables monthTables(std::span<const MarkedDay> days, bool more, std::size_t most,
                        int weekStart) {
    MonthTables tables;
    std::size_t left = 0;
    for (const MarkedMonth& month : monthsOf(days)) {
        if (tables.count < most) {
            tables.html += monthTable(month, weekStart);
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
