// The bytes of each entry as they are in its file, kept while a converter reads the file. One
// thread.
#ifndef QEL_CALENDAR_CONVERTER_SOURCELINES_H
#define QEL_CALENDAR_CONVERTER_SOURCELINES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "calendar/lines/LineEnd.h"

namespace qel::calendar {

// Where the first CR or LF at `at` or after it is; npos when there is none.
[[nodiscard]] std::size_t findLineEnd(std::string_view text, std::size_t at);

class SourceLines {
  public:
    struct Lines {
        std::string_view text;  // whole lines, until the next call
        bool cut = false;       // the entry goes on after them
    };

    // Takes the next bytes of the file, before the converter's reader gets them.
    void add(std::string_view bytes);

    // The lines from `number` to the one that ends `component`, or the first of them that are
    // `most` bytes together. Empty when they are no longer kept: lines before the last entry asked
    // for are dropped, and so are all of a file in UTF-16 or with a line of megabytes.
    // REQUIRES: the entry has been added to its end, and numbers ascend from call to call.
    [[nodiscard]] Lines entry(std::size_t number, std::string_view component, std::size_t most);

  private:
    [[nodiscard]] bool next(std::string_view& line);

    std::string held_;
    std::size_t at_ = 0;      // in held_
    std::size_t number_ = 1;  // of the line there
    LineEnd lastEnd_;
    bool unusable_ = false;
};

}  // namespace qel::calendar

#endif
