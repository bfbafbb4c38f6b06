// Which character set a file's text is in when nothing says so. Any thread.
#ifndef QEL_CALENDAR_CHARSETS_GUESS_H
#define QEL_CALENDAR_CHARSETS_GUESS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qel::calendar {

struct GuessedSet {
    std::string_view set;      // its usual name: "Shift_JIS"
    std::string_view letters;  // what the text is then: "Japanese", "Greek letters"
    std::size_t line = 0;      // the first line with such text
};

class CharsetGuess {
  public:
    // A text that names no character set and is not UTF-8. The first kSample bytes of them count.
    void add(std::string_view text, std::size_t line);

    // The set in which the texts are far more like a language than in windows-1252: Shift_JIS,
    // EUC-JP, GBK, Big5, EUC-KR, KOI8-R, windows-1250, -1251, -1253, -1254, -1255 or -1256. Nothing
    // when no set stands out so clearly.
    [[nodiscard]] std::optional<GuessedSet> result() const;

    static constexpr std::size_t kSample = 16384;

  private:
    std::string sample_;  // a line each
    std::size_t line_ = 0;
};

}  // namespace qel::calendar

#endif
