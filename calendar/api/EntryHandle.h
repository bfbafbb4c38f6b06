// An entry as the C interface hands it out: a view of the library's entry with what callers have
// asked for so far. One thread at a time.
#ifndef QEL_CALENDAR_API_ENTRYHANDLE_H
#define QEL_CALENDAR_API_ENTRYHANDLE_H

#include <memory>
#include <span>
#include <vector>

#include "QelCalendar/qelcalendar.h"
#include "calendar/api/NoteHandle.h"
#include "calendar/api/RulesHandle.h"
#include "calendar/entries/Entry.h"

struct qelcal_entry {
    // `viewed` must outlive the handle.
    qelcal_entry(const qel::calendar::Entry& viewed,
                 std::span<const qel::calendar::Note> entryNotes)
        : entry(viewed), notes(entryNotes.begin(), entryNotes.end()) {}

    const qel::calendar::Entry& entry;
    qel::calendar::api::NoteHandles notes;
    mutable std::vector<std::unique_ptr<qelcal_rules>> rules;  // by rule text, once asked for
};

#endif
