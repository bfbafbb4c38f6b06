// Text from the character sets that QelUtility converts. Any thread.
#ifndef QEL_CALENDAR_TEXT_LIBRARYSETS_H
#define QEL_CALENDAR_TEXT_LIBRARYSETS_H

#include <string>
#include <string_view>

namespace qel::calendar {

// U+FFFD, which replaces bytes that are invalid in their character set.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// QelUtility's name for a character set with this MIME name ("GB2312", "windows-1252", in either
// case); "" for a set that QelUtility does not convert.
[[nodiscard]] const char* libraryCharacterSet(std::string_view set);

// The text in UTF-8; each invalid byte becomes U+FFFD. `set` is a name of QelUtility's.
[[nodiscard]] std::string fromLibrarySet(std::string_view text, const char* set);
[[nodiscard]] std::string fromWindows1252(std::string_view text);

// A text whose character set is not known: unchanged when it is valid UTF-8, otherwise read as
// windows-1252.
[[nodiscard]] std::string utf8OrWindows1252(std::string text);

}  // namespace qel::calendar

#endif
