// What the program says of a command line that its parser refuses. One thread.
#ifndef QELUTIL_COMMANDS_PARSERWORDS_H
#define QELUTIL_COMMANDS_PARSERWORDS_H

#include <CLI/CLI.hpp>
#include <string>

namespace qel::cli {

// In the program's own words, without a full stop.
[[nodiscard]] std::string parserWords(const CLI::App& app, const CLI::ParseError& problem);

}  // namespace qel::cli

#endif
