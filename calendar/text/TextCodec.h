// The bytes of a value as UTF-8 text. Any thread.
#ifndef QEL_CALENDAR_TEXT_TEXTCODEC_H
#define QEL_CALENDAR_TEXT_TEXTCODEC_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/text/TransferEncodings.h"

namespace qel::calendar {

// Undoes the transfer encoding, then reads the bytes in the character set with the MIME name `set`
// as toUtf8 does. Line ends become LF; other control characters except tab are removed. A value
// that should be Base64 but is not is used unchanged. `notes` receives what was guessed or invalid,
// without a line number.
[[nodiscard]] std::string decodedText(std::string_view bytes, TransferEncoding encoding,
                                      std::string_view set, std::string_view unlabelled,
                                      std::vector<Note>& notes);

// The same for bytes without an encoding and a named set, when nobody needs the notes.
[[nodiscard]] std::string decodedText(std::string_view bytes);

}  // namespace qel::calendar

#endif
