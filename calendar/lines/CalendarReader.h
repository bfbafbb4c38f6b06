// The components of a calendar file, one after the other, whatever the file's size: calendars begin
// and end, each with its properties, and entries stand whole in between. Faults in the nesting are
// mended and told. One thread.
#ifndef QEL_CALENDAR_LINES_CALENDARREADER_H
#define QEL_CALENDAR_LINES_CALENDARREADER_H

#include <cstddef>
#include <string>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/lines/ContentLine.h"
#include "calendar/lines/LineReader.h"

namespace qel::calendar {

// The texts of its lines last until the reader is asked for the next item.
struct Component {
    std::string name;        // in capitals: "VEVENT"
    std::size_t number = 0;  // of its first line
    std::vector<ContentLine> properties;
    std::vector<Component> children;
};

class CalendarReader {
  public:
    enum class Item {
        CalendarBegin,
        CalendarProperty,  // property() is one of the calendar itself
        Entry,             // component() is whole
        CalendarEnd,
        End
    };

    // Entries without their properties, except zones: nearly free, for whoever looks for zones.
    enum class Contents { All, OfZones };

    // `file` is how messages name the input.
    CalendarReader(ByteSource source, std::string file, NoteSink sink,
                   Contents contents = Contents::All);

    // The next item. Begin and end of calendars come in pairs, also where the file has none or has
    // forgotten one. An entry is whole when it comes; of one that takes more than kLargestEntry
    // bytes the rest is left out, as an error says.
    Item next();

    // Until the next item is asked for.
    [[nodiscard]] ContentLine& property() { return line_; }
    [[nodiscard]] Component& component() { return component_; }
    // "1.0", "2.0", ... as the current calendar says; "" before it has said so.
    [[nodiscard]] const std::string& version() const { return version_; }
    // True while an entry is read, for whoever hears of a note then.
    [[nodiscard]] bool inEntry() const { return inEntry_; }
    // Of the input so far.
    [[nodiscard]] std::uint64_t bytesRead() const { return lines_.bytesRead(); }

    static constexpr std::size_t kLargestEntry = std::size_t{64} << 20;

  private:
    bool readLine();
    [[nodiscard]] bool passesOver(const RawLine& raw) const;
    Item beginCalendar(bool keepLine);
    Item atTopLevel();
    bool readEntry();
    bool takeEntryLine(std::vector<Component*>& open);
    void closeAll(std::vector<Component*>& open, const std::string& why);
    void addProperty(Component& owner);
    void outside();
    void report(Severity severity, std::size_t line, std::string text);

    LineReader lines_;
    std::string file_;
    NoteSink sink_;
    Contents contents_;
    RawLine raw_;
    ContentLine line_;
    Component component_;
    Arena texts_;  // of component_
    std::string version_;
    bool inCalendar_ = false;
    bool implicit_ = false;  // entries without a calendar around them
    bool inEntry_ = false;
    bool pending_ = false;  // line_ is still to be looked at
    bool ended_ = false;
    bool anyCalendar_ = false;
    std::size_t entrySize_ = 0;
    bool entryFull_ = false;
    std::size_t skippedDepth_ = 0;
    std::size_t outsideLines_ = 0;
    std::size_t firstOutside_ = 0;
};

}  // namespace qel::calendar

#endif
