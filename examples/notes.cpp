// Converts a calendar and decides by the notes whether the result is good enough.
#include <QelCalendar/Convert.h>
#include <QelCalendar/Notes.h>
#include <stdio.h>

#include <string>
#include <vector>

static const std::string kFile =
    "BEGIN:VCALENDAR\n"
    "VERSION:1.0\n"
    "BEGIN:VEVENT\n"
    "SUMMARY:Choir\n"
    "DTSTART:20050606T190000\n"
    "RRULE:W1 MO XX #5\n"
    "DTEND:20050631T210000\n"
    "END:VEVENT\n"
    "END:VCALENDAR\n";

// What the catalogue says about a code; docs/notes.md is made of the same rows.
static std::string adviceFor(int code) {
    for (const qelcal_note_kind& kind : qelcal::noteKinds())
        if (kind.code == code) return kind.advice;
    return std::string();
}

int main() {
    std::vector<qelcal::Note> notes;
    try {
        qelcal::convert(kFile, QELCAL_ICALENDAR, &notes);
    } catch (const qelcal::Error& error) {
        printf("%s\n", error.what());
        return 1;
    }
    bool lost = false;
    for (const qelcal::Note& note : notes) {
        printf("line %d, %s: %s\n", (int)note.line, note.name.c_str(), note.text.c_str());
        printf("  what to do: %s\n", adviceFor(note.code).c_str());
        // Decide by fate, severity or code, never by the sentence, which may change.
        if (note.fate == QELCAL_LOST) lost = true;
        if (note.code == QELCAL_NOTE_ENTRY_DATE_INVALID) printf("  ask for the right date\n");
    }
    printf("%s\n", lost ? "something is missing from the result" : "nothing is missing");
    return 0;
}
// clang-format off

// Prints:
// line 7, entry-date-invalid: a date of the entry is missing: "20050631T210000" is not a date; DTEND is kept as X-VCAL-DTEND
//   what to do: Correct the date in the entry.
//   ask for the right date
// line 6, rule-item-unknown: RRULE "W1 MO XX #5": an unknown item of the rule is ignored: "XX"
//   what to do: Check the dates of the series.
// something is missing from the result
