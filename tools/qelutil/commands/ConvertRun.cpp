#include "commands/ConvertRun.h"

#include <filesystem>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/CalendarFiles.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Progress.h"
#include "base/Spool.h"
#include "calendar/base/Text.h"
#include "calendar/converter/Converter.h"
#include "calendar/report/ConversionReport.h"
#include "calendar/report/Outcome.h"
#include "commands/ConvertMessages.h"
#include "commands/ConvertSummary.h"
#include "commands/ReportFile.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

using calendar::CalendarFormat;

constexpr char kStrictReason[] = "there are warnings or errors, and --strict wants none";

std::optional<CalendarFormat> targetOf(const std::string& name) {
    if (name == "ics") return CalendarFormat::ICalendar;
    if (name == "vcs") return CalendarFormat::VCalendar10;
    return std::nullopt;
}

template <class Input>
calendar::ByteSource sourceOf(Input& input) {
    return [&input](char* bytes, std::size_t room) { return input.read(bytes, room); };
}

bool isStandardStream(const std::string& name) {
    return name.empty() || name == "-";
}

std::string inFolder(const std::string& folder, const std::string& name) {
    const bool ends = folder.ends_with('/') || folder.ends_with('\\');
    return folder + (ends ? "" : "/") + name;
}

// Equal for names that differ in case alone, which some file systems do not distinguish.
std::string withoutCase(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return name;
}

// The report and the file that it goes to.
class Report {
  public:
    Report(Context& context, const std::string& name)
        : file_(context, name), page_([this](std::string_view text) { file_.addToBody(text); }) {}

    [[nodiscard]] calendar::ConversionReport& page() { return page_; }

    void finish(const std::string& remark, const std::vector<calendar::FileOutcome>& outcomes) {
        for (std::size_t i = 0; i < outcomes.size(); ++i)
            page_.settle(i, outcomes[i].output, outcomes[i].reason);
        page_.finish(remark, [this](std::string_view text) { file_.addToHead(text); });
        file_.commit();
    }

  private:
    ReportFile file_;
    calendar::ConversionReport page_;
};

class ConvertRun : private calendar::ConversionObserver {
  public:
    ConvertRun(Context& context, const ConvertOptions& options)
        : context_(context), options_(options), messages_(context, options.verbose) {
        if (!options.report.empty()) report_.emplace(context, options.report);
    }

    void run() {
        const CalendarFiles found = calendarFiles(context_, options_.files, options_.outputDir);
        files_ = found.files;
        summary_ = found.anyFolder || files_.size() > 1 || !options_.outputDir.empty() ||
                   options_.dryRun || report_;
        std::uint64_t size = 0;
        for (const CalendarFile& each : files_) size += each.size;
        Progress progress(context_, "", size);
        progress_ = &progress;
        if (!options_.outputDir.empty())
            oneByOne();
        else if (!files_.empty())
            joined();
        progress_ = nullptr;
        progress.hide();
        showSummary();
    }

  private:
    [[nodiscard]] calendar::NoteSink sink() {
        return [this](const calendar::Note& note) {
            tally_.note(note);
            if (messages_.show(note)) shown_.back().push_back(note);
            if (report_) report_->page().note(note);
        };
    }

    [[nodiscard]] bool wantsLines() const override { return report_.has_value(); }

    void entryConverted(const calendar::ConvertedEntry& converted) override {
        tally_.entryConverted(converted);
        if (report_) report_->page().entryConverted(converted);
    }

    void beginFile(const CalendarFile& file) {
        const std::string name = isStandardStream(file.name) ? kStandardInput : file.name;
        tally_.beginFile(name);
        shown_.emplace_back();
        if (report_) report_->page().beginFile(name);
        progress_->relabel(files_.size() == 1 ? name
                                              : std::to_string(shown_.size()) + "/" +
                                                    std::to_string(files_.size()) + " " + name);
    }

    void endFile() {
        if (report_) report_->page().endFile();
    }

    // What became of the file that was begun last. A file with a reason is in no result.
    void settle(const std::string& output, const std::string& reason) {
        tally_.settle(tally_.files().size() - 1, output, reason);
    }

    // Converts one file; the reason why it could not be read to its end, or nothing.
    std::string convertFile(calendar::Converter& converter, const CalendarFile& file) {
        converter.observe(this);
        const std::uint64_t before = std::exchange(sizeDone_, sizeDone_ + file.size);
        try {
            readFile(converter, file.name,
                     [&](std::uint64_t done) { progress_->update(before + done); });
            return {};
        } catch (const InputError& problem) {
            // The other files are converted all the same.
            context_.error(problem.what());
            return problem.what();
        }
    }

    // Zones may be described after the entries that use them, so that files which can be read twice
    // are searched for them first. Only iCalendar has them: a phone's file need not be held.
    void readFile(calendar::Converter& converter, const std::string& name,
                  const std::function<void(std::uint64_t)>& update) {
        InputFile input(context_, name);
        if (input.size() != 0) {
            InputFile first(context_, name);
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

    // All files into one result.
    void joined() {
        NoBytes noBytes;
        std::ostream nowhere(&noBytes);
        std::ostringstream held;
        std::optional<OutputFile> output;
        // What may have to be taken back cannot flow to standard output.
        const bool hold = options_.strict && isStandardStream(options_.output);
        if (!options_.dryRun) output.emplace(context_, options_.output);
        std::ostream& out = options_.dryRun ? nowhere : hold ? held : output->stream();
        calendar::Converter converter(out, targetOf(options_.to), sink());
        const std::string name = isStandardStream(options_.output) ? "" : options_.output;
        for (const CalendarFile& file : files_) {
            const std::uint64_t calendars = converter.counts().calendars;
            beginFile(file);
            std::string reason = convertFile(converter, file);
            if (reason.empty() && converter.counts().calendars == calendars)
                reason = "there is no calendar in it";
            // Entries that were converted before a failure are in the result.
            if (tally_.files().back().counts.converted != 0) reason.clear();
            settle(name, reason);
            endFile();
        }
        // An older result is worth more than an empty one.
        if (converter.counts().calendars == 0) {
            nothingWritten("there is no calendar to write");
        } else if (options_.strict &&
                   (!tally_.totals().counts.clean() || context_.exitCode() != kExitFine)) {
            nothingWritten(kStrictReason);
        } else if (!options_.dryRun) {
            converter.finish();
            if (hold) output->stream() << held.str();
            output->commit();
        }
        for (const calendar::FileOutcome& each : tally_.files()) showOutcome(each);
    }

    void nothingWritten(const std::string& reason) {
        context_.error(options_.dryRun ? reason + "; nothing would be written"
                       : isStandardStream(options_.output)
                           ? reason + "; nothing is written"
                           : reason + "; " + options_.output + " is left as it was");
        for (std::size_t i = 0; i < tally_.files().size(); ++i) {
            const std::string& known = tally_.files()[i].reason;
            tally_.settle(i, {}, known.empty() ? reason : known);
        }
    }

    // A result for each file.
    void oneByOne() {
        for (const CalendarFile& file : files_) {
            beginFile(file);
            try {
                convertAlone(file);
            } catch (const InputError& problem) {
                context_.error(problem.what());
                settle({}, problem.what());
            }
            showOutcome(tally_.files().back());
            endFile();
        }
    }

    void convertAlone(const CalendarFile& file) {
        if (file.place.empty())
            throw InputError(options_.outputDir +
                             ": is a directory, and standard input has no name for a file in it; "
                             "name the file to write");
        // The format is known when the file is read; its name is a good guess until then.
        const std::string guess = !options_.to.empty()                    ? options_.to
                                  : calendarExtension(file.name) == "ics" ? "vcs"
                                                                          : "ics";
        NoBytes noBytes;
        std::ostream nowhere(&noBytes);
        std::optional<OutputFile> output;
        if (!options_.dryRun) {
            makeFolderFor(file);
            output.emplace(context_, inFolder(options_.outputDir, file.place + "." + guess));
        }
        calendar::Converter converter(options_.dryRun ? nowhere : output->stream(),
                                      targetOf(options_.to), sink());
        std::string problem = convertFile(converter, file);
        if (problem.empty() && converter.counts().calendars == 0)
            problem = "there is no calendar in it";
        if (!problem.empty()) {
            settle({}, problem);
            return;
        }
        const calendar::FileOutcome& outcome = tally_.files().back();
        if (options_.strict && !outcome.counts.clean())
            throw InputError(outcome.file + ": is left out: " + kStrictReason);
        const bool toPhone = converter.target() == CalendarFormat::VCalendar10;
        const std::string name =
            inFolder(options_.outputDir, file.place + (toPhone ? ".vcs" : ".ics"));
        checkFree(outcome.file, name);
        settle(name, {});
        if (options_.dryRun) return;
        converter.finish();
        output->commitAs(name);
    }

    void makeFolderFor(const CalendarFile& file) {
        const fs::path folder = pathOf(inFolder(options_.outputDir, file.place)).parent_path();
        std::error_code failure;
        fs::create_directories(folder, failure);
        if (failure && !fs::is_directory(folder))
            throw InputError(options_.outputDir +
                             ": this folder cannot be made: " + failure.message());
    }

    // Nothing is overwritten in silence, and no input ever.
    void checkFree(const std::string& input, const std::string& name) {
        const auto [place, isNew] = taken_.try_emplace(withoutCase(name), input);
        if (!isNew)
            throw InputError(input + ": is left out: " + name + " is already the result of " +
                             place->second + "; convert one of them to another folder");
        std::error_code unknown;
        const fs::path path = pathOf(name);
        if (!fs::exists(path, unknown)) return;
        if (isInput(path))
            throw InputError(input + ": is left out: " + name +
                             " is itself one of the files to convert; name another folder");
        if (!options_.overwrite)
            throw InputError(input + ": is left out: " + name +
                             " exists already; name another folder, or say --overwrite");
    }

    bool isInput(const fs::path& path) {
        const auto key = [](const fs::path& each) {
            std::error_code unknown;
            const fs::path whole = fs::weakly_canonical(each, unknown);
            const std::u8string text = (unknown ? each : whole).generic_u8string();
            return withoutCase({text.begin(), text.end()});
        };
        if (inputs_.empty())
            for (const CalendarFile& each : files_) inputs_.insert(key(pathOf(each.name)));
        return inputs_.contains(key(path));
    }

    // Of a dry run.
    void showOutcome(const calendar::FileOutcome& outcome) {
        if (!options_.dryRun || options_.json) return;
        progress_->hide();
        const calendar::OutcomeCounts& counts = outcome.counts;
        context_.out << calendar::printable(outcome.file);
        if (!outcome.reason.empty()) {
            context_.out << ": would be left out\n";
            return;
        }
        context_.out << " -> "
                     << calendar::printable(outcome.output.empty() ? "standard output"
                                                                   : outcome.output)
                     << ": " << counts.entries << (counts.entries == 1 ? " entry, " : " entries, ")
                     << counts.changed << " changed, " << counts.lost << " not carried over\n";
    }

    void showSummary() {
        const calendar::Totals totals = tally_.totals();
        messages_.finish();
        if (options_.json) {
            Json document{{"dryRun", options_.dryRun},
                          {"strict", options_.strict},
                          {"files", Json::array()},
                          {"messagesNotShown", messages_.hidden()},
                          {"summary", summaryJson(totals)}};
            for (std::size_t i = 0; i < tally_.files().size(); ++i)
                document["files"].push_back(outcomeJson(tally_.files()[i], shown_[i]));
            writeJson(context_.out, document);
        }
        if (report_) report_->finish(remark(), tally_.files());
        if (summary_)
            context_.say((options_.dryRun ? "nothing written; would be: " : "") +
                         summaryText(totals));
    }

    [[nodiscard]] std::string remark() const {
        std::string text = "What became of the calendars that qelutil converted.";
        if (options_.dryRun) text = "What would become of the calendars: this was a dry run.";
        if (options_.strict) text += " With --strict, what has warnings or errors is not written.";
        return text;
    }

    Context& context_;
    const ConvertOptions& options_;
    ConvertMessages messages_;
    std::optional<Report> report_;
    std::vector<CalendarFile> files_;
    // Of each file that was begun: what became of it, and its notes that were shown.
    calendar::Tally tally_;
    std::vector<std::vector<calendar::Note>> shown_;
    Progress* progress_ = nullptr;
    std::uint64_t sizeDone_ = 0;
    bool summary_ = false;
    std::map<std::string, std::string> taken_;  // results of this run, and whose they are
    std::set<std::string> inputs_;
};

}  // namespace

void runConvert(Context& context, ConvertOptions options) {
    if (options.files.empty()) options.files.emplace_back("-");
    std::error_code unknown;
    const bool endsAsFolder = options.output.ends_with('/') || options.output.ends_with('\\');
    if (!isStandardStream(options.output) &&
        (endsAsFolder || fs::is_directory(pathOf(options.output), unknown)))
        options.outputDir = std::exchange(options.output, "-");
    if (options.report == "-") throw UsageError("--report writes a file; name it");
    if (!options.report.empty() && options.report == options.output)
        throw UsageError("--report and --output name the same file");
    if (options.overwrite && options.outputDir.empty())
        throw UsageError("--overwrite goes with --output-dir");
    if (options.json && !options.dryRun && options.outputDir.empty() &&
        isStandardStream(options.output))
        throw UsageError(
            "--json prints to standard output, where the calendar goes; give --output, "
            "--output-dir or --dry-run with it");
    ConvertRun(context, options).run();
}

}  // namespace qel::cli
