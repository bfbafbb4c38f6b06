// The catalogue's words for the severity and the fate of a note. Any thread.
#ifndef QELUTIL_BASE_NOTEWORDS_H
#define QELUTIL_BASE_NOTEWORDS_H

#include "QelCalendar/qelcalendar.h"

namespace qel::cli {

// "note", "warning", "error" for a qelcal_severity.
[[nodiscard]] inline const char* severityName(int severity) {
    if (severity == QELCAL_ERROR) return "error";
    return severity == QELCAL_WARNING ? "warning" : "note";
}

// "unchanged", "kept", "lost" for a qelcal_fate.
[[nodiscard]] inline const char* fateName(int fate) {
    if (fate == QELCAL_LOST) return "lost";
    return fate == QELCAL_KEPT ? "kept" : "unchanged";
}

}  // namespace qel::cli

#endif
