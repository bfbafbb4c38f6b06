// The text of a calendar's values in UTF-8, whatever character set they are in. Any thread.
#ifndef QEL_CALENDAR_TEXT_CHARACTERSETS_H
#define QEL_CALENDAR_TEXT_CHARACTERSETS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"

namespace qel::calendar {

// The text in UTF-8. `set` is its character set's MIME name, "" when the input names none: then the
// bytes are taken as UTF-8 if they are valid but for a few, as ISO-2022-JP and its like where they
// have its escapes, and otherwise as `unlabelled`, which may be "" for windows-1252. So are bytes
// that say UTF-8 and are not. Bytes in a set that nobody here knows are taken as UTF-8 or
// windows-1252, and those that name another set as UTF-8 where that is certain. `notes` receives
// what was assumed or invalid; `unlabelled` is known to the person already.
[[nodiscard]] std::string toUtf8(std::string text, std::string_view set,
                                 std::string_view unlabelled, std::vector<Note>& notes);

// The same without any guess: nothing when the set is unknown, and invalid bytes become U+FFFD.
[[nodiscard]] std::optional<std::string> fromCharacterSet(std::string_view text,
                                                          std::string_view set);

[[nodiscard]] std::string fromWindows1252(std::string_view text);

// A text whose character set is not known: unchanged when it is valid UTF-8, otherwise read as
// windows-1252.
[[nodiscard]] std::string utf8OrWindows1252(std::string text);

// True when toUtf8 takes text with this label as text that names no set.
[[nodiscard]] bool isUnlabelled(std::string_view set);

// True when toUtf8 reads the text, labelled `set`, as `unlabelled`.
[[nodiscard]] bool isUnexplained(std::string_view text, std::string_view set);

}  // namespace qel::calendar

#endif
