// The text of a content line's value, decoded as the line's parameters require. Any thread.
#ifndef QEL_CALENDAR_TEXT_CONTENTVALUE_H
#define QEL_CALENDAR_TEXT_CONTENTVALUE_H

#include <string>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/lines/ContentLine.h"

namespace qel::calendar {

// The value as decodedText reads it, with the line's ENCODING (also as a bare word) and CHARSET.
// Each note names the line's property and number.
[[nodiscard]] std::string decodedValue(const ContentLine& line, std::vector<Note>& notes);

// True when decodedValue would not change the value: printable ASCII, not encoded.
[[nodiscard]] bool isPlainText(const ContentLine& line);

// True when the value is quoted-printable, or a parameter is a bare word: the ways of
// vCalendar 1.0.
[[nodiscard]] bool isEncoded(const ContentLine& line);

// True when the value is Base64: an ENCODING of BASE64 or B, also as a bare word.
[[nodiscard]] bool isBase64(const ContentLine& line);

// Makes UTF-8 of the parameter values of a line as it was read, or of all lines of a component:
// what is not UTF-8 is read as windows-1252. CHARSET is about the property's value alone.
void decodeParameters(ContentLine& line);
void decodeParameters(Component& component);

}  // namespace qel::calendar

#endif
