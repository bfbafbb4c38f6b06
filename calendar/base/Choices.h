// What a person may choose about how files are read. The defaults are what is right for most files.
#ifndef QEL_CALENDAR_BASE_CHOICES_H
#define QEL_CALENDAR_BASE_CHOICES_H

#include <string>

namespace qel::calendar {

// The number after # in a vCalendar 1.0 rule that has several days in a period: dates, or periods.
enum class CountMeans { Dates, Periods };

// Kinds of entries, each by the part of a file that holds it.
struct KindsWanted {
    bool events = true;
    bool todos = true;
    bool notes = true;  // and journal entries
};

struct Choices {
    std::string zone;  // an IANA name, for local times without a zone; "" when none is chosen
    std::string characterSet;  // of text that names none; "" when none is chosen
    CountMeans countMeans = CountMeans::Dates;
    bool distinctUids = false;  // a UID that comes again with other content is made a new one
    KindsWanted only;
};

}  // namespace qel::calendar

#endif
