// The report of a conversion as one page: no other file, no script. Entries go to a file beside it
// as they come; the page begins with what is known only at the end. One thread.
#ifndef QEL_CALENDAR_REPORT_HTMLREPORT_H
#define QEL_CALENDAR_REPORT_HTMLREPORT_H

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/Files.h"
#include "calendar/report/EntryFacts.h"
#include "calendar/report/Outcome.h"

namespace qel::calendar {

// Messages about one thing, the first ones of them.
struct ReportMessages {
    std::vector<Note> shown;
    std::uint64_t more = 0;

    void add(const Note& message);
};

struct ReportEntry {
    EntryFacts facts;
    std::size_t line = 0;  // where it begins in its file
    ReportMessages messages;
    std::vector<std::string> kept;  // names under which the result keeps what its format lacks
    std::string before;             // its lines in the file, "" where they are not known
    std::string after;              // its lines in the result
    bool cut = false;               // there are more lines than before or after hold
};

class HtmlReport {
  public:
    // Both throw cli::InputError when the file cannot be written; without finish() an old page
    // stands as it was.
    HtmlReport(cli::Context& context, const std::string& name);
    ~HtmlReport();
    HtmlReport(const HtmlReport&) = delete;
    HtmlReport& operator=(const HtmlReport&) = delete;

    void beginFile(const std::string& name);
    void entry(const ReportEntry& entry);
    // What is told of the file itself.
    void endFile(const ReportMessages& messages);
    // `files` in the order in which they were begun. `note` is a sentence about the whole run.
    void finish(const std::vector<FileOutcome>& files, const Totals& totals,
                const std::string& note);

  private:
    void put(const std::string& text);

    std::string name_;
    cli::OutputFile page_;
    std::filesystem::path bodyPath_;
    std::fstream body_;
    std::size_t number_ = 0;  // of the file
};

}  // namespace qel::calendar

#endif
