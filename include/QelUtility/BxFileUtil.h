/// @file
/// The user's sync log, whole files, and texts made safe for use as file names. Callable from any
/// thread; no function here throws.
#ifndef QELUTILITY_BXFILEUTIL_H
#define QELUTILITY_BXFILEUTIL_H

#include "QelUtility/QelTypes.h"
#include "QelUtility/VStr.h"

#ifdef __cplusplus
/// A copy of `name` in which each ? * : / \ " ' & is replaced by "_": "N:70/x.cfg" gives
/// "N_70_x.cfg". Blanks and dots are kept, so "." and ".." stay what they are. Null gives a null
/// string.
QELUTILITY_API VStr CleanseFilename(const char* name);

extern "C" {
#endif

/// Appends one entry to SyncML.log in the user's profile directory, a short log for people: a
/// separator line, "On 06/15/05 14:02:11", and the message. Reports no failure.
QELUTILITY_API void QELUTILITY_CALL WriteToUserLog(const char* message);

/// Reads a whole file. On success `*data` is a block of `*size` + 1 bytes, the last of them zero,
/// that the caller frees by free(). On failure `*data` is null and `*size` 0:
/// - 2005: the file cannot be opened, or is not a file of bytes (not logged)
/// - 2001: no memory for it (logged with the size)
/// - 2007: fewer bytes could be read than it has (logged with errno)
/// - 2024: an argument is null
QELUTILITY_API int QELUTILITY_CALL BxFile_LoadFile(const char* path, unsigned char** data,
                                                   unsigned long* size);

#ifdef __cplusplus
}
#endif

#endif
