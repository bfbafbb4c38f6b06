// From entries to a file of either format, entry by entry: nothing of one entry is kept for the
// next but the names of the zones that have been written. One thread.
#ifndef QEL_CALENDAR_FORMATS_ENTRYWRITER_H
#define QEL_CALENDAR_FORMATS_ENTRYWRITER_H

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/entries/Entry.h"

namespace qel::calendar {

class EntryWriter {
  public:
    EntryWriter(std::ostream& out, NoteSink sink) : out_(out), sink_(std::move(sink)) {}
    virtual ~EntryWriter() = default;
    EntryWriter(const EntryWriter&) = delete;
    EntryWriter& operator=(const EntryWriter&) = delete;

    // The properties of the calendar that the next entries come from, besides its version, its
    // product and its zone. Calendars that agree in them are joined.
    virtual void calendar(const std::vector<EntryProperty>& properties) = 0;
    // Puts the entry's times and lists in the format's order on the way.
    virtual void write(Entry& entry) = 0;
    // Hands on what has been written so far; without it that waits until it is worth the while.
    void flush();
    // From now on entryLines() has the lines of the entry that was written last.
    void keepEntryLines(bool keep) { keepsEntryLines_ = keep; }
    // From its BEGIN to its END, without the calendar and the zones before it. Valid until the next
    // call.
    [[nodiscard]] std::string_view entryLines() const {
        return std::string_view(text_).substr(entryBegin_);
    }
    // Closes what is open, and flushes. A file without any entry still is a calendar.
    virtual void finish() = 0;

  protected:
    void tell(Severity severity, std::size_t line, std::string message) {
        sink_(Note(severity, std::move(message), line));
    }
    // One line with its line end, as it stands.
    void put(std::string_view line);
    // The same in two steps: the line is added to text(), then ended.
    [[nodiscard]] std::string& text() { return text_; }
    // Marks the place of an entry's BEGIN.
    void beginEntry();
    void endLine();

  private:
    std::ostream& out_;
    NoteSink sink_;
    std::string text_;            // that waits for flush()
    std::size_t entryBegin_ = 0;  // in text_
    bool keepsEntryLines_ = false;
};

// The value of PRODID.
inline constexpr std::string_view kProduct = "-//QelUtility//qelutil//EN";

// DTSTAMP of an entry that tells no date at all: 1 January 1970.
inline constexpr Moment kNoStamp{25567, 0, false, Clock::Utc};

// iCalendar 2.0 (RFC 5545): lines of at most 75 octets, folded between characters.
class ICalWriter final : public EntryWriter {
  public:
    using EntryWriter::EntryWriter;
    void calendar(const std::vector<EntryProperty>& properties) override;
    void write(Entry& entry) override;
    void finish() override;

  private:
    friend class ICalEntry;
    void open();
    void close();
    void fold(std::string_view line);

    std::vector<std::string> header_;  // of the calendar that comes
    std::vector<std::string> written_;
    bool open_ = false;
    bool any_ = false;
    std::set<std::string, std::less<>> zones_;
    // Of the entry that is written: its lines and those of its alarms, folded. Here because their
    // room serves the next entry too.
    std::string lines_;
    std::string alarmLines_;
};

// vCalendar 1.0: a calendar for each zone, because it has no other place for one; notes stand
// outside of calendars.
class VCalWriter final : public EntryWriter {
  public:
    using EntryWriter::EntryWriter;
    void calendar(const std::vector<EntryProperty>& properties) override;
    void write(Entry& entry) override;
    void finish() override;

  private:
    friend class VCalEntry;
    void open(const ZonePtr& zone, int firstYear, int lastYear);
    void close();

    std::vector<EntryProperty> header_;
    bool headerChanged_ = false;
    bool open_ = false;
    bool any_ = false;
    ZonePtr zone_;
    int firstYear_ = 0;
    int lastYear_ = 0;
};

}  // namespace qel::calendar

#endif
