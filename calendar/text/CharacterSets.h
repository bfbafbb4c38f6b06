// Text in any character set that the library or the operating system can read. Any thread.
#ifndef QEL_CALENDAR_TEXT_CHARACTERSETS_H
#define QEL_CALENDAR_TEXT_CHARACTERSETS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"

namespace qel::calendar {

// The text in UTF-8. `set` is its character set's MIME name, "" when the input names none: then the
// bytes are taken as UTF-8 if they are valid, otherwise as windows-1252. So are those in a set that
// nobody here knows. `notes` receives what was guessed or invalid.
[[nodiscard]] std::string toUtf8(std::string text, std::string_view set, std::vector<Note>& notes);

// The same without any guess: nothing when the set is unknown, and invalid bytes become U+FFFD.
[[nodiscard]] std::optional<std::string> fromCharacterSet(std::string_view text,
                                                          std::string_view set);

}  // namespace qel::calendar

#endif
