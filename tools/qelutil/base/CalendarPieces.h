// A calendar cut into smaller ones, for importers that take only so much. Any thread.
#ifndef QELUTIL_BASE_CALENDARPIECES_H
#define QELUTIL_BASE_CALENDARPIECES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel::cli {

// // The calendars of a file as this program wrote it, in files of at most `most` bytes. Each
// calendar there has the lines of the calendar itself and the zones that it uses. The entries of
// one UID in a calendar, a series and what replaces its occurrences, stay together: where they
// alone take more, their file is larger.
[[nodiscard]] std::vector<std::string> calendarPieces(std::string_view calendars, std::size_t most);

}  // namespace qel::cli

#endif
