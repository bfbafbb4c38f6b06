// Calendars of vCalendar 1.0: one for each zone, because the format has no other place for a zone.
// Notes are written outside calendars. One thread.
#ifndef QEL_CALENDAR_FORMATS_VCALWRITER_H
#define QEL_CALENDAR_FORMATS_VCALWRITER_H

#include <string>
#include <vector>

#include "calendar/formats/EntryWriter.h"

namespace qel::calendar {

class VCalWriter final : public EntryWriter {
  public:
    using EntryWriter::EntryWriter;
    void calendar(const std::vector<EntryProperty>& properties) override;
    void draft(const Entry& entry, EntryDraft& draft) const override;
    void add(EntryDraft& draft) override;
    void finish() override;

  private:
    // Local times need a calendar of their zone; floating ones, and series in UTC, one without any.
    void openFor(const Entry& entry);
    void open(const ZonePtr& zone, int firstYear, int lastYear);
    void close();
    // The entry's own lines.
    static void addLines(EntryDraft& draft);
    // Of a journal.
    void writeNote(const std::string& lines);
    void reportEndOfLines(const Entry& entry);

    std::vector<EntryProperty> header_;
    std::vector<std::string> headerLines_;
    std::string method_;  // in them: it is about all entries of its calendar
    bool open_ = false;
    bool any_ = false;
    ZonePtr zone_;
    int firstYear_ = 0;
    int lastYear_ = 0;
    bool endReported_ = false;  // in the open calendar
};

}  // namespace qel::calendar

#endif
