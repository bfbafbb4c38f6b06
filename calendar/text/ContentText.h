// The lines of both formats as text: names, parameters and values, folded or encoded as the format
// requires. Any thread.
#ifndef QEL_CALENDAR_TEXT_CONTENTTEXT_H
#define QEL_CALENDAR_TEXT_CONTENTTEXT_H

#include <string>
#include <string_view>
#include <vector>

#include "calendar/lines/ContentLine.h"

namespace qel::calendar {

// Escaped: the value is a text, and is escaped for iCalendar. AsItIs: it has its final form.
enum class Value { AsItIs, Escaped };

// The name of a line to write: of a property by its number, which needs no look, or any text.
class LineName {
  public:
    LineName(PropertyName id) : text_(propertyOf(id).name), known_(true) {}
    LineName(std::string_view text) : text_(text) {}
    LineName(const std::string& text) : text_(text) {}
    LineName(const char* text) : text_(text) {}

    [[nodiscard]] std::string_view text() const { return text_; }
    [[nodiscard]] bool known() const { return known_; }

  private:
    std::string_view text_;
    bool known_ = false;
};

// Adds a content line of iCalendar to `out`, folded and ended.
void addICalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value, Value how = Value::AsItIs);
// The line by itself, neither folded nor ended.
[[nodiscard]] std::string iCalendarLine(std::string_view name,
                                        const std::vector<Parameter>& parameters,
                                        std::string_view value);
// Adds a line that iCalendarLine made, folded into lines of at most 75 octets between characters
// (RFC 5545 section 3.1); the last one is not ended.
void addFolded(std::string& out, std::string_view line);
// Lines that addICalendarLine added, with their folds undone, each ended by "\n".
[[nodiscard]] std::string unfolded(std::string_view lines);

// Adds a vCalendar 1.0 property with a text value: one line, or several with quoted-printable soft
// line breaks. Every line is ended.
void addVCalendarLine(std::string& out, LineName name, const std::vector<Parameter>& parameters,
                      std::string_view value);
// The same by itself; the last line is not ended.
[[nodiscard]] std::string vCalendarLine(std::string_view name,
                                        const std::vector<Parameter>& parameters,
                                        std::string_view value);
// A vCalendar 1.0 property with a Base64 value, which is written on lines of its own, and the empty
// line after them. Every line is ended.
[[nodiscard]] std::string vCalendarBase64(std::string_view name,
                                          const std::vector<Parameter>& parameters,
                                          std::string_view value);

}  // namespace qel::calendar

#endif
