#include "commands/Application.h"

#include <memory>

#include "QelCalendar/Zones.h"
#include "base/Terminal.h"
#include "commands/Commands.h"
#include "commands/HelpLayout.h"

namespace qel::cli {

namespace {

// Every command's function, in the order in which --help lists them.
using AddCommand = void (*)(CLI::App&, Context&);
constexpr AddCommand kCommands[] = {
    addConvertCommand, addShowCommand,   addRuleCommand,   addExpandCommand,  addDateCommand,
    addZoneCommand,    addEncodeCommand, addDecodeCommand, addCharsetCommand, addFieldCommand,
    addStatusCommand,  addStreamCommand, addLogCommand,    addSchemaCommand,
};

}  // namespace

void addCommands(CLI::App& app, Context& context) {
    app.name("qelutil");
    app.description(
        "Turns a phone's calendar files into iCalendar and back, explains recurrence rules,\n"
        "and converts times, texts and codes.\n\n"
        "qelutil FILE... or qelutil FOLDER converts what is there; the results and a report lie\n"
        "beside it. qelutil help COMMAND shows a command's options with examples.\n");
    // A path such as /tmp/a.vcs is not an option, on any platform.
    app.allow_windows_style_options(false);
    app.set_version_flag("--version",
                         "qelutil " QELUTIL_VERSION "\ntime zones " + qelcal::Zone::worldVersion());
    app.require_subcommand(1);
    // The options of the program itself may also follow the command.
    app.fallthrough();
    app.add_option("--color", "when messages and month grids are coloured")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->default_str("auto")
        ->each([](const std::string& when) {
            chooseColor(when == "always"  ? Color::Always
                        : when == "never" ? Color::Never
                                          : Color::Auto);
        });
    app.set_config("--config", "",
                   "the file of your own defaults, with a section for each command; it is\n"
                   "qelutil.toml in ~/.config, on Windows in %APPDATA%")
        ->option_text("FILE");
    app.allow_config_extras(CLI::config_extras_mode::error);
    app.formatter(std::make_shared<HelpLayout>());
    app.footer(
        "Exit status: 0 for success, 1 when some input was invalid, 2 for an invalid "
        "command line.\n\n"
        "Files: ~/.config/qelutil.toml (on Windows %APPDATA%\\qelutil.toml), such as\n"
        "  [convert]\n"
        "  zone = \"Europe/Berlin\"");
    for (const AddCommand add : kCommands) add(app, context);
}

}  // namespace qel::cli
