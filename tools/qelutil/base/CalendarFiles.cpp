#include "base/CalendarFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <istream>
#include <set>
#include <system_error>

#include "QelCalendar/Texts.h"
#include "base/Text.h"
#include "platform/Files.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

// Extensions of calendars, and the format that is mostly in them.
constexpr struct {
    std::string_view extension;
    const char* format;
} kExtensions[] = {
    {".vcs", "vcs"},  {".ics", "ics"},       {".vnt", "vcs"}, {".ical", "ics"},
    {".vcal", "vcs"}, {".icalendar", "ics"}, {".ifb", "ics"},
};

std::string withoutExtension(const std::string& name) {
    return calendarExtension(name).empty() ? name : name.substr(0, name.rfind('.'));
}

bool isArchiveName(const std::string& name) {
    return lowerCase(name).ends_with(".zip");
}

// True for a path of which a part is a name that begins with a dot.
bool isHidden(const std::string& path) {
    std::size_t start = 0;
    while (start < path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string part = path.substr(start, end - start);
        if (part.starts_with('.') && part != "." && part != "..") return true;
        start = end + 1;
    }
    return false;
}

// As a path below a folder that nothing leads out of, on any system.
std::string tamed(const std::string& path) {
    std::string tame;
    std::size_t start = 0;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        std::string part = path.substr(start, end - start);
        for (char& c : part)
            if (static_cast<unsigned char>(c) < ' ' ||
                std::string_view(":*?\"<>|").find(c) != std::string_view::npos)
                c = '_';
        if (part == "." || part == "..") part.assign(part.size(), '_');
        if (!part.empty()) tame += (tame.empty() ? "" : "/") + part;
        start = end + 1;
    }
    return tame;
}

OtherFile::Kind kindOf(std::istream& file) {
    constexpr std::size_t kLooked = 4096;
    std::string head(kLooked, '\0');
    try {
        file.read(head.data(), kLooked);
    } catch (const InputError&) {
        return OtherFile::Kind::Unreadable;
    }
    if (file.bad()) return OtherFile::Kind::Unreadable;
    head.resize(static_cast<std::size_t>(file.gcount()));
    return static_cast<OtherFile::Kind>(qelcal::recognise(head));
}

OtherFile::Kind kindOf(const fs::path& path) {
    std::ifstream file(platform::openable(path), std::ios::binary);
    return file ? kindOf(file) : OtherFile::Kind::Unreadable;
}

// Collects the files of one run.
class Collector {
  public:
    Collector(Context& context, const std::string& except, const std::string& charset)
        : context_(context), except_(pathOf(except)), charset_(charset) {}

    void add(const std::string& name) {
        if (isStandardInput(name)) {
            all_.files.push_back({name, {}, {}, 0, {}, {}, 0});
            return;
        }
        if (name.empty()) {
            all_.files.push_back({name, {}, {}, 0, kEmptyName, {}, 0});
            return;
        }
        const fs::path path = pathOf(name);
        std::error_code unknown;
        if (!named_.insert(fs::absolute(path, unknown).lexically_normal()).second) {
            context_.warning(name, 0, "is named twice; it is read once");
            return;
        }
        const std::string place = withoutExtension(nameOf(path.filename()));
        const std::size_t before = all_.files.size();
        if (fs::is_directory(path, unknown)) {
            all_.anyFolder = true;
            if (!addFolder(name) || all_.files.size() != before) return;
            context_.error(name +
                           ": there is no calendar (.vcs, .ics, .vnt, .ical) in this folder; name "
                           "files with other "
                           "endings themselves");
        } else if (isZipArchive(path)) {
            addArchive(name, name, "");
        } else if (!path.has_filename()) {
            // "phone/": what only a folder's name can end with.
            const fs::path folder = path.parent_path();
            all_.files.push_back({nameOf(folder),
                                  nameOf(folder.filename()),
                                  {},
                                  0,
                                  name + ": there is no such folder",
                                  {},
                                  0});
        } else {
            all_.files.push_back({name, place, {}, sizeOf(path), {}, {}, 0});
        }
    }

    [[nodiscard]] CalendarFiles take() { return std::move(all_); }

  private:
    // A calendar or an archive below a folder.
    struct Found {
        std::string below;
        std::uint64_t size;
        bool isSpecial;
    };

    static std::uint64_t sizeOf(const fs::path& path) {
        std::error_code unknown;
        const std::uintmax_t size = fs::file_size(path, unknown);
        return unknown ? 0 : static_cast<std::uint64_t>(size);
    }

    static std::string inFolder(const std::string& root, const std::string& below) {
        if (below.empty()) return root;
        const bool ends = root.ends_with('/') || root.ends_with('\\');
        return root + (ends ? "" : "/") + below;
    }

    // False when a part of it cannot be read.
    bool addFolder(const std::string& root) {
        // Depth needs no bound of its own: links are not followed, and the system bounds a path.
        std::vector<std::string> waiting{""};
        std::vector<Found> found;
        const std::size_t others = all_.others.size();
        bool readable = true;
        while (!waiting.empty()) {
            const std::string folder = std::move(waiting.back());
            waiting.pop_back();
            readable &= look(root, folder, waiting, found);
        }
        std::sort(found.begin(), found.end(),
                  [](const Found& one, const Found& other) { return one.below < other.below; });
        // The system lists folders in any order.
        std::sort(
            all_.others.begin() + static_cast<std::ptrdiff_t>(others), all_.others.end(),
            [](const OtherFile& one, const OtherFile& other) { return one.name < other.name; });
        for (const auto& [below, size, isSpecial] : found) {
            const std::string name = inFolder(root, below);
            if (isArchiveName(below) && !isSpecial) {
                addArchive(root, name, below.substr(0, below.rfind('.')) + "/");
                continue;
            }
            all_.files.push_back({name,
                                  withoutExtension(below),
                                  root,
                                  size,
                                  // Whoever writes to it may never come.
                                  isSpecial ? name + ": is a pipe or a device, not a file; name it "
                                                     "itself to read it"
                                            : "",
                                  {},
                                  0});
        }
        return readable;
    }

    bool look(const std::string& root, const std::string& folder, std::vector<std::string>& waiting,
              std::vector<Found>& found) {
        const std::string folderName = inFolder(root, folder);
        std::error_code failure;
        for (const platform::FolderItem& item : platform::itemsOf(pathOf(folderName), failure)) {
            const std::string name = nameOf(item.name);
            const std::string below = folder.empty() ? name : folder + "/" + name;
            const std::string whole = inFolder(root, below);
            if (name.starts_with('.')) {
                all_.others.push_back({whole, OtherFile::Kind::Hidden});
            } else if (item.isFolder) {
                if (item.isLink)
                    all_.others.push_back({whole, OtherFile::Kind::Link});
                else if (!isExcepted(pathOf(whole)))
                    waiting.push_back(below);
            } else if (!calendarExtension(name).empty() || isArchiveName(name)) {
                found.push_back({below, item.size, item.isOther});
            } else {
                all_.others.push_back(
                    {whole, item.isOther ? OtherFile::Kind::Special : kindOf(pathOf(whole))});
            }
        }
        if (!failure) return true;
        context_.error(folderName + ": this folder cannot be read: " + failure.message());
        return false;
    }

    // An archive that was named, or is in the folder that was; the results of its files are below
    // `place`.
    void addArchive(const std::string& root, const std::string& name, const std::string& place) {
        all_.anyFolder = true;
        std::shared_ptr<const ZipArchive> archive;
        try {
            archive = std::make_shared<const ZipArchive>(name, charset_);
        } catch (const InputError& problem) {
            all_.files.push_back(
                {name, withoutExtension(place + name), root, 0, problem.what(), {}, 0});
            return;
        }
        const std::vector<ZipArchive::Member>& members = archive->members();
        std::vector<std::size_t> inOrder;
        for (std::size_t i = 0; i < members.size(); ++i) inOrder.push_back(i);
        std::sort(inOrder.begin(), inOrder.end(), [&](std::size_t one, std::size_t other) {
            return members[one].name < members[other].name;
        });
        const std::size_t before = all_.files.size();
        for (const std::size_t i : inOrder) {
            const ZipArchive::Member& member = members[i];
            const std::string whole = name + "/" + member.name;
            if (isHidden(member.name)) {
                all_.others.push_back({whole, OtherFile::Kind::Hidden});
            } else if (calendarExtension(member.name).empty()) {
                all_.others.push_back({whole, member.problem.empty()
                                                  ? kindOf(*archive, member)
                                                  : OtherFile::Kind::Unreadable});
            } else {
                all_.files.push_back(
                    {whole, place + tamed(withoutExtension(member.name)), root, member.size,
                     member.problem.empty() ? "" : whole + ": " + member.problem, archive, i});
            }
        }
        if (all_.files.size() == before && place.empty())
            context_.error(name +
                           ": there is no calendar (.vcs, .ics, .vnt, .ical) in this archive");
    }

    static OtherFile::Kind kindOf(const ZipArchive& archive, const ZipArchive::Member& member) {
        try {
            return cli::kindOf(*archive.open(member));
        } catch (const InputError&) {
            return OtherFile::Kind::Unreadable;
        }
    }
    static OtherFile::Kind kindOf(const fs::path& path) { return cli::kindOf(path); }

    [[nodiscard]] bool isExcepted(const fs::path& folder) const {
        std::error_code unknown;
        return !except_.empty() && fs::equivalent(folder, except_, unknown);
    }

    Context& context_;
    fs::path except_;
    const std::string& charset_;
    CalendarFiles all_;
    std::set<fs::path> named_;  // on the command line
};

}  // namespace

InputFile CalendarFile::open(Context& context) const {
    if (!problem.empty()) throw InputError(problem);
    if (archive == nullptr) return InputFile(context, name);
    return InputFile::ofStream(name, archive->open(archive->members()[member]), size);
}

const char* OtherFile::kindName() const {
    constexpr const char* kNames[] = {"text", "calendar", "contact",   "empty",  "zip",
                                      "html", "xml",      "utf16",     "binary", "hidden",
                                      "link", "special",  "unreadable"};
    return kNames[static_cast<int>(kind)];
}

std::string OtherFile::kindText() const {
    switch (kind) {
        case Kind::Calendar:
            return "a calendar under a name of another kind; name it itself to convert it";
        case Kind::Hidden:
            return "hidden; name it itself to convert it";
        case Kind::Link:
            return "a link to a folder; name it itself to convert what is in it";
        case Kind::Special:
            return "a pipe or a device";
        case Kind::Unreadable:
            return "not readable";
        default:
            return qelcal_kind_text(static_cast<int>(kind));
    }
}

std::string calendarExtension(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    const std::size_t base = name.find_last_of("/\\") + 1;  // 0 without a folder
    if (dot == std::string::npos || dot <= base) return {};
    const std::string extension = lowerCase(name.substr(dot));
    for (const auto& each : kExtensions)
        if (extension == each.extension) return each.format;
    return {};
}

CalendarFiles calendarFiles(Context& context, const std::vector<std::string>& names,
                            const std::string& except, const std::string& charset) {
    Collector collector(context, except, charset);
    for (const std::string& name : names) collector.add(name);
    return collector.take();
}

}  // namespace qel::cli
