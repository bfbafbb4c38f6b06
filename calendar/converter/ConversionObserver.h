// What is given every entry after its conversion: the report, the counts, a program that shows
// entries. One thread.
#ifndef QEL_CALENDAR_CONVERTER_CONVERSIONOBSERVER_H
#define QEL_CALENDAR_CONVERTER_CONVERSIONOBSERVER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "calendar/base/Notes.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

enum class CalendarFormat { ICalendar, VCalendar10 };

// One entry after its conversion. Everything lasts until the call returns.
struct ConvertedEntry {
    static constexpr std::size_t kMostNotes = 1000;

    Entry& entry;                 // as it was read; the observer may move it away
    CalendarFormat target;        // what it was written as
    std::span<const Note> notes;  // about this entry, as they were reported; kMostNotes at most
    std::uint64_t moreNotes = 0;  // beyond them
    std::string_view source;      // its bytes in the file, whole lines; empty when not kept
    bool sourceCut = false;       // source ends before the entry does
    std::string_view written;     // its lines in the result, calendar and zones not included
};

class ConversionObserver {
  public:
    virtual ~ConversionObserver() = default;
    // True when `source` and `written` are wanted; they cost memory and time. Asked once a file.
    [[nodiscard]] virtual bool wantsLines() const { return false; }
    virtual void entryConverted(const ConvertedEntry& converted) = 0;
};

}  // namespace qel::calendar

#endif
