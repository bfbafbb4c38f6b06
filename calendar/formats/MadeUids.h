// UIDs for entries that have none. One thread, where nothing else is said.
#ifndef QEL_CALENDAR_FORMATS_MADEUIDS_H
#define QEL_CALENDAR_FORMATS_MADEUIDS_H

#include <cstddef>
#include <map>
#include <string>

#include "calendar/lines/CalendarReader.h"

namespace qel::calendar {

// A digest of the bytes of the entry's properties, as they are before any decoding: how lines end
// and are folded, and DTSTAMP, which says when the file was made, do not matter. So the same entry
// has the same one in every export, on every system. "" when the entry has a UID. Any thread.
[[nodiscard]] std::string digestForUid(const Component& component);

class MadeUids {
  public:
    // The UID of an entry of one file that begins on `line`, made of its digest. Later entries with
    // the same bytes in the same file get a number as well. "" for "".
    [[nodiscard]] std::string uidOf(const std::string& digest, std::size_t line);

    // Entries that are compared by their bytes; later ones get a UID from their line.
    static constexpr std::size_t kMost = 20000;

  private:
    std::map<std::string, unsigned, std::less<>> seen_;
};

}  // namespace qel::calendar

#endif
