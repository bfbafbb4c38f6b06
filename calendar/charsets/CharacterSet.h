// Character sets by name, and text in them as UTF-8. Names mean what the WHATWG Encoding Standard
// says they mean, and the bytes mean the same on every system. Any thread.
#ifndef QEL_CALENDAR_CHARSETS_CHARACTERSET_H
#define QEL_CALENDAR_CHARSETS_CHARACTERSET_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::calendar {

// U+FFFD, which replaces bytes that are invalid in their character set.
inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct CharacterSet;

// The set of that name; null for one that is unknown. Letters count in either case, and the
// punctuation between them counts for nothing: "Shift_JIS", "shift-jis", "SJIS", "CP932", "932".
[[nodiscard]] const CharacterSet* findCharacterSet(std::string_view name);

// The usual name: "Shift_JIS".
[[nodiscard]] std::string_view nameOf(const CharacterSet& set);

// True when bytes below 0x80 need not be ASCII, in sets that switch by escapes or have wide units.
[[nodiscard]] bool changesAscii(const CharacterSet& set);

// True when each byte is a character.
[[nodiscard]] bool isSingleByte(const CharacterSet& set);

// Appends the text in UTF-8. Each invalid sequence becomes one U+FFFD, and an ASCII byte that
// follows a lead byte by mistake is kept. Returns the number of invalid sequences.
std::size_t decode(const CharacterSet& set, std::string_view bytes, std::string& text);

}  // namespace qel::calendar

#endif
