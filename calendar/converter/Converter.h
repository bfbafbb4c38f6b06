// Whole files: reader, entries, writer. Memory holds one entry and the zones of the file. One
// thread.
#ifndef QEL_CALENDAR_CONVERTER_CONVERTER_H
#define QEL_CALENDAR_CONVERTER_CONVERTER_H

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "calendar/base/Notes.h"
#include "calendar/converter/ConversionObserver.h"
#include "calendar/lines/LineReader.h"

namespace qel::calendar {

class EntryWriter;

struct ConvertCounts {
    std::uint64_t calendars = 0;  // that have begun; an entry outside any has one of its own
    std::uint64_t entries = 0;
    std::uint64_t alarms = 0;
};

// Converts any number of files into one. The same input gives the same output, always.
class Converter {
  public:
    // `to` missing: the other format than that of the first file, iCalendar where it does not tell.
    // `out` is kept; the caller sees to its failures.
    Converter(std::ostream& out, std::optional<CalendarFormat> to, NoteSink sink);
    // Hands the entries to `writer`, whatever it makes of them.
    Converter(std::unique_ptr<EntryWriter> writer, NoteSink sink);
    ~Converter();
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // One file, called `name` in messages. `progress`, which may be empty, hears the bytes read so
    // far. Zones that are described behind the entries that use them are found when the caller
    // hands them over before, by collectZones from the same bytes.
    void convert(ByteSource source, const std::string& name,
                 const std::function<void(std::uint64_t)>& progress = {});

    // Reads a file for its VTIMEZONEs alone, for the next convert().
    void collectZones(ByteSource source);

    // `observer` is called for each entry of the files that follow. It may be null; it must outlive
    // the converter or the next call of this.
    void observe(ConversionObserver* observer) { observer_ = observer; }

    // Closes the output.
    void finish();

    [[nodiscard]] const ConvertCounts& counts() const { return counts_; }
    // What the output is; nothing before the first file has told.
    [[nodiscard]] std::optional<CalendarFormat> target() const { return to_; }

  private:
    class File;

    std::ostream* out_ = nullptr;  // null when the writer came from outside
    std::optional<CalendarFormat> to_;
    NoteSink sink_;
    std::string file_;  // that is being read
    File* current_ = nullptr;
    std::unique_ptr<EntryWriter> writer_;
    std::unique_ptr<class ZoneStore> zones_;
    ConvertCounts counts_;
    ConversionObserver* observer_ = nullptr;
};

}  // namespace qel::calendar

#endif
