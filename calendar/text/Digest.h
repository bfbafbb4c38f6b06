// A short name for a text. Any thread.
#ifndef QEL_CALENDAR_TEXT_DIGEST_H
#define QEL_CALENDAR_TEXT_DIGEST_H

#include <string>

namespace qel::calendar {

// The MD5 digest as 32 hexadecimal digits.
[[nodiscard]] std::string digestOf(const std::string& text);

}  // namespace qel::calendar

#endif
