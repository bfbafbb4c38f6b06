// What one pass over the bytes of a physical line finds. Any thread.
#ifndef QEL_CALENDAR_LINES_LINEMARKS_H
#define QEL_CALENDAR_LINES_LINEMARKS_H

#include <cstddef>
#include <string_view>

namespace qel::calendar {

struct LineMarks {
    std::size_t end = 0;      // of the line; the text's size when it has no line end
    std::size_t nameEnd = 0;  // the first colon or semicolon; npos without one
    std::size_t colon = 0;    // before the value, as findColon finds it; npos without one
};

// Of the line at the beginning of `text`. The same on every processor.
[[nodiscard]] LineMarks marksOf(std::string_view text);

// Where the value's colon is: the first one outside quotes, or the first one where the quotes do
// not close before it. npos when there is none.
[[nodiscard]] std::size_t findColon(std::string_view text);

}  // namespace qel::calendar

#endif
