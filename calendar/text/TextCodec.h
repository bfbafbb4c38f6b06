// Values of calendar properties as UTF-8 text, and back: quoted-printable, Base64, character sets,
// escapes. Quoted-printable, Base64 and the character sets that the library knows go through the
// library, other sets through the platform. Any thread.
#ifndef QEL_CALENDAR_TEXT_TEXTCODEC_H
#define QEL_CALENDAR_TEXT_TEXTCODEC_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/lines/CalendarReader.h"
#include "calendar/lines/ContentLine.h"
#include "calendar/rules/RuleText.h"

namespace qel::calendar {

// The library's name for a set that MIME names so ("GB2312", "windows-1252", in either case), ""
// for one that the library does not convert.
[[nodiscard]] const char* libraryCharacterSet(std::string_view set);

// The value's bytes with quoted-printable undone; a Base64 value as it stands. UTF-8 after CHARSET,
// which is taken from the line's parameters; without one, bytes that are UTF-8 are taken as that,
// others as windows-1252. Characters that no text holds (NUL and other controls, except tab and
// line ends) are left out. All that is not as it should be is added to `notes`.
[[nodiscard]] std::string decodedValue(const ContentLine& line, std::vector<Note>& notes);

// True when decodedValue would give the value as it stands: printable ASCII, not encoded.
[[nodiscard]] bool isPlainText(const ContentLine& line);

// A text that names no character set: as it stands when it is UTF-8, else read as windows-1252.
[[nodiscard]] std::string utf8OrWindows1252(std::string text);

// Does the same to the parameters of a line as it was read, or of all lines of a component. CHARSET
// is about the property's value alone.
void decodeParameters(ContentLine& line);
void decodeParameters(Component& component);

// True for the ENCODING values of Base64, as a parameter or by itself.
[[nodiscard]] bool isBase64(const ContentLine& line);

// Base64 text without blanks, whole groups only; nothing when it is not Base64.
[[nodiscard]] std::optional<std::string> cleanBase64(std::string_view text);

// RFC 5545 section 3.3.11.
[[nodiscard]] std::string unescapeICalendar(std::string_view text);
[[nodiscard]] std::string escapeICalendar(std::string_view text);
// Splits at commas that are not escaped, and unescapes each item.
[[nodiscard]] std::vector<std::string> splitICalendarList(std::string_view text);

// vCalendar 1.0 escapes "\;", and phones also "\,". Every other backslash is one.
[[nodiscard]] std::string unescapeVCalendar(std::string_view text);
// Protects the backslashes that unescapeVCalendar would take away, and the `separators` (";", ",")
// that would end a field.
[[nodiscard]] std::string escapeVCalendar(std::string_view text, std::string_view separators);
// Splits at any of `separators` that is not escaped, and unescapes each field.
[[nodiscard]] std::vector<std::string> splitVCalendar(std::string_view text,
                                                      std::string_view separators);

// The quoted-printable form of a UTF-8 text, soft line breaks included, for a line on which
// `startColumn` octets stand already.
[[nodiscard]] std::string quotedPrintable(std::string_view text, std::size_t startColumn);

// The MD5 digest as 32 hexadecimal digits, by the library.
[[nodiscard]] std::string digestOf(const std::string& text);

}  // namespace qel::calendar

#endif
