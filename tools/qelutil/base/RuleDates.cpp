#include "base/RuleDates.h"

#include <ostream>

#include "base/MonthGrid.h"
#include "base/RepeatText.h"
#include "base/Terminal.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"

namespace qel::cli {

std::vector<ListedDate> listed(const std::vector<int>& days) {
    std::vector<ListedDate> dates;
    dates.reserve(days.size());
    for (const int day : days) dates.push_back({day, false});
    return dates;
}

void writeDateList(std::ostream& out, const std::vector<ListedDate>& dates) {
    for (const ListedDate& date : dates) {
        const std::string text = isoDate(date.day) + "  " +
                                 std::string(calendar::weekdayName(calendar::weekdayOf(date.day)));
        out << (date.excluded ? " (" + text + ")" : "  " + text) << "\n";
    }
}

void writeDateGrids(std::ostream& out, const std::vector<ListedDate>& dates) {
    MarkedDays marks;
    for (const ListedDate& date : dates) {
        marks[std::chrono::year_month_day(calendar::kDayZero + std::chrono::days(date.day))] =
            date.excluded ? DayMark::Excluded : DayMark::Occurrence;
    }
    MonthGridLayout layout;
    layout.width = outputWidth();
    layout.highlight = outputHighlights();
    writeMonths(out, monthsWith(marks), marks, layout);
}

void writeNotes(Context& context, const ReadRules& read) {
    for (const calendar::Note& note : read.reading.notes) {
        switch (note.severity()) {
            case calendar::Severity::Note:
                context.note({}, 0, note.text());
                break;
            case calendar::Severity::Warning:
                context.warning({}, 0, note.text());
                break;
            case calendar::Severity::Error:
                context.error(note.text());
                break;
        }
    }
}

}  // namespace qel::cli
