/// @file
/// What the library asks of the program it lives in: the user's profile directory, the current
/// phone model, the registry root and the brand strings. Each has a default of its own; the host
/// replaces what it knows better, before other threads call into the library. All functions may be
/// called from any thread.
#ifndef QELUTILITY_BXHOST_H
#define QELUTILITY_BXHOST_H

#include "QelUtility/QelTypes.h"

/// Fills `buffer` (of `size` bytes, the terminator included) and returns true, or returns false.
typedef bool (*BxHostTextSource)(char* buffer, unsigned long size);

/// The directory for this user's logs and options, without a trailing separator. The default is
/// "QelUtility" below the roaming application-data folder on Windows, below $XDG_STATE_HOME (or
/// ~/.local/state) elsewhere, created for the user alone when missing. False when there is none,
/// when it cannot be created or when it does not fit; `buffer` then holds an empty text.
QELUTILITY_API bool GetProfileDirectoryWithUserName(char* buffer, unsigned long size);

/// The identifier of the phone model in use. By default the host has none: false, and an empty
/// text.
QELUTILITY_API bool GetCurrentModelID(char* buffer, unsigned long size);

///@{
/// Replaces the source of either; null brings the default back. The library calls a source on the
/// thread that needs it, possibly on several at once; it must not call back, and throwing counts as
/// false.
QELUTILITY_API void BxHost_SetProfileDirectorySource(BxHostTextSource source);
QELUTILITY_API void BxHost_SetModelIDSource(BxHostTextSource source);
///@}

/// The brand strings, with their defaults.
enum BxHostString : int {
    BXHOST_COMPANY,              ///< "Halverd"
    BXHOST_PRODUCT,              ///< "Linkup"
    BXHOST_MESSAGE_TITLE,        ///< "Norvale", the title of the trace's message boxes
    BXHOST_IR_TRANSPORT_NAME,    ///< the infrared transport's display name: empty
    BXHOST_IR_TRANSPORT_GUIDS,   ///< its interface identifiers, separated by ","
    BXHOST_USB_TRANSPORT_GUIDS,  ///< the same for USB
    BXHOST_STRING_COUNT          ///< how many there are
};

/// Copies one of the brand strings into `buffer`. False, and an empty text where there is room for
/// one, when `which` is not one of them or the text does not fit.
QELUTILITY_API bool BxHost_GetString(BxHostString which, char* buffer, unsigned long size);

/// Replaces a brand string by a copy of `text` (at most 255 characters are kept); null brings the
/// default back.
QELUTILITY_API void BxHost_SetString(BxHostString which, const char* text);

/// The connector's key below the current user's registry root: "Software\<company>\<product>"
/// unless the host has set another. False when it does not fit.
QELUTILITY_API bool BxHost_GetRegistryRoot(char* buffer, unsigned long size);

/// Replaces the registry root (at most 255 characters are kept); null brings the default back.
QELUTILITY_API void BxHost_SetRegistryRoot(const char* key);

#endif
