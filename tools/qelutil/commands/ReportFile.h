// The file of a conversion's report. Its body is written before its head is known, so that it waits
// in a second file beside it. One thread.
#ifndef QELUTIL_COMMANDS_REPORTFILE_H
#define QELUTIL_COMMANDS_REPORTFILE_H

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "base/Files.h"

namespace qel::cli {

class ReportFile {
  public:
    // Throws InputError when the file cannot be written there. Without commit() an old file remains
    // as it was.
    ReportFile(Context& context, const std::string& name);
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    // What cannot be written is reported by commit().
    void addToBody(std::string_view text);
    void addToHead(std::string_view text);
    // Throws InputError when the report is not complete.
    void commit();

  private:
    std::string name_;
    OutputFile page_;
    std::filesystem::path bodyPath_;
    std::fstream body_;
};

}  // namespace qel::cli

#endif
