// Items of a list that were ignored: one note for all of them, however many there are.
#ifndef QEL_CALENDAR_BASE_STRAYS_H
#define QEL_CALENDAR_BASE_STRAYS_H

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"

namespace qel::calendar {

class Strays {
  public:
    void add(std::string_view item) {
        if (count_++ == 0) first_ = std::string(item.substr(0, kLongestExcerpt));
    }
    [[nodiscard]] bool any() const { return count_ != 0; }

    // Adds a note with the first item, the number of the others and `more` as its values; nothing
    // without any.
    void report(std::vector<Note>& notes, NoteCode code,
                std::initializer_list<std::string_view> more = {}) const {
        if (count_ == 0) return;
        notes.push_back(Note(code, 0, {first_, std::to_string(count_ - 1)}));
        notes.back().values.insert(notes.back().values.end(), more.begin(), more.end());
    }

  private:
    std::size_t count_ = 0;
    std::string first_;
};

}  // namespace qel::calendar

#endif
