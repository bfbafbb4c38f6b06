// The lines of an entry as they stand in its file, kept while a converter reads the file. One
// thread.
#ifndef QEL_CALENDAR_CONVERTER_SOURCELINES_H
#define QEL_CALENDAR_CONVERTER_SOURCELINES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "calendar/lines/LineReader.h"

namespace qel::calendar {

class SourceLines {
  public:
    // `source` with an ear at it; begins a new file. The result must not outlive this object.
    [[nodiscard]] ByteSource through(ByteSource source);

    // The bytes from line `number` to the line that ends `component`, at most about `most` of them,
    // lines whole; what was cut off shows by the missing end. Empty when they are not there any
    // more: what lies before the last entry asked for is forgotten, and so is a file in UTF-16
    // or with a line of megabytes.
    // REQUIRES: the source has been read up to there.
    [[nodiscard]] std::string entry(std::size_t number, std::string_view component,
                                    std::size_t most);

  private:
    void hear(std::string_view bytes);
    // The line at at_, which is behind it then. False when there is none.
    bool next(std::string_view& line);
    void forget();

    std::string held_;
    std::size_t at_ = 0;      // in held_
    std::size_t number_ = 1;  // of the line there
    bool unusable_ = false;
};

}  // namespace qel::calendar

#endif
