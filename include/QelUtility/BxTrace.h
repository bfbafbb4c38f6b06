/// @file
/// The trace and error log that every module writes to: the error functions, which log one line and
/// hand back the code they were given; the traces, filtered by level or by option mask; the options
/// file behind them; and the log with its numbered backups. Callable from any thread. No function
/// here throws, and none fails towards its caller: a message that cannot be written is dropped.
///
/// Where the log is: the environment variable BX_ERR_LOG_FILE_PATH, else BxTrace.log in the user's
/// profile directory (BxHost.h). Where the options are: BX_OPTIONS_FILE_PATH, else BxOptions.opt
/// beside the log. Both are settled by the first call that loads the settings; the options are read
/// again at most once a minute.
#ifndef QELUTILITY_BXTRACE_H
#define QELUTILITY_BXTRACE_H

#include "QelUtility/QelTypes.h"

/// Bits of the option "TracingOptions" that the trace itself looks at. A trace with an option mask
/// is written when mask and option have a bit in common.
#ifdef __cplusplus
enum BxTraceOption : unsigned long {
    BXTRACE_SHOW_FAILURES = 0x80000000,  ///< a message box when a message cannot be written
#else
enum BxTraceOption {
#endif
    BXTRACE_DEFAULT = 0x00000001,            ///< the option's default
    BXTRACE_SYNCML_INPUT = 0x00000002,       ///< goes to SyncML_Input.log beside the main log
    BXTRACE_SYNCML_OUTPUT = 0x00000004,      ///< goes to SyncML_Output.log beside the main log
    BXTRACE_SYNCML_IN_MAIN_LOG = 0x08000000  ///< SyncML documents go to the main log instead
};

#ifdef __cplusplus

/// @name Errors
/// Each writes one line and returns `code`. `file` and `line` name the place in the source (at most
/// 256 characters of the name are kept). Texts are cut at 350 characters; a null text is shown as
/// "(null)". A `long` counts as 32 bits on every platform. Every line begins with a prefix (thread,
/// time stamp) and a second stamp. `BxTrace_Error("RptNext", 12, 5, 2001)` writes
///
///     [1A2C] 06/15 14:02:11.123 001: 06/15 14:02:11.123 000: Error 5.2001 at RptNext line 12
/// @{

/// "Error <detail>.<code> at <file> line <line>"
QELUTILITY_API int BxTrace_Error(const char* file, int line, int detail, int code);
/// "Error 0x<detail in hexadecimal>.<detail>.<code> at ..."
QELUTILITY_API int BxTrace_Error_L(const char* file, int line, long detail, int code);
/// "Error <text>.<code> at ..."
QELUTILITY_API int BxTrace_Error_S(const char* file, int line, const char* text, int code);
/// "Error <text1>.<text2>.<code> at ..."
QELUTILITY_API int BxTrace_Error_SS(const char* file, int line, const char* text1,
                                    const char* text2, int code);
/// "Error <text>.<detail>.<code> at ..."
QELUTILITY_API int BxTrace_Error_SL(const char* file, int line, const char* text, long detail,
                                    int code);
/// "Error <text1>.<text2>.<detail>.<code> at ..."
QELUTILITY_API int BxTrace_Error_SSL(const char* file, int line, const char* text1,
                                     const char* text2, long detail, int code);
/// "Error <text>.<value in hexadecimal>.<detail>.<code> at ..."
QELUTILITY_API int BxTrace_Error_SI64L(const char* file, int line, const char* text, __int64 value,
                                       long detail, int code);
/// @}

/// @name Traces
/// Formats are those of printf, with `%I64d` and its like on every platform. A formatted text holds
/// at most 99,999 characters and is cut there. A text may have several lines, each of which gets
/// its own prefix; a final line end is added where it is missing. 0 means written and -1 not
/// written.
/// @{

/// Writes the text as it stands.
QELUTILITY_API int BxTrace_Trace00(const char* text);
/// "<stamp>: <text> at <file> line <line>", the text cut at 190 characters.
QELUTILITY_API int BxTrace_Trace1(const char* file, int line, const char* text);
/// Writes the formatted text.
QELUTILITY_API int BxTrace_Tracef(const char* format, ...) QELUTILITY_PRINTF(1, 2);
/// Written when the option "VTraceVerbosity" is at least `level`; otherwise returns the verbosity.
QELUTILITY_API int BxTrace_VTrace(int level, const char* format, ...) QELUTILITY_PRINTF(2, 3);
/// The same; both are safe on any thread.
QELUTILITY_API int BxTrace_VTrace_TS(int level, const char* format, ...) QELUTILITY_PRINTF(2, 3);
/// Written when "TracingOptions" and `mask` (32 bits) have a bit in common; otherwise returns 0.
QELUTILITY_API int BxTrace_OTrace_TS(long mask, const char* format, ...) QELUTILITY_PRINTF(2, 3);
/// @}

/// Writes what the retroactive buffers hold into the log and empties them. Does nothing unless the
/// option "RetroactiveTracingBufferSize" is above 0. Every reported error does this by itself.
QELUTILITY_API void BxTrace_FlushRetroBuffers();

// --- Log files ----------------------------------------------------------------------------------

/// Rotates the log away by BxTrace_BackupLogFile, unless the option "KeepLogFiles" is non-zero (its
/// default), in which case it returns 0 and does nothing.
QELUTILITY_API int BxTrace_ErrorLogDelete();

/// Rotates the log, when it exists, keeping "MaxBackupCount" backups: 0 deletes it outright.
/// Returns the result of the rotation, 0 when there is no log.
QELUTILITY_API int BxTrace_BackupLogFile();

/// Rotates `path` (null: the log) into numbered backups. With a count of 3, BxTrace.bk2 is removed,
/// .bk1 becomes .bk2, .bk0 becomes .bk1 and BxTrace.log becomes BxTrace.bk0: the extension is
/// replaced, and the digit is hexadecimal, so that the 16 backups that a count is capped at end at
/// .bkf. A count of 0 or less keeps no backup and deletes the file. A backup that cannot be removed
/// makes the rename onto it fail; the live file is then deleted all the same, because a log that
/// cannot be rotated must not grow for ever.
/// Returns -1, with nothing touched, when the file's name has no ".", when the path is longer than
/// 511 characters, or when the log could not be locked for 200 ms; else the result of the last
/// remove or rename (0 or -1), 0 when there was nothing to do.
QELUTILITY_API int BxTrace_MusicalBackups(const char* path, int count);

/// The options file's path as it stands, empty before the first load. The text behind the pointer
/// is the library's, is valid for ever and never changes: ask again after a load.
QELUTILITY_API char* BxTrace_GetOptionsFilePath();

/// @name Options
/// The options file is an INI file; the trace's own keys are in the section "LogSettings". Failures
/// to read or write it are ignored.
/// @{

/// Reads a decimal value. When the key is missing or empty, `value` stays as it is and is written
/// to the file, which so fills itself with the defaults in use; where another process fills in the
/// same key at the same time, the value that is in the file then counts for both. Values beyond 32
/// bits saturate.
QELUTILITY_API void BxTrace_GetOptionValue(const char* section, const char* key, int& value);
/// The same in hexadecimal, with or without "0x".
QELUTILITY_API void BxTrace_GetHexOptionValue(const char* section, const char* key, int& value);
/// Writes a decimal value.
QELUTILITY_API void BxTrace_SetOptionValue(const char* section, const char* key, int value);
/// Writes a value in lower-case hexadecimal without a prefix.
QELUTILITY_API void BxTrace_SetHexOptionValue(const char* section, const char* key, int value);

/// Loads the settings and returns the option "TracingOptions" (32 bits, sign-extended).
QELUTILITY_API long BxTrace_GetTracingOptions();
/// @}

// --- With C linkage ---------------------------------------------------------------------------

extern "C" {
#endif  // __cplusplus

/// The log's path as it stands, empty before the first load. The text behind the pointer is the
/// library's, is valid for ever and never changes: ask again after a load.
QELUTILITY_API char* QELUTILITY_CALL BxTrace_GetLogFilePath(void);

/// The log's directory with its trailing separator; empty when the log's path names none. Loads the
/// settings first.
QELUTILITY_API char* QELUTILITY_CALL BxTrace_GetRunDirWithTrailingBackslash(void);

/// Writes a hexadecimal dump of the first 2048 bytes, 16 a line, as one trace with `mask`.
QELUTILITY_API void QELUTILITY_CALL BxTrace_WriteHex(long mask, const unsigned char* data,
                                                     unsigned long length);

#ifdef __cplusplus
}
#endif

#endif
