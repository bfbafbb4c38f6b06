/// @file
/// Quoted-printable (RFC 2045 §6.7), as vCalendar 1.0 and vCard 2.1 values and mail bodies use it.
/// Plain C buffers with sizes, NUL bytes inside them allowed; the caller owns every buffer. The
/// functions keep no state: any thread may call them at any time.
///
/// All three report the exact length of the result in `*resultLength` (may be null) before they
/// write, also when the result does not fit, and return
/// - 0: done; with a null `out` only the length was computed;
/// - QEL_OUTPUT_TOO_SMALL: outSize is below `*resultLength` + 1; nothing was written;
/// - QEL_NOT_INITIALIZED: `text` is null and length is not 0; `*resultLength` is 0;
/// - QEL_OUT_OF_MEMORY: the result would be longer than a size_t can say; `*resultLength` is 0.
///
/// A result in `out` is followed by a NUL that `*resultLength` does not count. They log nothing.
#ifndef QELUTILITY_BXQUOTEDPRINTABLE_H
#define QELUTILITY_BXQUOTEDPRINTABLE_H

#include <stddef.h>

#include "QelUtility/QelTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Encodes a property value. Line breaks are data here: CR and LF become =0D and =0A, so that the
/// whole result is one logical line. `startColumn` is the number of characters that are already
/// on the line, the property's name and parameters: every line, the first included, ends within 76
/// characters, if need be by a soft line break ("=" CR LF) at once; where there are 76 or more
/// already, that break's "=" is the only character added.
///
/// Literal are the printable ASCII characters except "=", and blanks and tabs that end no line and
/// begin none after a soft break (a reader that unfolds lines first would swallow them there).
/// Hexadecimal digits are capitals. No soft break falls inside a UTF-8 character or between the =0D
/// and =0A of one line break. `out` must not overlap `text`.
///
/// "Caf\xC3\xA9 = 1\r\n" from column 0 gives "Caf=C3=A9 =3D 1=0D=0A".
QELUTILITY_API int QELUTILITY_CALL encodeQP(const char* text, size_t length, size_t startColumn,
                                            char* out, size_t outSize, size_t* resultLength);

/// Encodes a text body: as encodeQP from column 0, except that a line break of the text (CR LF, or
/// LF alone) becomes a line break of the result (CR LF). A CR without LF is data, =0D.
QELUTILITY_API int QELUTILITY_CALL encodeQuotedPrintable(const char* text, size_t length, char* out,
                                                         size_t outSize, size_t* resultLength);

/// Decodes either form. No input is an error: "=" with two hexadecimal digits of either case is a
/// byte; "=" with any blanks and tabs before a line break (CR LF, LF or CR) is a soft break and
/// disappears; any other "=", one that the end of the text cuts off included, is kept unchanged,
/// and so is every other byte. Blanks and tabs before a hard line break are transport padding and
/// disappear; at the end of the text they stay. The result is never longer than the text, and `out`
/// may be `text` itself.
///
/// "a=3db=\r\nc=4" gives "a=bc=4".
QELUTILITY_API int QELUTILITY_CALL decodeQP(const char* text, size_t length, char* out,
                                            size_t outSize, size_t* resultLength);

#ifdef __cplusplus
}
#endif

#endif
