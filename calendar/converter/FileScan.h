// A file that is read for its zones before it is converted, and for the character set of texts that
// name none. One thread, which others may help within a call.
#ifndef QEL_CALENDAR_CONVERTER_FILESCAN_H
#define QEL_CALENDAR_CONVERTER_FILESCAN_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/charsets/Guess.h"
#include "calendar/converter/Ahead.h"
#include "calendar/converter/ZoneStore.h"
#include "calendar/lines/CalendarReader.h"

namespace qel::calendar {

class FileScan {
  public:
    // Adds what it finds to `zones`. So many threads, with the caller's, read pieces of
    // `largePiece` bytes or more.
    FileScan(ZoneStore& zones, std::size_t threads, std::size_t largePiece);
    ~FileScan();

    void write(std::string_view bytes);
    void end();

    [[nodiscard]] std::optional<GuessedSet> guess() const { return guess_.result(); }

  private:
    using Text = std::pair<std::string, std::size_t>;  // and its line

    // What was found in a part of the file, in its order.
    struct Span {
        void clear();

        std::string_view bytes;
        std::optional<CalendarReader::Place> begin;
        std::size_t linesBefore = 0;  // in the file, as it was guessed
        std::vector<Text> texts;
        std::vector<ZonePtr> zones;
        // Where the file stands after it; empty when it was not read, or ends within a component.
        std::optional<CalendarReader::Place> end;
        std::size_t lines = 0;
    };

    // Reads what is written, and passes on what it finds.
    class Reader {
      public:
        Reader();
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        // All that can be had of the last bytes.
        void readItems();
        void read(Span& span);

        std::vector<Text> texts;
        std::vector<ZonePtr> zones;
        CalendarReader lines;

      private:
        void weigh(const ContentLine& line);
    };

    // For Ahead.
    friend class Ahead<Span, Reader>;
    [[nodiscard]] bool isBetween() { return reader_.lines.place().has_value(); }
    [[nodiscard]] std::size_t lines() const { return reader_.lines.lines(); }
    void begin(Span& span, std::size_t lines);
    void take(Span& span);
    void readAlone(std::string_view bytes);

    void keep(std::vector<Text>& texts, std::vector<ZonePtr>& zones);
    void writePieces(std::string_view bytes);

    ZoneStore& zones_;
    const std::size_t threads_;
    const std::size_t largePiece_;
    CharsetGuess guess_;
    Reader reader_;
    std::optional<CalendarReader::Place> place_;  // that was known last
    std::unique_ptr<Ahead<Span, Reader>> ahead_;  // from the first large piece on
};

}  // namespace qel::calendar

#endif
