// Paths, streams and directories. Everything made here is readable by its user alone.
#include "platform/Files.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/Process.h"

namespace qel::platform {

const char kPathSeparator = '/';

namespace {

constexpr mode_t kPrivateFile = S_IRUSR | S_IWUSR;
constexpr mode_t kPrivateDirectory = S_IRWXU;

// Opens without waiting for the other end of a pipe. `regularOnly` refuses everything that is not a
// file of bytes, such as a directory, which could be opened for reading but not read.
std::FILE* openStream(const char* path, int flags, const char* mode, bool regularOnly) noexcept {
    const int handle = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, kPrivateFile);
    if (handle < 0) return nullptr;
    struct stat status {};
    if (regularOnly && (fstat(handle, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(handle);
        errno = EINVAL;
        return nullptr;
    }
    std::FILE* stream = fdopen(handle, mode);
    if (stream == nullptr) close(handle);
    return stream;
}

constexpr int kAppending = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

FileIdentity identityOf(const struct stat& status) noexcept {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
            true};
}

// Makes the directory and its missing parents.
bool createDirectories(char* path) noexcept {
    for (char* p = path + 1; *p != '\0'; ++p) {
        if (*p != '/') continue;
        *p = '\0';
        const bool made = createDirectory(path);
        *p = '/';
        if (!made) return false;
    }
    return createDirectory(path);
}

}  // namespace

bool appendsAreAtomic() noexcept {
    return true;
}

bool messagesAreWhole() noexcept {
    return true;
}

bool isPathSeparator(char c) noexcept {
    return c == '/' || c == '\\';
}

std::size_t directoryLength(const char* path) noexcept {
    std::size_t length = std::strlen(path);
    while (length > 0 && !isPathSeparator(path[length - 1])) --length;
    return length;
}

int openForMessage(const char* path, std::int64_t* size) noexcept {
    const int handle = open(path, kAppending, kPrivateFile);
    struct stat status {};
    if (handle >= 0)
        *size = fstat(handle, &status) == 0 ? static_cast<std::int64_t>(status.st_size) : -1;
    return handle;
}

std::FILE* openForRead(const char* path) noexcept {
    return openStream(path, O_RDONLY, "rb", true);
}

std::FILE* openForWrite(const char* path) noexcept {
    return openStream(path, O_WRONLY | O_CREAT | O_TRUNC, "wb", false);
}

bool fileExists(const char* path) noexcept {
    struct stat status {};
    return lstat(path, &status) == 0;
}

std::int64_t fileSize(const char* path) noexcept {
    struct stat status {};
    return stat(path, &status) == 0 ? static_cast<std::int64_t>(status.st_size) : -1;
}

std::int64_t changeStamp(const char* path) noexcept {
    struct stat status {};
    if (stat(path, &status) != 0) return -1;
#if defined(QEL_HAS_ST_CTIM)
    return std::int64_t{status.st_ctim.tv_sec} * 1000000000 + status.st_ctim.tv_nsec;
#elif defined(QEL_HAS_ST_CTIMESPEC)
    return std::int64_t{status.st_ctimespec.tv_sec} * 1000000000 + status.st_ctimespec.tv_nsec;
#else
    // Of two changes within a second, those show that make the file another or of another size.
    const auto other =
        static_cast<std::uint64_t>(status.st_ino) * 31 + static_cast<std::uint64_t>(status.st_size);
    return std::int64_t{status.st_ctime} * 1000000000 +
           static_cast<std::int64_t>(other % 1000000000);
#endif
}

FileIdentity fileIdentity(const char* path) noexcept {
    struct stat status {};
    return stat(path, &status) == 0 ? identityOf(status) : FileIdentity{};
}

bool endsInLine(const char* path) noexcept {
    const int handle = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (handle < 0) return true;
    struct stat status {};
    char last = '\n';
    if (fstat(handle, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0)
        (void)!pread(handle, &last, 1, status.st_size - 1);
    close(handle);
    return last == '\n';
}

int openHeld(const char* path) noexcept {
    return open(path, kAppending, kPrivateFile);
}

std::size_t appendTo(int file, const char* data, std::size_t size) noexcept {
    std::size_t written = 0;
    while (written < size) {
        const ssize_t count = write(file, data + written, size - written);
        if (count > 0)
            written += static_cast<std::size_t>(count);
        else if (count == 0 || errno != EINTR)
            break;
    }
    return written;
}

void closeAppended(int file) noexcept {
    close(file);
}

bool stillNamed(int file, const char* path) noexcept {
    struct stat status {};
    return fstat(file, &status) == 0 && identityOf(status) == fileIdentity(path);
}

int removeFile(const char* path) noexcept {
    return unlink(path);
}

int renameFile(const char* from, const char* to) noexcept {
    return rename(from, to);
}

bool directoryWritable(const char* directory) noexcept {
    return access(directory, W_OK) == 0;
}

bool createDirectory(const char* directory) noexcept {
    if (mkdir(directory, kPrivateDirectory) == 0) return true;
    struct stat status {};
    return stat(directory, &status) == 0 && S_ISDIR(status.st_mode);
}

bool currentDirectory(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    if (getcwd(out, room) != nullptr) return true;
    out[0] = '\0';
    return false;
}

bool userStateDirectory(char* out, std::size_t room) noexcept {
    if (room == 0) return false;
    out[0] = '\0';
    char path[PATH_MAX];
    // A relative $XDG_STATE_HOME is to be ignored (XDG base directories).
    if (!environment("XDG_STATE_HOME", path, sizeof path) || path[0] != '/') {
        char home[PATH_MAX];
        if (!environment("HOME", home, sizeof home)) {
            char buffer[4096];
            passwd entry{};
            passwd* found = nullptr;
            if (getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found) != 0 ||
                found == nullptr || found->pw_dir == nullptr)
                return false;
            std::snprintf(home, sizeof home, "%s", found->pw_dir);
        }
        if (home[0] != '/') return false;
        const int length = std::snprintf(path, sizeof path, "%s/.local/state", home);
        if (static_cast<std::size_t>(length) >= sizeof path) return false;
    }
    if (!createDirectories(path)) return false;
    const std::size_t length = std::strlen(path);
    if (length >= room) return false;
    std::memcpy(out, path, length + 1);
    return true;
}

}  // namespace qel::platform
