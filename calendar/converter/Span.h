// A part of a calendar file, from one entry's beginning to another's, that a thread reads ahead.
// Its reader assumes that nothing before it changes what is known of the file. Whoever takes it in
// its turn checks that, and reads again what was read by a wrong assumption.
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

    // True when entries that were read in `other` are right in this one too. `reported` may differ:
    // an entry that would report something of it is not read ahead.
    [[nodiscard]] bool allows(const SpanContext& other) const;
};

struct Span {
    // The lines from one cut to the next.
    struct Step {
        std::string_view bytes;
        // The entry that was read from them; null when they are to be read in their turn.
        EntryWork* work = nullptr;
        std::size_t lines = 0;  // of the entry
        // What its lines reported, and the first line of the entry that each note is about, or 0.
        std::vector<std::pair<Note, std::size_t>> notes;
    };

    // Forgets what was read. The memory of usual entries is used again.
    void clear();

    // An entry that waits for its turn.
    struct Place {
        EntryWork work;
        Entry entry;
    };

    // The bytes must outlive what was read.
    std::string_view bytes;
    std::size_t linesBefore = 0;  // in the file, as it was guessed
    std::shared_ptr<const SpanContext> context;
    std::vector<Step> steps;

    // By the thread that reads: memory is freed faster by the thread that allocated it.
    std::vector<std::vector<std::unique_ptr<Place>>> places;
};

// Reads spans. One thread.
class SpanReader {
  public:
    // `member` numbers the thread. REQUIRES: `choices` outlives the reader.
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
