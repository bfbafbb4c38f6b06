// Shell completions: one file for each shell, complete in itself.
#include <algorithm>

#include "pages/Pages.h"

namespace qel::cli {

namespace {

using Argument = PageOption::Argument;

constexpr char kHead[] =
    "# Written by qelutil_pages from the program's commands; `./dev pages` renews it.\n";

std::string joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& each : words) text += (text.empty() ? "" : separator) + each;
    return text;
}

// For single quotes of any of the shells.
std::string quoted(const std::string& text, const char* quote) {
    std::string result;
    for (const char c : text)
        if (c == '\'')
            result += quote;
        else
            result += c;
    return result;
}

// A list of words has room for the first part of a description.
std::string shortened(const std::string& description) {
    return description.substr(0, description.find_first_of(";:"));
}

std::string optionWords(const PageCommand& command) {
    std::string words;
    for (const PageOption& option : command.options)
        if (!option.positional) words += (words.empty() ? "" : " ") + joined(option.names, " ");
    return words;
}

const PageOption* positional(const PageCommand& command) {
    for (const PageOption& option : command.options)
        if (option.positional) return &option;
    return nullptr;
}

// Commands are reached by their words: "zone", "zone convert".
template <class Visit>
void visitCommands(const PageCommand& command, const std::string& words, const Visit& visit) {
    for (const PageCommand& each : command.commands) {
        const std::string own = words.empty() ? each.name : words + " " + each.name;
        visit(each, own);
        visitCommands(each, own, visit);
    }
}

std::vector<std::string> namesOf(const std::vector<PageCommand>& commands) {
    std::vector<std::string> names;
    for (const PageCommand& each : commands) names.push_back(each.name);
    return names;
}

// What follows an option, for bash: the body of a case branch.
std::string bashArgument(const PageOption& option) {
    switch (option.argument) {
        case Argument::Choice:
            return "COMPREPLY=($(compgen -W '" + joined(option.likely, " ") +
                   "' -- \"$current\"))" +
                   (option.likely[0].ends_with('=') ? "; compopt -o nospace" : "");
        case Argument::Zone:
            return "COMPREPLY=($(compgen -W \"$(_qelutil_zones)\" -- \"$current\"))";
        case Argument::File:
            return "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- \"$current\")";
        case Argument::Folder:
            return "compopt -o filenames; mapfile -t COMPREPLY < <(compgen -d -- \"$current\")";
        case Argument::None:
        case Argument::Other:
            break;
    }
    return "COMPREPLY=()";
}

std::string bashCommand(const PageCommand& command, const std::string& words) {
    std::string text = "    '" + words + "')\n        options='" + optionWords(command) + "'\n";
    std::string branches;
    for (const PageOption& option : command.options)
        if (!option.positional && option.argument != Argument::None)
            branches += "        " + joined(option.names, " | ") + ") " + bashArgument(option) +
                        "; return ;;\n";
    if (!branches.empty()) text += "        case $previous in\n" + branches + "        esac\n";
    const PageOption* first = positional(command);
    if (!command.commands.empty())
        text += "        words='" + joined(namesOf(command.commands), " ") + "'\n";
    else if (first != nullptr && first->argument == Argument::Choice)
        text += "        words='" + joined(first->likely, " ") + "'\n        files=1\n";
    else if (first != nullptr && first->argument == Argument::Zone)
        text += "        words=$(_qelutil_zones)\n";
    else if (first != nullptr && first->argument == Argument::File)
        text += "        files=1\n";
    return text + "        ;;\n";
}

std::string zshAction(const PageOption& option) {
    switch (option.argument) {
        case Argument::Choice:
            // After a "=" more is to be typed.
            return option.likely[0].ends_with('=')
                       ? "compadd -S \"\" -- " + joined(option.likely, " ")
                       : "(" + joined(option.likely, " ") + ")";
        case Argument::Zone:
            return "_qelutil_zones";
        case Argument::File:
            return "_files";
        case Argument::Folder:
            return "_files -/";
        case Argument::None:
        case Argument::Other:
            break;
    }
    return "";
}

std::string zshDescription(const PageOption& option) {
    std::string description;
    for (const char c : shortened(option.description)) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') description += '\\';
        description += c;
    }
    return quoted(description, "'\\''");
}

std::string zshSpec(const PageOption& option) {
    const std::string action = zshAction(option);
    const std::string description = zshDescription(option);
    std::string name;
    for (const char c : option.argumentName)
        if (c != '[' && c != ']' && c != ':') name += c;
    const std::string argument = option.argument == Argument::None ? "" : ":" + name + ":" + action;
    if (option.positional)
        return std::string("'") + (option.repeats ? "*" : "") + ":" + name + ":" + action + "'";
    std::string text;
    for (const std::string& each : option.names) {
        if (!text.empty()) text += " \\\n            ";
        const std::string others = option.names.size() > 1 && !option.repeats
                                       ? "(" + joined(option.names, " ") + ")"
                                       : std::string();
        // "--to=ics" and "--to ics"; "-o" with what follows it or the next word.
        const std::string joint = option.argument == Argument::None ? ""
                                  : each.starts_with("--")          ? "="
                                                                    : "+";
        text += "'" + others + (option.repeats ? "*" : "") + each + joint + "[" + description +
                "]" + argument + "'";
    }
    return text;
}

std::string zshArguments(const PageCommand& command) {
    std::string text = "_arguments -s";
    for (const PageOption& option : command.options) text += " \\\n            " + zshSpec(option);
    return text;
}

std::string zshDescribe(const PageCommand& command) {
    std::string text = "commands=(";
    for (const PageCommand& each : command.commands)
        text += "\n            '" + each.name + ":" + quoted(each.description, "'\\''") + "'";
    return text + ")\n        _describe -t commands '" + command.name + " command' commands";
}

std::string fishOption(const PageOption& option, const std::string& condition) {
    std::string text = "complete -c qelutil -n '" + condition + "'";
    if (!option.positional)
        for (const std::string& name : option.names)
            text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    switch (option.argument) {
        case Argument::Choice:
            text += (option.positional ? std::string(" -a '") : std::string(" -x -a '")) +
                    joined(option.likely, " ") + "'";
            break;
        case Argument::Zone:
            text += std::string(option.positional ? " -a '" : " -x -a '") + "(__qelutil_zones)'";
            break;
        case Argument::File:
            text += option.positional ? " -F" : " -r -F";
            break;
        case Argument::Folder:
            text += " -x -a '(__fish_complete_directories)'";
            break;
        case Argument::Other:
            if (option.positional) return {};
            text += " -x";
            break;
        case Argument::None:
            break;
    }
    if (!option.positional) text += " -d '" + quoted(shortened(option.description), "\\'") + "'";
    return text + "\n";
}

// "--to|ics for iCalendar": one string of a PowerShell list.
std::string powerShellWord(const std::string& name, const std::string& description) {
    return "                '" + name + "|" + quoted(shortened(description), "''") + "'\n";
}

std::string powerShellCommand(const PageCommand& command, const std::string& words) {
    std::string options;
    std::string values;
    std::string own;
    for (const PageOption& option : command.options) {
        const bool isZone = option.argument == Argument::Zone;
        const std::string choices =
            isZone ? "'*zones*'" : "'" + joined(option.likely, "', '") + "'";
        if (option.positional) {
            if (isZone) own += "                '*zones*'\n";
            for (const std::string& each : option.likely)
                own += "                '" + each + "|'\n";
            continue;
        }
        for (const std::string& name : option.names) {
            options += powerShellWord(name, option.description);
            if (option.argument == Argument::Choice || isZone)
                values += "                '" + name + "' = @(" + choices + ")\n";
        }
    }
    for (const PageCommand& each : command.commands)
        own += powerShellWord(each.name, each.description);
    return "        '" + words + "' = @{\n            Options = @(\n" + options +
           "            )\n            Values = @{\n" + values +
           "            }\n            Words = @(\n" + own + "            )\n        }\n";
}

}  // namespace

std::string bashCompletion(const PageCommand& program) {
    std::string text = std::string("# bash completion for qelutil\n") + kHead +
                       R"(
_qelutil_zones() {
    "${COMP_WORDS[0]}" zone list --iana 2>/dev/null | sed 's/.* //'
}

_qelutil() {
    local current=${COMP_WORDS[COMP_CWORD]} previous='' command='' options='' words='' files=''
    local -i at
    # bash makes words of their own of "--to", "=" and "ics".
    [ "$current" = = ] && current=
    for ((at = 1; at < COMP_CWORD; ++at)); do
        [ "${COMP_WORDS[at]}" = = ] && continue
        previous=${COMP_WORDS[at]}
        case $previous in
        auto | always | never) [ "$command" ] || continue ;;
        -*) continue ;;
        esac
        case $command in
        '') command=$previous ;;
)";
    for (const PageCommand& each : program.commands)
        if (!each.commands.empty())
            text += "        " + each.name + ")\n            case $previous in\n            " +
                    joined(namesOf(each.commands), " | ") +
                    ") command+=\" $previous\" ;;\n            esac\n            ;;\n";
    // A file may stand where a command does: then it is converted.
    text += "        esac\n    done\n    case ${command%% *} in\n    '' | " +
            joined(namesOf(program.commands), " | ") +
            ") ;;\n    *) command=convert ;;\n    esac\n    case $command in\n" +
            bashCommand(program, "");
    visitCommands(program, "", [&](const PageCommand& command, const std::string& words) {
        text += bashCommand(command, words);
    });
    return text + R"(    esac
    [ "$command" ] || files=1
    case $current in
    -*) COMPREPLY=($(compgen -W "$options" -- "$current")) ;;
    *)
        COMPREPLY=($(compgen -W "$words" -- "$current"))
        if [ "$files" ] && [ ${#COMPREPLY[@]} -eq 0 ]; then
            compopt -o filenames
            # A line for each name: names have blanks.
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
        fi
        ;;
    esac
}
complete -F _qelutil qelutil
)";
}

std::string zshCompletion(const PageCommand& program) {
    std::string text = std::string("#compdef qelutil\n") + kHead +
                       R"zsh(
_qelutil_zones() {
    local -a zones
    zones=(${(f)"$(_call_program zones qelutil zone list --iana 2>/dev/null)"})
    compadd -- ${zones##* }
}

_qelutil() {
    local curcontext=$curcontext state line
    local -a commands
    _arguments -C -s)zsh";
    for (const PageOption& option : program.options) text += " \\\n            " + zshSpec(option);
    text +=
        " \\\n            ': :->command' '*:: :->rest'\n    case $state in\n    command)\n       "
        " " +
        zshDescribe(program) +
        "\n        _files\n        ;;\n    rest)\n        case $line[1] in\n";
    std::string converting;  // what takes a file where a command may stand
    for (const PageCommand& command : program.commands) {
        text += "        " + command.name + ")\n            ";
        if (command.commands.empty())
            text += zshArguments(command);
        else
            text += "_qelutil_" + command.name;
        text += "\n            ;;\n";
        if (command.name == "convert") converting = zshArguments(command);
    }
    text += "        *)\n            " + converting + "\n            ;;\n";
    text += "        esac\n        ;;\n    esac\n}\n";
    for (const PageCommand& command : program.commands) {
        if (command.commands.empty()) continue;
        text += "\n_qelutil_" + command.name +
                "() {\n    local curcontext=$curcontext state line\n    local -a commands\n"
                "    _arguments -C -s";
        for (const PageOption& option : command.options)
            text += " \\\n            " + zshSpec(option);
        text +=
            " \\\n            ': :->command' '*:: :->rest'\n    case $state in\n    command)\n"
            "        " +
            zshDescribe(command) + "\n        ;;\n    rest)\n        case $line[1] in\n";
        for (const PageCommand& each : command.commands)
            text += "        " + each.name + ")\n            " + zshArguments(each) +
                    "\n            ;;\n";
        text += "        esac\n        ;;\n    esac\n}\n";
    }
    return text + "\n_qelutil \"$@\"\n";
}

std::string fishCompletion(const PageCommand& program) {
    std::string text = std::string("# fish completion for qelutil\n") + kHead + R"(
# True when the words of the command line so far begin with these ones; options do not count.
function __qelutil_at
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    set -e words[1]
    test (count $words) -ge (count $argv); or return 1
    for at in (seq (count $argv))
        test $words[$at] = $argv[$at]; or return 1
    end
end

# True when nothing but these words stands there.
function __qelutil_only
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    test (count $words) -eq (math 1 + (count $argv)); and __qelutil_at $argv
end

function __qelutil_zones
    qelutil zone list --iana 2>/dev/null | string replace -r '.* ' ''
end

# True when files are converted: the command says so, or a file stands in its place.
function __qelutil_converts
    set -l words (string match -v -r '^(-.*|auto|always|never)$' -- (commandline -opc))
    test (count $words) -ge 2; or return 1
    test $words[2] = convert; or not contains -- $words[2] )" +
                       joined(namesOf(program.commands), " ") + R"(
end

complete -c qelutil -f
complete -c qelutil -n '__qelutil_only' -F
)";
    for (const PageOption& option : program.options) text += fishOption(option, "__qelutil_at");
    const auto commandsOf = [&](const PageCommand& command, const std::string& words) {
        for (const PageCommand& each : command.commands)
            text += "complete -c qelutil -n '__qelutil_only" + (words.empty() ? "" : " " + words) +
                    "' -a " + each.name + " -d '" + quoted(each.description, "\\'") + "'\n";
    };
    commandsOf(program, "");
    visitCommands(program, "", [&](const PageCommand& command, const std::string& words) {
        text += "\n";
        commandsOf(command, words);
        for (const PageOption& option : command.options)
            text += fishOption(option,
                               words == "convert" ? "__qelutil_converts" : "__qelutil_at " + words);
    });
    return text;
}

std::string powerShellCompletion(const PageCommand& program) {
    std::string text = std::string(
                           "# PowerShell completion for qelutil: the line\n"
                           "#     . FOLDER\\qelutil.ps1\n"
                           "# in the file that $PROFILE names loads it.\n") +
                       kHead + R"(
Register-ArgumentCompleter -Native -CommandName 'qelutil', 'qelutil.exe' -ScriptBlock {
    param($current, $line, $cursor)

    # Of each command: its options, the values that an option takes, and the words that follow it. What
    # follows a bar explains the word before it; the program is asked for its zones.
    $commands = @{
)" + powerShellCommand(program, "");
    visitCommands(program, "", [&](const PageCommand& command, const std::string& words) {
        text += powerShellCommand(command, words);
    });
    // PowerShell completes the names of files where nothing else is offered.
    return text + R"(    }

    $command = ''
    $previous = ''
    foreach ($element in $line.CommandElements | Select-Object -Skip 1) {
        if ($element.Extent.EndOffset -ge $cursor) { break }
        $previous = $element.Extent.Text
        if ($commands.ContainsKey("$command $previous".Trim())) {
            $command = "$command $previous".Trim()
        }
    }

    if (-not $command -and $previous -and -not $previous.StartsWith('-')) { $command = 'convert' }

    $known = $commands[$command]
    $option = ''
    if ($current -match '^(--[a-z-]+)=(.*)$') {
        # "--to=ics" is one word.
        $option = $Matches[1] + '='
        $previous = $Matches[1]
        $current = $Matches[2]
    }
    if ($known.Values.ContainsKey($previous)) { $offered = $known.Values[$previous] }
    elseif ($option) { $offered = @() }
    elseif ($current.StartsWith('-')) { $offered = $known.Options }
    else { $offered = $known.Words }

    if ('*zones*' -in $offered) {
        $offered = & $line.CommandElements[0].Extent.Text zone list --iana 2>$null |
            ForEach-Object { ($_ -split ' ')[-1] }
    }
    foreach ($each in $offered) {
        $word, $explanation = $each -split '\|', 2
        if (-not $word.StartsWith($current, 'Ordinal')) { continue }
        if (-not $explanation) { $explanation = $word }
        [System.Management.Automation.CompletionResult]::new("$option$word", $word, 'ParameterValue', $explanation)
    }
}
)";
}

}  // namespace qel::cli
