#include "pages/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "commands/LogFiles.h"

namespace qel::cli {

namespace {

// Breaks of lines are the layout's of --help; here each page makes its own.
std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> parts;
    std::size_t at = 0;
    while (at <= text.size()) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        if (end > at) parts.push_back(text.substr(at, end - at));
        at = end + separator.size();
    }
    return parts;
}

// "TEXT:{ics,vcs}" holds the choices, "N:INT in [1 - 100]" a range.
void readType(const std::string& type, PageOption& option) {
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    if (open != std::string::npos && close != std::string::npos)
        option.choices = split(type.substr(open + 1, close - open - 1), ",");
    const std::size_t range = type.find(" in [");
    const std::size_t dash = type.find(" - ", range);
    const std::size_t end = type.find(']', range);
    if (range != std::string::npos && dash != std::string::npos && end != std::string::npos)
        option.description += " (" + type.substr(range + 5, dash - range - 5) + " to " +
                              type.substr(dash + 3, end - dash - 3) + ")";
}

// What can be offered where any text is allowed.
std::vector<std::string> likelyOf(const PageOption& option) {
    if (!option.choices.empty()) return option.choices;
    if (option.argumentName == "events,todos,notes") return split(option.argumentName, ",");
    if (option.argumentName != "KEY=VALUE") return {};
    std::vector<std::string> keys = traceOptionKeys();
    for (std::string& key : keys) key += '=';
    return keys;
}

PageOption::Argument argumentOf(const PageOption& option) {
    using Argument = PageOption::Argument;
    if (!option.likely.empty()) return Argument::Choice;
    if (option.argumentName == "ZONE" || option.argumentName == "AREA/CITY") return Argument::Zone;
    if (option.argumentName.find("FILE") != std::string::npos) return Argument::File;
    if (option.argumentName == "DIR") return Argument::Folder;
    return Argument::Other;
}

PageOption optionOf(const CLI::Option& from) {
    PageOption option;
    option.positional = !from.nonpositional();
    option.required = from.get_required();
    option.repeats = from.get_items_expected_max() > 1;
    option.description = oneLine(from.get_description());
    option.preset = from.get_default_str();
    if (option.positional) {
        option.names.push_back(from.get_name(true));
    } else {
        for (const std::string& name : from.get_snames()) option.names.push_back("-" + name);
        for (const std::string& name : from.get_lnames()) option.names.push_back("--" + name);
    }
    const bool isFlag = from.get_items_expected_max() == 0;
    if (isFlag) return option;
    const std::string type = from.get_type_name();
    readType(type, option);
    option.argumentName = from.get_option_text();
    if (option.argumentName.empty())
        option.argumentName = option.positional ? option.names[0] : type.substr(0, type.find(':'));
    if (option.argumentName.empty()) option.argumentName = "VALUE";
    option.likely = likelyOf(option);
    option.argument = argumentOf(option);
    return option;
}

}  // namespace

PageCommand commandLine(const CLI::App& app) {
    PageCommand command;
    command.name = app.get_name();
    command.description = oneLine(app.get_description());
    const std::string footer = app.get_footer();
    std::size_t examples = footer.find("Examples:\n");
    if (examples == std::string::npos) examples = footer.find("Example:\n");
    for (const std::string& each : split(footer.substr(0, examples), "\n\n"))
        command.remarks.push_back(oneLine(each));
    if (examples != std::string::npos)
        for (const std::string& each : split(footer.substr(examples), "\n"))
            if (each.starts_with("  ")) command.examples.push_back(each.substr(2));
    for (const CLI::Option* each : app.get_options()) command.options.push_back(optionOf(*each));
    for (const CLI::App* each : app.get_subcommands([](const CLI::App*) { return true; }))
        command.commands.push_back(commandLine(*each));
    return command;
}

}  // namespace qel::cli
