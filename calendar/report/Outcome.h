// What became of the files of a conversion, counted: for the summary, its JSON and the report. One
// thread.
#ifndef QEL_CALENDAR_REPORT_OUTCOME_H
#define QEL_CALENDAR_REPORT_OUTCOME_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "calendar/converter/Converter.h"

namespace qel::calendar {

struct OutcomeCounts {
    std::uint64_t entries = 0;    // events, to-dos and notes that were read
    std::uint64_t converted = 0;  // of them, those that stand in a result
    std::uint64_t changed = 0;    // of the entries, those about which there is something to tell
    std::uint64_t warnings = 0;   // messages
    std::uint64_t errors = 0;     // messages
    std::uint64_t lost = 0;       // warnings and errors that tell of something left out

    void add(const OutcomeCounts& other);
    // Nothing to warn of.
    [[nodiscard]] bool clean() const { return warnings == 0 && errors == 0; }
};

struct FileOutcome {
    std::string file;    // as it was named
    std::string output;  // the result's file; empty for standard output, or where there is none
    std::string reason;  // why the file has no part in any result; empty when it has
    OutcomeCounts counts;
    std::vector<Note> messages;  // as many as were kept
};

struct Totals {
    std::uint64_t files = 0;
    std::uint64_t leftOut = 0;  // files without a part in any result
    OutcomeCounts counts;

    void add(const FileOutcome& file);
};

// "3 files (1 left out), 12 entries: 11 converted, 2 changed, 1 warning, 0 errors, 1 not carried
// over".
[[nodiscard]] std::string summaryText(const Totals& totals);
[[nodiscard]] nlohmann::ordered_json summaryJson(const Totals& totals);
[[nodiscard]] nlohmann::ordered_json outcomeJson(const FileOutcome& file);

// Counts what a converter tells and reads, file by file.
class Tally : public ConversionObserver {
  public:
    void beginFile(std::string name);
    // To be told of every message of the converter. Keeps it when `keep` is true.
    void hear(const Note& message, bool keep);
    void entryConverted(const ConvertedEntry& converted) override;

    [[nodiscard]] FileOutcome& file() { return file_; }

  private:
    FileOutcome file_;
};

}  // namespace qel::calendar

#endif
