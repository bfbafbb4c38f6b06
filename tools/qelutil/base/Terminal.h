// What is known of the terminal that the program talks to, if it is one. One thread.
#ifndef QELUTIL_BASE_TERMINAL_H
#define QELUTIL_BASE_TERMINAL_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::cli {

// Columns of the terminal on standard output; 80 when it is not a terminal.
[[nodiscard]] int outputWidth();

// True when a person reads standard output as it comes.
[[nodiscard]] bool outputIsRead();

// `text` with line ends in place of some blanks, so that lines have no more than `width` columns
// where the words allow it. The first line begins in column `indent`, the others with that many
// blanks.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t width, std::size_t indent);

// Columns of the terminal on standard error; 80 when it is not a terminal.
[[nodiscard]] int errorWidth();

enum class Color {
    Auto,  // on a terminal that understands it, while the environment's NO_COLOR is unset or empty
    Always,
    Never
};

// For this run; Auto before.
void chooseColor(Color color);

// Whether what is written to standard output, or to standard error, is highlighted.
[[nodiscard]] bool outputHighlights();
[[nodiscard]] bool errorHighlights();

}  // namespace qel::cli

#endif
