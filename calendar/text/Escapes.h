// Escapes and lists of the two formats. Any thread.
#ifndef QEL_CALENDAR_TEXT_ESCAPES_H
#define QEL_CALENDAR_TEXT_ESCAPES_H

#include <string>
#include <string_view>
#include <vector>

namespace qel::calendar {

// RFC 5545 section 3.3.11.
[[nodiscard]] std::string unescapeICalendar(std::string_view text);
[[nodiscard]] std::string escapeICalendar(std::string_view text);
// Splits at commas that are not escaped, and unescapes each item.
[[nodiscard]] std::vector<std::string> splitICalendarList(std::string_view text);

// vCalendar 1.0 escapes ";" as "\;", and phones also write "\,". Every other backslash is literal.
[[nodiscard]] std::string unescapeVCalendar(std::string_view text);
// Protects the backslashes that unescapeVCalendar would remove, and the `separators` (";", ",")
// that would end a field.
[[nodiscard]] std::string escapeVCalendar(std::string_view text, std::string_view separators);
// Splits at any of `separators` that is not escaped, and unescapes each field.
[[nodiscard]] std::vector<std::string> splitVCalendar(std::string_view text,
                                                      std::string_view separators);

}  // namespace qel::calendar

#endif
