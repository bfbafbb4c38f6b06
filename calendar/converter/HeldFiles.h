// Files that are read before their turn: their calendars, entries and notes in the order in which
// they were read, for a converter that writes them later. One thread at a time.
#ifndef QEL_CALENDAR_CONVERTER_HELDFILES_H
#define QEL_CALENDAR_CONVERTER_HELDFILES_H

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "calendar/converter/ConversionObserver.h"
#include "calendar/converter/Converter.h"

namespace qel::calendar {

struct HeldCalendar {
    CalendarFormat target;  // what its file is written as, where nobody has chosen that
    std::vector<EntryProperty> properties;
};

struct HeldEntry {
    Entry entry;
    std::vector<Note> notes;  // of its reading, as ConvertedEntry has them
    std::uint64_t moreNotes = 0;
    std::string source;
    bool sourceCut = false;
};

struct HeldFile {
    // One of the three.
    struct Item {
        std::uint64_t calendars = 0;  // of the file that had begun
        std::unique_ptr<Note> note;
        std::unique_ptr<HeldCalendar> calendar;
        std::unique_ptr<HeldEntry> entry;
    };
    std::string name;
    bool distinctUids = false;
    std::vector<Item> items;
    std::uint64_t calendars = 0;  // of the file
};

// Holds what its converter reads.
class FileHolder final : private ConversionObserver {
  public:
    // `lines`: the source of the entries too.
    FileHolder(Choices choices, bool lines);

    // REQUIRES: called before its beginFile().
    void beginFile(const std::string& name);
    // Of the files that have ended. REQUIRES: no file is begun.
    [[nodiscard]] std::vector<HeldFile> take();

    [[nodiscard]] Converter& converter() { return converter_; }

  private:
    class Writer;

    [[nodiscard]] bool wantsLines() const override { return lines_; }
    void entryConverted(const ConvertedEntry& converted) override;
    [[nodiscard]] HeldFile::Item& add();
    [[nodiscard]] std::uint64_t calendars() const {
        return converter_.counts().calendars - calendarsBefore_;
    }

    const bool lines_;
    std::vector<HeldFile> files_;
    std::uint64_t calendarsBefore_ = 0;  // the file
    Converter converter_;
};

}  // namespace qel::calendar

#endif
