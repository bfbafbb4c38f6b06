/// @file
/// Durations as texts (RFC 2445 section 4.3.6), "+P1DT2H", and as signed seconds. Plain C functions
/// without state; callable from any thread. A null text counts as an empty one.
#ifndef QELUTILITY_ZQDURATION_H
#define QELUTILITY_ZQDURATION_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Sets `out` to the duration of a number of seconds, its sign always written: 93600 is "+P1DT2H",
/// -87300 is "-P1DT15M". Weeks, days, hours, minutes and seconds are written where they are not 0.
/// Returns 0; -1, with `out` unchanged, for no seconds.
QELUTILITY_API int QELUTILITY_CALL ZQ_SecondsToDuration(int seconds, QELUTILITY_REF(VStr) out);

/// Reads a duration: an optional sign, the letter P, then numbers with the units W, D, H, M, S in
/// any order; the letter T is not required, and M always means minutes. Returns 0 with the seconds
/// in `*seconds`, which may be null, or -1 with `*seconds` unchanged when the P is missing. Digits
/// after the last unit are ignored ("P5" is 0), a unit right after a unit ends the reading, and a
/// unit without digits adds nothing. A total beyond 32 bits is held at their limits.
QELUTILITY_API int QELUTILITY_CALL ZQ_DurationToSeconds(const char* duration, int* seconds);

/// Sets `out` to the duration between two date-time texts (ZQDateTime.h). Returns 0; -1, with `out`
/// unchanged, when they are the same time.
QELUTILITY_API int QELUTILITY_CALL ZQ_DurationBetween(const char* start, const char* end,
                                                      QELUTILITY_REF(VStr) out);

/// Sets `out` to the same duration in the form of ZQ_SecondsToDuration: "PT26H" becomes "+P1DT2H".
/// Returns 0; -1, with `out` unchanged, when the duration cannot be read or is 0.
QELUTILITY_API int QELUTILITY_CALL ZQ_NormalizeDuration(const char* duration,
                                                        QELUTILITY_REF(VStr) out);

/// Appends the date-time text that lies a duration after `text` to `out`, as ZQ_AddSeconds does.
/// Returns 0; -1, with `out` unchanged, when the duration cannot be read.
QELUTILITY_API int QELUTILITY_CALL ZQ_AddDuration(const char* text, const char* duration,
                                                  QELUTILITY_REF(VStr) out);

#ifdef __cplusplus
}
#endif

#endif
