// Several threads that read a file ahead say and write what one thread does, wherever the file's
// pieces end.
#include "Fuzz.h"
#include "calendar/Conversions.h"

using namespace qel::fuzz;
using qel::calendar::CalendarFormat;

QEL_FUZZ_TARGET(ahead) {
    const CalendarFormat to = in.flag() ? CalendarFormat::VCalendar10 : CalendarFormat::ICalendar;
    const std::size_t piece = 1U + in.choose(200);
    qel::calendar::Choices choices;
    if (in.flag()) choices.zone = "Europe/Berlin";
    choices.distinctUids = in.flag();
    choices.only.todos = !in.flag();
    FUZZ_CHECK(qel::test::differenceByThreads(in.text(), to, piece, choices).empty());
}
