// Every command's function, one for each source beside this header; main.cpp calls them. Each adds
// its subcommand to the program and runs it when the command line names it.
#ifndef QELUTIL_COMMANDS_COMMANDS_H
#define QELUTIL_COMMANDS_COMMANDS_H

#include <CLI/CLI.hpp>

#include "base/Command.h"

namespace qel::cli {

void addCharsetCommand(CLI::App& app, Context& context);
void addConvertCommand(CLI::App& app, Context& context);
void addDateCommand(CLI::App& app, Context& context);
void addDecodeCommand(CLI::App& app, Context& context);
void addEncodeCommand(CLI::App& app, Context& context);
void addExpandCommand(CLI::App& app, Context& context);
void addFieldCommand(CLI::App& app, Context& context);
void addLogCommand(CLI::App& app, Context& context);
void addRuleCommand(CLI::App& app, Context& context);
void addSchemaCommand(CLI::App& app, Context& context);
void addShowCommand(CLI::App& app, Context& context);
void addStatusCommand(CLI::App& app, Context& context);
void addStreamCommand(CLI::App& app, Context& context);
void addZoneCommand(CLI::App& app, Context& context);

}  // namespace qel::cli

#endif
