// The calendar files that a command line names: files as they are, folders with the calendars in
// them. One thread.
#ifndef QELUTIL_BASE_CALENDARFILES_H
#define QELUTIL_BASE_CALENDARFILES_H

#include <cstdint>
#include <string>
#include <vector>

#include "base/Command.h"

namespace qel::cli {

struct CalendarFile {
    std::string name;  // to open it by, and for messages
    // Where its result is in a folder of results: the path below the folder that was named,
    // without ".vcs" or ".ics" at its end; "2005/June" for PHONE/2005/June.vcs. Empty for a
    // standard stream.
    std::string place;
    std::uint64_t size = 0;  // in bytes, 0 where it is not known
    std::string problem;     // why it is not read; empty when it is
};

struct CalendarFiles {
    std::vector<CalendarFile> files;
    bool anyFolder = false;
};

// The files in the order of `names`, those of a folder in the order of their paths. Of a folder the
// files that end in .vcs or .ics count (in either case), at any depth; files and folders whose name
// begins with a dot do not, nor what is in `except` (a folder of results). Links to files are
// followed, links to folders below the one that is named are not, so that no walk goes in circles.
// A folder that cannot be read, or holds no calendar, is reported as an error.
[[nodiscard]] CalendarFiles calendarFiles(Context& context, const std::vector<std::string>& names,
                                          const std::string& except);

// "ics" or "vcs" in small letters when that is the name's extension, else "".
[[nodiscard]] std::string calendarExtension(const std::string& name);

}  // namespace qel::cli

#endif
