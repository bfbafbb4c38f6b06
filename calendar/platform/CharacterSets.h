// Character sets that QelUtility does not convert, read by the operating system. Any thread.
#ifndef QEL_CALENDAR_PLATFORM_CHARACTERSETS_H
#define QEL_CALENDAR_PLATFORM_CHARACTERSETS_H

#include <optional>
#include <string>
#include <string_view>

namespace qel::calendar::platform {

// The text in UTF-8; invalid bytes become U+FFFD. Nothing when the system does not know the set.
// `name` is an IANA name as MIME writes it: "Shift_JIS", "ISO-8859-2", "EUC-KR", "KOI8-R",
// "macintosh", in either case.
[[nodiscard]] std::optional<std::string> toUtf8(std::string_view text, std::string_view name);

}  // namespace qel::calendar::platform

#endif
