// What the converter has to tell the person whose calendar it is: which file, which line, what is
// the matter. Plain data; any thread.
#ifndef QEL_CALENDAR_BASE_DIAGNOSTIC_H
#define QEL_CALENDAR_BASE_DIAGNOSTIC_H

#include <cstddef>
#include <functional>
#include <string>

namespace qel::calendar {

enum class Severity {
    Note,     // read in one of several possible ways, or put in order; nothing is lost
    Warning,  // the other format cannot hold it: kept as an X- property, or left out as said
    Error     // the input itself is bad there
};

struct Diagnostic {
    Severity severity = Severity::Warning;
    std::string file;      // as the caller named it
    std::size_t line = 0;  // of the input, 1 for the first; 0 when no line is meant
    std::string text;      // one sentence without a full stop; may hold bytes of the input
};

// True when the message tells of something that is not in the output. Its sentence says "left out"
// then, outside of what it quotes from the input.
[[nodiscard]] bool tellsOfLoss(const Diagnostic& message);

using DiagnosticSink = std::function<void(const Diagnostic&)>;

}  // namespace qel::calendar

#endif
