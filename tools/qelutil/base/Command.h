// What a subcommand of qelutil is made of. Each command lives in commands/XCommand.cpp and offers
// one function `void addXCommand(CLI::App& app, Context& context)`, named in main.cpp; it adds a
// subcommand with its options, a footer with examples, and a callback that does the work. The
// callback returns when the work is done, or throws UsageError or InputError. One thread.
#ifndef QELUTIL_BASE_COMMAND_H
#define QELUTIL_BASE_COMMAND_H

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace CLI {
class App;
}

namespace qel::cli {

// What the process returns: 1 when some input was bad and the rest was done (or when nothing could
// be done), 2 when the command line itself is invalid.
enum ExitCode { kExitFine = 0, kExitBadInput = 1, kExitUsage = 2 };

// The command line asks for something that cannot be meant. The text says what, in one sentence
// without a full stop; "see `qelutil COMMAND --help`" is added.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command cannot go on with what it was given: "what: why; what to do next".
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    // "FILE:LINE: text"
    InputError(const std::string& file, std::size_t line, const std::string& text)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + text) {}
};

class Progress;

// The streams and the exit code of one run. The output streams are binary on every platform and
// throw std::ios_base::failure when a write fails, so that a command stops when nobody reads on.
class Context {
  public:
    Context(std::istream& inStream, std::ostream& outStream, std::ostream& errStream);
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    std::istream& in;
    std::ostream& out;

    // "qelutil: FILE:LINE: TEXT" on standard error, and exit code 1 from now on. An empty file and
    // line 0 are left out. Control characters in what is shown are escaped.
    void error(std::string_view file, std::size_t line, std::string_view text);
    void error(std::string_view text) { error({}, 0, text); }
    // The same with "warning: " before the text; the exit code stays as it is.
    void warning(std::string_view file, std::size_t line, std::string_view text);
    // The same with "note: " before the text.
    void note(std::string_view file, std::size_t line, std::string_view text);

    // "qelutil: TEXT" on standard error: what was done.
    void say(std::string_view text);

    // Some input was bad, and something else has said so.
    void setBadInput() { exitCode_ = kExitBadInput; }
    [[nodiscard]] int exitCode() const { return exitCode_; }

    // The files that this run reads and those that it has written, known by what they are, not by
    // their names: no result replaces one of them. setInput() in any thread.
    void setInput(const std::optional<platform::FileId>& file);
    [[nodiscard]] bool isInput(const std::filesystem::path& path) const;
    // Of what standard output goes to.
    [[nodiscard]] bool outputIsInput() const;
    void setWritten(const platform::FileId& file) { written_.insert(file); }
    [[nodiscard]] bool isWritten(const std::filesystem::path& path) const;

  private:
    friend class Progress;
    // What a message is: its word before the text, and the colour that goes with it.
    struct Kind;
    [[nodiscard]] bool isInput(const std::optional<platform::FileId>& file) const;
    void message(const Kind& kind, std::string_view file, std::size_t line, std::string_view text);

    std::ostream& err_;
    Progress* progress_ = nullptr;
    int exitCode_ = kExitFine;
    mutable std::mutex inputsLock_;
    std::set<platform::FileId> inputs_;
    std::set<platform::FileId> written_;
};

}  // namespace qel::cli

#endif
