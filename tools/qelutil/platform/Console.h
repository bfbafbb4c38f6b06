// The program's own door to the operating system: declared once, defined in posix/ and in win32/.
// One thread; prepareStreams is called once, before anything is read, written or opened.
#ifndef QELUTIL_PLATFORM_CONSOLE_H
#define QELUTIL_PLATFORM_CONSOLE_H

#include <filesystem>
#include <string>
#include <vector>

namespace qel::cli::platform {

// Makes the three standard streams binary, keeps the numbers of closed ones from being handed to
// files opened later (a write to a closed standard output must fail, not land in a file), and lets
// a write to a broken pipe, or beyond a limit on the size of files, fail instead of ending the
// process.
void prepareStreams();

// The command line's words after the program's name, as UTF-8.
[[nodiscard]] std::vector<std::string> arguments(int argc, char** argv);

[[nodiscard]] bool inputIsTerminal();
[[nodiscard]] bool outputIsTerminal();
[[nodiscard]] bool errorIsTerminal();
// Columns of the terminal on standard output, or on standard error; 0 when there is none or it does
// not say.
[[nodiscard]] int outputColumns();
[[nodiscard]] int errorColumns();
// True when the terminal there obeys ANSI escape sequences.
[[nodiscard]] bool outputUnderstandsEscapes();
[[nodiscard]] bool errorUnderstandsEscapes();

// While it lives, what the C library writes to standard output goes to standard error.
class OutputDiversion {
  public:
    OutputDiversion();
    ~OutputDiversion();
    OutputDiversion(const OutputDiversion&) = delete;
    OutputDiversion& operator=(const OutputDiversion&) = delete;

  private:
    int kept_;  // standard output itself; negative when it cannot be kept, and nothing is diverted
};

// True when the window is this program's own and closes with it: it was started from the desktop,
// by a file dropped on it.
[[nodiscard]] bool ownsItsWindow();

// Shows a file as the desktop does, a page in the browser. False when that cannot be done.
bool showFile(const std::filesystem::path& file);

// The day on which weeks begin where this person lives, 1 Sunday to 7 Saturday.
[[nodiscard]] int firstWeekday();

// How a person ends the input that is typed: "Ctrl-D".
[[nodiscard]] const char* endOfInputKeys();

}  // namespace qel::cli::platform

#endif
