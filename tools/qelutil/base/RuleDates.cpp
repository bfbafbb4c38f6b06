#include "base/RuleDates.h"

#include <ostream>

#include "base/Terminal.h"
#include "platform/Console.h"

namespace qel::cli {

std::vector<MarkedDay> listed(const std::vector<int>& days) {
    std::vector<MarkedDay> dates;
    dates.reserve(days.size());
    for (const int day : days) dates.push_back({day, false});
    return dates;
}

void writeDateList(std::ostream& out, const std::vector<MarkedDay>& dates) {
    for (const MarkedDay& date : dates) {
        const Time time = dateOf(date.day);
        const std::string text = isoDate(time) + "  " + qelcal::weekdayName(time.weekday());
        out << (date.excluded ? " (" + text + ")" : "  " + text) << "\n";
    }
}

void writeDateGrids(std::ostream& out, const std::vector<MarkedDay>& dates) {
    MonthGridLayout layout;
    layout.width = outputWidth();
    layout.highlight = outputHighlights();
    layout.firstDayOfWeek =
        std::chrono::weekday(static_cast<unsigned>(platform::firstWeekday() - 1));
    writeMonths(out, dates, layout);
}

void writeNotes(Context& context, const ReadRules& read) {
    for (const qelcal::Note& note : read.rules.notes()) {
        switch (note.severity) {
            case QELCAL_NOTE:
                context.note({}, 0, note.text);
                break;
            case QELCAL_WARNING:
                context.warning({}, 0, note.text);
                break;
            case QELCAL_ERROR:
                context.error(note.text);
                break;
        }
    }
}

}  // namespace qel::cli
