// What became of the files of one run of `qelutil convert`, in numbers, as a sentence and as JSON.
// Any thread.
#ifndef QELUTIL_COMMANDS_CONVERTSUMMARY_H
#define QELUTIL_COMMANDS_CONVERTSUMMARY_H

#include <cstdint>
#include <string>
#include <vector>

#include "QelCalendar/Notes.h"
#include "QelCalendar/qelcalendar.h"
#include "base/CalendarFiles.h"
#include "base/Json.h"

namespace qel::cli {

// Notes with one code.
struct NoteGroup {
    qelcal::Note first;
    std::uint64_t count;
};

struct FileOutcome {
    std::string file;                // as messages name it
    std::string output;              // the name of its result; may be empty
    std::string reason;              // why it is in no result; empty when it is in one
    qelcal_counts counts{};          // of this file alone
    std::vector<NoteGroup> shown;    // its notes that are shown; alike ones are one, unless verbose
    std::uint64_t hidden = 0;        // its notes that are not shown by themselves
    Json entryList = Json::array();  // its entries, for --json
    bool begun = false;              // a converter has read of it, or has tried to

    // Adds a note of the file. `verbose`: every note is shown by itself, those of severity "note"
    // included.
    void take(const qelcal_note* note, bool verbose);
    // Entries that are in a result.
    [[nodiscard]] std::uint64_t converted() const { return reason.empty() ? counts.entries : 0; }
    // No warning and no error.
    [[nodiscard]] bool clean() const { return counts.warnings == 0 && counts.errors == 0; }
};

// What was counted after `before`.
[[nodiscard]] qelcal_counts difference(const qelcal_counts& after, const qelcal_counts& before);

// "3 files (1 left out), 12 entries: 11 converted, 2 changed, 1 warning, 0 errors, 1 not carried
// over".
[[nodiscard]] std::string summaryText(const std::vector<FileOutcome>& files);
// "3 other files (2 contacts, which address books import as they are)".
[[nodiscard]] std::string othersText(const std::vector<OtherFile>& others);
[[nodiscard]] Json summaryJson(const std::vector<FileOutcome>& files,
                               const std::vector<OtherFile>& others);
[[nodiscard]] Json outcomeJson(const FileOutcome& file);

}  // namespace qel::cli

#endif
