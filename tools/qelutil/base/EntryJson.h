// Entries and notes as every command writes them with --json. Any thread.
#ifndef QELUTIL_BASE_ENTRYJSON_H
#define QELUTIL_BASE_ENTRYJSON_H

#include "QelCalendar/Entries.h"
#include "QelCalendar/Notes.h"
#include "base/Json.h"

namespace qel::cli {

// "event", "todo", "note" for a qelcal_entry_kind.
[[nodiscard]] const char* kindName(qelcal_entry_kind kind);

[[nodiscard]] Json noteJson(const qelcal::Note& note);

// With its notes.
[[nodiscard]] Json entryJson(const qelcal::Entry& entry);

}  // namespace qel::cli

#endif
