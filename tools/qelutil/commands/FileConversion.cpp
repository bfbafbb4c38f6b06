#include "commands/FileConversion.h"

#include <ostream>
#include <utility>

#include "base/EntryJson.h"
#include "commands/CalendarInput.h"

namespace qel::cli {

namespace {

// Where the calendar goes: nowhere in a dry run.
qelcal::Converter::Output writeTo(OutputFile* output) {
    if (output == nullptr) return {};
    return [output](const char* bytes, std::size_t size) {
        output->stream().write(bytes, static_cast<std::streamsize>(size));
    };
}

void convertInto(AloneFile& alone, Context& context, const ConvertOptions& options,
                 const CalendarFile& file, const std::string& place, qelcal::Report* report,
                 const OnProgress& onProgress) {
    // The format is known when the file is read; its name is a good guess until then.
    const std::string guess = !options.to.empty()                     ? options.to
                              : calendarExtension(file.name) == "ics" ? "vcs"
                                                                      : "ics";
    if (!options.dryRun) alone.result = OutputFile::inFolder(context, place + "." + guess);
    qelcal::Converter converter(targetOf(options.to), writeTo(alone.result.get()));
    listenTo(converter, options, [&alone]() -> FileOutcome& { return alone.outcome; });
    if (report != nullptr) converter.reportTo(report);
    alone.problem = convertFile(options, converter, alone.outcome, [&] {
        readFile(context, converter, file, alone.outcome, options.fileThreads, onProgress);
    });
    if (!alone.problem.empty()) return;
    alone.toPhone = converter.target() == QELCAL_VCALENDAR;
    if (alone.result == nullptr) return;
    converter.finish();
    alone.result->sync();
}

}  // namespace

qelcal_format targetOf(const std::string& name) {
    if (name == "ics") return QELCAL_ICALENDAR;
    return name == "vcs" ? QELCAL_VCALENDAR : QELCAL_OTHER;
}

void choose(qelcal::Converter& converter, const ConvertOptions& options) {
    converter.choose(QELCAL_CHOOSE_ZONE, options.zone);
    converter.choose(QELCAL_CHOOSE_CHARSET, options.charset);
    converter.choose(QELCAL_CHOOSE_COUNT_MEANS, options.countMeans);
    converter.choose(QELCAL_CHOOSE_ONLY, options.only);
    converter.choose(QELCAL_CHOOSE_DISTINCT_UIDS, options.distinctUids ? "yes" : "no");
}

void listenTo(qelcal::Converter& converter, const ConvertOptions& options,
              const std::function<FileOutcome&()>& current) {
    choose(converter, options);
    converter.threads(static_cast<int>(options.fileThreads));
    converter.onNoteHandle([current, verbose = options.verbose](const qelcal_note* note) {
        current().take(note, verbose);
    });
    if (!options.json) return;
    converter.onEntry([current](const qelcal::Converted& each) {
        current().entryList.push_back(entryJson(each.entry));
    });
}

void readFile(Context& context, qelcal::Converter& converter, const CalendarFile& file,
              FileOutcome& outcome, unsigned threads, const OnProgress& onProgress) {
    CalendarInput input(context, file);
    if (threads > 1) input.useLargePieces();
    converter.beginFile(input.name());
    outcome.begun = true;
    try {
        input.read([&](const char* bytes, std::size_t size,
                       std::uint64_t) { converter.scan(bytes, size); },
                   [&](const char* bytes, std::size_t size, std::uint64_t done) {
                       converter.write(bytes, size);
                       onProgress(done);
                   });
    } catch (const OutputError&) {
        throw;
    } catch (const InputError&) {
        // What was read before the failure is converted.
        converter.endFile();
        throw;
    }
    converter.endFile();
}

std::string convertFile(const ConvertOptions& options, qelcal::Converter& converter,
                        FileOutcome& outcome, const std::function<void()>& read) {
    const qelcal_counts before = converter.counts();
    const auto count = [&] { outcome.counts = difference(converter.counts(), before); };
    std::string problem;
    try {
        read();
        if (converter.counts().entries == before.entries)
            problem = outcome.file + (options.only.empty()
                                          ? ": there is no event, to-do or note in this calendar"
                                          : ": there is no entry of those that --only names");
    } catch (const OutputError&) {
        count();
        throw;
    } catch (const InputError& failure) {
        // The other files are converted all the same.
        problem = failure.what();
    } catch (...) {
        count();
        throw;
    }
    count();
    return problem;
}

qelcal::Converter IdleParts::take() {
    {
        const std::lock_guard guard(lock_);
        if (!parts_.empty()) {
            qelcal::Converter part = std::move(parts_.back());
            parts_.pop_back();
            return part;
        }
    }
    return whole_.part();
}

void IdleParts::give(qelcal::Converter part) {
    const std::lock_guard guard(lock_);
    parts_.push_back(std::move(part));
}

ReadFile readAhead(Context& context, IdleParts& parts, const CalendarFile& file) {
    ReadFile read;
    FileOutcome outcome;
    try {
        read.part.emplace(parts.take());
        readFile(context, *read.part, file, outcome, 1, [](std::uint64_t) {});
    } catch (...) {
        read.failure = std::current_exception();
    }
    read.begun = outcome.begun;
    return read;
}

void takeRead(qelcal::Converter& converter, ReadFile& file, FileOutcome& outcome) {
    outcome.begun = file.begun;
    if (file.begun) converter.join(*file.part);
    if (file.failure != nullptr) std::rethrow_exception(file.failure);
}

AloneFile convertAlone(Context& context, const ConvertOptions& options, const CalendarFile& file,
                       const std::string& name, const std::string& place, qelcal::Report* report,
                       const OnProgress& onProgress) {
    AloneFile alone;
    try {
        alone.outcome.file = name;
        convertInto(alone, context, options, file, place, report, onProgress);
    } catch (...) {
        alone.failure = std::current_exception();
    }
    return alone;
}

}  // namespace qel::cli
