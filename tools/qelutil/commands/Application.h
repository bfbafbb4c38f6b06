// The whole command line of qelutil: every command with its options, help and examples. The program
// parses with it, and its manual pages and shell completions are written from it. One thread.
#ifndef QELUTIL_COMMANDS_APPLICATION_H
#define QELUTIL_COMMANDS_APPLICATION_H

#include "base/Command.h"

namespace qel::cli {

// REQUIRES: `app` is new; `context` outlives it.
void addCommands(CLI::App& app, Context& context);

}  // namespace qel::cli

#endif
