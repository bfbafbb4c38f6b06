// The pieces of the report's page, from top to bottom. Any thread.
#ifndef QEL_CALENDAR_REPORT_REPORTPAGE_H
#define QEL_CALENDAR_REPORT_REPORTPAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "calendar/base/Notes.h"
#include "calendar/report/EntryFacts.h"
#include "calendar/report/Outcome.h"

namespace qel::calendar {

// Notes about one thing, of which the first 50 are shown.
struct NoteList {
    std::vector<Note> shown;
    std::uint64_t more = 0;

    void add(const Note& note);
    void add(const NoteList& others);
    [[nodiscard]] std::uint64_t count() const { return shown.size() + more; }
};

struct ReportEntry {
    EntryFacts facts;
    int weekStart = 2;     // of the months: 1 Sunday to 7 Saturday
    std::size_t line = 0;  // where it begins in its file
    NoteList notes;
    std::vector<std::string> kept;  // names under which the result keeps what its format lacks
    std::string before;             // its lines in the file; empty where they are unknown
    std::string after;              // its lines in the result
    bool cut = false;               // before or after are the first lines alone
};

// The head: the page's beginning, what to look at first, a row for each file (1 for the first), the
// beginning of the entries.
[[nodiscard]] std::string pageBegin(const std::string& remark, const Totals& totals);
[[nodiscard]] std::string filesLeftOut(const std::vector<FileOutcome>& files);
[[nodiscard]] std::string lookFirst(const std::vector<NoteGroup>& groups);
[[nodiscard]] std::string filesBegin(const Totals& totals);
[[nodiscard]] std::string fileRow(std::size_t number, const FileOutcome& file);
[[nodiscard]] std::string entriesBegin();

// The body: of each file its beginning, its entries and its end; the page's end.
[[nodiscard]] std::string fileBegin(std::size_t number, const std::string& name);
[[nodiscard]] std::string entryArticle(const ReportEntry& entry);
// The same in one line, for an entry without a message.
[[nodiscard]] std::string entryLine(const ReportEntry& entry);
[[nodiscard]] std::string fileEnd(const NoteList& notes);
// `importable`: there are results that calendar programs import.
[[nodiscard]] std::string pageEnd(bool importable);

}  // namespace qel::calendar

#endif
