// What a program says of an exception that has come to it. One thread.
#ifndef QELUTIL_BASE_FAILURE_H
#define QELUTIL_BASE_FAILURE_H

#include <string>

#include "base/Command.h"

namespace qel::cli {

// Without a colon before it.
inline constexpr char kMemoryExhausted[] = "memory is exhausted; give the input in smaller pieces";

// The exception that is being handled, as a message; `file` (empty: none) is named where the
// exception does not name it itself. A failure of standard output closes it for this run; when it
// is a pipe that nobody reads any more, the program ends here and in silence, as others do.
// REQUIRES: called in a catch clause.
[[nodiscard]] std::string currentFailure(Context& context, const std::string& file = {});

}  // namespace qel::cli

#endif
