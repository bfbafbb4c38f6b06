// What is known of the terminal that the program talks to, if it is one. One thread.
#ifndef QELUTIL_TERMINAL_H
#define QELUTIL_TERMINAL_H

namespace qel::cli {

// Columns of the terminal on standard output, or 80 where there is none.
[[nodiscard]] int outputWidth();

// True when standard output is a terminal that understands highlighting, and the environment
// variable NO_COLOR is unset or empty.
[[nodiscard]] bool outputHighlights();

}  // namespace qel::cli

#endif
