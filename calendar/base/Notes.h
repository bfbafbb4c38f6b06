// What the library reports about a calendar: one record for each thing that was changed, kept
// elsewhere or lost, or that was wrong in the input. Nothing decides by a note's words: severity
// and fate belong to its code, and the sentence is made from the catalogue when somebody reads it.
// Plain data; any thread.
#ifndef QEL_CALENDAR_BASE_NOTES_H
#define QEL_CALENDAR_BASE_NOTES_H

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qel::calendar {

enum class Severity {
    Note,     // read in one of several possible ways, or put in order
    Warning,  // the target format cannot express it
    Error     // the input itself is invalid
};

// What became of the data that a note is about.
enum class Fate {
    Unchanged,  // nothing is lost: at most read or written in another way
    Kept,       // kept in another place, mostly an X- property
    Lost        // missing from the result
};

// Stable: a number is never used again. Each room has a hundred of its own.
enum class NoteCode : int {
#define QEL_NOTE(code, number, severity, fate, name, sentence, meaning, advice) code = (number),
#include "calendar/base/NoteCatalogue.def"
#undef QEL_NOTE
};

// A row of the catalogue.
struct NoteKind {
    NoteCode code;
    Severity severity;
    Fate fate;
    std::string_view name;      // "rule-part-unknown"
    std::string_view sentence;  // {0}, {1} are the note's values; no full stop
    std::string_view meaning;   // for the person whose calendar it is
    std::string_view advice;    // what to do
};

// All of them, ascending by number.
[[nodiscard]] std::span<const NoteKind> noteKinds();
[[nodiscard]] const NoteKind& noteKind(NoteCode code);
// The catalogue's word for it: "note", "warning", "error".
[[nodiscard]] std::string_view severityName(Severity severity);
// "unchanged", "kept", "lost".
[[nodiscard]] std::string_view fateName(Fate fate);

// Input is cut at this length before it goes into a note: more than is shown.
inline constexpr std::size_t kLongestExcerpt = 200;

struct Note {
    NoteCode code{};
    std::size_t line = 0;  // of the input, 1 for the first; 0 when no line is meant
    // What its sentence mentions, unchanged from the input: control characters and invalid bytes
    // included. Escape them before showing them.
    std::vector<std::string> values;
    // The property that the note is about and its value, where the sentence needs them before it:
    // `RRULE "W1 MO XX": ...`. Empty when not.
    std::string property;
    std::string excerpt;
    std::string file;  // as the caller named the input; filled in by the converter

    Note() = default;
    explicit Note(NoteCode noteCode, std::size_t noteLine = 0,
                  std::initializer_list<std::string_view> noteValues = {})
        : code(noteCode), line(noteLine), values(noteValues.begin(), noteValues.end()) {}

    [[nodiscard]] Severity severity() const { return noteKind(code).severity; }
    [[nodiscard]] Fate fate() const { return noteKind(code).fate; }
    // One sentence without a full stop.
    [[nodiscard]] std::string text() const;
};

using NoteSink = std::function<void(Note)>;

}  // namespace qel::calendar

#endif
