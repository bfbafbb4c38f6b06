/// @file
/// Helpers for the header lines of SyncML mail and of vCard and vCalendar bodies: where a folded
/// line ends, and the boundary in a Content-Type value. They read NUL-terminated text in place and
/// do not change it; no state, any thread may call. They log nothing.
#ifndef QELUTILITY_BXMIME_H
#define QELUTILITY_BXMIME_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The end of the logical line (folding as in RFC 2445 section 4.1) that begins at `text`: its line
/// break, or the text's NUL. `*next` (a null `next` is tolerated) receives where the following line
/// begins. A line break before a space or a tab folds the line rather than ending it. A null or
/// empty text gives itself.
///
/// The first line break is the first CR of the whole text, and the first LF only where there is no
/// CR at all: text that mixes LF and CR LF is measured from its first CR. In text with LF alone the
/// end of a folded line is reported one character past its LF, that of an unfolded line at the LF.
///
/// "A: b\r\n c\r\nD: e" gives the second CR, and the D as next.
QELUTILITY_API char* QELUTILITY_CALL GetFoldedLineEnd(char* text, char** next);

/// The boundary (RFC 2046 section 5.1.1) of a "multipart/...; boundary=..." value, in `out` and as
/// its text. Null, with `out` unchanged, for any other value: another type than "multipart", no
/// ";", or a parameter before the boundary whose name is not eight characters long. Names are
/// compared without regard to case.
///
/// The boundary runs to the end of the folded line or to the first double quote, tab, CR or LF; a
/// blank or ";" does not end it, so "boundary=a; x=y" gives "a; x=y". A quote before the value is
/// dropped; white space before a value without quotes is kept. White space after the "=" that runs
/// past the end of the line gives an empty boundary. `value` may be out's own text.
QELUTILITY_API const char* QELUTILITY_CALL GetMIMEDelimiter(char* value, QELUTILITY_REF(VStr) out);

#ifdef __cplusplus
}
#endif

#endif
