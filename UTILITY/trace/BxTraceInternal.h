// Functions of the trace that are not exported: the error forms and settings that no caller outside
// the library can reach. Callable from any thread.
#ifndef QEL_TRACE_BXTRACEINTERNAL_H
#define QEL_TRACE_BXTRACEINTERNAL_H

#include "QelUtility/BxTrace.h"

namespace qel::trace {

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

// The error ID: at most 64 characters, appended to every error line as ", ID= <text>". Empty or
// null clears it. The getter copies it to `buffer` (65 bytes hold any) and returns whether there is
// one.
void BxTrace_SetErrorID(const char* text);
bool BxTrace_GetErrorID(char* buffer, unsigned long size);

// "<stamp>: <text>", the text cut at 490 characters; 0 written, -1 not.
int BxTrace_Trace0(const char* text);

// For hosts that want the settings to be loaded now: does it and returns true.
bool BxTrace_ForceInitialization();

// Makes `name` the log, with ".log" appended where it is missing.
void BxTrace_SetLogFileName(const char* name);

// Flushes the log that is kept open, if there is one.
void BxTrace_FlushLog();

}  // namespace qel::trace

#endif
