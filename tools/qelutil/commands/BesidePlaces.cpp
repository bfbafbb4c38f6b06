#include "commands/BesidePlaces.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/Files.h"
#include "base/Text.h"

namespace qel::cli {

namespace fs = std::filesystem;

namespace {

bool isTaken(const std::string& name) {
    std::error_code unknown;
    return fs::exists(fs::symlink_status(pathOf(name), unknown));
}

std::string sibling(const std::string& name, const std::string& other) {
    return nameOf(pathOf(name).parent_path() / pathOf(other));
}

}  // namespace

std::string BesidePlaces::freeName(const std::string& place, const std::string& extension) {
    std::string name = place + extension;
    for (int number = 2; isTaken(name); ++number)
        name = place + "-" + std::to_string(number) + extension;
    return name;
}

// Folders of this run may not be there yet.
std::string BesidePlaces::freeFolder(const std::string& wanted) const {
    const auto isOurs = [this](const std::string& name) {
        return std::any_of(folders_.begin(), folders_.end(),
                           [&](const auto& each) { return each.second == name; });
    };
    std::string name = freeName(wanted, "");
    for (int number = 2; isOurs(name); ++number)
        name = freeName(wanted + "-" + std::to_string(number), "");
    return name;
}

std::string BesidePlaces::folderFor(const std::string& root) {
    std::string& folder = folders_[root];
    if (!folder.empty()) return folder;
    // "phone/" is phone; "." and ".." have names only as whole paths.
    fs::path path = pathOf(root).lexically_normal();
    if (!path.has_filename()) path = path.parent_path();
    if (path == "." || path.filename() == "..") path = fs::canonical(path);
    const std::string name = nameOf(path);
    const bool isArchive = lowerCase(name).ends_with(".zip");
    folder = freeFolder((isArchive ? name.substr(0, name.size() - 4) : name) + "-converted");
    return folder;
}

std::string BesidePlaces::placeOf(const CalendarFile& file) {
    if (file.place.empty())
        throw InputError(
            "standard input: no place is beside it; name the file to write by --output");
    return file.root.empty() ? sibling(file.name, file.place)
                             : folderFor(file.root) + "/" + file.place;
}

std::string BesidePlaces::reportFor(const CalendarFile& first) {
    return first.root.empty() ? freeName(placeOf(first) + "-report", ".html")
                              : folderFor(first.root) + "/report.html";
}

}  // namespace qel::cli
