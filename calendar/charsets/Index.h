// The tables of the character sets of several bytes: the indexes of the WHATWG Encoding Standard.
// Any thread.
#ifndef QEL_CALENDAR_CHARSETS_INDEX_H
#define QEL_CALENDAR_CHARSETS_INDEX_H

namespace qel::calendar {

// The character at a pointer of each index, as the standard counts them; 0 for a pointer without
// one.
[[nodiscard]] char32_t jis0208(unsigned pointer);
[[nodiscard]] char32_t jis0212(unsigned pointer);
[[nodiscard]] char32_t gb18030(unsigned pointer);
[[nodiscard]] char32_t eucKr(unsigned pointer);
[[nodiscard]] char32_t big5(unsigned pointer);

// The character of a sequence of four bytes in gb18030.
[[nodiscard]] char32_t gb18030Range(unsigned pointer);

}  // namespace qel::calendar

#endif
