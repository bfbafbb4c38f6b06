#include "base/RuleDates.h"

#include <ostream>

#include "base/MonthGrid.h"
#include "base/RepeatText.h"
#include "base/Terminal.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"

namespace qel::cli {

std::vector<calendar::MarkedDay> listed(const std::vector<int>& days) {
    std::vector<calendar::MarkedDay> dates;
    dates.reserve(days.size());
    for (const int day : days) dates.push_back({day, false});
    return dates;
}

void writeDateList(std::ostream& out, const std::vector<calendar::MarkedDay>& dates) {
    for (const calendar::MarkedDay& date : dates) {
        const std::string text = isoDate(date.day) + "  " +
                                 std::string(calendar::weekdayName(calendar::weekdayOf(date.day)));
        out << (date.excluded ? " (" + text + ")" : "  " + text) << "\n";
    }
}

void writeDateGrids(std::ostream& out, const std::vector<calendar::MarkedDay>& dates) {
    MonthGridLayout layout;
    layout.width = outputWidth();
    layout.highlight = outputHighlights();
    writeMonths(out, dates, layout);
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
