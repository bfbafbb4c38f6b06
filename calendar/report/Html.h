// Text of calendars as HTML: markup in it is shown and has no effect. Any thread.
#ifndef QEL_CALENDAR_REPORT_HTML_H
#define QEL_CALENDAR_REPORT_HTML_H

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::calendar {

// For text between tags and for attributes in double quotes: the five characters of markup as
// references, control characters and invalid bytes as printable() shows them; a text longer than
// about `longest` bytes is cut and ends in "...".
[[nodiscard]] std::string html(std::string_view text, std::size_t longest = 1000);

// The same, added to `page`.
void addHtml(std::string& page, std::string_view text, std::size_t longest = 1000);

// The same line by line, for a <pre>.
void addHtmlLines(std::string& page, std::string_view text);

// "3 dates", "1 date"
[[nodiscard]] std::string counted(std::uint64_t number, std::string_view one,
                                  std::string_view many);

}  // namespace qel::calendar

#endif
