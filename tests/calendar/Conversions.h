// Conversions of texts in memory, for the tests. One thread.
#ifndef QEL_TESTS_CONVERT_CONVERSIONS_H
#define QEL_TESTS_CONVERT_CONVERSIONS_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "calendar/converter/Converter.h"
#include "calendar/entries/Entry.h"

namespace qel::test {

struct Conversion {
    std::string out;
    std::vector<calendar::Note> messages;
    calendar::ConvertCounts counts;

    // Messages of that severity, "line: text" each.
    [[nodiscard]] std::vector<std::string> texts(calendar::Severity severity) const;
    // True when a message holds `part`.
    [[nodiscard]] bool tells(const std::string& part) const;
};

[[nodiscard]] Conversion convertText(const std::string& text,
                                     std::optional<calendar::CalendarFormat> to,
                                     std::size_t piece = 4096,
                                     calendar::ConversionObserver* observer = nullptr,
                                     const calendar::Choices& choices = {});
// The public calendar files of that kind, "vcs" or "ics"; none where they are not present.
[[nodiscard]] std::vector<std::filesystem::path> publicFiles(const std::string& kind);
// "" when several threads say what one says, of the whole text and of pieces of that size.
[[nodiscard]] std::string differenceByThreads(const std::string& text, calendar::CalendarFormat to,
                                              std::size_t piece,
                                              const calendar::Choices& choices = {});
// "" when the file gives the same result and the same notes in pieces of any size, and with several
// threads.
[[nodiscard]] std::string differenceInPieces(const std::string& text);
[[nodiscard]] Conversion toICalendar(const std::string& text);
[[nodiscard]] Conversion toVCalendar(const std::string& text);

// The entries of a file, as the converter understands them.
[[nodiscard]] std::vector<calendar::Entry> entriesOf(const std::string& text);

// What of the entries of one file is different in the other: components, names, dates, the dates of
// rules, texts, alarms. "" when all came back as it went.
[[nodiscard]] std::string entryDifferences(const std::string& before, const std::string& after);

// The lines of an iCalendar text with its folds undone.
[[nodiscard]] std::vector<std::string> unfolded(const std::string& text);

// One VEVENT or VTODO in a calendar, for tests of single properties: lines end in "\n" here and are
// written with CR LF.
[[nodiscard]] std::string vcalendarWith(const std::string& lines, const std::string& header = "");

// What is no iCalendar of RFC 5545 in the text: the first fault, "" when there is none.
[[nodiscard]] std::string faultOf(const std::string& icalendar);

}  // namespace qel::test

#endif
