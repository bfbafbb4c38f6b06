// Items of a list that were ignored: one note for all of them, however many there are.
#ifndef QEL_CALENDAR_BASE_STRAYS_H
#define QEL_CALENDAR_BASE_STRAYS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Ascii.h"
#include "calendar/base/Notes.h"

namespace qel::calendar {

class Strays {
  public:
    void add(std::string_view item) {
        if (count_++ == 0) first_ = std::string(item);
    }
    [[nodiscard]] bool any() const { return count_ != 0; }

    // "WHAT "39"", "WHAT "39" and 2 more"; nothing without any.
    void report(std::vector<Note>& notes, Severity severity, std::string_view what) const {
        if (count_ == 0) return;
        std::string text = std::string(what) + " " + quoted(first_);
        if (count_ > 1) text += " and " + std::to_string(count_ - 1) + " more";
        notes.push_back({severity, text});
    }

  private:
    std::size_t count_ = 0;
    std::string first_;
};

}  // namespace qel::calendar

#endif
