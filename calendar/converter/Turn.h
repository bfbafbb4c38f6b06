// The part of a file's conversion that follows the order of its lines: notes, counts, UIDs, the
// writer. One thread.
#ifndef QEL_CALENDAR_CONVERTER_TURN_H
#define QEL_CALENDAR_CONVERTER_TURN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "calendar/converter/Converter.h"
#include "calendar/converter/EntryWork.h"
#include "calendar/converter/Namesakes.h"
#include "calendar/converter/ZoneStore.h"
#include "calendar/formats/ICalReader.h"
#include "calendar/formats/MadeUids.h"
#include "calendar/formats/VCalReader.h"

namespace qel::calendar {

class Converter::Turn {
  public:
    // REQUIRES: `name` and `choices` outlive this object.
    Turn(Converter& owner, const std::string& name, const Choices& choices);

    // Passes a note on, and keeps it until the entry that it may be about is written. `entryLine`
    // is where the entry begins that is read or converted, 0 outside entries.
    void report(Note note, std::size_t entryLine);
    // The same for what the entry's writer reports.
    void report(Note note) { report(std::move(note), entryLine_); }

    void beginCalendar() { ++owner_.counts_.calendars; }
    void calendar(const std::vector<EntryProperty>& header);
    // An entry, read before its turn or not.
    void take(EntryWork& work);
    // After each component, entry or not.
    void endComponent();
    void endFile();

    [[nodiscard]] EntryReader& reader(bool vCalendar) {
        return vCalendar ? static_cast<EntryReader&>(vCalReader_) : iCalReader_;
    }
    [[nodiscard]] bool wantsLines() const { return wantsLines_; }

  private:
    [[nodiscard]] NoteSink noteSink() {
        return [this](Note note) { report(std::move(note)); };
    }
    void keep(const Note& note, std::size_t entryLine);
    void dropNotesBefore(std::size_t line);
    void convert(EntryWork& work);
    void read(EntryWork& work);
    void write(EntryWork& work);
    void countShifting(const Entry& entry);

    Converter& owner_;
    const std::string& name_;
    const Choices& choices_;
    ConversionObserver* const observer_;
    const bool wantsLines_;
    VCalReader vCalReader_;
    ICalReader iCalReader_;
    Namesakes namesakes_;
    MadeUids uids_;
    std::uint64_t shifting_ = 0;  // series in UTC, in a file without a zone
    std::size_t firstShifting_ = 0;
    std::size_t entryLine_ = 0;  // of the entry that is converted
    // For the observer, since the last entry.
    std::vector<Note> notes_;
    std::uint64_t moreNotes_ = 0;
};

}  // namespace qel::calendar

#endif
