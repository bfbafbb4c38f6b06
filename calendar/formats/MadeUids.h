// UIDs for entries that have none. One thread.
#ifndef QEL_CALENDAR_FORMATS_MADEUIDS_H
#define QEL_CALENDAR_FORMATS_MADEUIDS_H

#include <cstddef>
#include <map>
#include <string>

#include "calendar/lines/CalendarReader.h"

namespace qel::calendar {

class MadeUids {
  public:
    // The UID of an entry of one file. It depends on the bytes of the entry's properties alone, as
    // they are before any decoding: how lines end and are folded, and DTSTAMP, which says when the
    // file was made, do not matter. So the same entry has the same UID in every export, on every
    // system. Later entries with the same bytes in the same file get a number as well. ""
    // when the entry has a UID.
    [[nodiscard]] std::string uidOf(const Component& component);

    // Entries that are compared by their bytes; later ones get a UID from their line.
    static constexpr std::size_t kMost = 20000;

  private:
    std::map<std::string, unsigned, std::less<>> seen_;
};

}  // namespace qel::calendar

#endif
