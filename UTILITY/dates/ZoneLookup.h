// Finding the offset that holds at a time in a table of changes. Without state; callable from any
// thread.
#ifndef QEL_DATES_ZONELOOKUP_H
#define QEL_DATES_ZONELOOKUP_H

#include <span>

#include "dates/BxTimezoneTable.h"

namespace qel::dates {

// Which half of the changes a time is compared with.
enum class ZoneColumn { Local, Utc };

// Writes the offset of the last change at or before `time` to `time` and returns 0; before the
// first change that is the first change's offset. -1, and an error in the log, for no changes at
// all. REQUIRES: `changes` in the order of time
[[nodiscard]] int offsetAt(std::span<const ZoneChange> changes, ZoneColumn column, ZoneTime& time);

// The same for a zone of the table; 2016, and an error in the log, for an unknown zone number.
[[nodiscard]] int zoneOffsetAt(int zone, ZoneColumn column, ZoneTime& time);

}  // namespace qel::dates

#endif
