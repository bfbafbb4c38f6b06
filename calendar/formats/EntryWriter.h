// From entries to a file of either format, one entry after the other. One thread, but for draft().
#ifndef QEL_CALENDAR_FORMATS_ENTRYWRITER_H
#define QEL_CALENDAR_FORMATS_ENTRYWRITER_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/entries/Entry.h"
#include "calendar/formats/SettledEntry.h"
#include "calendar/formats/WrittenEntries.h"

namespace qel::calendar {

// What a writer makes of an entry by itself. To be used again for the next entry: its texts keep
// their memory.
struct EntryDraft {
    std::optional<SettledEntry> settled;
    std::string lines;       // the entry's own
    std::string alarmLines;  // iCalendar alone has them apart
    ContentDigest content;   // of all that makes two entries the same
    bool usesZone = false;   // a line names the entry's zone
};

class EntryWriter {
  public:
    EntryWriter(std::ostream& out, NoteSink sink) : out_(out), sink_(std::move(sink)) {}
    virtual ~EntryWriter() = default;
    EntryWriter(const EntryWriter&) = delete;
    EntryWriter& operator=(const EntryWriter&) = delete;

    // The properties of the calendar that the next entries come from, other than its version, its
    // product and its zone. The result is one calendar where that is possible, with those of the
    // first one; others are reported.
    virtual void calendar(const std::vector<EntryProperty>& properties) = 0;
    // Writes the entry and reports what the format cannot express. One with the UID and the content
    // of an earlier one is not written again.
    void write(const Entry& entry) {
        draft(entry, draft_);
        add(draft_);
        draft_.settled.reset();
    }
    // The same in two steps. The first one may be done by any thread, whatever the others do, for
    // entries to come; the second one is done in their order. `entry` must last until then; only
    // its madeUid may be changed in between.
    virtual void draft(const Entry& entry, EntryDraft& draft) const = 0;
    virtual void add(EntryDraft& draft) = 0;
    // From here on an entry with the UID of an earlier one and other content gets a new UID.
    void makeUidsDistinct(bool distinct) {
        distinctUids_ = distinct;
        newUids_.clear();
    }
    // Passes on what has been written so far; otherwise that waits until there is more.
    void flush();
    // From now on entryLines() has the lines of the entry that was written last.
    void keepEntryLines(bool keep) { keepsEntryLines_ = keep; }
    // From its BEGIN to its END, without the calendar and the zones before it. Valid until the next
    // call.
    [[nodiscard]] std::string_view entryLines() const {
        return std::string_view(text_).substr(entryBegin_);
    }
    // Closes what is open, and flushes. A file without any entry is still a calendar.
    virtual void finish() = 0;

  protected:
    void report(std::vector<Note> notes) {
        for (Note& note : notes) sink_(std::move(note));
    }
    void report(Note note) { sink_(std::move(note)); }
    // What is to be done with an entry.
    struct Verdict {
        bool twice = false;
        std::string uid;  // a new one; "" to keep the entry's own
    };
    [[nodiscard]] Verdict judge(const EntryDraft& draft);
    // Reports the properties of a later calendar that the open one lacks.
    void reportDifferent(const std::vector<std::string>& have,
                         const std::vector<std::string>& lines,
                         const std::vector<EntryProperty>& properties);
    // One line, unchanged, and its line end.
    void put(std::string_view line);
    // The same in two steps: the line is added to text(), then ended.
    [[nodiscard]] std::string& text() { return text_; }
    // Marks the place of an entry's BEGIN.
    void beginEntry();
    void endLine();

  private:
    std::ostream& out_;
    NoteSink sink_;
    EntryDraft draft_;            // of the entry that is being written
    std::string text_;            // that waits for flush()
    std::size_t entryBegin_ = 0;  // in text_
    bool keepsEntryLines_ = false;
    WrittenEntries written_;
    bool distinctUids_ = false;
    // Of this calendar, by the UIDs that they replace: moved occurrences follow their series.
    std::map<std::string, std::string, std::less<>> newUids_;
};

// The value of PRODID.
inline constexpr std::string_view kProduct = "-//QelUtility//qelutil//EN";

// DTSTAMP of an entry without any date: 1 January 1970.
inline constexpr Moment kNoStamp{25567, 0, false, Clock::Utc};

}  // namespace qel::calendar

#endif
