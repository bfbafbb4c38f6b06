// Calendars of vCalendar 1.0: one for each zone, because the format has no other place for a zone.
// Notes are written outside calendars. One thread.
#ifndef QEL_CALENDAR_FORMATS_VCALWRITER_H
#define QEL_CALENDAR_FORMATS_VCALWRITER_H

#include <string>
#include <vector>

#include "calendar/formats/EntryWriter.h"
#include "calendar/formats/SettledEntry.h"

namespace qel::calendar {

class VCalWriter final : public EntryWriter {
  public:
    using EntryWriter::EntryWriter;
    void calendar(const std::vector<EntryProperty>& properties) override;
    void write(const Entry& entry) override;
    void finish() override;

  private:
    // Local times need a calendar of their zone; floating ones, and series in UTC, one without any.
    void openFor(const Entry& entry);
    void open(const ZonePtr& zone, int firstYear, int lastYear);
    void close();
    // The entry's own lines into lines_.
    void addLines(const SettledEntry& settled);
    // Of a journal.
    void writeNote();
    void reportEndOfLines(const Entry& entry);

    std::vector<EntryProperty> header_;
    std::vector<std::string> headerLines_;
    std::string method_;  // in them: it is about all entries of its calendar
    // Of the entry that is being written. A member, so that the next entry uses the same memory.
    std::string lines_;
    bool open_ = false;
    bool any_ = false;
    ZonePtr zone_;
    int firstYear_ = 0;
    int lastYear_ = 0;
    bool endReported_ = false;  // in the open calendar
};

}  // namespace qel::calendar

#endif
