// Calendars of iCalendar 2.0 (RFC 5545): lines of at most 75 octets, folded between characters. One
// thread.
#ifndef QEL_CALENDAR_FORMATS_ICALWRITER_H
#define QEL_CALENDAR_FORMATS_ICALWRITER_H

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/formats/EntryWriter.h"

namespace qel::calendar {

class ICalWriter final : public EntryWriter {
  public:
    using EntryWriter::EntryWriter;
    void calendar(const std::vector<EntryProperty>& properties) override;
    void draft(const Entry& entry, EntryDraft& draft) const override;
    void add(EntryDraft& draft) override;
    void finish() override;

  private:
    void open();
    void close();
    // True when the open calendar can describe the entry's zone, or describes it already.
    [[nodiscard]] bool holdsZoneOf(const Entry& entry) const;
    void writeZoneOf(const Entry& entry);
    void fold(std::string_view line);

    std::vector<std::string> header_;
    std::string method_;  // in header_
    bool open_ = false;
    bool any_ = false;
    struct DescribedZone {
        ZonePtr zone;
        int since;  // the year from which on its description is right
    };
    std::map<std::string, DescribedZone, std::less<>> zones_;  // in the open calendar, by TZID
};

}  // namespace qel::calendar

#endif
