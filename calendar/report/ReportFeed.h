// Brings what a converter reads, writes and tells into a report, entry by entry. One thread.
#ifndef QEL_CALENDAR_REPORT_REPORTFEED_H
#define QEL_CALENDAR_REPORT_REPORTFEED_H

#include <memory>
#include <sstream>
#include <string>

#include "calendar/formats/EntryWriter.h"
#include "calendar/report/HtmlReport.h"
#include "calendar/converter/SourceLines.h"

namespace qel::calendar {

class ReportFeed {
  public:
    explicit ReportFeed(HtmlReport& report) : report_(report) {}

    void beginFile(const std::string& name);
    // What the converter is to read instead of `source`.
    [[nodiscard]] ByteSource through(ByteSource source) {
        return lines_.through(std::move(source));
    }
    void hear(const Note& message);
    // `target` is what the entry is about to be written as.
    void entryRead(const Entry& entry, CalendarFormat target);
    void entryWritten();
    void endFile();

  private:
    [[nodiscard]] std::string written(const Entry& entry, CalendarFormat target);

    HtmlReport& report_;
    SourceLines lines_;
    ReportEntry entry_;
    ReportMessages pending_;  // since the last entry
    ReportMessages ofFile_;
    // The entries once more as text.
    std::ostringstream text_;
    std::unique_ptr<EntryWriter> writer_;
    CalendarFormat writes_ = CalendarFormat::ICalendar;
};

}  // namespace qel::calendar

#endif
