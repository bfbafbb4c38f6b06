// Quoted-printable and Base64, by QelUtility. Any thread.
#ifndef QEL_CALENDAR_TEXT_TRANSFERENCODINGS_H
#define QEL_CALENDAR_TEXT_TRANSFERENCODINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qel::calendar {

enum class TransferEncoding { None, QuotedPrintable, Base64 };

// Bytes that cannot be decoded are returned unchanged.
[[nodiscard]] std::string undoQuotedPrintable(std::string_view text);
// Nothing when the text is not Base64. Blanks in it are ignored.
[[nodiscard]] std::optional<std::string> undoBase64(std::string_view text);

// Base64 text without blanks, whole groups only; nothing when it is not Base64.
[[nodiscard]] std::optional<std::string> cleanBase64(std::string_view text);

// The quoted-printable form of a UTF-8 text, soft line breaks included, for a line that already has
// `startColumn` octets.
[[nodiscard]] std::string quotedPrintable(std::string_view text, std::size_t startColumn);

}  // namespace qel::calendar

#endif
