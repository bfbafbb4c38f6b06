// What the first words of a command line mean when they name no command: files to convert, a wish
// for help, or a slip of the hand. One thread.
#ifndef QELUTIL_COMMANDS_FIRSTWORDS_H
#define QELUTIL_COMMANDS_FIRSTWORDS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace qel::cli {

// The words of a whole command: `phone.vcs` is `convert --beside phone.vcs`, `help rule` is
// `rule --help`, and no word at all is `--help`. Throws UsageError for a first word that is neither
// a command nor a file, with the command that looks most like it.
[[nodiscard]] std::vector<std::string> completeWords(const CLI::App& app,
                                                     std::vector<std::string> words);

// What is wrong when the parser of the command line does not know some of the words, or misses a
// subcommand: "--ouput is unknown here (did you mean --output?)". REQUIRES: `app` has parsed them.
[[nodiscard]] std::string unknownWords(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace qel::cli

#endif
