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

    // Takes the line end at `at` of `text`, as far as one look ahead shows it.
    void take(std::string_view text, std::size_t& at) {
        const bool pair = text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n';
        seen_ = pair || text[at] == '\n' ? Seen::All : Seen::CarriageReturn;
        at += pair ? 2 : 1;
    }
    // True when nothing of a line end is to come.
    [[nodiscard]] bool isWhole() const { return seen_ == Seen::All; }

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
