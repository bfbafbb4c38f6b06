// The report of a conversion as one HTML page without other files. One thread.
#ifndef QEL_CALENDAR_REPORT_CONVERSIONREPORT_H
#define QEL_CALENDAR_REPORT_CONVERSIONREPORT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "calendar/converter/ConversionObserver.h"
#include "calendar/report/Outcome.h"
#include "calendar/report/ReportPage.h"

namespace qel::calendar {

// The page is written in two streams, because its top is known only at the end and memory stays
// bounded: it is the head followed by the body. What a stream throws comes out of the call that
// wrote to it; the report is of no further use then.
//
// The order of calls: for each file beginFile, its entries and notes, endFile; then finish.
class ConversionReport final : public ConversionObserver {
  public:
    using Write = std::function<void(std::string_view)>;

    // `body` receives the pieces of the body as they come.
    explicit ConversionReport(Write body) : body_(std::move(body)) {}

    // The day on which the weeks of months begin, 1 Sunday to 7 Saturday; Monday by default.
    void beginWeeksOn(int weekday) { weekStart_ = weekday; }

    void beginFile(const std::string& name);
    // Every note of the conversion, as the converter reports it: those about an entry before the
    // entry itself. The others are shown at the end of their file.
    void note(const Note& note);
    [[nodiscard]] bool wantsLines() const override { return true; }
    void entryConverted(const ConvertedEntry& converted) override;
    void endFile();
    // See Tally::settle(). Possible until finish().
    void settle(std::size_t file, std::string output, std::string reason) {
        tally_.settle(file, std::move(output), std::move(reason));
    }
    // Ends the body and hands the head to `head`. `remark` is a sentence about the whole run, or
    // empty.
    void finish(const std::string& remark, const Write& head);

    [[nodiscard]] const Tally& tally() const { return tally_; }

  private:
    Write body_;
    Tally tally_;
    NoteList pending_;  // since the last entry
    NoteList ofFile_;
    int weekStart_ = 2;
    std::size_t articles_ = 0;  // written so far
};

}  // namespace qel::calendar

#endif
