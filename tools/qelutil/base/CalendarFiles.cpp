#include "base/CalendarFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/Files.h"
#include "base/Text.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kExtension = 4;  // ".vcs"

std::string utf8(const fs::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

std::string withoutExtension(std::string name) {
    if (!calendarExtension(name).empty()) name.resize(name.size() - kExtension);
    return name;
}

// A walk through one folder that was named.
class Walk {
  public:
    Walk(Context& context, const std::string& root, const std::string& except,
         std::vector<CalendarFile>& files)
        : context_(context), root_(root), except_(pathOf(except)), files_(files) {}

    void run() {
        // Depth needs no bound of its own: links are not followed, and the system bounds a path.
        std::vector<std::string> waiting{""};
        while (!waiting.empty()) {
            const std::string folder = std::move(waiting.back());
            waiting.pop_back();
            look(folder, waiting);
        }
        std::sort(found_.begin(), found_.end());
        for (const std::string& below : found_) add(below);
        if (found_.empty() && !failed_)
            context_.error(root_ +
                           ": there is no .vcs or .ics file in this folder; name "
                           "files with other endings themselves");
    }

  private:
    [[nodiscard]] std::string nameOf(const std::string& below) const {
        if (below.empty()) return root_;
        const bool ends = root_.ends_with('/') || root_.ends_with('\\');
        return root_ + (ends ? "" : "/") + below;
    }

    void look(const std::string& folder, std::vector<std::string>& waiting) {
        std::error_code failure;
        fs::directory_iterator each(pathOf(nameOf(folder)), failure);
        for (; !failure && each != fs::directory_iterator(); each.increment(failure)) {
            const std::string name = utf8(each->path().filename());
            if (name.starts_with('.')) continue;
            const std::string below = folder.empty() ? name : folder + "/" + name;
            std::error_code unknown;
            if (each->is_directory(unknown)) {
                if (!each->is_symlink(unknown) && !isExcepted(each->path()))
                    waiting.push_back(below);
            } else if (!calendarExtension(name).empty()) {
                found_.push_back(below);
            }
        }
        if (!failure) return;
        failed_ = true;
        context_.error(nameOf(folder) + ": this folder cannot be read: " + failure.message());
    }

    [[nodiscard]] bool isExcepted(const fs::path& folder) const {
        std::error_code unknown;
        return !except_.empty() && fs::equivalent(folder, except_, unknown);
    }

    void add(const std::string& below) {
        CalendarFile file{nameOf(below), withoutExtension(below), 0, {}};
        std::error_code unknown;
        const fs::path path = pathOf(file.name);
        // Whoever writes to a pipe in a folder may never come.
        if (fs::is_other(path, unknown))
            file.problem =
                file.name + ": is a pipe or a device, not a file; name it itself to read it";
        const std::uintmax_t size = fs::file_size(path, unknown);
        if (!unknown) file.size = size;
        files_.push_back(std::move(file));
    }

    Context& context_;
    const std::string& root_;
    fs::path except_;
    std::vector<CalendarFile>& files_;
    std::vector<std::string> found_;  // below the root
    bool failed_ = false;
};

}  // namespace

std::string calendarExtension(const std::string& name) {
    if (name.size() <= kExtension || name[name.size() - kExtension] != '.') return {};
    const std::string end = lowerCase(name.substr(name.size() - kExtension + 1));
    return end == "vcs" || end == "ics" ? end : std::string();
}

CalendarFiles calendarFiles(Context& context, const std::vector<std::string>& names,
                            const std::string& except) {
    CalendarFiles all;
    for (const std::string& name : names) {
        std::error_code unknown;
        const fs::path path = pathOf(name);
        if (name != "-" && !name.empty() && fs::is_directory(path, unknown)) {
            all.anyFolder = true;
            Walk(context, name, except, all.files).run();
            continue;
        }
        CalendarFile file{name, "", 0, {}};
        if (name != "-" && !name.empty()) {
            file.place = withoutExtension(utf8(path.filename()));
            const std::uintmax_t size = fs::file_size(path, unknown);
            if (!unknown) file.size = size;
        }
        all.files.push_back(std::move(file));
    }
    return all;
}

}  // namespace qel::cli
