// Where the results of `convert --beside` lie: beside the files, under names that are free. One
// thread.
#ifndef QELUTIL_COMMANDS_BESIDEPLACES_H
#define QELUTIL_COMMANDS_BESIDEPLACES_H

#include <map>
#include <string>

#include "base/CalendarFiles.h"

namespace qel::cli {

class BesidePlaces {
  public:
    // The result's name without its extension: "a/phone" for a/phone.vcs. For what a folder or an
    // archive has, a place in a new folder beside it: "PHONE-converted/2005/June". Throws
    // InputError for a standard stream.
    [[nodiscard]] std::string placeOf(const CalendarFile& file);

    // The report's name: "a/phone-report.html", or "PHONE-converted/report.html".
    [[nodiscard]] std::string reportFor(const CalendarFile& first);

    // `place` with the extension, or the first free one of "phone-2.ics", "phone-3.ics", ...
    [[nodiscard]] static std::string freeName(const std::string& place,
                                              const std::string& extension);

  private:
    std::string folderFor(const std::string& root);
    [[nodiscard]] std::string freeFolder(const std::string& wanted) const;

    std::map<std::string, std::string> folders_;  // of results, for each folder or archive
};

}  // namespace qel::cli

#endif
