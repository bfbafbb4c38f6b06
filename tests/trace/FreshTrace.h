// The trace as it is at the start of a process: a folder of its own, options of the test's
// choosing, nothing loaded yet. The program's usual log comes back with the destructor. One at a
// time, with no other thread tracing while it comes and goes.
#ifndef QEL_TESTS_TRACE_FRESHTRACE_H
#define QEL_TESTS_TRACE_FRESHTRACE_H

#include <cstdint>
#include <string>
#include <vector>

#include "support/TempDir.h"

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

    // From now on the settings load sees this time; the first call also makes it the time source.
    static void setTicks(std::uint32_t milliseconds);

  private:
    TempDir dir_;
};

}  // namespace qel::test

#endif
