// Shows the notes of a conversion, as many of them as a person reads. One thread.
#ifndef QELUTIL_COMMANDS_CONVERTMESSAGES_H
#define QELUTIL_COMMANDS_CONVERTMESSAGES_H

#include <cstdint>
#include <string>

#include "base/Command.h"
#include "calendar/base/Notes.h"

namespace qel::cli {

class ConvertMessages {
  public:
    ConvertMessages(Context& context, bool verbose) : context_(context), verbose_(verbose) {}

    // False when it is not shown: its severity is Note, or there are too many before it.
    bool show(const calendar::Note& note) {
        using calendar::Severity;
        if (note.severity() == Severity::Error) context_.setBadInput();
        if (note.severity() == Severity::Note && !verbose_) return false;
        if (!verbose_ && ++shown_ > kMost) {
            ++hidden_;
            return false;
        }
        switch (note.severity()) {
            case Severity::Error:
                context_.error(note.file, note.line, note.text());
                break;
            case Severity::Warning:
                context_.warning(note.file, note.line, note.text());
                break;
            case Severity::Note:
                context_.note(note.file, note.line, note.text());
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
