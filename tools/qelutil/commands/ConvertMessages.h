// Shows the notes of a conversion, as many of them as a person reads. One thread.
#ifndef QELUTIL_COMMANDS_CONVERTMESSAGES_H
#define QELUTIL_COMMANDS_CONVERTMESSAGES_H

#include <cstdint>
#include <string>

#include "QelCalendar/Notes.h"
#include "base/Command.h"

namespace qel::cli {

class ConvertMessages {
  public:
    ConvertMessages(Context& context, bool verbose) : context_(context), verbose_(verbose) {}

    // False when it is not shown: it is only a note, or there are too many before it.
    bool show(const qelcal::Note& note) {
        if (note.severity == QELCAL_ERROR) context_.setBadInput();
        if (note.severity == QELCAL_NOTE && !verbose_) return false;
        if (!verbose_ && ++shown_ > kMost) {
            ++hidden_;
            return false;
        }
        switch (note.severity) {
            case QELCAL_ERROR:
                context_.error(note.file, note.line, note.text);
                break;
            case QELCAL_WARNING:
                context_.warning(note.file, note.line, note.text);
                break;
            case QELCAL_NOTE:
                context_.note(note.file, note.line, note.text);
                break;
        }
        return true;
    }

    void finish() {
        if (hidden_ != 0)
            context_.warning(
                {}, 0, std::to_string(hidden_) + " more messages; --verbose shows all of them");
    }

    [[nodiscard]] std::uint64_t hidden() const { return hidden_; }

  private:
    // Messages shown of one run, unless all are asked for.
    static constexpr std::uint64_t kMost = 100;

    Context& context_;
    bool verbose_;
    std::uint64_t shown_ = 0;
    std::uint64_t hidden_ = 0;
};

}  // namespace qel::cli

#endif
