#include "calendar/report/MonthTables.h"

#include <algorithm>

#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"
#include "calendar/report/Html.h"

namespace qel::calendar {

namespace {

bool sameMonth(const Civil& one, const Civil& other) {
    return one.year == other.year && one.month == other.month;
}

// Monday is column 0, as in iCalendar a week begins with it.
int columnOf(int day) {
    return (weekdayOf(day) + 5) % 7;
}

// For those who hear the page: the table's marks in words.
std::string spoken(const std::vector<cli::ListedDate>& days) {
    std::string dates;
    std::string excluded;
    for (const cli::ListedDate& each : days) {
        std::string& list = each.excluded ? excluded : dates;
        list += (list.empty() ? "" : ", ") + std::to_string(civilOf(each.day).day);
    }
    std::string text = "<span class=v>";
    if (!dates.empty()) text += ": on " + dates;
    if (!excluded.empty()) text += "; not on " + excluded;
    return text + "</span>";
}

// End tags that HTML does not ask for are left out: a page may hold thousands of months.
std::string monthTable(const std::vector<cli::ListedDate>& days) {
    const Civil month = civilOf(days.front().day);
    const int first = dayNumber(month.year, month.month, 1);
    const int length = daysInMonth(month.year, month.month);
    std::string text = "<table class=m><caption>" + std::string(monthName(month.month)) + " " +
                       std::to_string(month.year) + spoken(days) +
                       "</caption><tr><th>Mo<th>Tu<th>We<th>Th<th>Fr<th>Sa<th>Su<tr>";
    if (columnOf(first) > 0) text += "<td colspan=" + std::to_string(columnOf(first)) + ">";
    auto mark = days.begin();
    for (int number = 1; number <= length; ++number) {
        const int day = first + number - 1;
        if (number > 1 && columnOf(day) == 0) text += "<tr>";
        const std::string digits = std::to_string(number);
        if (mark != days.end() && mark->day == day) {
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

MonthTables monthTables(const std::vector<cli::ListedDate>& days, bool more, std::size_t most) {
    std::string text;
    std::vector<cli::ListedDate> ofMonth;
    std::size_t months = 0;
    std::size_t left = 0;
    for (std::size_t at = 0; at < days.size();) {
        const Civil month = civilOf(days[at].day);
        ofMonth.clear();
        for (; at < days.size() && sameMonth(civilOf(days[at].day), month); ++at)
            ofMonth.push_back(days[at]);
        if (++months <= most)
            text += monthTable(ofMonth);
        else
            for (const cli::ListedDate& each : ofMonth) left += each.excluded ? 0 : 1;
    }
    months = std::min(months, most);
    if (left == 0 && !more) return {text, months};
    text += "<p class=more>";
    if (more) {
        text += "and so on";
    } else {
        const Civil last = civilOf(days.back().day);
        text += "and " + counted(left, "more day", "more days") + ", the last in " +
                std::string(monthName(last.month)) + " " + std::to_string(last.year);
    }
    return {text + "</p>\n", months};
}

}  // namespace qel::calendar
