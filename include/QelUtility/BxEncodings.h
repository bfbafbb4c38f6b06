/// @file
/// Small stateless codecs: Base64, the MD5 digest of a text, and an enciphered hexadecimal code for
/// short texts. Plain C buffers, owned by the caller; re-entrant, any thread may call. They log
/// nothing.
#ifndef QELUTILITY_BXENCODINGS_H
#define QELUTILITY_BXENCODINGS_H

#include "QelUtility/QelTypes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Results of the ZQUT_ functions beside 0.
enum ZqutResult {
    ZQUT_MALFORMED = 7013,        ///< not a whole number of blocks, or not hexadecimal
    ZQUT_OUTPUT_TOO_SMALL = 7014  ///< `out` cannot hold the result
};

/// Base64 (RFC 2045 §6.8) without line breaks, and a terminator. The length of the text, terminator
/// not counted, or -1 when `dst` cannot hold both; `dst` then keeps the groups that fitted.
/// srcLength bytes need 4 * ((srcLength + 2) / 3) + 1.
QELUTILITY_API int QELUTILITY_CALL Bx_Base64_Encode(const unsigned char* src,
                                                    unsigned int srcLength, char* dst,
                                                    unsigned int dstSize);

/// The bytes of a Base64 text: their number, or -1 for malformed text or a `dst` that is too small
/// (`dst` then keeps what was written). White space is allowed anywhere. Padding must be complete
/// and the bits that it leaves over zero. While decoding, the byte after the last one is touched
/// too: "TQ==" is 1 byte and needs room for 2, "TWE=" is 2 and needs 3. With a null `dst` the
/// length alone is computed, and left-over bits are ignored.
QELUTILITY_API int QELUTILITY_CALL Bx_Base64_Decode(const char* src, unsigned char* dst,
                                                    unsigned int dstSize);

/// The MD5 digest (RFC 1321) of the text up to its terminator, as 32 lower-case hexadecimal digits
/// and a NUL, in `out`, which has room for 33 bytes. `out`; it holds an empty text when the
/// cryptographic library refuses MD5. A null text counts as empty; a null `out` gives null.
/// MD5String("") is "d41d8cd98f00b204e9800998ecf8427e".
QELUTILITY_API const char* QELUTILITY_CALL MD5String(const char* text, char* out);

/// Enciphers a text: 16 lower-case hexadecimal digits for each 8 characters or part of them.
/// 0, or ZQUT_OUTPUT_TOO_SMALL when outSize is below the number of digits (`out` stays as it was).
/// `out` is cleared over all of outSize. The digits are always terminated: with outSize equal to
/// their number the NUL is written to out[outSize], for which the caller has room. With outSize 0
/// an empty text writes nothing. A null text counts as empty.
///
/// The code is for texts whose enciphered blocks hold no zero byte: such a block, about one in
/// forty, will not decode to its text. The cipher is no protection against anyone who has this
/// library.
QELUTILITY_API int QELUTILITY_CALL ZQUT_EncodeToString(const char* text, char* out, int outSize);

/// Deciphers it. 0, ZQUT_MALFORMED or ZQUT_OUTPUT_TOO_SMALL, when outSize is below half the digits.
/// `out` receives the text with its zero padding, which ends it as a C string unless it fills
/// `out`; the rest of outSize is cleared, and all of it on failure, except for a length that is no
/// multiple of 8. Digits of both cases are read. `out` may be the text itself. A null text is
/// malformed.
QELUTILITY_API int QELUTILITY_CALL ZQUT_DecodeFromString(const char* hex, void* out,
                                                         unsigned int outSize);

#ifdef __cplusplus
}
#endif

#endif
