// A part of a calendar file that begins and ends between components, which a thread reads before
// its turn. It guesses that all before it changes nothing of what it knows of the file; who takes
// it in its turn sees whether that was so, and reads anew what was not.
#ifndef QEL_CALENDAR_CONVERTER_SPAN_H
#define QEL_CALENDAR_CONVERTER_SPAN_H

#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "calendar/converter/EntryWork.h"
#include "calendar/formats/ICalReader.h"
#include "calendar/formats/VCalReader.h"

namespace qel::calendar {

// What the reading of an entry depends on besides its lines.
struct SpanContext {
    CalendarReader::Place place;
    bool vCalendar = false;  // what its entries are read as
    FileZone zone;
    const ZonesById* described = nullptr;
    std::size_t zonesChanged = 0;  // as ZoneStore counts it
    EntryReader::Reported reported;
    const EntryWriter* writer = nullptr;
    bool wantsLines = false;

    // True when what was read where `other` holds is right here too. What was reported in the
    // meantime does not matter: who reads ahead reports nothing of that.
    [[nodiscard]] bool allows(const SpanContext& other) const;
};

struct Span {
    // The lines from one cut to the next, or to a later one.
    struct Step {
        std::string_view bytes;
        // Of one entry, that was read; null for what is to be read in its turn.
        EntryWork* work = nullptr;
        std::size_t lines = 0;  // of the entry
        // What is wrong with its lines, and where the entry begins that each note is about, or 0.
        std::vector<std::pair<Note, std::size_t>> notes;
    };

    // Forgets what was read. The memory of usual entries is used again.
    void clear();

    // An entry that waits for its turn.
    struct Place {
        EntryWork work;
        Entry entry;
    };

    // Its bytes last until it is cleared.
    std::string_view bytes;
    std::size_t linesBefore = 0;  // in the file, as it was guessed
    std::shared_ptr<const SpanContext> context;
    std::vector<Step> steps;

    // Of each thread that may read it: memory goes back faster where it came from.
    std::vector<std::vector<std::unique_ptr<Place>>> places;
};

// Reads spans. One thread.
class SpanReader {
  public:
    // `member` is a number by itself for each thread. REQUIRES: `choices` outlives the reader.
    SpanReader(const Choices& choices, std::size_t member);

    // Fills its steps.
    void read(Span& span);

  private:
    void use(const std::shared_ptr<const SpanContext>& context);
    [[nodiscard]] const ZonePtr& own(const ZonePtr& zone);
    [[nodiscard]] ZonesById own(const ZonesById& zones);
    [[nodiscard]] bool readEntry(Span& span, std::string_view bytes);
    [[nodiscard]] bool readComponent(Span::Place& place, const SpanContext& context);

    const Choices& choices_;
    const std::size_t member_;
    std::size_t used_ = 0;  // places of the span
    std::map<const Zone*, ZonePtr> own_;
    std::shared_ptr<const SpanContext> context_;  // that was used last
    // Of that, with own zones.
    ZonesById described_;
    EntryReader::Reported reported_;
    KnownZones zones_{nullptr, {}};
    std::vector<Note>* notes_ = nullptr;
    std::vector<std::pair<Note, std::size_t>> lineNotes_;
    VCalReader vCalReader_;
    ICalReader iCalReader_;
    CalendarReader reader_;
};

}  // namespace qel::calendar

#endif
