// The report of a conversion as one HTML page without other files. One thread.
#ifndef QEL_CALENDAR_REPORT_CONVERSIONREPORT_H
#define QEL_CALENDAR_REPORT_CONVERSIONREPORT_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

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
    // A part of `whole`, held until that takes it by join(). Any thread, also while another one
    // uses `whole`; each part belongs to one.
    [[nodiscard]] static std::unique_ptr<ConversionReport> partOf(const ConversionReport& whole);

    // The day on which the weeks of months begin, 1 Sunday to 7 Saturday; Monday by default.
    void beginWeeksOn(int weekday) { weekStart_ = weekday; }

    void beginFile(const std::string& name);
    // A file that is not read, between others.
    void addFile(const std::string& name) { tally_.addFile(name); }
    // Every note of the conversion, as the converter reports it: those about an entry before the
    // entry itself. The others are shown at the end of their file.
    void note(const Note& note);
    [[nodiscard]] bool wantsLines() const override { return true; }
    void entryConverted(const ConvertedEntry& converted) override;
    void endFile();
    // The files of `part`, as if they had been reported here one after the other. REQUIRES: this is
    // no part and `part` is one of it; no file is begun in either.
    void join(ConversionReport& part);
    // See Tally::settle(). Possible until finish().
    void settle(std::size_t file, std::string output, std::string reason) {
        tally_.settle(file, std::move(output), std::move(reason));
    }
    // Ends the body and hands the head to `head`. `remark` is a sentence about the whole run, or
    // empty.
    void finish(const std::string& remark, const Write& head);

    [[nodiscard]] const Tally& tally() const { return tally_; }
    [[nodiscard]] bool isPart() const { return body_ == nullptr; }

  private:
    struct Held {
        enum class What { File, Article, Other };
        What what;
        std::string text;  // of a file its name
        std::string line;  // of an article that may be a line instead
    };

    void put(Held::What what, std::string text, std::string line = {});

    Write body_;              // empty for a part
    std::vector<Held> held_;  // of a part
    Tally tally_;
    NoteList pending_;  // since the last entry
    NoteList ofFile_;
    int weekStart_ = 2;
    // Written so far; of a part also those of the whole when the part began.
    std::atomic<std::size_t> articles_{0};
};

}  // namespace qel::calendar

#endif
