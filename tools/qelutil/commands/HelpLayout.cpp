#include "commands/HelpLayout.h"

#include <algorithm>
#include <sstream>

#include "base/Terminal.h"

namespace qel::cli {

namespace {

// Longer lines are hard to read.
constexpr int kWidest = 100;
constexpr std::size_t kNameColumn = 30;

// Breaks of lines are for those who read the source.
std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

HelpLayout::HelpLayout() : width_(static_cast<std::size_t>(std::min(outputWidth(), kWidest))) {
    column_width(std::min(kNameColumn, width_ / 3));
}

std::string HelpLayout::twoColumns(const std::string& name, const std::string& text) const {
    const std::size_t column = get_column_width();
    std::string line = "  " + name;
    if (text.empty()) return line + "\n";
    if (line.size() >= column) line += "\n" + std::string(column, ' ');
    line.append(column - std::min(column, line.size()), ' ');
    return line + wrapped(oneLine(text), width_, column) + "\n";
}

std::string HelpLayout::make_option(const CLI::Option* option, bool isPositional) const {
    return twoColumns(make_option_name(option, isPositional) + make_option_opts(option),
                      make_option_desc(option));
}

std::string HelpLayout::make_subcommand(const CLI::App* command) const {
    return twoColumns(command->get_display_name(true), command->get_description());
}

std::string HelpLayout::make_description(const CLI::App* app) const {
    const std::string text = app->get_description();
    return text.empty() ? "" : wrapped(oneLine(text), width_, 0) + "\n";
}

std::string HelpLayout::make_footer(const CLI::App* app) const {
    std::istringstream footer(app->get_footer());
    std::string text;
    std::string paragraph;
    const auto finish = [&] {
        if (!paragraph.empty()) text += wrapped(paragraph, width_, 0) + "\n";
        paragraph.clear();
    };
    for (std::string line; std::getline(footer, line);) {
        const bool isHeading = line == "Examples:" || line == "Example:";
        if (line.empty() || line.starts_with(' ') || isHeading) {
            finish();
            text += line + "\n";
        } else {
            paragraph += (paragraph.empty() ? "" : " ") + line;
        }
    }
    finish();
    return text;
}

}  // namespace qel::cli
