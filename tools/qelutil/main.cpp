// qelutil: calendars, rules, times, texts and codes of a phone and its PC, from the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <new>

#include "base/Failure.h"
#include "base/Files.h"
#include "commands/Application.h"
#include "commands/FirstWords.h"
#include "commands/ParserWords.h"
#include "commands/Settings.h"
#include "platform/Console.h"

namespace {

using qel::cli::Context;

std::string commandLineOf(const CLI::App& app) {
    std::string words = "qelutil";
    for (const CLI::App* command : app.get_subcommands()) words += " " + command->get_name();
    return words;
}

int usage(Context& context, const CLI::App& app, std::string text) {
    while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.pop_back();
    context.error(text + "; see `" + commandLineOf(app) + " --help`");
    return qel::cli::kExitUsage;
}

int parseAndRun(Context& context, const std::vector<std::string>& words) {
    CLI::App app;
    qel::cli::addCommands(app, context);
    // A file that is not there is no error unless it was named.
    app.get_config_ptr()->default_str(
        qel::cli::nameOf(qel::cli::platform::settingsFolder() / "qelutil.toml"));
    const auto settings = std::make_shared<qel::cli::Settings>(app, context);
    app.config_formatter(settings);
    app.parse_complete_callback([&settings] { settings->check(); });
    std::vector<std::string> whole;
    try {
        whole = qel::cli::completeWords(app, words);
        app.parse(std::vector<std::string>(whole.rbegin(), whole.rend()));
    } catch (const CLI::ParseError& problem) {
        if (problem.get_exit_code() == 0) return app.exit(problem, context.out, std::cerr);
        const bool isUnknown = dynamic_cast<const CLI::ExtrasError*>(&problem) != nullptr ||
                               dynamic_cast<const CLI::RequiredError*>(&problem) != nullptr;
        const std::string text = isUnknown ? qel::cli::unknownWords(app, whole) : "";
        return usage(context, app, text.empty() ? qel::cli::parserWords(app, problem) : text);
    } catch (const qel::cli::UsageError& problem) {
        return usage(context, app, problem.what());
    }
    return context.exitCode();
}

// Every way in which a run can end that is not a plain return.
int guarded(Context& context, const std::vector<std::string>& words) {
    try {
        const int code = parseAndRun(context, words);
        context.out.flush();
        return code;
    } catch (...) {
        context.error(qel::cli::currentFailure(context));
    }
    return qel::cli::kExitBadInput;
}

}  // namespace

int main(int argc, char** argv) {
    int code = qel::cli::kExitBadInput;
    try {
        qel::cli::platform::prepareStreams();
        std::ios::sync_with_stdio(false);
        std::cin.tie(nullptr);
        std::cout.exceptions(std::ios::badbit);
        Context context(std::cin, std::cout, std::cerr);
        code = guarded(context, qel::cli::platform::arguments(argc, argv));
        std::cout.flush();
    } catch (const std::bad_alloc&) {
        // Before there was a context, or while it reported the same.
        std::fprintf(stderr, "qelutil: %s\n", qel::cli::kMemoryExhausted);
        code = qel::cli::kExitBadInput;
    } catch (...) {
        // Neither the output nor the message about it could be written: the exit code is all there
        // is left to say it with.
        code = qel::cli::kExitBadInput;
    }
    return code;
}
