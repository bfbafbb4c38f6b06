// Where a calendar file can be cut so that its parts can be read one by one. Any thread.
#ifndef QEL_CALENDAR_CONVERTER_FILECUTS_H
#define QEL_CALENDAR_CONVERTER_FILECUTS_H

#include <cstddef>
#include <string_view>

namespace qel::calendar {

// The first line of `text` that begins after `from` and that none before it can go on with: it
// begins an entry or a zone, or begins or ends a calendar. npos without one, and where that line
// has no end yet.
[[nodiscard]] std::size_t nextCut(std::string_view text, std::size_t from);

// True where `text` begins with a line that begins an entry.
[[nodiscard]] bool beginsEntry(std::string_view text);

}  // namespace qel::calendar

#endif
