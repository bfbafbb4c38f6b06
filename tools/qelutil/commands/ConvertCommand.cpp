// qelutil convert: vCalendar 1.0 files to iCalendar and back.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Files.h"
#include "Progress.h"
#include "Spool.h"
#include "commands/Commands.h"
#include "convert/Converter.h"

namespace qel::cli {

namespace {

// Messages shown of one run, unless all are asked for.
constexpr std::uint64_t kMostMessages = 100;

struct Options {
    std::vector<std::string> files;
    std::string to;
    std::string output = "-";
    bool verbose = false;
};

// Shows what the converter has to tell, as much of it as a person reads.
class Messages {
  public:
    Messages(Context& context, bool verbose) : context_(context), verbose_(verbose) {}

    void show(const convert::Diagnostic& message) {
        using convert::Severity;
        if (message.severity == Severity::Error) context_.setBadInput();
        if (message.severity == Severity::Note && !verbose_) return;
        if (!verbose_ && ++shown_ > kMostMessages) {
            ++hidden_;
            return;
        }
        switch (message.severity) {
            case Severity::Error:
                context_.error(message.file, message.line, message.text);
                break;
            case Severity::Warning:
                context_.warning(message.file, message.line, message.text);
                break;
            case Severity::Note:
                context_.note(message.file, message.line, message.text);
                break;
        }
    }

    void finish() {
        if (hidden_ != 0)
            context_.warning(
                {}, 0, std::to_string(hidden_) + " more messages; --verbose shows all of them");
    }

  private:
    Context& context_;
    bool verbose_;
    std::uint64_t shown_ = 0;
    std::uint64_t hidden_ = 0;
};

std::optional<convert::CalendarFormat> targetOf(const std::string& name) {
    if (name == "ics") return convert::CalendarFormat::ICalendar;
    if (name == "vcs") return convert::CalendarFormat::VCalendar10;
    return std::nullopt;
}

template <class Input>
convert::ByteSource sourceOf(Input& input) {
    return [&input](char* bytes, std::size_t room) { return input.read(bytes, room); };
}

// Zones may be described behind the entries that use them: they are looked for first, in whatever
// can be read twice. Only iCalendar has them, so a phone's file may flow through.
void convertFile(Context& context, convert::Converter& converter, const std::string& name) {
    InputFile input(context, name);
    Progress progress(context, input.name(), input.size());
    const auto update = [&](std::uint64_t done) { progress.update(done); };
    if (input.size() != 0) {
        InputFile first(context, name);
        converter.collectZones(sourceOf(first));
        converter.convert(sourceOf(input), input.name(), update);
        return;
    }
    Spool spool(input);
    const bool isPhoneFile = spool.head().find("VERSION:1.0") != std::string_view::npos;
    if (!isPhoneFile && spool.keepAll()) {
        converter.collectZones(sourceOf(spool));
        spool.rewind();
    }
    converter.convert(sourceOf(spool), input.name(), update);
}

void run(Context& context, const Options& options) {
    Messages messages(context, options.verbose);
    OutputFile output(context, options.output);
    convert::Converter converter(
        output.stream(), targetOf(options.to),
        [&](const convert::Diagnostic& message) { messages.show(message); });
    std::vector<std::string> files = options.files;
    if (files.empty()) files.emplace_back("-");
    bool anyRead = false;
    for (const std::string& name : files) {
        try {
            convertFile(context, converter, name);
            anyRead = true;
        } catch (const InputError& problem) {
            // The other files are converted all the same.
            context.error(problem.what());
        }
    }
    // An older result is worth more than an empty one.
    if (anyRead || converter.counts().entries != 0) {
        converter.finish();
        output.commit();
    }
    messages.finish();
}

}  // namespace

void addConvertCommand(CLI::App& app, Context& context) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand(
        "convert", "Converts vCalendar 1.0 files to iCalendar, and iCalendar to vCalendar 1.0");
    command->add_option("FILE", options->files, "calendar files; - is standard input, the default")
        ->option_text("[FILE...|-]");
    command
        ->add_option("--to", options->to,
                     "ics for iCalendar, vcs for vCalendar 1.0; the other format than the first "
                     "file's when it is missing")
        ->check(CLI::IsMember({"ics", "vcs"}))
        ->option_text("ics|vcs");
    command
        ->add_option("-o,--output", options->output,
                     "the file to write, whole or not at all; standard output when it is missing")
        ->option_text("FILE");
    command->add_flag("-v,--verbose", options->verbose,
                      "tell also how untidy input was read, and show every message");
    command->footer(
        "All events, to-dos and notes of all files go into one. Nothing is left out in silence: "
        "what "
        "the\nother format cannot hold is kept as an X- property or named in a warning.\n\n"
        "Examples:\n"
        "  qelutil convert phone.vcs -o calendar.ics\n"
        "  qelutil convert --to vcs work.ics home.ics > phone.vcs\n"
        "  cat *.vcs | qelutil convert - -o all.ics");
    command->callback([options, &context] { run(context, *options); });
}

}  // namespace qel::cli
