// The file of a conversion's report. Its body is written before its head is known, so that it waits
// in a second file, which has no name. One thread.
#ifndef QELUTIL_COMMANDS_REPORTFILE_H
#define QELUTIL_COMMANDS_REPORTFILE_H

#include <string>
#include <string_view>
#include <system_error>

#include "base/Files.h"
#include "platform/Files.h"

namespace qel::cli {

class ReportFile {
  public:
    // Throws OutputError when the file cannot be written there. Without commit() an old file
    // remains as it was.
    ReportFile(Context& context, const std::string& name);

    // What cannot be written is reported by commit().
    void addToBody(std::string_view text);
    void addToHead(std::string_view text) { page_.stream() << text; }
    // Throws OutputError when the report is not complete.
    void commit();

  private:
    void writeBlock();

    std::string name_;
    OutputFile page_;
    platform::WritableFile body_;
    std::string block_;        // of the body, not written yet
    std::error_code failure_;  // the first one of the body's
};

}  // namespace qel::cli

#endif
