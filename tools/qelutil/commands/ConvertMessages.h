// Shows the notes of a conversion: alike ones together, as many as a person reads. One thread.
#ifndef QELUTIL_COMMANDS_CONVERTMESSAGES_H
#define QELUTIL_COMMANDS_CONVERTMESSAGES_H

#include <cstdint>
#include <string>
#include <vector>

#include "QelCalendar/Notes.h"
#include "base/Command.h"
#include "commands/ConvertSummary.h"

namespace qel::cli {

class ConvertMessages {
  public:
    // `verbose`: every note of a file is shown when the file is added.
    ConvertMessages(Context& context, bool verbose) : context_(context), verbose_(verbose) {}

    // The notes of the next file.
    void add(const FileOutcome& outcome);

    // Shows what has been held back until all files were read.
    void finish();

    // Where a person should look first: what was lost before what was wrong or only changed. At
    // most three lines; none when finish() has shown no more than that.
    [[nodiscard]] std::vector<std::string> worthALook() const;

    // Notes that were not shown by themselves.
    [[nodiscard]] std::uint64_t hidden() const { return hidden_; }

  private:
    // The notes of one code in all files.
    struct Kind {
        NoteGroup group;
        std::uint64_t files = 1;  // that have such notes
    };

    void show(const qelcal::Note& note, const std::string& text);

    Context& context_;
    bool verbose_;
    std::vector<Kind> kinds_;  // in the order of their first notes
    std::uint64_t hidden_ = 0;
};

}  // namespace qel::cli

#endif
