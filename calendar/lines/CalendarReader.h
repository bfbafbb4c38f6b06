// The components of a calendar file, one after the other, whatever the file's size: calendars begin
// and end, each with its properties, and whole entries in between. Faults in the nesting are
// repaired and reported. One thread.
#ifndef QEL_CALENDAR_LINES_CALENDARREADER_H
#define QEL_CALENDAR_LINES_CALENDARREADER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Ascii.h"
#include "calendar/base/Notes.h"
#include "calendar/lines/ContentLine.h"
#include "calendar/lines/LineReader.h"

namespace qel::calendar {

// The texts of its lines are valid until the reader is asked for the next item.
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
        NeedMore,  // all that was written is read
        End
    };

    // OfZones: entries other than zones come without their properties, which is much quicker.
    enum class Contents { All, OfZones };

    explicit CalendarReader(NoteSink sink, Contents contents = Contents::All)
        : sink_(std::move(sink)), contents_(contents) {}

    // With OfZones: `sink` is given the lines that may hold text beyond ASCII and are passed over.
    void watchTexts(std::function<void(const ContentLine&)> sink) { textSink_ = std::move(sink); }

    // The next bytes of the file, any number of them. They are not copied: they must stay until
    // next() asks for more. REQUIRES: next() has asked for more, or nothing has been written yet.
    void write(std::string_view bytes) { lines_.write(bytes); }
    // The file ends after what was written.
    void end() { lines_.end(); }

    // Where a calendar goes on after a component of it, or before the first one.
    struct Place {
        std::string version;    // of the calendar
        bool indented = false;  // lines of the file that are not folded
        friend bool operator==(const Place&, const Place&) = default;
    };
    // What is written next begins with a line that begins or ends a component, without blanks in
    // front of it: no line before it goes on there.
    void endLine() { lines_.endLine(); }
    // After that, when next() has asked for more. Nothing elsewhere: within a component, or outside
    // calendars.
    [[nodiscard]] std::optional<Place> place() const;
    // Reads from `place` on, in another reader's file, after so many lines. What was written before
    // is forgotten.
    void goOn(const Place& place, std::size_t lines);
    // So many lines, components from their beginning to their end, come before what is written
    // next. REQUIRES: place() is not nothing.
    void skip(std::size_t lines) { lines_.skip(lines); }
    // Physical lines that have been read or skipped.
    [[nodiscard]] std::size_t lines() const { return lines_.lines(); }

    // The next item. Begin and end of calendars come in pairs, also where the file has none or
    // lacks one. An entry that takes more than kLargestEntry bytes is cut there, with an error.
    [[nodiscard]] Item next();

    // Until the next item is asked for.
    [[nodiscard]] ContentLine& property() { return line_; }
    [[nodiscard]] Component& component() { return component_; }
    // The number of its last physical line.
    [[nodiscard]] std::size_t lastLine() const {
        return ended_ ? lines_.lines() : line_.number - (pending_ ? 1 : 0);
    }
    // "1.0", "2.0", ... as the current calendar says; "" before its VERSION.
    [[nodiscard]] const std::string& version() const { return version_; }
    // True while an entry is read: a note that is reported now may be about it.
    [[nodiscard]] bool inEntry() const { return !open_.empty(); }

    static constexpr std::size_t kLargestEntry = std::size_t{64} << 20;

  private:
    LineReader::Result readLine();
    bool parseLine();
    void reportUntidy(const RawLine& raw);
    [[nodiscard]] bool passesOver(const RawLine& raw) const;
    // Over what changes nothing of the entry that is read.
    void passOver();
    void showText();
    [[nodiscard]] FoldStyle foldStyle() const;
    std::optional<Item> takeLine();
    std::optional<Item> takeOutside();
    [[nodiscard]] bool takesContact();
    std::optional<Item> takeInCalendar();
    std::optional<Item> takeInEntry();
    Item beginCalendar(bool keepLine);
    Item endCalendar();
    void beginEntry(std::string name);
    void beginChild(const std::string& name);
    Item endEntry();
    std::optional<Item> takeEnd(const std::string& name);
    Item endFile();
    void reportUnclosed(NoteCode code, std::string_view next = {});
    bool addUsual(const RawLine& raw);
    void addProperty(Component& owner);
    void keepLast(std::vector<ContentLine>& lines);
    void reportOutside();
    void report(NoteCode code, std::size_t line,
                std::initializer_list<std::string_view> values = {});

    LineReader lines_;
    NoteSink sink_;
    Contents contents_;
    std::function<void(const ContentLine&)> textSink_;
    ContentLine line_;
    Component component_;
    Arena texts_;  // of component_
    // The components that are open, from component_ inward; empty outside entries. None gets
    // another child while one of its children is open, so the pointers stay valid.
    std::vector<Component*> open_;
    bool inZone_ = false;    // component_ is one
    std::string swallowed_;  // by the line that was read last, where that swallows a property
    std::string version_;
    bool isICalendar_ = false;  // version_ is 2.0
    bool inCalendar_ = false;
    bool implicit_ = false;  // entries without a calendar around them
    bool pending_ = false;   // line_ is to be looked at once more
    bool ended_ = false;
    bool anyCalendar_ = false;
    std::size_t entrySize_ = 0;
    bool entryFull_ = false;
    std::size_t skippedDepth_ = 0;
    std::size_t outsideLines_ = 0;
    std::size_t firstOutside_ = 0;
    std::size_t contactDepth_ = 0;  // of the vCard that is read, outside calendars
    std::size_t contacts_ = 0;
    std::size_t firstContact_ = 0;
};

}  // namespace qel::calendar

#endif
