// The calendar files that a command line names: files as they are, folders and ZIP archives with
// the calendars in them. One thread.
#ifndef QELUTIL_BASE_CALENDARFILES_H
#define QELUTIL_BASE_CALENDARFILES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/Command.h"
#include "base/Files.h"
#include "base/ZipArchive.h"

namespace qel::cli {

struct CalendarFile {
    // To open it by, and for messages; PHONE.zip/2005/June.vcs in an archive.
    std::string name;
    // Where its result is in a folder of results: the path below the folder or archive that was
    // named, without its extension; "2005/June" for PHONE/2005/June.vcs. Empty for a standard
    // stream.
    std::string place;
    std::string root;                           // the folder or archive that was named, if any
    std::uint64_t size = 0;                     // in bytes, 0 where it is not known
    std::string problem;                        // why it is not read; empty when it is
    std::shared_ptr<const ZipArchive> archive;  // that it is in, or null
    std::size_t member = 0;                     // its number there

    // Throws InputError as InputFile does.
    [[nodiscard]] InputFile open(Context& context) const;
    // The file itself, or the archive that it is in.
    [[nodiscard]] const std::string& fileName() const { return archive ? archive->name() : name; }
};

// A file of a folder or an archive that is not taken for a calendar.
struct OtherFile {
    // What it seems to be: the kinds of qelcal_recognise, and some of a folder's own.
    enum class Kind {
        Text,
        Calendar,  // by its content, not by its name
        Contact,
        Empty,
        Zip,
        Html,
        Xml,
        Utf16,
        Binary,
        Hidden,  // its name, or its folder's, begins with a dot
        Link,    // to a folder
        Special,
        Unreadable,
    };
    std::string name;
    Kind kind = Kind::Text;

    // "contact", as JSON has it.
    [[nodiscard]] const char* kindName() const;
    // In words that follow "it is".
    [[nodiscard]] std::string kindText() const;
};

struct CalendarFiles {
    std::vector<CalendarFile> files;
    std::vector<OtherFile> others;
    bool anyFolder = false;  // or archive
};

// The files in the order of `names`, those of a folder or an archive in the order of their paths.
// Of a folder those are taken whose extension is a calendar's, in any case, at any depth, and what
// is in its archives in the same way; all else is in `others`, but for `except` (a folder of
// results). An archive in an archive is not opened. Links to files are followed, links to folders
// below the one that is named are not, so that no walk goes in circles. A folder that cannot be
// read, or holds no calendar, is reported as an error. `charset`: as for ZipArchive.
[[nodiscard]] CalendarFiles calendarFiles(Context& context, const std::vector<std::string>& names,
                                          const std::string& except, const std::string& charset);

// "ics" or "vcs", the format that the name's extension stands for; "" when it is not a calendar's.
[[nodiscard]] std::string calendarExtension(const std::string& name);

}  // namespace qel::cli

#endif
