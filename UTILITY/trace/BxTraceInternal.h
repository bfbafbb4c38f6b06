// What the library's own sources know of the trace beyond its interface (BxTrace.h): the error
// forms that only they use, the load of the settings, and the path of one message from its text to
// the log. Callable from any thread unless a function says otherwise.
#ifndef QEL_TRACE_BXTRACEINTERNAL_H
#define QEL_TRACE_BXTRACEINTERNAL_H

#include <cstdio>

#include "QelUtility/BxTrace.h"

// --- Errors -------------------------------------------------------------------------------------

// "Error <detail1>.<detail2>.<code> at <file> line <line>"; returns the code.
int BxTrace_Error_III(const char* file, int line, int detail1, int detail2, int code);
// "Error <value in hexadecimal>.<detail1>.<detail2>.<code> at ..."; returns the code.
int BxTrace_Error_I64(const char* file, int line, __int64 value, int detail1, int detail2,
                      int code);

// Logs `code` by BxTrace_Error when it is a failure; returns it in any case.
int BxTrace_ErrorIfFailure(const char* file, int line, int detail, int code);

// The code with its low byte set to 1 for a failure and 0 for a success. The codes 0, 2014, 2018,
// 2037 and 2042 are the successes: 2014 gives 0x700, 2015 gives 0x701.
int BxTrace_IsFailureCode(int code);

// The tail of every error function: appends the error ID, when one is set and the line does not
// hold it, writes the line, and flushes the retroactive buffers. Returns the code.
int BxTrace_ReportError(int code, const char* line);

// The error ID: at most 64 characters, appended to every error line as ", ID= <text>". Empty or
// null clears it. The getter copies it to `buffer` (65 bytes hold any) and says whether there is
// one.
void BxTrace_SetErrorID(const char* text);
bool BxTrace_GetErrorID(char* buffer, unsigned long size);

// --- Traces -------------------------------------------------------------------------------------

// "<stamp>: <text>", the text cut at 490 characters; 0 written, -1 not.
int BxTrace_Trace0(const char* text);

// Writes one message, thread by thread and process by process: 0 written, -1 not. A mask with the
// bits 2 or 4 sends it to the SyncML logs.
int BxTrace_Trace000(const char* text, long mask);

// Writes `text` line by line to `stream`, or to the retroactive buffers while they are on. Every
// line gets a prefix; with `noPrefix` the first does not. 0, or -1 when the stream failed.
// REQUIRES: the calling thread holds the writer's mutex, and `stream` comes from OpenLogFile.
int BxTrace_WriteLines(bool noPrefix, const char* text, std::FILE* stream);

// Appends to the retroactive buffers; a text longer than one of them is dropped.
// REQUIRES: the calling thread holds the writer's mutex.
void BxTrace_RetroAppend(const char* text, int length);

// --- Settings and log files ---------------------------------------------------------------------

// Finds the log and the options at the first call; reads the options then, and again when a minute
// has passed or the system's 32-bit millisecond clock has wrapped.
void BxTrace_LoadSettings();
// For hosts that want the load to happen now: does it and returns true.
bool BxTrace_ForceInitialization();

// Makes `name` the log, with ".log" appended where it is missing, and derives the SyncML logs and
// the run directory from it. The options file stays.
void BxTrace_SetLogFileName(const char* name);

// Rotates `path` when its size has reached "MaxFileSize" and returns the rotation's result;
// otherwise -1 when the file has a size, 0 when it has none.
int BxTrace_CheckLogSize(const char* path);

// A stream for the next message: 0, or -1 without one. The stream is null, with a result of 0,
// while messages go to the retroactive buffers alone.
// REQUIRES: the calling thread holds the writer's mutex until it has called BxTrace_CloseLogFile.
int OpenLogFile(std::FILE** stream);

// Ends a message: closes the stream, unless the log is kept open or the stream is null. -1 when
// what was written did not reach the file.
int BxTrace_CloseLogFile(std::FILE* stream);

// Flushes the log that is kept open, if there is one.
void BxTrace_FlushLog();

#endif
