/// @file
/// What the library reports about a calendar. Values; usable from any thread.
#ifndef QELCALENDAR_NOTES_H
#define QELCALENDAR_NOTES_H

#include <cstddef>
#include <string>
#include <vector>

#include "QelCalendar/qelcalendar.h"

namespace qelcal {

/// One note, copied: it may outlive what it was asked of. See qelcal_note.
struct Note {
    int code = 0;                            ///< a qelcal_note_code
    qelcal_severity severity = QELCAL_NOTE;  ///< how serious it is
    qelcal_fate fate = QELCAL_UNCHANGED;     ///< what became of the data
    std::string name;                        ///< the code's name, "rule-part-unknown"
    std::string file;                        ///< as the caller named it, may be empty
    std::size_t line = 0;                    ///< of the input, 1 for the first; 0: no line is meant
    std::string text;                        ///< one sentence; may contain bytes of the input
    std::vector<std::string> values;         ///< what the sentence mentions

    Note() = default;
    /// Copies a note of the C interface. REQUIRES: not null
    explicit Note(const qelcal_note* note)
        : code(qelcal_note_code_of(note)),
          severity(static_cast<qelcal_severity>(qelcal_note_severity(note))),
          fate(static_cast<qelcal_fate>(qelcal_note_fate(note))),
          name(qelcal_note_name(note)),
          file(qelcal_note_file(note)),
          line(qelcal_note_line(note)),
          text(qelcal_note_text(note)) {
        for (std::size_t i = 0; i < qelcal_note_value_count(note); ++i)
            values.push_back(qelcal_note_value(note, i));
    }
};

/// The catalogue, ascending by code. Its texts last as long as the process.
inline std::vector<qelcal_note_kind> noteKinds() {
    std::vector<qelcal_note_kind> kinds(qelcal_note_kind_count());
    for (std::size_t i = 0; i < kinds.size(); ++i) qelcal_note_kind_at(i, &kinds[i]);
    return kinds;
}

}  // namespace qelcal

#endif
