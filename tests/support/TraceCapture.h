// What a test sees of the trace log. Every test program's main() sends the log, the options file
// and the profile directory to a temporary folder before anything is traced (redirectTrace), so
// that no test writes into the user's own; a TraceCapture then reads the lines logged since it was
// made:
//
//   TraceCapture trace;
//   EXPECT_EQ(ZQRepeatNextDate(&repeat, 0, next), 4008);
//   EXPECT_TRUE(trace.hasError("5.4008", "RptNext", 357));
//
// It reads the file alone, so it works with the library's objects and with the shared library. One
// thread.
#ifndef QEL_TESTS_SUPPORT_TRACECAPTURE_H
#define QEL_TESTS_SUPPORT_TRACECAPTURE_H

#include <cstddef>
#include <string>
#include <vector>

namespace qel::test {

// Points the environment at a fresh folder that is removed when the process ends. Called by main();
// more calls do nothing. A folder named by QEL_TEST_TRACE_DIR is used, and left, instead.
void redirectTrace();

// The folder and the log in it.
[[nodiscard]] const std::string& traceDirectory();
[[nodiscard]] const std::string& traceLogPath();

// A line of the log, without its prefix "[1A2C] 06/15 14:02:11.123 000: " and its line end. Text
// that carries no prefix is given as it stands.
[[nodiscard]] std::string withoutPrefix(const std::string& line);

// `text` with every time stamp replaced by "<stamp>" and every prefix by "<prefix>".
[[nodiscard]] std::string maskStamps(const std::string& text);

class TraceCapture {
  public:
    TraceCapture();  // marks the log's end

    // The lines since the mark, whole, without their line ends; a log that was rotated meanwhile is
    // read from its start.
    [[nodiscard]] std::vector<std::string> lines() const;

    // The error lines since the mark, from the word on: "Error 5.2001 at RptNext line 12".
    [[nodiscard]] std::vector<std::string> errors() const;

    // Whether "Error <details> at <source> line <line>" was logged; `details` are those of the
    // line, the code last, joined by dots.
    [[nodiscard]] bool hasError(const std::string& details, const std::string& source,
                                int line) const;
    // The same, whatever the line number.
    [[nodiscard]] bool hasError(const std::string& details, const std::string& source) const;

    // Moves the mark to the log's end.
    void mark();

  private:
    std::size_t mark_ = 0;
};

}  // namespace qel::test

#endif
