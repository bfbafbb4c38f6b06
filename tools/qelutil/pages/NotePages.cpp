// The pages about the calendar library's notes: each is a template, and rows of the catalogue.
#include <algorithm>
#include <string_view>

#include "QelCalendar/Notes.h"
#include "base/NoteWords.h"
#include "base/Text.h"
#include "pages/Pages.h"

namespace qel::cli {

namespace {

constexpr std::string_view kHere = "@ROWS@";

constexpr std::string_view kDocument = R"(# Notes

Everything that the calendar library changes, keeps in another place or cannot carry over, and everything
that is invalid in a file, is reported by a note. A note has a number, which is never used again, and a name.
Programs compare the number (`QelCalendar/qelcalnotes.h`); the sentence that people read may change.
This page is made by `./dev pages` from the library's catalogue.

- **Severity**: an *error* says that the input itself is invalid there, a *warning* that the other
  format cannot hold something, a *note* that untidy input was read in one of several possible ways.
- **Data**: *unchanged* when nothing is lost, *kept* when it is in another place of the result, mostly
  a property whose name begins with X-, *lost* when it is missing from the result.
@ROWS@)";

constexpr std::string_view kHeader = R"(/** @file
 * The codes of the calendar library's notes; "./dev pages" makes this file from its catalogue. A
 * number is never used again. C99.
 */
#ifndef QELCALENDAR_QELCALNOTES_H
#define QELCALENDAR_QELCALNOTES_H

/* clang-format off */

/** What a note is about; docs/notes.md explains each. */
typedef enum qelcal_note_code {
    QELCAL_NOTE_NONE = 0,
    /**< No note. */
@ROWS@} qelcal_note_code;

/* clang-format on */

#endif
)";

std::string filled(std::string_view text, const std::string& rows) {
    std::string result(text);
    return result.replace(result.find(kHere), kHere.size(), rows);
}

struct Chapter {
    int hundred;
    std::string_view title;
};

constexpr Chapter kChapters[] = {{1, "The lines of a file"},
                                 {2, "Texts and character sets"},
                                 {3, "Recurrence rules"},
                                 {4, "Time zones"},
                                 {5, "Entries as they are read"},
                                 {6, "Entries as they are written to iCalendar"},
                                 {7, "Entries as they are written to vCalendar 1.0"},
                                 {8, "Whole files"}};

// A cell of a Markdown table.
std::string cell(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '|' || c == '<' || c == '*' || c == '_' || c == '`') result += '\\';
        result += c;
    }
    return result + " | ";
}

std::string tableRow(const qelcal_note_kind& kind) {
    std::string row = "| " + std::to_string(kind.code) + " | `" + kind.name + "` | " +
                      cell(severityName(kind.severity)) + cell(fateName(kind.fate)) +
                      cell(kind.meaning) + cell(kind.advice);
    row.back() = '\n';
    return row;
}

std::string enumerator(const qelcal_note_kind& kind) {
    std::string name = upperCase(kind.name);
    std::replace(name.begin(), name.end(), '-', '_');
    return "    QELCAL_NOTE_" + name + " = " + std::to_string(kind.code) + ",\n";
}

// "/**< MEANING */" in lines of at most 100 characters.
std::string comment(std::string_view meaning) {
    constexpr std::size_t kWidth = 100;
    std::string text;
    std::string line = "    /**<";
    while (!meaning.empty()) {
        const std::string_view word = meaning.substr(0, meaning.find(' '));
        meaning.remove_prefix(std::min(word.size() + 1, meaning.size()));
        const std::size_t end = meaning.empty() ? 3 : 0;
        if (line.size() + 1 + word.size() + end > kWidth) {
            text += line + "\n";
            line = "     *";
        }
        line.append(" ").append(word);
    }
    return text + line + " */\n";
}

}  // namespace

std::string notesDocument() {
    std::string tables;
    for (const Chapter& chapter : kChapters) {
        std::string rows;
        for (const qelcal_note_kind& kind : qelcal::noteKinds())
            if (kind.code / 100 == chapter.hundred) rows += tableRow(kind);
        if (rows.empty()) continue;
        tables += "\n## " + std::string(chapter.title) +
                  "\n\n| number | name | severity | data | what it means | what to do |\n"
                  "| --- | --- | --- | --- | --- | --- |\n" +
                  rows;
    }
    return filled(kDocument, tables);
}

std::string notesHeader() {
    std::string rows;
    for (const qelcal_note_kind& kind : qelcal::noteKinds())
        if (kind.code < 900) rows += enumerator(kind) + comment(kind.meaning);
    return filled(kHeader, rows);
}

}  // namespace qel::cli
