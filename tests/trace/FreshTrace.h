// A trace as it is at the start of a process: a folder of its own, options of the test's choosing,
// nothing loaded yet. It is installed in the place of the program's own until it is destroyed. One
// at a time, with no other thread tracing while it is made, restarted or destroyed.
#ifndef QEL_TESTS_TRACE_FRESHTRACE_H
#define QEL_TESTS_TRACE_FRESHTRACE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/TempDir.h"
#include "trace/TraceSystem.h"

namespace qel::test {

class FreshTrace {
  public:
    // `options` become section LogSettings of BxOptions.opt, one "key=value" each; with none there
    // is no such file. The log is `logName` in the folder.
    explicit FreshTrace(const std::vector<std::string>& options = {},
                        const std::string& logName = "trace.log");
    ~FreshTrace();
    FreshTrace(const FreshTrace&) = delete;
    FreshTrace& operator=(const FreshTrace&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return dir_.file(name); }
    // The content of a file in the folder with line ends "\n".
    [[nodiscard]] std::string text(const std::string& name = "trace.log") const;
    // Its lines without their prefixes; banner lines are left out.
    [[nodiscard]] std::vector<std::string> messages(const std::string& name = "trace.log") const;
    // The names of the files in the folder, sorted.
    [[nodiscard]] std::vector<std::string> files() const;

    // Ends the trace, which closes the log, and starts another in the same folder.
    void restart();

    [[nodiscard]] trace::TraceSystem& system() { return *system_; }
    [[nodiscard]] const trace::Settings& settings() const { return system_->settings(); }

    // Stops the clock of this and later traces at this time, until another FreshTrace is made.
    static void setTicks(std::uint32_t milliseconds);

  private:
    TempDir dir_;
    std::optional<trace::TraceSystem> system_;
};

}  // namespace qel::test

#endif
