// Small helpers for text that is shown to a person or written as JSON. Any thread.
#ifndef QEL_CALENDAR_BASE_TEXT_H
#define QEL_CALENDAR_BASE_TEXT_H

#include <string>
#include <string_view>

namespace qel::calendar {

// The length of the UTF-8 character at the start of `text` (1..4), or 0 when the bytes there are no
// character: stray or cut-off bytes, overlong forms, surrogates, beyond U+10FFFF. REQUIRES: text is
// not empty.
[[nodiscard]] std::size_t utf8CharacterLength(std::string_view text);

[[nodiscard]] bool isUtf8(std::string_view text);

// Appends a character. REQUIRES: a code point, not a surrogate.
void appendUtf8(std::string& text, char32_t code);

// The text with control characters, those that turn the direction of text, and bytes that are not
// UTF-8 written as \n, \r, \t or \xNN, so that no input can steer the terminal or make text look
// like another; a very long text is cut and ends in "...".
[[nodiscard]] std::string printable(std::string_view text, std::size_t longest = 4096);

}  // namespace qel::calendar

#endif
