// An entry put in the order that one of the formats needs. Where nothing has to change it is the
// entry that was read; otherwise a changed copy. Plain data; any thread.
#ifndef QEL_CALENDAR_FORMATS_SETTLEDENTRY_H
#define QEL_CALENDAR_FORMATS_SETTLEDENTRY_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/entries/Entry.h"

namespace qel::calendar {

// A recurrence rule in the format's own words.
struct SettledRule {
    std::string_view name;  // "RRULE", "EXRULE", or one with kICalendarPrefix
    std::string text;
};

class SettledEntry {
  public:
    // `read` must outlive this object.
    explicit SettledEntry(const Entry& read) : read_(&read) {}

    // The entry before any change.
    [[nodiscard]] const Entry& read() const { return *read_; }
    // The entry to write. Its rules are those of `rules`, not its own.
    [[nodiscard]] const Entry& entry() const { return changed_ ? *changed_ : *read_; }
    // The same for changing. The first call makes the copy, so that references from entry() before
    // it still show the entry that was read.
    [[nodiscard]] Entry& change() {
        if (!changed_) changed_ = *read_;
        return *changed_;
    }

    std::vector<SettledRule> rules;
    std::vector<Note> notes;

  private:
    const Entry* read_;
    std::optional<Entry> changed_;
};

}  // namespace qel::calendar

#endif
