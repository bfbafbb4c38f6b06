// qelutil_pages FOLDER: writes the manual pages (FOLDER/docs/man) and the shell completions
// (FOLDER/tools/qelutil/completions) of qelutil from its commands, and FOLDER/docs/notes.md and
// FOLDER/include/QelCalendar/qelcalnotes.h from the catalogue of notes. With the project's own
// folder it brings the files of the tree up to date.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "commands/Application.h"
#include "pages/Pages.h"

namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.exceptions(std::ios::badbit | std::ios::failbit);
    file << text;
    file.close();
}

}  // namespace

int main(int argc, char** argv) {
    using namespace qel::cli;
    if (argc != 2) {
        std::cerr << "usage: qelutil_pages FOLDER\n";
        return kExitUsage;
    }
    try {
        Context context(std::cin, std::cout, std::cerr);
        CLI::App app;
        addCommands(app, context);
        const PageCommand program = commandLine(app);
        const fs::path man = fs::path(argv[1]) / "docs" / "man";
        const fs::path completions = fs::path(argv[1]) / "tools" / "qelutil" / "completions";
        write(man / "qelutil.1", programManPage(program));
        for (const PageCommand& command : program.commands)
            write(man / ("qelutil-" + command.name + ".1"), commandManPage(program, command));
        write(completions / "qelutil.bash", bashCompletion(program));
        write(completions / "_qelutil", zshCompletion(program));
        write(completions / "qelutil.fish", fishCompletion(program));
        write(completions / "qelutil.ps1", powerShellCompletion(program));
        write(fs::path(argv[1]) / "docs" / "notes.md", notesDocument());
        write(fs::path(argv[1]) / "include" / "QelCalendar" / "qelcalnotes.h", notesHeader());
    } catch (const std::exception& problem) {
        std::cerr << "qelutil_pages: " << problem.what() << '\n';
        return kExitBadInput;
    }
    return kExitFine;
}
