// The program's command line as plain data, taken from the commands themselves: what its manual
// pages and completions are written from. One thread.
#ifndef QELUTIL_PAGES_COMMANDLINE_H
#define QELUTIL_PAGES_COMMANDLINE_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::cli {

struct PageOption {
    // What completes its argument.
    enum class Argument { None, Choice, Zone, File, Folder, Other };

    std::vector<std::string> names;  // "-o", "--output"; of a positional one its name alone
    Argument argument = Argument::None;
    std::string argumentName;          // "FILE"; empty for a flag
    std::vector<std::string> choices;  // all allowed values; empty where any text is
    std::vector<std::string> likely;   // values to offer; the choices where there are any
    std::string description;           // one line
    std::string preset;                // the default value, where there is one
    bool positional = false;
    bool required = false;
    bool repeats = false;
};

struct PageCommand {
    std::string name;  // "convert"
    std::string description;
    std::vector<std::string> remarks;   // paragraphs, each one line
    std::vector<std::string> examples;  // command lines
    std::vector<PageOption> options;    // in the order of --help
    std::vector<PageCommand> commands;
};

[[nodiscard]] PageCommand commandLine(const CLI::App& app);

}  // namespace qel::cli

#endif
