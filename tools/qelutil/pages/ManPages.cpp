// Manual pages in the man macros, which both common readers of them know.
#include <algorithm>
#include <array>
#include <cstdio>

#include "base/Text.h"
#include "pages/Pages.h"

namespace qel::cli {

namespace {

// Of the pages' last change of substance; the same bytes come out on every day.
constexpr char kDate[] = "2026-11-21";

// The dashes of "--strict" and "-o" in a sentence.
bool isOptionDash(char before, std::string_view rest) {
    const bool letter = !rest.empty() && (rest[0] == '-' || (rest[0] >= 'a' && rest[0] <= 'z'));
    return letter && (before == ' ' || before == '-' || before == '(');
}

// Text that stands for itself. `dashes`: they are those of options and commands, to be copied.
std::string roff(std::string_view text, bool dashes = false) {
    std::string result;
    if (!text.empty() && (text[0] == '.' || text[0] == '\'')) result = "\\&";
    for (char before = ' '; !text.empty();) {
        const std::size_t length = std::max<std::size_t>(utf8CharacterLength(text), 1);
        if (length > 1) {
            unsigned code = static_cast<unsigned char>(text[0]) & (0xFFU >> (length + 1));
            for (std::size_t i = 1; i < length; ++i)
                code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
            std::array<char, 24> escape{};
            std::snprintf(escape.data(), escape.size(), "\\[u%04X]", code);
            result += escape.data();
        } else if (text[0] == '\\') {
            result += "\\e";
        } else if (text[0] == '-' && (dashes || isOptionDash(before, text.substr(1)))) {
            result += "\\-";
        } else if (dashes &&
                   (text[0] == '~' || text[0] == '^' || text[0] == '\'' || text[0] == '`')) {
            static constexpr std::string_view kPlain = "~^'`";
            static constexpr std::array kNames = {"\\(ti", "\\(ha", "\\(aq", "\\(ga"};
            result += kNames.at(kPlain.find(text[0]));
        } else {
            result += text[0];
        }
        before = text[0];
        text.remove_prefix(length);
    }
    return result;
}

std::string bold(const std::string& text) {
    return "\\fB" + roff(text, true) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + roff(text, true) + "\\fR";
}

// Sentences one a line, as the macros want them, the last one with its full stop.
std::string paragraph(std::string text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\n')) text.pop_back();
    if (!text.empty() && text.back() != '.' && text.back() != '?') text += '.';
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find(". ", at), text.size() - 1);
        result += roff(text.substr(at, end + 1 - at)) + "\n";
        at = end + 1;
        while (at < text.size() && text[at] == ' ') ++at;
    }
    return result;
}

// The page with its text in short lines, as the readers' checkers like it. Requests and examples
// keep theirs.
std::string wrapped(const std::string& page) {
    constexpr std::size_t kWidth = 78;
    std::string result;
    bool verbatim = false;
    for (std::size_t at = 0; at < page.size();) {
        const std::size_t end = page.find('\n', at);
        std::string line = page.substr(at, end - at);
        at = end + 1;
        if (line == ".EX" || line == ".EE") verbatim = line == ".EX";
        const bool text = !verbatim && !line.starts_with('.');
        while (text && line.size() > kWidth) {
            std::size_t space = line.rfind(' ', kWidth);
            while (space != std::string::npos && space > 0 && line[space - 1] == '\\')
                space = line.rfind(' ', space - 1);
            if (space == std::string::npos || space == 0) break;
            result += line.substr(0, space) + "\n";
            line.erase(0, space + 1);
            if (line.starts_with('.') || line.starts_with('\'')) line.insert(0, "\\&");
        }
        result += line + "\n";
    }
    return result;
}

std::string heading(const std::string& program, const std::string& page) {
    const std::string title = upperCase(page);
    return ".\\\" Written by qelutil_pages from the program's commands; `./dev pages` renews it.\n"
           ".TH " +
           title + " 1 " + kDate + " \"" + program + " " QELUTIL_VERSION "\" \"User Commands\"\n";
}

// "[-o FILE]", "FILE ..."
std::string synopsisOf(const PageOption& option) {
    std::string text;
    if (option.positional) {
        // A text of its own shows the brackets itself.
        const bool own = option.argumentName.starts_with('[');
        text = own ? roff(option.argumentName, true) : italic(option.argumentName);
        if (option.repeats && !own) text += " ...";
        return own || option.required ? text : "[" + text + "]";
    }
    text = bold(option.names.back());
    if (!option.argumentName.empty()) text += "\\ " + italic(option.argumentName);
    return option.required ? text : "[" + text + "]";
}

std::string synopsis(const std::string& words, const PageCommand& command) {
    std::string text = ".SY " + roff("\"" + words + "\"", true) + "\n";
    for (const PageOption& option : command.options)
        if (!option.positional) text += synopsisOf(option) + "\n";
    for (const PageOption& option : command.options)
        if (option.positional) text += synopsisOf(option) + "\n";
    return text + ".YS\n";
}

std::string optionItem(const PageOption& option) {
    std::string text = ".TP\n";
    for (const std::string& name : option.names)
        text += (&name == &option.names.front() ? "" : ", ") +
                (option.positional ? italic(name) : bold(name));
    if (!option.positional && !option.argumentName.empty())
        text += " " + italic(option.argumentName);
    std::string description = option.description;
    // "ics|vcs" and "base64, qp or cipher" name them already.
    const bool named = option.argumentName.find('|') != std::string::npos ||
                       (!option.choices.empty() && description.ends_with(option.choices.back()));
    if (!option.choices.empty() && !named) {
        description += ": ";
        for (const std::string& each : option.choices)
            description += (&each == &option.choices.front()  ? ""
                            : &each == &option.choices.back() ? " or "
                                                              : ", ") +
                           each;
    }
    if (!option.preset.empty()) description += "; " + option.preset + " by default";
    const auto startsWith = [&](const std::string& each) { return description.starts_with(each); };
    const bool word = std::any_of(option.choices.begin(), option.choices.end(), startsWith);
    if (!word && !description.empty() && description[0] >= 'a' && description[0] <= 'z')
        description[0] = static_cast<char>(description[0] - 'a' + 'A');
    return text + "\n" + paragraph(description);
}

std::string optionList(const PageCommand& command) {
    std::string text;
    for (const PageOption& option : command.options)
        if (option.positional) text += optionItem(option);
    for (const PageOption& option : command.options)
        if (!option.positional) text += optionItem(option);
    return text;
}

std::string exampleList(const PageCommand& command) {
    std::string text;
    for (const std::string& each : command.examples) text += roff(each, true) + "\n";
    for (const PageCommand& each : command.commands) text += exampleList(each);
    return text;
}

std::string exitStatus() {
    return ".SH EXIT STATUS\n.TP\n0\nSuccess.\n.TP\n1\nSome input was invalid, or a file could not "
           "be "
           "read or written; the rest was done.\n.TP\n2\nThe command line is invalid; nothing was "
           "done.\n.TP\n128 and more\nA signal ended it: 130 after Ctrl-C, 141 when nobody reads "
           "its "
           "output. No file is left half written.\n";
}

// Sections that a page has in addition to the help.
struct Section {
    const char* command;
    const char* text;
};

constexpr Section kSections[] = {
    {"convert",
     ".SH FOLDERS\n"
     "A folder means the files in it, at any depth, whose names end as those of calendars do "
     "(.vcs, .ics, .vnt, .vcal, .ical, .icalendar, .ifb), and in ZIP archives, in the order "
     "of "
     "their paths.\nFiles and folders whose name begins with a dot are ignored, and links to "
     "folders are not followed.\n.PP\n"
     "With \\fB\\-\\-output\\-dir\\fR each file has a result of its own: the path below the folder "
     "that was named, with the extension of the other format.\nA result that exists already is not "
     "replaced without \\fB\\-\\-overwrite\\fR; a file that is itself to be converted never "
     "is.\nOf "
     "two files with the same result, names that differ only in case being the same, the second is "
     "left out.\nEach of these is an error that names both files.\n"
     ".SH MESSAGES\n"
     "An error says that the input is invalid there, a warning that the other format cannot "
     "express something.\nA note, shown with \\fB\\-\\-verbose\\fR and in the report, says how "
     "irregular input was read.\n.PP\n"
     "The summary counts the entries that were read and those in a result.\n\"Changed\" counts "
     "entries with a message, \"not carried over\" the messages about something that is missing "
     "from the result.\nAn entry without a message was converted completely.\n"},
};

std::string ownSections(const std::string& command) {
    std::string text;
    for (const Section& each : kSections)
        if (command == each.command) text += each.text;
    return text;
}

}  // namespace

std::string programManPage(const PageCommand& program) {
    std::string text = heading(program.name, program.name);
    text += ".SH NAME\nqelutil \\- calendars of phones, recurrence rules, times and texts\n";
    text += ".SH SYNOPSIS\n.SY qelutil\n[" + bold("--color") + "\\ " + italic("WHEN") + "]\n" +
            italic("COMMAND") + "\n" + italic("ARGUMENT") + " ...\n.YS\n.SY qelutil\n" +
            italic("FILE") + "|" + italic("FOLDER") + " ...\n.YS\n.SY qelutil\n" + bold("help") +
            "\n[" + italic("COMMAND") + "]\n.YS\n";
    text += ".SH DESCRIPTION\n" + paragraph(program.description);
    text += ".SH COMMANDS\n";
    for (const PageCommand& command : program.commands)
        text += ".TP\n.BR qelutil\\-" + command.name + " (1)\n" + paragraph(command.description);
    text += ".SH OPTIONS\n" + optionList(program) + exitStatus();
    text +=
        ".SH ENVIRONMENT\n"
        ".TP\n.B NO_COLOR\nWhen it is set and not empty, nothing is coloured unless "
        "\\fB\\-\\-color\\fR asks for it.\n"
        ".TP\n.B TERM\nWhen it is \\fIdumb\\fR or unset, nothing is coloured.\n"
        ".TP\n.B BX_ERR_LOG_FILE_PATH\nThe trace log; see\n.BR qelutil\\-log (1).\n"
        ".TP\n.B BX_OPTIONS_FILE_PATH\nThe trace's options file.\n"
        ".TP\n.B XDG_CONFIG_HOME\nThe folder of \\fIqelutil.toml\\fR instead of "
        "\\fI~/.config\\fR.\n"
        ".SH FILES\n.TP\n.I ~/.config/qelutil.toml\nDefaults for options, with a section for each "
        "command:\n.EX\n[convert]\nzone = \"Europe/Berlin\"\n.EE\n"
        ".SH EXAMPLES\n.EX\nqelutil convert phone.vcs \\-o phone.ics\n"
        "qelutil convert phone/ \\-\\-output\\-dir converted \\-\\-report report.html\n"
        "qelutil rule \"W2 MO WE FR #10\" \\-\\-start 20050615 \\-\\-calendar\n.EE\n"
        ".SH SEE ALSO\n";
    for (const PageCommand& command : program.commands)
        text += ".BR qelutil\\-" + command.name + " (1)" +
                (&command == &program.commands.back() ? "\n" : ",\n");
    return wrapped(text);
}

std::string commandManPage(const PageCommand& program, const PageCommand& command) {
    const std::string words = program.name + " " + command.name;
    std::string text = heading(program.name, program.name + "-" + command.name);
    std::string says = command.description;
    const bool isAbbreviation = says[1] >= 'A' && says[1] <= 'Z';
    if (says[0] >= 'A' && says[0] <= 'Z' && !isAbbreviation)
        says[0] = static_cast<char>(says[0] - 'A' + 'a');
    text += ".SH NAME\nqelutil\\-" + command.name + " \\- " + roff(says) + "\n.SH SYNOPSIS\n";
    if (command.commands.empty()) text += synopsis(words, command);
    for (const PageCommand& each : command.commands)
        text += synopsis(words + " " + each.name, each);
    text += ".SH DESCRIPTION\n" + paragraph(command.description);
    for (const std::string& each : command.remarks) text += ".PP\n" + paragraph(each);
    text += ".SH OPTIONS\n" + optionList(command);
    for (const PageCommand& each : command.commands) {
        text += ".SS " + roff("\"" + words + " " + each.name + "\"", true) + "\n" +
                paragraph(each.description);
        for (const std::string& remark : each.remarks) text += ".PP\n" + paragraph(remark);
        text += optionList(each);
    }
    text += ownSections(command.name) + exitStatus() + ".SH EXAMPLES\n.EX\n" +
            exampleList(command) + ".EE\n.SH SEE ALSO\n.BR qelutil (1)\n";
    return wrapped(text);
}

}  // namespace qel::cli
