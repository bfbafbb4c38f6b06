// Which characters end a line: LF, CR LF, CR and CR CR LF. Of two carriage returns without a line
// feed the second one ends an empty line. A line end may be divided between pieces of a file.
#ifndef QEL_CALENDAR_LINES_LINEEND_H
#define QEL_CALENDAR_LINES_LINEEND_H

#include <cstddef>
#include <string_view>

namespace qel::calendar {

class LineEnd {
  public:
    // `c` ends a line.
    void begin(char c) { seen_ = c == '\r' ? Seen::CarriageReturn : Seen::All; }

    // Skips what still belongs to the line end, and the carriage return that ends an empty line.
    void skipRest(std::string_view text, std::size_t& at) {
        while (seen_ != Seen::All && at < text.size()) {
            const bool second = seen_ == Seen::CarriageReturn && text[at] == '\r';
            if (!second && text[at] != '\n') {
                if (seen_ == Seen::CarriageReturn) seen_ = Seen::All;
                return;
            }
            ++at;
            seen_ = second ? Seen::TwoCarriageReturns : Seen::All;
        }
    }

    // True once for an empty line whose end was skipped; `at` is where skipRest stopped.
    [[nodiscard]] bool takeEmptyLine(std::string_view text, std::size_t at) {
        if (seen_ != Seen::TwoCarriageReturns || at == text.size()) return false;
        seen_ = Seen::CarriageReturn;
        return true;
    }

  private:
    enum class Seen : unsigned char { All, CarriageReturn, TwoCarriageReturns };
    Seen seen_ = Seen::All;
};

}  // namespace qel::calendar

#endif
