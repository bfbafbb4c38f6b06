// The text of a content line's value, decoded as the line's parameters require. Any thread.
#ifndef QEL_CALENDAR_TEXT_CONTENTVALUE_H
#define QEL_CALENDAR_TEXT_CONTENTVALUE_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/lines/CalendarReader.h"
#include "calendar/lines/ContentLine.h"

namespace qel::calendar {

// The value as decodedText reads it, with the line's ENCODING (also as a bare word) and CHARSET.
// Without CHARSET it is in `unlabelled`, as toUtf8 has it. Each note names the line's property and
// number.
[[nodiscard]] std::string decodedValue(const ContentLine& line, std::string_view unlabelled,
                                       std::vector<Note>& notes);

// The bytes of a text that names no character set and is not UTF-8; "" for any other value.
[[nodiscard]] std::string unlabelledText(const ContentLine& line);

// True when decodedValue would not change the value: printable ASCII, not encoded.
[[nodiscard]] bool isPlainText(const ContentLine& line);

// True when the value is quoted-printable, or a parameter is a bare word: the ways of
// vCalendar 1.0.
[[nodiscard]] bool isEncoded(const ContentLine& line);

// True when the value is Base64: an ENCODING of BASE64 or B, also as a bare word.
[[nodiscard]] bool isBase64(const ContentLine& line);

// Bytes that are no text: Base64 of what has control characters, or is in no known character set.
[[nodiscard]] bool isBinary(const ContentLine& line, std::string_view unlabelled);

// Makes UTF-8 of the parameter values of a line as it was read, or of all lines of a component:
// what is not UTF-8 is in the line's CHARSET, without one in `unlabelled`, as toUtf8 has it.
void decodeParameters(ContentLine& line, std::string_view unlabelled);
void decodeParameters(Component& component, std::string_view unlabelled);

}  // namespace qel::calendar

#endif
