// The file helpers that only the library's own sources use. Callable from any thread.
#ifndef QEL_TRACE_BXFILEUTILINTERNAL_H
#define QEL_TRACE_BXFILEUTILINTERNAL_H

#include <cstdio>

#include "QelUtility/BxFileUtil.h"

// Writes the name of the user log's folder, cut at size - 1 characters: the phone model's
// identifier, or "NVDATA" when the host has none, made safe as a file name. 15133 for a null
// buffer, else 0.
int BxUtil_GetUserLogFolderName(char* buffer, unsigned long& size);

// Writes a whole file, in place of what it held. 0; 2005 when it cannot be created; 2008 when not
// all could be written, as on a full disk. Both are logged with errno. After a short write the
// stream is left open: closing it would try the write again, and errno would tell of that.
int BxFile_SaveFile(const char* path, const void* data, unsigned long size);

// 0, or 2009 logged with errno.
int BxFile_DeleteFile(const char* path);

// Copies `from` over `to`; -1 on any failure, and 0. With `keepExisting` an existing `to` is a
// failure. `from` is read before `to` is removed, so that a source that cannot be read costs
// nothing and a file can be copied onto itself. A copy that could be written in part only is a
// failure, and its reason is in the log.
int BxFile_CopyFile(const char* from, const char* to, bool keepExisting);

// The stream's length, its position kept; all bits set when it has none.
unsigned long BxFile_GetFileSize(std::FILE* stream);
// The file's size; all bits set when it cannot be examined.
unsigned long BxFile_GetPathSize(const char* path);

#endif
