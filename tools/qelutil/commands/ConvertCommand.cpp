// qelutil convert: vCalendar 1.0 files to iCalendar and back.
#include <charconv>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "base/Text.h"
#include "base/Workers.h"
#include "commands/Commands.h"
#include "commands/ConvertRun.h"

namespace qel::cli {

namespace {

// Makes "5M" the number of its bytes. Gives what is wrong with it, or nothing.
std::string bytesOf(std::string& text) {
    constexpr std::uint64_t kMost = std::uint64_t{1} << 50;
    std::uint64_t number = 0;
    const char* last = text.data() + text.size();
    const auto [end, failure] = std::from_chars(text.data(), last, number);
    const std::string unit = lowerCase(std::string(end, last));
    std::uint64_t factor = 0;
    if (unit.empty() || unit == "b") factor = 1;
    for (const auto& [letter, size] :
         {std::pair("k", 1000ULL), std::pair("m", 1000000ULL), std::pair("g", 1000000000ULL)})
        if (unit == letter || unit == std::string(letter) + "b") factor = size;
    if (failure != std::errc() || factor == 0 || number > kMost / factor)
        return "\"" + printable(text, 100) +
               "\" is not a size; write a whole number of bytes, or one with K, M or G after it: "
               "500K, 5M";
    if (number == 0) return "a calendar of 0 bytes holds nothing; 1M is what many importers take";
    text = std::to_string(number * factor);
    return {};
}

// Where the results go.
void addOutputOptions(CLI::App* command, ConvertOptions& options) {
    command
        ->add_option(
            "--to", options.to,
            "ics for iCalendar, vcs for vCalendar 1.0; without it what the ending of\n"
            "--output says, or ics for several files with a phone's .vcs among them, else\n"
            "the other format than the first file's")
        ->check(CLI::IsMember({"ics", "vcs"}))
        ->option_text("ics|vcs");
    CLI::Option* output =
        command
            ->add_option(
                "-o,--output", options.output,
                "the file to write, whole or not at all; standard output when it is missing")
            ->option_text("FILE");
    CLI::Option* folder =
        command
            ->add_option(
                "-d,--output-dir", options.outputDir,
                "the folder to write to, a file for each file: phone/a.vcs becomes DIR/a.ics;\n"
                "--output with a folder means the same")
            ->option_text("DIR")
            ->excludes(output);
    command
        ->add_option("--split", options.split,
                     "write calendars of at most so many bytes, FILE-1.ics and so on: 1M, 500K;\n"
                     "some importers take no more")
        ->transform(CLI::Validator(bytesOf, {}))
        ->option_text("SIZE")
        ->needs(output);
    command
        ->add_flag("--beside", options.beside,
                   "write each result beside its file, under a name that is free, with a report;\n"
                   "`qelutil FILE` means the same")
        ->excludes(output)
        ->excludes(folder);
}

// How to read what the files leave open.
void addReadingOptions(CLI::App* command, ConvertOptions& options) {
    command
        ->add_option("--zone", options.zone,
                     "the time zone of times that name none, as Europe/Berlin; without it they\n"
                     "stay local times, which every calendar shows at the same hour")
        ->option_text("AREA/CITY");
    command
        ->add_option("--charset", options.charset,
                     "the character set of text that names none, as Shift_JIS or windows-1251;\n"
                     "without it text that is not UTF-8 is guessed where that is safe")
        ->option_text("NAME");
    command
        ->add_option(
            "--count-means", options.countMeans,
            "what #10 means in a phone's rule with several days in a week, month or year:\n"
            "10 dates, which is the default, or 10 weeks, months or years")
        ->check(CLI::IsMember({"dates", "periods"}))
        ->option_text("dates|periods");
    command
        ->add_option("--only", options.only,
                     "take entries of these kinds alone, with commas between several")
        ->option_text("events,todos,notes");
    command->add_flag("--distinct-uids", options.distinctUids,
                      "give an entry another UID when an earlier one with other content has it");
}

}  // namespace

void addConvertCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<ConvertOptions>();
    CLI::App* command = app.add_subcommand(
        "convert", "Converts vCalendar 1.0 files to iCalendar, and iCalendar to vCalendar 1.0");
    command
        ->add_option(
            "FILE", options->files,
            "calendar files, or folders and ZIP archives with .vcs, .ics or .vnt files in\n"
            "them at any depth; - is standard input, the default")
        ->option_text("[FILE|FOLDER...|-]");
    addOutputOptions(command, *options);
    addReadingOptions(command, *options);
    command->add_flag("--overwrite", options->overwrite,
                      "replace files that the folder of --output-dir already has");
    command->add_flag("--strict", options->strict,
                      "treat warnings and losses as errors: nothing is written then, with\n"
                      "--output-dir nothing of that file, and the exit status is 1");
    command->add_flag("-n,--dry-run", options->dryRun,
                      "write no calendar, and show what would become of each file");
    command
        ->add_option("--report", options->report,
                     "a page that shows for every entry what was converted, what changed and what\n"
                     "could not be carried over")
        ->option_text("FILE.html");
    command->add_flag("--open", options->open, "show the report when it is written");
    options->threads = usualThreads();
    command
        ->add_option(
            "--threads", options->threads,
            "how many threads work at most, on several files or on one large file; as many as\n"
            "this computer has cores when it is missing. The results are the same with any\n"
            "number")
        ->check(CLI::Range(1, 64))
        ->option_text("N");
    command->add_flag("--json", options->json,
                      "print what became of each file as JSON; see `qelutil schema`");
    command->add_flag("-v,--verbose", options->verbose,
                      "also report how irregular input was read, and show every message");
    command->footer(
        "Calendars of old phones and organisers (.vcs) become .ics files, which Google Calendar,\n"
        "Apple Calendar, Thunderbird and Outlook import, and back.\n\n"
        "All events, to-dos and notes of all files go into one, unless --output-dir is given. "
        "Nothing\n"
        "is left out silently: what the other format cannot express is kept as an X- property or\n"
        "reported in a warning. After several files a summary goes to standard error.\n\n"
        "Examples:\n"
        "  qelutil convert phone.vcs -o calendar.ics\n"
        "  qelutil convert --to vcs work.ics home.ics > phone.vcs\n"
        "  cat *.vcs | qelutil convert - -o all.ics\n"
        "  qelutil convert phone/ --output-dir converted --strict\n"
        "  qelutil convert phone/ -d converted --report report.html");
    command->callback([options, &context] { runConvert(context, *options); });
}

}  // namespace qel::cli
