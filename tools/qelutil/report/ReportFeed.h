// Brings what a converter reads, writes and tells into a report, entry by entry. One thread.
#ifndef QELUTIL_REPORT_REPORTFEED_H
#define QELUTIL_REPORT_REPORTFEED_H

#include <memory>
#include <sstream>
#include <string>

#include "convert/EntryWriter.h"
#include "report/HtmlReport.h"
#include "report/SourceLines.h"

namespace qel::cli {

class ReportFeed {
  public:
    explicit ReportFeed(HtmlReport& report) : report_(report) {}

    void beginFile(const std::string& name);
    // What the converter is to read instead of `source`.
    [[nodiscard]] convert::ByteSource through(convert::ByteSource source) {
        return lines_.through(std::move(source));
    }
    void hear(const convert::Diagnostic& message);
    // `target` is what the entry is about to be written as.
    void entryRead(const convert::Entry& entry, convert::CalendarFormat target);
    void entryWritten();
    void endFile();

  private:
    [[nodiscard]] std::string written(const convert::Entry& entry, convert::CalendarFormat target);

    HtmlReport& report_;
    SourceLines lines_;
    ReportEntry entry_;
    ReportMessages pending_;  // since the last entry
    ReportMessages ofFile_;
    // The entries once more as text.
    std::ostringstream text_;
    std::unique_ptr<convert::EntryWriter> writer_;
    convert::CalendarFormat writes_ = convert::CalendarFormat::ICalendar;
};

}  // namespace qel::cli

#endif
