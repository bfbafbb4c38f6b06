// One file of `qelutil convert` through a converter, apart from everything else of the run: nothing
// is shown, and no result has its name yet. Any thread, each file in one.
#ifndef QELUTIL_COMMANDS_FILECONVERSION_H
#define QELUTIL_COMMANDS_FILECONVERSION_H

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "QelCalendar/Convert.h"
#include "base/CalendarFiles.h"
#include "base/Files.h"
#include "commands/ConvertRun.h"
#include "commands/ConvertSummary.h"

namespace qel::cli {

// The format that --to names, QELCAL_OTHER for none.
[[nodiscard]] qelcal_format targetOf(const std::string& name);

// Gives the converter what the person has chosen.
void choose(qelcal::Converter& converter, const ConvertOptions& options);

// Adds the notes and entries of `converter` to the outcome that `current` gives, that of the file
// which is read.
void listenTo(qelcal::Converter& converter, const ConvertOptions& options,
              const std::function<FileOutcome&()>& current);

// Receives how many bytes of the file are read.
using OnProgress = std::function<void(std::uint64_t done)>;

// Reads `file` into `converter`; `outcome` has its name. Throws InputError when it cannot be read;
// what was read before is converted. `threads` of the converter work on it.
void readFile(Context& context, qelcal::Converter& converter, const CalendarFile& file,
              FileOutcome& outcome, unsigned threads, const OnProgress& onProgress);

// What `read`, which is one of those here, converts of a file; `outcome` gets its counts. Gives the
// reason why the file has no part in the result, or nothing; throws what ends the whole result.
[[nodiscard]] std::string convertFile(const ConvertOptions& options, qelcal::Converter& converter,
                                      FileOutcome& outcome, const std::function<void()>& read);

// A file that is read before its turn, for a result of several files.
struct ReadFile {
    std::optional<qelcal::Converter> part;  // of the converter
    bool begun = false;                     // as FileOutcome has it
    std::exception_ptr failure;             // why not all of it is read
};

// The parts of a converter that wait for the next file: they know the zones of the last one. Any
// thread.
class IdleParts {
  public:
    explicit IdleParts(const qelcal::Converter& whole) : whole_(whole) {}
    [[nodiscard]] qelcal::Converter take();
    void give(qelcal::Converter part);

  private:
    const qelcal::Converter& whole_;
    std::mutex lock_;
    std::vector<qelcal::Converter> parts_;
};

// Throws nothing.
[[nodiscard]] ReadFile readAhead(Context& context, IdleParts& parts, const CalendarFile& file);
// Converts it. Throws as readFile() does.
void takeRead(qelcal::Converter& converter, ReadFile& file, FileOutcome& outcome);

// A file that has a result of its own, once it is converted.
struct AloneFile {
    FileOutcome outcome;
    std::string problem;                 // why it has no result
    std::exception_ptr failure;          // the same, where it is not about the file itself
    std::unique_ptr<OutputFile> result;  // null in a dry run
    bool toPhone = false;                // the result is a vCalendar
};

// Converts `file`, of that name in messages, to a result at `place`, which has no extension yet.
// `report` may be null. Throws nothing.
[[nodiscard]] AloneFile convertAlone(Context& context, const ConvertOptions& options,
                                     const CalendarFile& file, const std::string& name,
                                     const std::string& place, qelcal::Report* report,
                                     const OnProgress& onProgress);

}  // namespace qel::cli

#endif
