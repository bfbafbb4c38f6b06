// Whole files: reader, entries, writer. Memory holds one entry, or a few batches of them, and the
// zones of the file. One thread, which others may help within a call.
#ifndef QEL_CALENDAR_CONVERTER_CONVERTER_H
#define QEL_CALENDAR_CONVERTER_CONVERTER_H

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "calendar/base/Choices.h"
#include "calendar/base/Notes.h"
#include "calendar/charsets/Guess.h"
#include "calendar/converter/ConversionObserver.h"

namespace qel::calendar {

class EntryWriter;
class FileScan;
struct HeldCalendar;
struct HeldEntry;
struct HeldFile;

struct ConvertCounts {
    std::uint64_t calendars = 0;  // those begun; an entry outside any calendar counts as one
    std::uint64_t entries = 0;
    std::uint64_t alarms = 0;
};

// Converts any number of files into one. The same input gives the same output, always.
class Converter {
  public:
    // Without `to` the result is in the format that the first file is not in; iCalendar when that
    // file names none. `out` must outlive the converter; the caller checks it for failures.
    Converter(std::ostream& out, std::optional<CalendarFormat> to, NoteSink sink);
    // Passes the entries to `writer` instead of writing them.
    Converter(std::unique_ptr<EntryWriter> writer, NoteSink sink);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // One file, called `name` in messages: its bytes in pieces of any size, then its end. An entry
    // is converted when the line after its END has been read. REQUIRES: one file at a time.
    void beginFile(const std::string& name);
    void write(std::string_view bytes);
    void endFile();

    // Zones may be described after the entries that use them. They are known in time when the whole
    // file is passed here before its beginFile(); nothing else of it is looked at.
    void beginScan();
    void scan(std::string_view bytes);
    void endScan();

    // Writes a file that was read before its turn, as if it had been read here. REQUIRES: no file
    // is begun.
    void take(HeldFile file);

    // `observer` is called for each entry of the files that follow. It may be null; it must outlive
    // the converter or the next call of this.
    void observe(ConversionObserver* observer) { observer_ = observer; }

    // So many threads, with the caller's, work on pieces of `from` bytes or more; they end before
    // each write() does. Output, notes and entries come on the caller's thread, in the same order
    // as with one. For the files that follow. REQUIRES: at least 1, and an `out`.
    void useThreads(std::size_t most, std::size_t from = kLargePiece) {
        threads_ = most;
        largePiece_ = from;
    }
    // For so many bytes it pays to start threads.
    static constexpr std::size_t kLargePiece = std::size_t{256} << 10;

    // For the files that follow.
    void choose(Choices choices) { choices_ = std::move(choices); }
    [[nodiscard]] const Choices& choices() const { return choices_; }

    // Ends the result, after the last file.
    void finish();

    [[nodiscard]] const ConvertCounts& counts() const { return counts_; }
    // What the result is written as; nothing before the first file is known.
    [[nodiscard]] std::optional<CalendarFormat> target() const { return to_; }

  private:
    class File;
    class Turn;

    void report(Note note);
    EntryWriter& writer();
    void takeCalendar(const HeldCalendar& calendar, bool distinctUids);
    void takeEntry(HeldEntry& held, bool lines);

    std::ostream* out_ = nullptr;  // null when the writer came from outside
    std::optional<CalendarFormat> to_;
    NoteSink sink_;
    Choices choices_;
    std::optional<GuessedSet> guess_;  // of the file that was scanned
    std::unique_ptr<EntryWriter> writer_;
    std::unique_ptr<class ZoneStore> zones_;
    ConvertCounts counts_;
    std::size_t threads_ = 1;
    std::size_t largePiece_ = kLargePiece;
    ConversionObserver* observer_ = nullptr;
    std::unique_ptr<File> file_;
    std::unique_ptr<FileScan> scan_;
    // Of take().
    const std::string* heldName_ = nullptr;
    HeldEntry* heldEntry_ = nullptr;  // that is being written
};

}  // namespace qel::calendar

#endif
