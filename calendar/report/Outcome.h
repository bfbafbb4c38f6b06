// What became of the files of a conversion, in numbers. One thread.
#ifndef QEL_CALENDAR_REPORT_OUTCOME_H
#define QEL_CALENDAR_REPORT_OUTCOME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "calendar/converter/ConversionObserver.h"

namespace qel::calendar {

struct OutcomeCounts {
    std::uint64_t entries = 0;    // events, to-dos and notes that were read
    std::uint64_t converted = 0;  // of them, those in a result
    std::uint64_t changed = 0;    // of them, those with a note
    std::uint64_t warnings = 0;   // notes of that severity
    std::uint64_t errors = 0;     // notes of that severity
    std::uint64_t lost = 0;       // notes with that fate

    void add(const OutcomeCounts& other);
    // No warning and no error.
    [[nodiscard]] bool clean() const { return warnings == 0 && errors == 0; }
};

struct FileOutcome {
    std::string file;    // as the caller named it
    std::string output;  // the name of its result; may be empty
    std::string reason;  // why the file is in no result; empty when it is in one
    bool read = true;    // false for a file that no converter has read
    OutcomeCounts counts;
};

// Notes with one code, of all files.
struct NoteGroup {
    Note first;
    std::size_t file = 0;  // in which it is, 1 for the first file
    std::uint64_t count = 0;
};

struct Totals {
    std::uint64_t files = 0;
    std::uint64_t leftOut = 0;  // files that are in no result
    OutcomeCounts counts;
};

// Counts the entries and notes of a conversion, file by file.
class Tally : public ConversionObserver {
  public:
    void beginFile(std::string name);
    // A file that is not read.
    void addFile(std::string name);
    // Every note of the conversion, as the converter reports it. REQUIRES: a file was begun.
    void note(const Note& note);
    // REQUIRES: a file was begun.
    void entryConverted(const ConvertedEntry& converted) override;
    // What became of a file, 0 for the first: the name of its result, and the reason why it is in
    // none, after which none of its entries counts as converted. Both may be empty. May be called
    // again; REQUIRES: the file was begun.
    void settle(std::size_t file, std::string output, std::string reason);

    // Adds the files of `other`, and their notes, after those here.
    void join(const Tally& other);

    // In the order in which they were begun.
    [[nodiscard]] const std::vector<FileOutcome>& files() const { return files_; }
    [[nodiscard]] Totals totals() const;
    // What a person should look at, what was lost first, then errors before warnings; each group in
    // the order of the files. Mere notes are left out.
    [[nodiscard]] std::vector<NoteGroup> worthALook() const;

  private:
    // Null without one.
    [[nodiscard]] NoteGroup* groupOf(NoteCode code);

    std::vector<FileOutcome> files_;
    std::vector<NoteGroup> groups_;  // in the order of their first notes
};

}  // namespace qel::calendar

#endif
