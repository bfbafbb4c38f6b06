// A note as the C interface hands it out. One thread at a time.
#ifndef QEL_CALENDAR_API_NOTEHANDLE_H
#define QEL_CALENDAR_API_NOTEHANDLE_H

#include <deque>
#include <string>

#include "QelCalendar/qelcalendar.h"
#include "calendar/base/Notes.h"

struct qelcal_note {
    explicit qelcal_note(qel::calendar::Note noteRecord) : note(std::move(noteRecord)) {}

    qel::calendar::Note note;
    mutable std::string text;  // the sentence, once somebody has asked for it
};

namespace qel::calendar::api {

// Handles stay where they are while more are added.
using NoteHandles = std::deque<qelcal_note>;

template <class Notes>
const qelcal_note* noteAt(const Notes& notes, std::size_t index) {
    return index < notes.size() ? &notes[index] : nullptr;
}

}  // namespace qel::calendar::api

#endif
