/// @file
/// What every header of the interface builds on: the export macro, the calling convention, the few
/// platform types and the result codes. Includes nothing of the library; usable from any thread.
#ifndef QELUTILITY_QELTYPES_H
#define QELUTILITY_QELTYPES_H

/// @def QELUTILITY_API
/// Marks what the shared library exports. QELUTILITY_BUILDING is defined while the library itself
/// is compiled, QELUTILITY_STATIC by programs that link its objects directly.
/// @def QELUTILITY_LOCAL
/// Takes a private member of an exported class out of it again; a Windows library exports a class
/// only as a whole.
/// @def QELUTILITY_CALL
/// The calling convention of functions with C linkage: `__cdecl` on Windows.
/// @def QELUTILITY_STDCALL
/// The calling convention of IRepeat and CRepeatConversion: `__stdcall` on Windows.
#if defined(_WIN32)
#include <stdint.h>  // spells __int64 where the compiler does not know it
#if defined(QELUTILITY_BUILDING)
#define QELUTILITY_API __declspec(dllexport)
#elif defined(QELUTILITY_STATIC)
#define QELUTILITY_API
#else
#define QELUTILITY_API __declspec(dllimport)
#endif
#define QELUTILITY_LOCAL
#define QELUTILITY_CALL __cdecl
#define QELUTILITY_STDCALL __stdcall
#else
#define QELUTILITY_API __attribute__((visibility("default")))
#define QELUTILITY_LOCAL __attribute__((visibility("hidden")))
#define QELUTILITY_CALL
#define QELUTILITY_STDCALL
/// The interface speaks of __int64 on every platform; `long` and `long long` stay distinct types.
typedef long long __int64;
#endif

/// @def QELUTILITY_PRINTF
/// Has the compiler hold the arguments from number `first` on against the format, which is number
/// `text`; a member function's own object is number 1. Not on Windows, whose compilers spell the
/// sizes of integers in several ways. Compilers elsewhere do not know `%I64d`, which these
/// functions take on every platform: define QELUTILITY_UNCHECKED_FORMATS where it is used.
#if defined(__GNUC__) && !defined(_WIN32) && !defined(QELUTILITY_UNCHECKED_FORMATS)
#define QELUTILITY_PRINTF(text, first) __attribute__((__format__(__printf__, text, first)))
#else
#define QELUTILITY_PRINTF(text, first)
#endif

/// @def QELUTILITY_REF
/// A reference parameter of a function with C linkage; C hands over the object's address.
#ifdef __cplusplus
#define QELUTILITY_REF(type) type&
#else
#define QELUTILITY_REF(type) type*
#endif

/// Result codes: a signed 32-bit integer, 0 for success. A function's own comment says which of
/// them it returns; codes that are not listed here belong to one family alone.
enum QelResult {
    QEL_OK = 0,                     ///< done
    QEL_FAILED = -1,                ///< not done; the function says what that means
    QEL_OUT_OF_MEMORY = 2001,       ///< out of memory, or a bad size
    QEL_CANNOT_OPEN = 2005,         ///< a file cannot be opened or created
    QEL_SHORT_READ = 2007,          ///< fewer bytes were read than the file holds
    QEL_SHORT_WRITE = 2008,         ///< fewer bytes were written than asked for
    QEL_CANNOT_DELETE = 2009,       ///< a file cannot be deleted
    QEL_STORAGE_NOT_OWNED = 2013,   ///< external storage cannot grow
    QEL_MALFORMED = 2015,           ///< malformed text or number
    QEL_END_OF_INPUT = 2018,        ///< no more input; never counted as a failure
    QEL_OUTPUT_TOO_SMALL = 2021,    ///< the caller's buffer cannot hold the result
    QEL_READ_PAST_END = 2023,       ///< a read past the end of a stream
    QEL_NOT_INITIALIZED = 2024,     ///< not initialised, or an invalid argument
    QEL_RULE_INEXPRESSIBLE = 2105,  ///< a rule part that a repeat record cannot hold
    QEL_RULE_UNSUPPORTED = 2106,    ///< a frequency or rule part that is not supported
    QEL_REPEAT_ENGINE = 4008        ///< the repeat engine failed
};

#endif
