// qelutil schema: the JSON Schema of what the commands print with --json.
#include <ostream>

#include "commands/Commands.h"

namespace qel::cli {

// docs/json/qelutil.schema.json, which CMake makes a source of.
extern const char kJsonSchema[];

void addSchemaCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("schema", "Prints the JSON Schema of what commands print with --json");
    command->footer(
        "Each document has its number in the member \"format\".\n"
        "Example:\n"
        "  qelutil schema > qelutil.schema.json");
    command->callback([&context] { context.out << kJsonSchema; });
}

}  // namespace qel::cli
