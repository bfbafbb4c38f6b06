#include "commands/ConvertRun.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <system_error>
#include <utility>

#include "QelCalendar/Convert.h"
#include "base/CalendarFiles.h"
#include "base/CalendarPieces.h"
#include "base/Failure.h"
#include "base/Files.h"
#include "base/Json.h"
#include "base/Moment.h"
#include "base/Progress.h"
#include "base/Text.h"
#include "base/Workers.h"
#include "commands/BesidePlaces.h"
#include "commands/ConvertMessages.h"
#include "commands/ConvertSummary.h"
#include "commands/FileConversion.h"
#include "commands/ReportFile.h"
#include "platform/Console.h"
#include "platform/RandomName.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

constexpr char kStrictReason[] = "there are warnings or errors, and --strict allows none";

// A larger file whose entries are needed in its turn, for a report or a result of several files, is
// read then, so that memory stays bounded.
constexpr std::uint64_t kMostHeld = std::uint64_t{512} << 10;

std::string inFolder(const std::string& folder, const std::string& name) {
    const bool ends = folder.ends_with('/') || folder.ends_with('\\');
    return folder + (ends ? "" : "/") + name;
}

// The report and the file that it goes to.
class RunReport {
  public:
    RunReport(Context& context, const std::string& name)
        : file_(context, name), page_([this](const char* bytes, std::size_t size) {
              file_.addToBody({bytes, size});
          }) {
        page_.weekStart(platform::firstWeekday());
    }

    [[nodiscard]] qelcal::Report& page() { return page_; }

    void finish(const std::string& remark, const std::vector<FileOutcome>& outcomes) {
        for (std::size_t i = 0; i < outcomes.size(); ++i)
            page_.result(i, outcomes[i].output, outcomes[i].reason);
        std::string head;
        page_.finish(remark,
                     [&](const char* bytes, std::size_t size) { head.append(bytes, size); });
        file_.addToHead(head);
        file_.commit();
    }

  private:
    ReportFile file_;
    qelcal::Report page_;
};

// A file of this name in a new temporary folder, which only this person can read.
std::string temporaryPlace(const std::string& name) {
    const fs::path folder = fs::temp_directory_path() / platform::randomName().substr(1);
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::owner_all);
    return nameOf(folder / pathOf(name).filename());
}

class ConvertRun {
  public:
    ConvertRun(Context& context, const ConvertOptions& options)
        : context_(context), options_(options), messages_(context, options.verbose) {}

    void run() {
        CalendarFiles found =
            calendarFiles(context_, options_.files, options_.outputDir, options_.charset);
        files_ = std::move(found.files);
        others_ = std::move(found.others);
        if (options_.to.empty()) options_.to = usualTarget();
        protectInputs();
        nameOthers();
        openReport();
        summary_ =
            found.anyFolder || files_.size() > 1 || eachAlone() || options_.dryRun || report_;
        if (std::none_of(files_.begin(), files_.end(),
                         [this](const CalendarFile& each) { return isAhead(each, !eachAlone()); }))
            options_.fileThreads = options_.threads;
        std::uint64_t size = 0;
        for (const CalendarFile& each : files_) size += each.size;
        Progress progress(context_, "", size);
        progress_ = &progress;
        if (eachAlone())
            oneByOne();
        else if (!files_.empty())
            joined();
        progress_ = nullptr;
        progress.hide();
        showSummary();
    }

  private:
    // True when every file has a result of its own.
    [[nodiscard]] bool eachAlone() const { return options_.beside || !options_.outputDir.empty(); }

    // The format that a person expects who names none: what the result's name says, or calendars of
    // today from a phone's files, whatever lies beside them. Else the other one than a file's own.
    [[nodiscard]] std::string usualTarget() const {
        if (!eachAlone() && !isStandardOutput(options_.output)) {
            std::string named = calendarExtension(options_.output);
            if (!named.empty()) return named;
        }
        const bool fromPhone =
            files_.size() > 1 &&
            std::any_of(files_.begin(), files_.end(), [](const CalendarFile& each) {
                return calendarExtension(each.name) == "vcs";
            });
        return fromPhone ? "ics" : "";
    }

    void openReport() {
        reportName_ = options_.report;
        if (reportName_.empty() && options_.beside && !files_.empty() && !options_.dryRun) {
            const CalendarFile& first = files_.front();
            std::error_code unknown;
            // Nothing is made for a file that is not there.
            if (first.root.empty() && !fs::exists(pathOf(first.name), unknown) &&
                !isStandardInput(first.name))
                return;
            reportName_ = beside_.reportFor(first);
            try {
                makeFolderOf(reportName_);
                report_.emplace(context_, reportName_);
            } catch (const OutputError&) {
                if (!options_.open) throw;
                // Who sees no terminal learns from the report alone that the folder takes nothing.
                reportName_ = temporaryPlace(reportName_);
                report_.emplace(context_, reportName_);
            }
        } else if (!reportName_.empty()) {
            report_.emplace(context_, reportName_);
        }
    }

    // No result may take the place of a file that is read, whatever its name there.
    void protectInputs() {
        for (const CalendarFile& each : files_)
            if (isStandardInput(each.name))
                context_.setInput(platform::identityOfInput());
            else
                context_.setInput(platform::identityOf(pathOf(each.name)));
        const auto refuse = [](const std::string& what) {
            throw UsageError(what + " is itself one of the files to convert; name another file");
        };
        if (!options_.report.empty() && context_.isInput(pathOf(options_.report)))
            refuse("the file of --report, " + options_.report + ",");
        if (eachAlone() || options_.dryRun) return;
        if (!isStandardOutput(options_.output) && context_.isInput(pathOf(options_.output)))
            refuse("the file of --output, " + options_.output + ",");
        if (isStandardOutput(options_.output) && context_.outputIsInput())
            refuse("what standard output goes to");
    }

    // What is not taken for a calendar; one under another name may be missed.
    void nameOthers() {
        for (const OtherFile& each : others_) {
            const std::string text = "is not converted: it is " + each.kindText();
            if (each.kind == OtherFile::Kind::Calendar)
                context_.warning(each.name, 0, text);
            else if (options_.verbose)
                context_.note(each.name, 0, text);
        }
    }

    [[nodiscard]] static std::string shownName(const CalendarFile& file) {
        return isStandardInput(file.name) ? kStandardInput : file.name;
    }

    void showTurn(const CalendarFile& file) {
        progress_->relabel(files_.size() == 1
                               ? shownName(file)
                               : std::to_string(outcomes_.size() + 1) + "/" +
                                     std::to_string(files_.size()) + " " + shownName(file));
    }

    // The report has every file, also those that no converter has seen.
    void endFile() {
        if (report_ && !outcomes_.back().begun) report_->page().addFile(outcomes_.back().file);
    }

    // What became of the file that was begun last. A file with a reason is in no result.
    void settle(const std::string& output, const std::string& reason) {
        outcomes_.back().output = output;
        outcomes_.back().reason = reason;
    }

    void settleFailed(const std::string& problem) {
        context_.error(problem);
        settle({}, problem);
    }

    [[nodiscard]] bool allClean() const {
        return std::all_of(
            outcomes_.begin(), outcomes_.end(),
            [](const FileOutcome& each) { return each.clean(); });
    }

    // Whether a file is done before its turn. `held`: it waits for that in memory. What has no size
    // may be a pipe, whose bytes come when they come.
    [[nodiscard]] bool isAhead(const CalendarFile& file, bool held) const {
        return options_.threads > 1 && files_.size() > 1 && file.size != 0 &&
               (!held || file.size <= kMostHeld);
    }

    // Why one of the files has no part in the result, or nothing; `failure`: why there is to be no
    // result at all. `read`: what was read of it before its turn.
    std::string joinFile(qelcal::Converter& converter, const CalendarFile& file,
                         std::optional<ReadFile>& read, std::string& failure) {
        const std::uint64_t before = std::exchange(sizeDone_, sizeDone_ + file.size);
        FileOutcome& outcome = outcomes_.back();
        std::string problem;
        try {
            problem = convertFile(
                options_, converter, outcome,
                [&] {
                    if (read) return takeRead(converter, *read, outcome);
                    readFile(
                        context_, converter, file, outcome, options_.fileThreads,
                        [&](std::uint64_t done) { progress_->update(before + done); });
                });
        } catch (...) {
            failure = currentFailure(context_, outcome.file);
        }
        messages_.add(outcome);
        if (!failure.empty()) return failure;
        if (!problem.empty()) context_.error(problem);
        // Entries that were converted before a failure are in the result.
        return outcome.counts.entries != 0 ? "" : problem;
    }

    // Gives the reason why there is to be no result of all files, or nothing.
    std::string joinAll(qelcal::Converter& converter) {
        std::vector<std::optional<ReadFile>> read(files_.size());
        IdleParts parts(converter);
        const auto readNext = [&](std::size_t number) {
            if (isAhead(files_[number], true))
                read[number] = readAhead(context_, parts, files_[number]);
        };
        std::optional<Workers> workers;
        if (options_.threads > 1 && files_.size() > 1)
            workers.emplace(options_.threads, files_.size(), readNext);
        const std::string name = isStandardOutput(options_.output) ? "" : options_.output;
        std::string failure;
        for (std::size_t i = 0; i < files_.size(); ++i) {
            showTurn(files_[i]);
            outcomes_.emplace_back().file = shownName(files_[i]);
            // After a failure nothing more is converted.
            if (workers && failure.empty())
                workers->take([&] { progress_->update(sizeDone_); });
            else
                workers.reset();
            const std::string reason =
                failure.empty() ? joinFile(converter, files_[i], read[i], failure) : failure;
            if (read[i] && failure.empty() && read[i]->failure == nullptr)
                parts.give(std::move(*read[i]->part));
            read[i].reset();
            settle(name, reason);
            endFile();
        }
        return failure;
    }

    // `held`: what still has to go to the file.
    void writeJoined(OutputFile& output, const std::string& held) {
        if (options_.split != 0)
            writePieces(held, output);
        else
            output.stream() << held;
        if (pieces_ < 2) output.commit();
    }

    // All files into one result.
    void joined() {
        std::unique_ptr<OutputFile> output;
        if (!options_.dryRun) output = std::make_unique<OutputFile>(context_, options_.output);
        // What may have to be taken back cannot flow to standard output.
        std::string held;
        const bool hold = output && (options_.split != 0 ||
                                     (options_.strict && isStandardOutput(options_.output)));
        const auto keep = [&held](const char* bytes, std::size_t size) {
            held.append(bytes, size);
        };
        const auto write = [&output](const char* bytes, std::size_t size) {
            output->stream().write(bytes, static_cast<std::streamsize>(size));
        };
        qelcal::Converter::Output sink;  // none in a dry run
        if (hold)
            sink = keep;
        else if (output)
            sink = write;
        qelcal::Converter converter(targetOf(options_.to), std::move(sink));
        listenTo(converter, options_, [this]() -> FileOutcome& { return outcomes_.back(); });
        if (report_) converter.reportTo(&report_->page());
        std::string failure = joinAll(converter);
        messages_.finish();
        if (failure.empty()) failure = whyNothing(converter);
        if (failure.empty() && !options_.dryRun) {
            try {
                converter.finish();
                writeJoined(*output, held);
            } catch (...) {
                failure = currentFailure(context_,
                                         isStandardOutput(options_.output) ? "" : options_.output);
            }
        }
        if (!failure.empty()) nothingWritten(failure);
        for (const FileOutcome& each : outcomes_) showOutcome(each);
    }

    // Into the file itself where it is small enough; else beside it, all pieces or none of them.
    void writePieces(const std::string& calendar, OutputFile& whole) {
        const std::vector<std::string> pieces = calendarPieces(calendar, options_.split);
        pieces_ = pieces.size();
        if (pieces_ < 2) {
            whole.stream() << calendar;
            return;
        }
        const fs::path name = pathOf(options_.output);
        const std::string stem = nameOf(name.parent_path() / name.stem());
        const std::string first = stem + "-1" + nameOf(name.extension());
        std::vector<std::unique_ptr<OutputFile>> files;
        for (std::size_t i = 0; i < pieces_; ++i) {
            const std::string file = stem + "-" + std::to_string(i + 1) + nameOf(name.extension());
            files.push_back(std::make_unique<OutputFile>(context_, file));
            files.back()->stream() << pieces[i];
            if (pieces[i].size() > options_.split)
                context_.warning(file, 0,
                                 "is larger than --split says: its entries belong together");
        }
        for (const auto& file : files) file->commit();
        for (FileOutcome& each : outcomes_)
            if (each.reason.empty()) each.output = first;
        context_.say("written in " + std::to_string(pieces_) + " pieces: " + first + " and so on");
    }

    // Why there is to be no result of all files; nothing when there is one.
    [[nodiscard]] std::string whyNothing(const qelcal::Converter& converter) const {
        // An older result is worth more than an empty one.
        if (converter.counts().entries == 0) return "there is no entry to write";
        const bool clean = allClean() && context_.exitCode() == kExitFine;
        return options_.strict && !clean ? kStrictReason : "";
    }

    void nothingWritten(const std::string& reason) {
        std::error_code unknown;
        const bool isThere =
            !isStandardOutput(options_.output) && fs::exists(pathOf(options_.output), unknown);
        context_.error(reason + "; " +
                       (options_.dryRun ? "nothing would be written"
                        : isThere       ? options_.output + " is left as it was"
                                        : "nothing is written"));
        for (FileOutcome& each : outcomes_) {
            each.output.clear();
            if (each.reason.empty()) each.reason = reason;
        }
    }

    // A file that has a result of its own, before its turn and in it.
    struct Turn {
        std::string place;           // of its result, without the extension
        std::exception_ptr noPlace;  // why there is none
        bool ahead = false;          // it may be converted before its turn
        std::optional<AloneFile> alone;
        std::optional<qelcal::Report> part;  // of the report
    };

    // A result for each file.
    void oneByOne() {
        std::vector<Turn> turns = planTurns();
        std::atomic<std::uint64_t> read{0};
        const auto convertAhead = [&](std::size_t number) {
            Turn& turn = turns[number];
            if (!turn.ahead) return;
            std::uint64_t before = 0;
            turn.alone = convert(files_[number], turn, [&](std::uint64_t done) {
                read += done - std::exchange(before, done);
            });
        };
        const bool many = options_.threads > 1 && files_.size() > 1;
        std::optional<Workers> workers;
        if (many) workers.emplace(options_.threads, files_.size(), convertAhead);
        for (std::size_t i = 0; i < files_.size(); ++i) {
            showTurn(files_[i]);
            if (workers) workers->take([&] { progress_->update(read); });
            Turn turn = std::move(turns[i]);
            if (!turn.alone && turn.noPlace == nullptr)
                turn.alone =
                    convert(files_[i], turn, [&, before = read.load()](std::uint64_t done) {
                        progress_->update(before + done);
                    });
            takeTurn(files_[i], turn);
            progress_->update(read);
        }
        messages_.finish();
    }

    std::vector<Turn> planTurns() {
        std::vector<Turn> turns(files_.size());
        for (std::size_t i = 0; i < files_.size(); ++i) {
            Turn& turn = turns[i];
            try {
                turn.place = placeOf(files_[i]);
            } catch (const InputError&) {
                turn.noPlace = std::current_exception();
                continue;
            }
            turn.ahead = isAhead(files_[i], report_ || options_.json);
        }
        return turns;
    }

    // Before its turn, in any thread, or in it.
    AloneFile convert(const CalendarFile& file, Turn& turn, const OnProgress& onProgress) {
        qelcal::Report* report = nullptr;
        if (report_ && turn.ahead)
            report = &turn.part.emplace(report_->page().part());
        else if (report_)
            report = &report_->page();
        return convertAlone(context_, options_, file, shownName(file), turn.place, report,
                            onProgress);
    }

    void takeTurn(const CalendarFile& file, Turn& turn) {
        FileOutcome& outcome = outcomes_.emplace_back();
        if (turn.alone)
            outcome = std::move(turn.alone->outcome);
        else
            outcome.file = shownName(file);
        messages_.add(outcome);
        try {
            if (turn.noPlace != nullptr) std::rethrow_exception(turn.noPlace);
            nameResult(turn);
        } catch (...) {
            settleFailed(currentFailure(context_, outcome.file));
        }
        showOutcome(outcome);
        if (turn.part && outcome.begun) report_->page().join(*turn.part);
        endFile();
    }

    void nameResult(Turn& turn) {
        AloneFile& alone = *turn.alone;
        if (alone.failure != nullptr) std::rethrow_exception(alone.failure);
        if (!alone.problem.empty()) return settleFailed(alone.problem);
        const FileOutcome& outcome = outcomes_.back();
        if (options_.strict && !outcome.clean())
            throw InputError(outcome.file + ": is left out: " + kStrictReason);
        const std::string name = nameAt(turn.place, alone.toPhone ? ".vcs" : ".ics");
        checkFree(outcome.file, name);
        settle(name, {});
        if (options_.dryRun) return;
        makeFolderOf(name);
        alone.result->commitAs(name);
    }

    // The name of the file's result without its extension.
    std::string placeOf(const CalendarFile& file) {
        if (options_.beside) return beside_.placeOf(file);
        if (file.place.empty())
            throw InputError(options_.outputDir +
                             ": is a directory, and standard input has no name for a file in it; "
                             "name the file to write");
        return inFolder(options_.outputDir, file.place);
    }

    [[nodiscard]] std::string nameAt(const std::string& place, const std::string& extension) const {
        if (!options_.beside) return place + extension;
        std::string name = BesidePlaces::freeName(place, extension);
        // In a dry run the results so far are not there.
        for (int number = 2; taken_.contains(lowerCase(name)); ++number)
            name = place + "-" + std::to_string(number) + extension;
        return name;
    }

    static void makeFolderOf(const std::string& name) {
        const fs::path folder = pathOf(name).parent_path();
        if (folder.empty()) return;
        std::error_code failure;
        fs::create_directories(folder, failure);
        if (failure && !fs::is_directory(folder))
            throw InputError(nameOf(folder) + ": this folder cannot be made: " + failure.message());
    }

    // Nothing is overwritten in silence, and no input ever.
    void checkFree(const std::string& input, const std::string& name) {
        const auto [place, isNew] = taken_.try_emplace(lowerCase(name), input);
        if (!isNew)
            throw InputError(input + ": is left out: " + name + " is already the result of " +
                             place->second + "; convert one of them to another folder");
        std::error_code unknown;
        const fs::path path = pathOf(name);
        if (!fs::exists(fs::symlink_status(path, unknown))) return;
        if (context_.isInput(path))
            throw InputError(input + ": is left out: " + name +
                             " is itself one of the files to convert; name another folder");
        if (!options_.overwrite)
            throw InputError(input + ": is left out: " + name +
                             " exists already; name another folder, or say --overwrite");
    }

    // Of a dry run.
    void showOutcome(const FileOutcome& outcome) {
        if (!options_.dryRun || options_.json) return;
        progress_->hide();
        const qelcal_counts& counts = outcome.counts;
        context_.out << printable(outcome.file);
        if (!outcome.reason.empty()) {
            context_.out << ": would be left out\n";
            return;
        }
        context_.out << " -> "
                     << printable(outcome.output.empty() ? "standard output" : outcome.output)
                     << ": " << counts.entries << (counts.entries == 1 ? " entry, " : " entries, ")
                     << counts.changed << " changed, " << counts.lost << " not carried over\n";
    }

    void showSummary() {
        if (options_.json) {
            Json document{{"dryRun", options_.dryRun},
                          {"strict", options_.strict},
                          {"files", Json::array()},
                          {"otherFiles", Json::array()},
                          {"messagesNotShown", messages_.hidden()},
                          {"summary", summaryJson(outcomes_, others_)}};
            for (const FileOutcome& each : outcomes_)
                document["files"].push_back(outcomeJson(each));
            for (const OtherFile& each : others_)
                document["otherFiles"].push_back(
                    {{"file", jsonText(each.name)}, {"kind", each.kindName()}});
            writeJson(context_.out, "convert", document);
        }
        finishReport();
        if (!summary_) return;
        context_.say((options_.dryRun ? "nothing written; would be: " : "") +
                     summaryText(outcomes_));
        if (!others_.empty())
            context_.say("not converted: " + othersText(others_) +
                         (options_.verbose ? "" : "; --verbose lists them"));
        for (const std::string& each : messages_.worthALook())
            context_.say("look first at " + each);
        if (options_.beside && !options_.dryRun) sayWhere();
        showReport();
    }

    // The results were not named by the person.
    void sayWhere() const {
        constexpr std::size_t kMost = 5;
        const std::vector<std::string> names = written();
        for (std::size_t i = 0; i < names.size() && i < kMost; ++i)
            context_.say("written: " + names[i]);
        if (names.size() > kMost)
            context_.say("written: " + std::to_string(names.size() - kMost) + " more " +
                         (files_.front().root.empty() ? "beside their files" : "in that folder"));
        if (report_) context_.say("what became of each entry: " + reportName_);
    }

    void showReport() {
        if (!report_ || !(options_.open || (options_.beside && platform::ownsItsWindow()))) return;
        if (!platform::showFile(pathOf(reportName_)))
            context_.warning({}, 0,
                             "no program shows pages here; open " + reportName_ + " in a browser");
    }

    [[nodiscard]] std::vector<std::string> written() const {
        std::vector<std::string> names;
        for (const FileOutcome& each : outcomes_)
            if (!each.output.empty()) names.push_back(each.output);
        return names;
    }

    void finishReport() {
        // Nobody asked for the report of `--beside`, and nothing was converted. Who sees no
        // terminal learns from it why.
        const bool needless = options_.report.empty() && !options_.open && written().empty();
        if (needless) report_.reset();
        try {
            if (report_) report_->finish(remark(), outcomes_);
        } catch (...) {
            context_.error(currentFailure(context_, reportName_));
            report_.reset();
        }
    }

    [[nodiscard]] std::string remark() const {
        std::string text = "What became of the calendars that qelutil " QELUTIL_VERSION
                           " converted on " +
                           momentWords(readMoment("today")) + ".";
        if (options_.dryRun) text = "What would become of the calendars: this was a dry run.";
        if (options_.strict) text += " With --strict, what has warnings or errors is not written.";
        if (!options_.zone.empty())
            text += " Times without a zone are those of " + options_.zone + ".";
        if (!options_.charset.empty())
            text += " Texts without a label are in " + options_.charset + ".";
        if (!options_.countMeans.empty())
            text += " The number after # in a rule means " + options_.countMeans + ".";
        if (!options_.only.empty()) text += " Only these are taken: " + options_.only + ".";
        if (options_.distinctUids) text += " Entries that share a UID by mistake have new ones.";
        if (!others_.empty()) text += " Not converted: " + othersText(others_) + ".";
        return text;
    }

    Context& context_;
    ConvertOptions options_;
    ConvertMessages messages_;
    BesidePlaces beside_;
    std::string reportName_;
    std::optional<RunReport> report_;
    std::vector<CalendarFile> files_;
    std::vector<OtherFile> others_;
    std::vector<FileOutcome> outcomes_;  // of each file that was begun
    Progress* progress_ = nullptr;
    std::uint64_t sizeDone_ = 0;
    bool summary_ = false;
    std::size_t pieces_ = 0;                    // of --split
    std::map<std::string, std::string> taken_;  // results of this run, and whose they are
};

// A value that cannot be chosen is found before any file is opened.
void checkChoices(const ConvertOptions& options) {
    try {
        qelcal::Converter nothing(QELCAL_OTHER, {});
        choose(nothing, options);
    } catch (const qelcal::Error& refused) {
        throw UsageError(refused.what());
    }
}

}  // namespace

void runConvert(Context& context, ConvertOptions options) {
    if (options.files.empty()) options.files.emplace_back("-");
    std::error_code unknown;
    const bool endsAsFolder = options.output.ends_with('/') || options.output.ends_with('\\');
    if (!isStandardOutput(options.output) &&
        (endsAsFolder || fs::is_directory(pathOf(options.output), unknown)))
        options.outputDir = std::exchange(options.output, "-");
    if (!options.report.empty() && isStandardOutput(options.report))
        throw UsageError("--report writes a file; name it");
    if (!options.report.empty() && isOneFile(options.report, options.output))
        throw UsageError("--report and --output name the same file");
    if (options.overwrite && options.outputDir.empty() && isStandardOutput(options.output))
        throw UsageError("--overwrite goes with --output-dir");
    if (options.beside && !isStandardOutput(options.output))
        throw UsageError("--beside and --output exclude each other");
    if (options.open && options.report.empty() && !options.beside)
        throw UsageError("--open shows the page of --report; name it");
    if (options.json && !options.dryRun && options.outputDir.empty() && !options.beside &&
        isStandardOutput(options.output))
        throw UsageError(
            "--json prints to standard output, where the calendar goes; give --output, "
            "--output-dir or --dry-run with it");
    if (options.split != 0 && (!options.outputDir.empty() || isStandardOutput(options.output)))
        throw UsageError("--split needs a file by --output, whose name its pieces have");
    checkChoices(options);
    ConvertRun(context, options).run();
}

}  // namespace qel::cli
