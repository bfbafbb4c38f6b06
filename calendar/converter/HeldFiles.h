// Files that are read before their turn: their calendars, entries and notes in the order in which
// they were read, for a converter that writes them later. One thread at a time.
#ifndef QEL_CALENDAR_CONVERTER_HELDFILES_H
#define QEL_CALENDAR_CONVERTER_HELDFILES_H

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
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
    std::uint64_t moreNotes;
    std::string source;
    bool sourceCut;
};

struct HeldFile {
    struct Item {
        std::uint64_t calendars;  // of the file that had begun
        std::variant<Note, HeldCalendar, HeldEntry> what;
    };
    std::string name;
    bool distinctUids;
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
    template <class What>
    void add(What what);
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
