// One entry between its component and its lines. What of its conversion depends on no other entry
// may be done before its turn.
#ifndef QEL_CALENDAR_CONVERTER_ENTRYWORK_H
#define QEL_CALENDAR_CONVERTER_ENTRYWORK_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Choices.h"
#include "calendar/base/Notes.h"
#include "calendar/converter/FileZone.h"
#include "calendar/entries/Entry.h"
#include "calendar/formats/EntryReader.h"
#include "calendar/formats/EntryWriter.h"
#include "calendar/lines/CalendarReader.h"

namespace qel::calendar {

// To be used again for the next entry: its texts keep their memory.
struct EntryWork {
    std::size_t line = 0;            // where it begins
    Component* component = nullptr;  // null when it was read before its turn
    bool vCalendar = false;          // which reader reads it
    FileZone* zone = nullptr;
    bool chosen = true;  // else nothing of it is wanted
    bool prepared = false;
    std::string digest;       // for its UID
    std::string_view source;  // as ConvertedEntry has it
    bool sourceCut = false;

    // What is made of it.
    Entry* entry = nullptr;  // null when the component is not an entry
    std::vector<Note> notes;
    std::optional<SeriesStart> series;
    FileZone::Settled settled;
    EntryDraft draft;
};

// The digest of its bytes, and its parameters decoded. Any thread.
void prepare(EntryWork& work, const Choices& choices);

// True for an entry that has TZ or DAYLIGHT lines of its own.
[[nodiscard]] bool hasZoneLines(const Component& component);

[[nodiscard]] bool isChosen(const Choices& choices, std::string_view component);

// Bytes of an entry's source that an observer is given.
inline constexpr std::size_t kMostSource = std::size_t{64} << 10;

}  // namespace qel::calendar

#endif
