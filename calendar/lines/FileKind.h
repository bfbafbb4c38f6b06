// What a file seems to be, by its bytes. Any thread.
#ifndef QEL_CALENDAR_LINES_FILEKIND_H
#define QEL_CALENDAR_LINES_FILEKIND_H

#include <string_view>

namespace qel::calendar {

// The order is that of qelcal_kind.
enum class FileKind { Text, Calendar, Contact, Empty, Zip, Html, Xml, Utf16, Binary };

// Of a file that these are the first bytes of. It is a calendar when a line of them, also in
// UTF-16, begins one or an entry.
[[nodiscard]] FileKind recognise(std::string_view bytes);

// In words that follow "it is", with what a person can do.
[[nodiscard]] const char* kindText(FileKind kind);

}  // namespace qel::calendar

#endif
