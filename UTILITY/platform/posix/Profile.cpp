// Profile files without the system's own calls for them: the same rules of reading, and writing
// that replaces the file in one step, so that a reader or a crash never meets half of one.
#include "platform/Profile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/AsciiText.h"
#include "platform/PathLock.h"
#include "platform/ProfileLock.h"

namespace qel::platform {

namespace {

// No sensible settings file is larger; a larger one counts as unreadable and is not changed.
constexpr std::size_t kMostBytes = std::size_t{4} * 1024 * 1024;

std::string_view trim(std::string_view text) noexcept {
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view unquote(std::string_view value) noexcept {
    const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                        value.front() == value.back();
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// A file that is closed however its reader ends.
class OpenFile {
  public:
    explicit OpenFile(const char* path) noexcept
        : handle_(open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK)) {}
    ~OpenFile() {
        if (handle_ >= 0) close(handle_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    [[nodiscard]] int get() const noexcept { return handle_; }

  private:
    int handle_;
};

enum class ReadResult { kRead, kMissing, kFailed };

ReadResult readWhole(const char* path, std::string& text) {
    const OpenFile file(path);
    if (file.get() < 0) return errno == ENOENT ? ReadResult::kMissing : ReadResult::kFailed;
    struct stat status {};
    bool good = fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    char block[4096];
    while (good) {
        const ssize_t count = read(file.get(), block, sizeof block);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        good = count > 0 && text.size() + static_cast<std::size_t>(count) <= kMostBytes;
        if (good) text.append(block, static_cast<std::size_t>(count));
    }
    return good ? ReadResult::kRead : ReadResult::kFailed;
}

// Where a key is, or where it would go. Only the first section of a name counts, and its first key.
struct Place {
    bool sectionFound = false;
    bool keyFound = false;
    std::size_t valueStart = 0;  // just behind the "="
    std::size_t valueEnd = 0;    // the end of the line's text
    std::size_t insertAt = 0;    // behind the section's last line that is not blank
};

Place find(std::string_view text, std::string_view section, std::string_view key) noexcept {
    Place place;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t newline = text.find('\n', start);
        const std::size_t next = newline == std::string_view::npos ? text.size() : newline + 1;
        const std::string_view line = trim(text.substr(start, next - start));
        if (!line.empty() && line.front() == '[') {
            if (place.sectionFound) return place;
            const std::size_t close = line.find(']');
            place.sectionFound = close != std::string_view::npos &&
                                 equalNoCase(trim(line.substr(1, close - 1)), section);
        } else if (place.sectionFound && !line.empty() && line.front() != ';') {
            const std::size_t equals = text.substr(0, next).find('=', start);
            if (equals != std::string_view::npos &&
                equalNoCase(trim(text.substr(start, equals - start)), key)) {
                place.keyFound = true;
                place.valueStart = equals + 1;
                place.valueEnd = next;
                while (place.valueEnd > place.valueStart &&
                       (text[place.valueEnd - 1] == '\n' || text[place.valueEnd - 1] == '\r'))
                    --place.valueEnd;
                return place;
            }
        }
        if (place.sectionFound && !line.empty()) place.insertAt = next;
        start = next;
    }
    return place;
}

// The key's value, empty when it is missing.
std::string_view valueIn(std::string_view text, std::string_view section,
                         std::string_view key) noexcept {
    const Place place = find(text, trim(section), trim(key));
    if (!place.keyFound) return {};
    return unquote(trim(text.substr(place.valueStart, place.valueEnd - place.valueStart)));
}

// `text` with the value set. Line ends are those of the file.
std::string withValue(const std::string& text, std::string_view section, std::string_view key,
                      std::string_view value) {
    const std::string end = text.find("\r\n") == std::string::npos ? "\n" : "\r\n";
    const Place place = find(text, section, key);
    std::string result = text;
    if (place.keyFound) {
        result.replace(place.valueStart, place.valueEnd - place.valueStart, value);
        return result;
    }
    std::string lines;
    std::size_t at = place.sectionFound ? place.insertAt : text.size();
    if (at > 0 && text[at - 1] != '\n') lines += end;
    if (!place.sectionFound) lines.append("[").append(section).append("]").append(end);
    lines.append(key).append("=").append(value).append(end);
    return result.insert(at, lines);
}

bool writeAll(int handle, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = write(handle, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// A new file of a name that ends in the template's letters; -1 where none can be made.
int newFile(std::string& name) noexcept {
#ifdef QEL_HAS_MKOSTEMP
    return mkostemp(name.data(), O_CLOEXEC);
#else
    const int handle = mkstemp(name.data());
    if (handle >= 0) (void)!fcntl(handle, F_SETFD, FD_CLOEXEC);
    return handle;
#endif
}

bool replaceFile(const std::string& path, std::string_view text) {
    std::string temporary = path + ".XXXXXX";
    const int handle = newFile(temporary);
    if (handle < 0) return false;
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) (void)!fchmod(handle, status.st_mode & 0777);
    const bool written = writeAll(handle, text);
    const bool closed = close(handle) == 0;
    if (written && closed && rename(temporary.c_str(), path.c_str()) == 0) return true;
    unlink(temporary.c_str());
    return false;
}

// Whether a line of these would be read back as what was given; one that is not would be added
// again with every write.
bool readsBack(std::string_view section, std::string_view key, std::string_view value) noexcept {
    constexpr auto kNone = std::string_view::npos;
    return !key.empty() && key.front() != '[' && key.front() != ';' &&
           key.find_first_of("=\r\n") == kNone && section.find_first_of("]\r\n") == kNone &&
           value.find_first_of("\r\n") == kNone;
}

bool writeProfileChecked(const char* path, std::string_view section, std::string_view key,
                         std::string_view value, ProfileWrite when) {
    section = trim(section);
    key = trim(key);
    if (!readsBack(section, key, value)) return false;
    // A link stays a link: the file that it leads to is replaced.
    char resolved[PATH_MAX];
    const std::string target = realpath(path, resolved) != nullptr ? resolved : path;
    PathLock lock;
    if (!lockProfile(lock, target.c_str())) return false;
    std::string text;
    if (readWhole(target.c_str(), text) == ReadResult::kFailed) return false;
    if (when == ProfileWrite::kIfMissing && !valueIn(text, section, key).empty()) return true;
    const std::string changed = withValue(text, section, key, value);
    if (changed.size() > kMostBytes) return false;
    return changed == text || replaceFile(target, changed);
}

}  // namespace

void readProfile(const char* path, const char* section, const char* key, char* out,
                 std::size_t room) noexcept {
    if (room == 0) return;
    out[0] = '\0';
    try {
        std::string text;
        if (readWhole(path, text) != ReadResult::kRead) return;
        out[valueIn(text, section, key).copy(out, room - 1)] = '\0';
    } catch (...) {
        out[0] = '\0';  // out of memory: as if the file could not be read
    }
}

bool writeProfile(const char* path, const char* section, const char* key, const char* value,
                  ProfileWrite when) noexcept {
    try {
        return writeProfileChecked(path, section, key, value, when);
    } catch (...) {
        return false;
    }
}

}  // namespace qel::platform
