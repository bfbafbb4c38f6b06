// Brings what a converter reads, writes and tells into a report, entry by entry. One thread.
#ifndef QEL_CALENDAR_REPORT_REPORTFEED_H
#define QEL_CALENDAR_REPORT_REPORTFEED_H

#include <string>

#include "calendar/converter/ConversionObserver.h"
#include "calendar/report/HtmlReport.h"

namespace qel::calendar {

class ReportFeed {
  public:
    explicit ReportFeed(HtmlReport& report) : report_(report) {}

    void beginFile(const std::string& name);
    void hear(const Note& message);
    void entryConverted(const ConvertedEntry& converted);
    void endFile();

  private:
    HtmlReport& report_;
    ReportMessages pending_;  // since the last entry
    ReportMessages ofFile_;
};

}  // namespace qel::calendar

#endif
