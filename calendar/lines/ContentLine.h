// A property as a calendar file writes it: NAME;PARAMETER=VALUE:VALUE, unfolded and taken apart,
// its values still in the file's own character set and encoding. Name and value are views of the
// text that it was read from, or of the arena that they were moved to. Plain data; any thread.
#ifndef QEL_CALENDAR_LINES_CONTENTLINE_H
#define QEL_CALENDAR_LINES_CONTENTLINE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Arena.h"
#include "calendar/lines/LineReader.h"
#include "calendar/lines/Property.h"
#include "calendar/lines/Unfolding.h"

namespace qel::calendar {

struct Parameter {
    std::string name;  // in capitals; empty for a bare value as in "SUMMARY;QUOTED-PRINTABLE:"
    std::string value;
    bool operator==(const Parameter&) const = default;
};

struct ContentLine {
    std::size_t number = 0;  // of its first physical line
    PropertyName id = PropertyName::Unknown;
    std::string_view name;  // in capitals
    std::vector<Parameter> parameters;
    std::string_view value;
    bool cut = false;
    bool openEnd = false;
    bool wrapped = false;  // its folds are the blanks between its words
    bool untidy = false;   // blanks beside its name

    // The value of the first parameter of that name, else "".
    [[nodiscard]] std::string_view parameter(std::string_view parameterName) const;
    [[nodiscard]] bool hasParameter(std::string_view parameterName) const;

    // Copies name and value to `texts`; the line is valid as long as that then.
    void moveTo(Arena& texts);
};

// Of a usual line, whose text stays as it is. REQUIRES: raw.usual, and `line` as it was made.
void parseUsualLine(const RawLine& raw, ContentLine& line);

// False when `raw` is not a property: it has no colon or no valid name. `line` refers to the text
// of `raw`, which is unfolded in place, its name in capitals.
[[nodiscard]] bool parseContentLine(RawLine& raw, FoldStyle style, ContentLine& line);

}  // namespace qel::calendar

#endif
