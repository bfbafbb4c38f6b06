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

    // The lines from number `first` to `last`, or the first of them that are `most` bytes together.
    // Empty where they are more than kMostHeld together, and in UTF-16.
    // REQUIRES: these lines have been added and not forgotten, and numbers ascend from call to
    // call.
    [[nodiscard]] Lines entry(std::size_t first, std::size_t last, std::size_t most);
    // The same of the first `count` lines of `text`. Any thread.
    [[nodiscard]] static Lines firstOf(std::string_view text, std::size_t count, std::size_t most);

    // False when no lines are kept any more, whatever comes.
    [[nodiscard]] bool isUsable() const { return !unusable_; }
    // Nobody will ask for lines before `number`.
    void forget(std::size_t number);
    // What is added next begins with line `number`; all before it are dropped.
    void goOn(std::size_t number);

    static constexpr std::size_t kMostHeld = std::size_t{8} << 20;

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
