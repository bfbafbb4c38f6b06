/// @file
/// The version of the interface that a caller is compiled against, and the one place where it is
/// written: the build, the packages and `qelutil --version` read it here. Semantic versioning: a
/// new major version breaks callers (and gives the shared library a new name,
/// libQelUtility.so.MAJOR), a new minor version adds to the interface, a new patch only mends.
/// Plain C; usable anywhere.
#ifndef QELUTILITY_QELVERSION_H
#define QELUTILITY_QELVERSION_H

///@{
/// One of the three numbers.
#define QELUTILITY_VERSION_MAJOR 1
#define QELUTILITY_VERSION_MINOR 0
#define QELUTILITY_VERSION_PATCH 0
///@}
/// All three as a text.
#define QELUTILITY_VERSION "1.0.0"

/// One number for comparisons: `#if QELUTILITY_VERSION_NUMBER >= 10200` asks for 1.2.0 or newer.
#define QELUTILITY_VERSION_NUMBER \
    (QELUTILITY_VERSION_MAJOR * 10000 + QELUTILITY_VERSION_MINOR * 100 + QELUTILITY_VERSION_PATCH)

#endif
